#include <brevantis/asn1/runtime/utc_time.h>

#include "calendar.h"
#include "decimal_text.h"
#include "time_scanner.h"

using namespace runtime_detail;

ASN1CUTCTime::ASN1CUTCTime(ASN1MessageBufferIF& buffer, char*& text, int size, unsigned char der)
    : ASN1CTime(buffer, text, size, der) {
    setInitialFields();
}

ASN1CUTCTime::ASN1CUTCTime(ASN1MessageBufferIF& buffer, const char*& text, unsigned char der)
    : ASN1CTime(buffer, text, der) {
    setInitialFields();
}

ASN1CUTCTime::ASN1CUTCTime(ASN1Context& sharedContext, char*& text, int size, unsigned char der)
    : ASN1CTime(sharedContext, text, size, der) {
    setInitialFields();
}

ASN1CUTCTime::ASN1CUTCTime(ASN1Context& sharedContext, const char*& text, unsigned char der)
    : ASN1CTime(sharedContext, text, der) {
    setInitialFields();
}

ASN1CUTCTime::ASN1CUTCTime(char*& text, int size, unsigned char der) : ASN1CTime(text, size, der) {
    setInitialFields();
}

ASN1CUTCTime::ASN1CUTCTime(const char*& text, unsigned char der) : ASN1CTime(text, der) {
    setInitialFields();
}

ASN1CUTCTime::ASN1CUTCTime(const ASN1CUTCTime& other) = default;

ASN1CUTCTime& ASN1CUTCTime::operator=(const ASN1CUTCTime& other) = default;

ASN1CUTCTime::~ASN1CUTCTime() = default;

void ASN1CUTCTime::setInitialFields() {
    utcFlag = 1;
    minute = NotSet; // as the hour is from the base
}

int ASN1CUTCTime::getFraction() {
    return 0;
}

int ASN1CUTCTime::setUTC(unsigned char value) {
    return value != 0 || diffHour + diffMinute != 0 ? ASN1CTime::setUTC(value) : 0;
}

int ASN1CUTCTime::setYear(int value) {
    if (value < 0) {
        return fail(ASN1S_INVALID_FORMAT);
    }
    tryParse();
    if (value < 100) {
        ASN1CTime::setYear(expandYear(value));
    }
    // Kept: a year of two digits loses its century again. Programs depend on what getYear then
    // tells.
    return ASN1CTime::setYear(value);
}

int ASN1CUTCTime::setFraction(int /*value*/) {
    secFraction = 0;
    return fail(ASN1S_NOT_SUPPORTED);
}

int ASN1CUTCTime::setTime(long seconds, unsigned char wantOffset) {
    const int status = takeLocalTime(seconds, wantOffset != 0);
    if (status != 0) {
        return status;
    }
    // Kept: local time goes out marked "Z". Programs depend on it.
    utcFlag = wantOffset == 0 || derRules != 0;
    compileString();
    return 0;
}

int ASN1CUTCTime::parseString(const char* text) {
    secFraction = 0;
    Fields fields;
    fields.minute = NotSet;
    const TimeScanner scanner(text);
    auto date = scanDate(scanner, 2);
    if (!date) {
        // Kept: no failure. Records carry an empty text for a time that is missing.
        adoptFields(fields, text);
        return 0;
    }
    date->year = expandYear(date->year);
    const auto time = scanUtcTimeOfDay(scanner);
    if (!isDate(date->year, date->month, date->day) || !time) {
        return ASN1S_INVALID_FORMAT;
    }

    const char zone = scanner.at(time->end);
    if (zone == 'Z') {
        utcFlag = 1;
        if (scanner.at(time->end + 1) != '\0') {
            return ASN1S_INVALID_FORMAT;
        }
    } else if (derRules != 0) {
        // "Z" ends the text under DER (X.690, 11.8.1).
        return ASN1S_INVALID_FORMAT;
    } else {
        utcFlag = 0;
        const bool signedZone = zone == '+' || zone == '-';
        if (!signedZone || !takeOffset(scanner, time->end, true, fields)) {
            return ASN1S_INVALID_FORMAT;
        }
    }
    runtime_detail::setFields(fields, *date, *time);
    adoptFields(fields, text);
    return 0;
}

void ASN1CUTCTime::clear() {
    ASN1CTime::clear();
    setInitialFields();
}

int ASN1CUTCTime::compileString() {
    Fields fields;
    if (year < 0 || month <= 0 || day <= 0 || hour < 0 || minute < 0 ||
        writtenFields(fields) != 0) {
        return fail(ASN1S_INVALID_FORMAT);
    }
    DecimalText made;
    // A year stored with two digits may have gone below 0 on the way to UTC.
    made.append((fields.year % 100 + 100) % 100, 2);
    made.append(fields.month, 2);
    made.append(fields.day, 2);
    made.append(fields.hour, 2);
    made.append(fields.minute, 2);
    made.append(fields.second, 2);
    bool hasZone = true;
    if (utcFlag != 0 || derRules != 0) {
        made.append('Z');
    } else if (diffHour != 0 || diffMinute != 0) {
        // Kept: an offset below an hour gets a minus sign, whatever its own is.
        made.append(diffHour > 0 ? '+' : '-');
        made.append(diffHour < 0 ? -diffHour : diffHour, 2);
        made.append(diffMinute < 0 ? -diffMinute : diffMinute, 2);
    } else {
        hasZone = false;
    }
    const int status = storeText(made.text(), made.length());
    return status != 0 || hasZone ? status : fail(ASN1S_INVALID_FORMAT);
}
