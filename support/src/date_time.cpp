#include <brevantis/support/date_time.h>

#include <string>

#include <brevantis/support/error.h>

namespace Brevantis {

namespace {

constexpr long long millisecondsPerSecond = 1000;
constexpr long long millisecondsPerMinute = 60 * millisecondsPerSecond;
constexpr long long millisecondsPerHour = 60 * millisecondsPerMinute;
constexpr long long millisecondsPerDay = 24 * millisecondsPerHour;

constexpr bool isLeapYear(int year) {
    return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

constexpr int daysInMonth(int year, int month) {
    if (month == 2) {
        return isLeapYear(year) ? 29 : 28;
    }
    return month == 4 || month == 6 || month == 9 || month == 11 ? 30 : 31;
}

/// Days from 0000-01-01 to the first day of a year. Year 0 is a leap year.
constexpr int daysBeforeYear(int year) {
    return 365 * year + (year + 3) / 4 - (year + 99) / 100 + (year + 399) / 400;
}

// The calendar is reckoned from 0000-01-01, so that no count in it is negative.
constexpr long long epoch = daysBeforeYear(1970) * millisecondsPerDay;
constexpr long long earliest = -epoch;
constexpr long long latest = daysBeforeYear(10000) * millisecondsPerDay - epoch - 1;

bool isBetween(long long value, long long lowest, long long highest) {
    return value >= lowest && value <= highest;
}

void require(bool condition) {
    if (!condition) {
        ATL::AtlThrowImpl(E_INVALIDARG);
    }
}

long long requireInCalendar(long long milliseconds) {
    require(isBetween(milliseconds, earliest, latest));
    return milliseconds;
}

struct Date {
    int year;
    int month;
    int day;
};

Date dateOf(long long milliseconds) {
    const auto days = static_cast<int>((milliseconds + epoch) / millisecondsPerDay);
    // The mean year of the 400-year cycle of 146097 days; never too high, at most 1 too low.
    auto year = static_cast<int>((days - 1) * 400LL / 146097);
    if (daysBeforeYear(year + 1) <= days) {
        ++year;
    }
    int month = 1;
    int day = days - daysBeforeYear(year) + 1;
    for (; day > daysInMonth(year, month); ++month) {
        day -= daysInMonth(year, month);
    }
    return {year, month, day};
}

/// The field of the time of day that counts a unit, up to the next greater unit.
int partOf(long long milliseconds, long long unit, long long greaterUnit) {
    return static_cast<int>((milliseconds + epoch) % greaterUnit / unit);
}

/// Milliseconds since 1970 of fields in local time, @p offset minutes ahead of UTC. The result may
/// be just outside the calendar.
long long reckon(Date date, int hour, int minute, int second, int offset) {
    require(isBetween(date.year, 0, 9999) && isBetween(date.month, 1, 12));
    require(isBetween(date.day, 1, daysInMonth(date.year, date.month)));
    require(isBetween(hour, 0, 23) && isBetween(minute, 0, 59) && isBetween(second, 0, 59));
    require(isBetween(offset, -1439, 1439));
    long long days = daysBeforeYear(date.year) + date.day - 1;
    for (int month = 1; month < date.month; ++month) {
        days += daysInMonth(date.year, month);
    }
    return days * millisecondsPerDay - epoch + hour * millisecondsPerHour +
           (minute - offset) * millisecondsPerMinute + second * millisecondsPerSecond;
}

class Scanner {
public:
    explicit Scanner(const char* text) : next_(text) {}

    bool atDigit() const { return *next_ >= '0' && *next_ <= '9'; }

    bool atEnd() const { return *next_ == '\0'; }

    /// Takes a character if it is the next.
    bool take(char character) {
        const bool matches = *next_ == character;
        next_ += matches ? 1 : 0;
        return matches;
    }

    int number(int digits) {
        int value = 0;
        for (; digits > 0; --digits) {
            require(atDigit());
            value = value * 10 + (*next_++ - '0');
        }
        return value;
    }

    /// Takes digits behind a decimal sign.
    /// @return the whole part of the fraction times @p unit
    long long fractionOf(long long unit) {
        require(atDigit());
        const char* first = next_;
        while (atDigit()) {
            ++next_;
        }
        // From the last digit on, so that no digit is lost however many there are.
        long long value = 0;
        for (const char* digit = next_; digit != first;) {
            value = ((*--digit - '0') * unit + value) / 10;
        }
        return value;
    }

    /// Takes a zone. @return minutes ahead of UTC
    int zone() {
        if (take('Z')) {
            return 0;
        }
        const bool isBehind = take('-');
        if (!isBehind && !take('+')) {
            return 0;
        }
        const int hours = number(2);
        const int minutes = atDigit() ? number(2) : 0;
        require(minutes < 60);
        return (isBehind ? -1 : 1) * (hours * 60 + minutes);
    }

private:
    const char* next_;
};

long long parse(const char* text) {
    require(text != nullptr);
    Scanner scanner(text);
    Date date{};
    date.year = scanner.number(4);
    date.month = scanner.number(2);
    date.day = scanner.number(2);
    const int hour = scanner.number(2);
    int minute = 0;
    int second = 0;
    long long unit = millisecondsPerHour;
    if (scanner.atDigit()) {
        minute = scanner.number(2);
        unit = millisecondsPerMinute;
        if (scanner.atDigit()) {
            second = scanner.number(2);
            unit = millisecondsPerSecond;
        }
    }
    const bool hasFraction = scanner.take('.') || scanner.take(',');
    const long long fraction = hasFraction ? scanner.fractionOf(unit) : 0;
    const int offset = scanner.zone();
    require(scanner.atEnd());
    return requireInCalendar(reckon(date, hour, minute, second, offset) + fraction);
}

void appendNumber(std::string& text, int value, std::size_t digits) {
    const std::string number = std::to_string(value);
    text.append(digits - number.length(), '0');
    text += number;
}

} // namespace

CDateTime::CDateTime(long long seconds, int milliseconds) {
    require(isBetween(seconds, earliest / millisecondsPerSecond, latest / millisecondsPerSecond));
    require(isBetween(milliseconds, 0, 999));
    milliseconds_ = seconds * millisecondsPerSecond + milliseconds;
}

CDateTime::CDateTime(int year, int month, int day, int hour, int minute, int second,
                     int millisecond, int offset) {
    require(isBetween(millisecond, 0, 999));
    milliseconds_ =
        requireInCalendar(reckon({year, month, day}, hour, minute, second, offset) + millisecond);
}

CDateTime::CDateTime(const char* text) : milliseconds_(parse(text)) {}

CDateTime& CDateTime::operator+=(const CDateTimeSpan& span) {
    require(isBetween(span.milliseconds(), earliest - milliseconds_, latest - milliseconds_));
    milliseconds_ += span.milliseconds();
    return *this;
}

int CDateTime::year() const noexcept {
    return dateOf(milliseconds_).year;
}

int CDateTime::month() const noexcept {
    return dateOf(milliseconds_).month;
}

int CDateTime::day() const noexcept {
    return dateOf(milliseconds_).day;
}

int CDateTime::hour() const noexcept {
    return partOf(milliseconds_, millisecondsPerHour, millisecondsPerDay);
}

int CDateTime::minute() const noexcept {
    return partOf(milliseconds_, millisecondsPerMinute, millisecondsPerHour);
}

int CDateTime::second() const noexcept {
    return partOf(milliseconds_, millisecondsPerSecond, millisecondsPerMinute);
}

int CDateTime::millisecond() const noexcept {
    return partOf(milliseconds_, 1, millisecondsPerSecond);
}

CStringProxy CDateTime::getGeneralizedTime() const {
    const Date date = dateOf(milliseconds_);
    std::string text;
    appendNumber(text, date.year, 4);
    for (const int field : {date.month, date.day, hour(), minute(), second()}) {
        appendNumber(text, field, 2);
    }
    if (millisecond() != 0) {
        text += '.';
        appendNumber(text, millisecond(), 3);
        text.erase(text.find_last_not_of('0') + 1);
    }
    text += 'Z';
    return text;
}

} // namespace Brevantis
