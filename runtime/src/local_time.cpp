#include <brevantis/asn1/runtime/time.h>

#include <ctime>
#include <limits>

// The one place where times meet the process's time zone. localtime_r need not look at a changed TZ
// as localtime does, so tzset is called in front of it.

long ASN1CTime::getTime() {
    const int status = ensureParsed();
    if (status != 0) {
        return status;
    }
    std::tm fields{};
    fields.tm_year = year - 1900;
    fields.tm_mon = month - 1;
    fields.tm_mday = day;
    fields.tm_hour = hour;
    fields.tm_min = minute;
    fields.tm_sec = second;
    // Kept: fields of any zone are taken for local ones, and the offset is added where it should be
    // taken away. Programs depend on it.
    return std::mktime(&fields) + diffHour * 3600L + diffMinute * 60L;
}

int ASN1CTime::takeLocalTime(long seconds, bool keepOffset) {
    const std::time_t moment = seconds;
    std::tm local{};
    std::tm universal{};
    ::tzset();
    if (::localtime_r(&moment, &local) == nullptr || ::gmtime_r(&moment, &universal) == nullptr) {
        return fail(ASN1S_INVALID_FORMAT);
    }
    const long localYear = local.tm_year + 1900L;
    if (localYear < std::numeric_limits<short>::min() ||
        localYear > std::numeric_limits<short>::max()) {
        return fail(ASN1S_INVALID_FORMAT);
    }
    year = static_cast<short>(localYear);
    month = static_cast<short>(local.tm_mon + 1);
    day = static_cast<short>(local.tm_mday);
    hour = static_cast<short>(local.tm_hour);
    minute = static_cast<short>(local.tm_min);
    second = static_cast<short>(local.tm_sec);
    secFraction = 0;
    parsed = 1;

    long offset = 0;
    if (keepOffset) {
        universal.tm_isdst = local.tm_isdst;
        offset = std::mktime(&local) - std::mktime(&universal);
    }
    diffHour = static_cast<short>(offset / 3600);
    // Kept: these are seconds of the offset, so its minutes are lost. Programs depend on it.
    diffMinute = static_cast<short>(offset % 60);
    return 0;
}
