#include <brevantis/asn1/runtime/time.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>

#include "calendar.h"

using namespace runtime_detail;

const std::array<short, 13> ASN1CTime::daysInMonth = {0,  31, 28, 31, 30, 31, 30,
                                                      31, 31, 30, 31, 30, 31};
const std::array<int, 13> ASN1CTime::daysAfterMonth = {0,   31,  59,  90,  120, 151, 181,
                                                       212, 243, 273, 304, 334, 365};

namespace {

constexpr int SmallestBuffer = 30; // a smaller one of the caller's is not written to

constexpr std::int64_t DaysOfFourCenturies = 146097;
constexpr std::int64_t MillisecondsOfDay = 86400000;

constexpr bool isMonth(int month) {
    return month >= 1 && month <= 12;
}

std::int64_t dayNumber(int year, int month, int day) {
    const int before = year - 1;
    const auto index = static_cast<std::size_t>(isMonth(month) ? month - 1 : 0);
    return std::int64_t{before} * 365 + floorDivide(before, 4) - floorDivide(before, 100) +
           floorDivide(before, 400) + ASN1CTime::daysAfterMonth[index] + day - 1 +
           (month >= 3 && isLeapYear(year) ? 1 : 0);
}

std::int64_t millisecondsOf(int hour, int minute, int second, int tenths) {
    return ((hour * 60LL + minute) * 60 + second) * 1000 + tenths * 100LL;
}

/// Zero-based day of a year to month and day.
void splitDayOfYear(int year, int dayOfYear, short& month, short& day) {
    for (int candidate = 12; candidate >= 1; --candidate) {
        const int start = ASN1CTime::daysAfterMonth[static_cast<std::size_t>(candidate - 1)] +
                          (candidate >= 3 && isLeapYear(year) ? 1 : 0);
        if (dayOfYear >= start) {
            month = static_cast<short>(candidate);
            day = static_cast<short>(dayOfYear - start + 1);
            return;
        }
    }
}

int moveDate(std::int64_t days, short& year, short& month, short& day) {
    if (!isMonth(month)) {
        return ASN1S_INVALID_FORMAT;
    }
    const std::int64_t number = dayNumber(year, month, day) + days;
    const std::int64_t cycle = floorDivide(number, DaysOfFourCenturies);
    int rest = static_cast<int>(number - cycle * DaysOfFourCenturies);
    // The last century of a cycle and the last year of four have a day more than the others.
    const int century = std::min(rest / 36524, 3);
    rest -= century * 36524;
    const int fourYears = rest / 1461;
    rest -= fourYears * 1461;
    const int single = std::min(rest / 365, 3);
    rest -= single * 365;
    const std::int64_t newYear = cycle * 400 + century * 100 + fourYears * 4 + single + 1;
    if (newYear < std::numeric_limits<short>::min() ||
        newYear > std::numeric_limits<short>::max()) {
        return ASN1S_INVALID_FORMAT;
    }
    year = static_cast<short>(newYear);
    splitDayOfYear(year, rest, month, day);
    return 0;
}

int textLength(const char* text) {
    const std::size_t length = text != nullptr ? std::strlen(text) : 0;
    return static_cast<int>(std::min<std::size_t>(length, std::numeric_limits<int>::max()));
}

} // namespace

// A read-only text is never written through this reference: whatever writes calls checkCapacity
// first, which turns the caller's variable away from it.
ASN1CTime::ASN1CTime(ASN1MessageBufferIF& buffer, char*& text, int size, unsigned char der)
    : ASN1CType(buffer), utcFlag(der != 0), derRules(der), timeStr(text), timeStrSize(size) {}

ASN1CTime::ASN1CTime(ASN1MessageBufferIF& buffer, const char*& text, unsigned char der)
    : ASN1CTime(buffer, const_cast<char*&>(text), 0, der) {}

ASN1CTime::ASN1CTime(ASN1Context& sharedContext, char*& text, int size, unsigned char der)
    : ASN1CType(sharedContext), utcFlag(der != 0), derRules(der), timeStr(text), timeStrSize(size) {
}

ASN1CTime::ASN1CTime(ASN1Context& sharedContext, const char*& text, unsigned char der)
    : ASN1CTime(sharedContext, const_cast<char*&>(text), 0, der) {}

ASN1CTime::ASN1CTime(char*& text, int size, unsigned char der)
    : utcFlag(der != 0), derRules(der), timeStr(text), timeStrSize(size) {}

ASN1CTime::ASN1CTime(const char*& text, unsigned char der)
    : ASN1CTime(const_cast<char*&>(text), 0, der) {}

ASN1CTime::ASN1CTime(const ASN1CTime& other)
    : ASN1CType(other), utcFlag(other.utcFlag), derRules(other.derRules), timeStr(ownPointer),
      timeStrSize(0) {
    *this = other;
}

ASN1CTime::~ASN1CTime() {
    if (pointsHere && timeStr == ownBuffer) {
        timeStr = nullptr;
    }
}

ASN1CTime& ASN1CTime::operator=(const ASN1CTime& other) {
    if (this == &other) {
        return *this;
    }
    year = other.year;
    month = other.month;
    day = other.day;
    hour = other.hour;
    minute = other.minute;
    second = other.second;
    diffHour = other.diffHour;
    diffMinute = other.diffMinute;
    secFraction = other.secFraction;
    utcFlag = other.utcFlag;
    parsed = other.parsed;
    derRules = other.derRules;

    // Both may refer to one variable, which is about to change.
    const char* text = other.timeStr;
    checkCapacity();
    const int length = std::min(textLength(text), capacity() - 1);
    if (length > 0) {
        std::memmove(timeStr, text, static_cast<std::size_t>(length));
    }
    timeStr[length] = '\0';
    return *this;
}

int ASN1CTime::fail(int status) const noexcept {
    return context ? rtErrSetData(&context->errInfo, status, nullptr, 0) : status;
}

int ASN1CTime::ensureParsed() {
    const int status = parsed == 0 ? parseString(timeStr) : 0;
    return status == 0 ? 0 : fail(status);
}

void ASN1CTime::tryParse() {
    if (parsed == 0) {
        parseString(timeStr);
    }
}

void ASN1CTime::adoptFields(const Fields& fields, const char* text) {
    year = fields.year;
    month = fields.month;
    day = fields.day;
    hour = fields.hour;
    minute = fields.minute;
    second = fields.second;
    diffHour = fields.diffHour;
    diffMinute = fields.diffMinute;
    secFraction = fields.secFraction;
    parsed = 1;
    if (text != timeStr) {
        compileString();
    }
}

int ASN1CTime::writtenFields(Fields& fields) const noexcept {
    fields = {year, month, day, hour, minute, second, diffHour, diffMinute, secFraction};
    const int offset = diffHour * 60 + diffMinute;
    if ((utcFlag == 0 && derRules == 0) || (diffHour == 0 && diffMinute == 0)) {
        return 0;
    }
    short unusedSecond = second;
    int unusedFraction = secFraction;
    return addMilliseconds(-offset * 60000, fields.year, fields.month, fields.day, fields.hour,
                           fields.minute, unusedSecond, unusedFraction);
}

void ASN1CTime::checkCapacity() {
    if (timeStrSize < SmallestBuffer || timeStr == nullptr) {
        timeStr = ownBuffer;
        pointsHere = true;
    }
}

int ASN1CTime::capacity() const noexcept {
    return timeStr == ownBuffer ? OwnBufferSize : timeStrSize;
}

int ASN1CTime::storeText(const char* text, int length) {
    checkCapacity();
    if (length >= capacity()) {
        return fail(ASN1S_STRING_OVERFLOW);
    }
    std::memcpy(timeStr, text, static_cast<std::size_t>(length) + 1);
    return 0;
}

template <class Field>
int ASN1CTime::getField(Field& field) {
    const int status = ensureParsed();
    return status == 0 ? field : status;
}

template <class Field>
int ASN1CTime::setField(Field& field, int value) {
    field = static_cast<Field>(value);
    compileString();
    return 0;
}

int ASN1CTime::getYear() {
    return getField(year);
}

int ASN1CTime::getMonth() {
    return getField(month);
}

int ASN1CTime::getDay() {
    return getField(day);
}

int ASN1CTime::getHour() {
    return getField(hour);
}

int ASN1CTime::getMinute() {
    return getField(minute);
}

int ASN1CTime::getSecond() {
    return getField(second);
}

int ASN1CTime::getFraction() {
    return getField(secFraction);
}

int ASN1CTime::getDiffHour() {
    return getField(diffHour);
}

int ASN1CTime::getDiffMinute() {
    return getField(diffMinute);
}

int ASN1CTime::getDiff() {
    const int status = ensureParsed();
    return status == 0 ? diffHour * 60 + diffMinute : status;
}

unsigned char ASN1CTime::getUTC() {
    if (derRules == 0) {
        ensureParsed();
    }
    return utcFlag;
}

int ASN1CTime::setUTC(unsigned char value) {
    if (derRules != 0) {
        return 0;
    }
    tryParse();
    return setField(utcFlag, value);
}

int ASN1CTime::setYear(int value) {
    tryParse();
    const bool good = value >= 0 && value <= std::numeric_limits<short>::max();
    return good && checkDate(day, month, value) ? setField(year, value)
                                                : fail(ASN1S_INVALID_FORMAT);
}

int ASN1CTime::setMonth(int value) {
    tryParse();
    return isMonth(value) && checkDate(day, value, year) ? setField(month, value)
                                                         : fail(ASN1S_INVALID_FORMAT);
}

int ASN1CTime::setDay(int value) {
    tryParse();
    return value >= 1 && value <= 31 && checkDate(value, month, year) ? setField(day, value)
                                                                      : fail(ASN1S_INVALID_FORMAT);
}

int ASN1CTime::setHour(int value) {
    tryParse();
    return value >= 0 && value < 24 ? setField(hour, value) : fail(ASN1S_INVALID_FORMAT);
}

int ASN1CTime::setMinute(int value) {
    tryParse();
    return value >= 0 && value < 60 ? setField(minute, value) : fail(ASN1S_INVALID_FORMAT);
}

int ASN1CTime::setSecond(int value) {
    tryParse();
    return value >= 0 && value < 60 ? setField(second, value) : fail(ASN1S_INVALID_FORMAT);
}

int ASN1CTime::setFraction(int value) {
    tryParse();
    return setField(secFraction, value);
}

int ASN1CTime::setDiffHour(int value) {
    tryParse();
    return value >= -12 && value <= 12 ? setField(diffHour, value) : fail(ASN1S_INVALID_FORMAT);
}

int ASN1CTime::setDiff(int hours, int minutes) {
    tryParse();
    if (hours < -12 || hours > 12 || minutes <= -60 || minutes >= 60) {
        return fail(ASN1S_INVALID_FORMAT);
    }
    const int magnitude = minutes < 0 ? -minutes : minutes;
    diffMinute = static_cast<short>(hours < 0 ? -magnitude : magnitude);
    return setField(diffHour, hours);
}

int ASN1CTime::setDiff(int minutes) {
    tryParse();
    if (minutes < -720 || minutes > 720) {
        return fail(ASN1S_INVALID_FORMAT);
    }
    diffMinute = static_cast<short>(minutes % 60);
    return setField(diffHour, minutes / 60);
}

void ASN1CTime::clear() {
    year = month = day = hour = NotSet;
    minute = second = diffHour = diffMinute = 0;
    secFraction = 0;
    utcFlag = derRules != 0;
    checkCapacity();
    timeStr[0] = '\0';
    parsed = 1;
}

int ASN1CTime::equals(ASN1CTime& other) {
    // Kept: dates are compared as they are written, offsets within the day only. Programs sort by
    // this.
    const int days = getDaysNum() - other.getDaysNum();
    return days != 0 ? days : static_cast<int>(getMillisNum() - other.getMillisNum());
}

bool ASN1CTime::operator==(ASN1CTime& other) {
    return equals(other) == 0;
}

bool ASN1CTime::operator!=(ASN1CTime& other) {
    return equals(other) != 0;
}

bool ASN1CTime::operator>(ASN1CTime& other) {
    return equals(other) > 0;
}

bool ASN1CTime::operator<(ASN1CTime& other) {
    return equals(other) < 0;
}

bool ASN1CTime::operator>=(ASN1CTime& other) {
    return equals(other) >= 0;
}

bool ASN1CTime::operator<=(ASN1CTime& other) {
    return equals(other) <= 0;
}

char*& ASN1CTime::getTimeStringPtr() {
    compileString();
    return timeStr;
}

int ASN1CTime::getTimeStringLen() {
    compileString();
    return textLength(timeStr);
}

char* ASN1CTime::getTimeString(char* buffer, int size) {
    const int length = textLength(timeStr);
    if (buffer == nullptr || timeStr == nullptr || length >= size) {
        return nullptr;
    }
    std::memcpy(buffer, timeStr, static_cast<std::size_t>(length) + 1);
    return buffer;
}

int ASN1CTime::getDaysNum() {
    ensureParsed();
    return static_cast<int>(dayNumber(year, month, day));
}

long ASN1CTime::getMillisNum() {
    ensureParsed();
    return millisecondsOf(hour, minute, second, secFraction) -
           (diffHour * 60LL + diffMinute) * 60000;
}

bool ASN1CTime::checkDate(int d, int m, int y) noexcept {
    if (d < 1 || m < 1) {
        return true;
    }
    if (m > 12) {
        return false;
    }
    const int leapDay = m == 2 && (y < 0 || isLeapYear(y)) ? 1 : 0;
    return d <= daysInMonth[static_cast<std::size_t>(m)] + leapDay;
}

int ASN1CTime::addDays(int days, short& y, short& m, short& d) noexcept {
    return moveDate(days, y, m, d);
}

int ASN1CTime::addMilliseconds(int milliseconds, short& y, short& m, short& d, short& h, short& min,
                               short& s, int& tenths) noexcept {
    const std::int64_t total = millisecondsOf(h, min, s, tenths) + milliseconds;
    const std::int64_t days = floorDivide(total, MillisecondsOfDay);
    if (days != 0) {
        const int status = moveDate(days, y, m, d);
        if (status != 0) {
            return status;
        }
    }
    const auto rest = static_cast<int>(total - days * MillisecondsOfDay);
    h = static_cast<short>(rest / 3600000);
    min = static_cast<short>(rest / 60000 % 60);
    s = static_cast<short>(rest / 1000 % 60);
    tenths = rest % 1000 / 100;
    return 0;
}
