#include <brevantis/asn1/runtime/generalized_time.h>

#include <limits>

#include "calendar.h"
#include "decimal_text.h"
#include "time_scanner.h"

using namespace runtime_detail;

ASN1CGeneralizedTime::ASN1CGeneralizedTime(ASN1MessageBufferIF& buffer, char*& text, int size,
                                           unsigned char der)
    : ASN1CTime(buffer, text, size, der) {}

ASN1CGeneralizedTime::ASN1CGeneralizedTime(ASN1MessageBufferIF& buffer, const char*& text,
                                           unsigned char der)
    : ASN1CTime(buffer, text, der) {}

ASN1CGeneralizedTime::ASN1CGeneralizedTime(ASN1Context& sharedContext, char*& text, int size,
                                           unsigned char der)
    : ASN1CTime(sharedContext, text, size, der) {}

ASN1CGeneralizedTime::ASN1CGeneralizedTime(ASN1Context& sharedContext, const char*& text,
                                           unsigned char der)
    : ASN1CTime(sharedContext, text, der) {}

ASN1CGeneralizedTime::ASN1CGeneralizedTime(char*& text, int size, unsigned char der)
    : ASN1CTime(text, size, der) {}

ASN1CGeneralizedTime::ASN1CGeneralizedTime(const char*& text, unsigned char der)
    : ASN1CTime(text, der) {}

ASN1CGeneralizedTime::ASN1CGeneralizedTime(const ASN1CGeneralizedTime& other) = default;

ASN1CGeneralizedTime& ASN1CGeneralizedTime::operator=(const ASN1CGeneralizedTime& other) = default;

ASN1CGeneralizedTime::~ASN1CGeneralizedTime() = default;

int ASN1CGeneralizedTime::getCentury() {
    const int value = getYear();
    return value >= 0 ? value / 100 : fail(value);
}

int ASN1CGeneralizedTime::setCentury(int value) {
    if (value < 0 || value > 99) {
        return fail(ASN1S_INVALID_FORMAT);
    }
    tryParse();
    const int yearOfCentury = year >= 0 ? year % 100 : 0;
    year = static_cast<short>(yearOfCentury + value * 100);
    compileString();
    return 0;
}

int ASN1CGeneralizedTime::setTime(long seconds, unsigned char wantOffset) {
    const bool keepOffset = wantOffset != 0 || derRules != 0;
    const int status = takeLocalTime(seconds, keepOffset);
    if (status != 0) {
        return status;
    }
    if (!keepOffset) {
        utcFlag = 0;
    }
    compileString();
    return 0;
}

int ASN1CGeneralizedTime::parseString(const char* text) {
    utcFlag = 0;
    Fields fields;
    const TimeScanner scanner(text);
    const auto date = scanDate(scanner, 4);
    if (!date) {
        // Kept: no failure. Records carry an empty text for a time that is missing.
        adoptFields(fields, text);
        return 0;
    }
    const auto time = scanGeneralizedTimeOfDay(scanner);
    if (!isDate(date->year, date->month, date->day) || !time) {
        return ASN1S_INVALID_FORMAT;
    }

    std::size_t place = time->end;
    if (scanner.at(place) == ',' || scanner.at(place) == '.') {
        // DER has the full stop only (X.690, 11.7.4).
        if (!time->hasSecond || (scanner.at(place) == ',' && derRules != 0)) {
            return ASN1S_INVALID_FORMAT;
        }
        std::size_t digits = place + 1;
        const auto fraction = scanner.number(digits, std::numeric_limits<std::size_t>::max());
        if (!fraction) {
            return ASN1S_INVALID_FORMAT;
        }
        fields.secFraction = *fraction;
        // Kept: a zone is looked for behind the first digit, so a time with a longer fraction
        // counts as local.
        place += 2;
    }

    const char zone = scanner.at(place);
    if (zone == 'Z') {
        utcFlag = 1;
        if (scanner.at(place + 1) != '\0') {
            return ASN1S_INVALID_FORMAT;
        }
    } else if (derRules != 0) {
        // "Z" ends the text under DER (X.690, 11.7.1).
        return ASN1S_INVALID_FORMAT;
    } else if (zone == '+' || zone == '-') {
        if (!takeOffset(scanner, place, false, fields)) {
            return ASN1S_INVALID_FORMAT;
        }
    }
    runtime_detail::setFields(fields, *date, *time);
    adoptFields(fields, text);
    return 0;
}

int ASN1CGeneralizedTime::compileString() {
    Fields fields;
    if (year < 0 || month <= 0 || day <= 0 || hour < 0 || writtenFields(fields) != 0 ||
        fields.year < 0) {
        return fail(ASN1S_INVALID_FORMAT);
    }
    DecimalText made;
    made.append(fields.year, 4);
    made.append(fields.month, 2);
    made.append(fields.day, 2);
    made.append(fields.hour, 2);
    // DER wants minutes and seconds even where they are 0 (X.690, 11.7.2).
    const bool withSecond = derRules != 0 || fields.second > 0 || fields.secFraction > 0;
    if (withSecond || fields.minute > 0) {
        made.append(fields.minute, 2);
    }
    if (withSecond) {
        made.append(fields.second, 2);
        if (fields.secFraction > 0) {
            made.append('.');
            made.append(fields.secFraction, 1);
        }
    }
    if (utcFlag != 0 || derRules != 0) {
        made.append('Z');
    } else if (diffHour != 0 || diffMinute != 0) {
        // Kept: an offset below an hour gets a minus sign, whatever its own is.
        made.append(diffHour > 0 ? '+' : '-');
        made.append(diffHour < 0 ? -diffHour : diffHour, 2);
        if (diffMinute != 0) {
            made.append(diffMinute < 0 ? -diffMinute : diffMinute, 2);
        }
    }
    return storeText(made.text(), made.length());
}
