#include <brevantis/asn1/runtime/time_text.h>

#include <cstring>

#include <brevantis/asn1/runtime/context.h>
#include <brevantis/asn1/runtime/utf8.h>

#include "calendar.h"
#include "decimal_text.h"
#include "time_scanner.h"

using namespace runtime_detail;

const std::array<unsigned char, 12> OS_daysInMonth = {31, 28, 31, 30, 31, 30,
                                                      31, 31, 30, 31, 30, 31};

namespace {

constexpr std::size_t MaxFractionDigits = sizeof(ASN1TimeFields::fraction) - 1;

int fail(ASN1CTXT* ctxt, int status) noexcept {
    return ctxt != nullptr ? rtErrSetData(&ctxt->errInfo, status, nullptr, 0) : status;
}

ASN1TimeFields makeFields(const ScannedDate& date, const ScannedTimeOfDay& time) noexcept {
    ASN1TimeFields fields{};
    setFields(fields, date, time);
    return fields;
}

/// Takes the digits behind a decimal mark, as many as there is room for.
/// @param place the place behind the mark; moves behind the last digit taken
bool takeFraction(const TimeScanner& text, std::size_t& place, ASN1TimeFields& fields) noexcept {
    if (!text.isDigit(place)) {
        return false;
    }
    std::size_t kept = 0;
    for (; kept < MaxFractionDigits && text.isDigit(place); ++place) {
        if (kept != 0 || text.at(place) != '0') {
            fields.fraction[kept++] = text.at(place);
        }
    }
    return true;
}

bool isFormattable(const ASN1TimeFields& fields) noexcept {
    return fields.year <= 9999 && isDate(fields.year, fields.month, fields.day) &&
           isTimeOfDay(fields.hour, fields.minute, fields.second) && fields.diffHour >= -12 &&
           fields.diffHour <= 12 && fields.diffMinute >= -59 && fields.diffMinute <= 59 &&
           std::memchr(fields.fraction, '\0', sizeof fields.fraction) != nullptr;
}

} // namespace

int rtParseUTCTime(ASN1CTXT* ctxt, const char* text, ASN1TimeFields* fields) noexcept {
    if (text == nullptr || fields == nullptr) {
        return fail(ctxt, ASN1S_INVALID_PARAMETER);
    }
    const TimeScanner scanner(text);
    auto date = scanDate(scanner, 2);
    if (!date) { // Kept: ASN1CUTCTime::parseString takes such a text.
        return fail(ctxt, ASN1S_INVALID_FORMAT);
    }
    date->year = expandYear(date->year);
    const auto time = scanUtcTimeOfDay(scanner);
    if (!isDate(date->year, date->month, date->day) || !time) {
        return fail(ctxt, ASN1S_INVALID_FORMAT);
    }

    ASN1TimeFields parsed = makeFields(*date, *time);
    switch (scanner.at(time->end)) {
    case 'Z':
        if (scanner.at(time->end + 1) != '\0') {
            return fail(ctxt, ASN1S_INVALID_FORMAT);
        }
        parsed.utc = 1;
        break;
    case '+':
    case '-':
        // X.680, 47.3 c; DER and RFC 5280 leave "Z" only, older certificates have offsets.
        if (!takeOffset(scanner, time->end, true, parsed)) {
            return fail(ctxt, ASN1S_INVALID_FORMAT);
        }
        break;
    default:
        return fail(ctxt, ASN1S_INVALID_FORMAT);
    }
    *fields = parsed;
    return 0;
}

int rtParseGeneralizedTime(ASN1CTXT* ctxt, const char* text, ASN1TimeFields* fields) noexcept {
    if (text == nullptr || fields == nullptr) {
        return fail(ctxt, ASN1S_INVALID_PARAMETER);
    }
    const TimeScanner scanner(text);
    const auto date = scanDate(scanner, 4);
    const auto time = scanGeneralizedTimeOfDay(scanner);
    if (!date || !isDate(date->year, date->month, date->day) || !time) {
        return fail(ctxt, ASN1S_INVALID_FORMAT);
    }

    ASN1TimeFields parsed = makeFields(*date, *time);
    std::size_t place = time->end;
    if (scanner.at(place) == '.' || scanner.at(place) == ',') {
        // Fractions of an hour or a minute (X.680, 46.2 a) have no field to go to.
        if (!time->hasSecond || !takeFraction(scanner, ++place, parsed)) {
            return fail(ctxt, ASN1S_INVALID_FORMAT);
        }
    }
    switch (scanner.at(place)) {
    case 'Z':
        if (scanner.at(place + 1) != '\0') {
            return fail(ctxt, ASN1S_INVALID_FORMAT);
        }
        parsed.utc = 1;
        break;
    case '+':
    case '-':
        if (!takeOffset(scanner, place, false, parsed)) {
            return fail(ctxt, ASN1S_INVALID_FORMAT);
        }
        break;
    default:
        // Kept: local time (X.680, 46.3 a), whatever follows; producers that pad the text leave
        // something behind it.
        break;
    }
    *fields = parsed;
    return 0;
}

int rtMakeGeneralizedTime(ASN1CTXT* ctxt, const ASN1TimeFields* fields, char** text,
                          int size) noexcept {
    if (fields == nullptr || text == nullptr || (size == 0 ? ctxt == nullptr : *text == nullptr)) {
        return fail(ctxt, ASN1S_INVALID_PARAMETER);
    }
    if (!isFormattable(*fields)) {
        return fail(ctxt, ASN1S_INVALID_FORMAT);
    }

    DecimalText made;
    made.append(fields->year, 4);
    for (const short part :
         {fields->month, fields->day, fields->hour, fields->minute, fields->second}) {
        made.append(part, 2);
    }
    if (fields->fraction[0] != '\0') {
        made.append('.');
        made.append(fields->fraction);
    }
    if (fields->utc != 0) {
        made.append('Z');
    } else if (fields->diffHour != 0 || fields->diffMinute != 0) {
        const bool west = fields->diffHour < 0 || fields->diffMinute < 0;
        made.append(west ? '-' : '+');
        made.append(fields->diffHour < 0 ? -fields->diffHour : fields->diffHour, 2);
        made.append(fields->diffMinute < 0 ? -fields->diffMinute : fields->diffMinute, 2);
    }

    if (size == 0) {
        *text = rtUTF8Strdup(ctxt, made.text());
        return *text != nullptr ? 0 : fail(ctxt, ASN1S_NO_MEMORY);
    }
    if (size <= made.length()) {
        return fail(ctxt, ASN1S_STRING_OVERFLOW);
    }
    std::memcpy(*text, made.text(), static_cast<std::size_t>(made.length()) + 1);
    return 0;
}
