#ifndef BREVANTIS_SUPPORT_DATE_TIME_H
#define BREVANTIS_SUPPORT_DATE_TIME_H

#include <brevantis/asn1/export.h>
#include <brevantis/support/text.h>

/// @file
/// Calendar times in UTC, to the millisecond.

namespace Brevantis {

/// A length of time in milliseconds; may be negative.
class CDateTimeSpan {
public:
    /// @param milliseconds any number; below 0 for a span that leads back
    explicit constexpr CDateTimeSpan(long long milliseconds = 0) noexcept
        : milliseconds_(milliseconds) {}

    /// 1000 milliseconds.
    static constexpr CDateTimeSpan OneSecond() noexcept { return CDateTimeSpan(1000); }

    /// The whole span, as the constructor was given it.
    constexpr long long milliseconds() const noexcept { return milliseconds_; }

private:
    long long milliseconds_;
};

/// A time in UTC from 0000-01-01 00:00:00.000 to 9999-12-31 23:59:59.999 in the Gregorian
/// calendar, which is reckoned back over the time before it was used. Days have 86400 seconds:
/// leap seconds do not exist, so a second 60 is refused. Whatever would lie outside these years
/// throws ATL::CAtlException with E_INVALIDARG, and a time being changed stays as it was.
class BREVANTIS_ASN1_API CDateTime {
public:
    /// 1970-01-01 00:00:00.
    constexpr CDateTime() noexcept = default;

    /// @param seconds since 1970-01-01 00:00:00, negative before it
    /// @param milliseconds 0 to 999, after that second
    /// @throw ATL::CAtlException E_INVALIDARG for a number out of range
    CDateTime(long long seconds, int milliseconds);

    /// @param year 0 to 9999
    /// @param month 1 to 12
    /// @param day 1 to the length of the month
    /// @param hour 0 to 23
    /// @param minute 0 to 59
    /// @param second 0 to 59
    /// @param millisecond 0 to 999
    /// @param offset minutes by which the other fields are ahead of UTC, -1439 to 1439; subtracted
    ///        from them
    /// @throw ATL::CAtlException E_INVALIDARG for a number out of range
    CDateTime(int year, int month, int day, int hour, int minute, int second, int millisecond = 0,
              int offset = 0);

    /// Reads a GeneralizedTime (X.680 clause 46): YYYYMMDDHH, then minutes, then seconds if there
    /// are minutes, then a fraction of the last of these after '.' or ',', then "Z" for UTC or the
    /// offset from it, "+HH", "-HH", "+HHMM" or "-HHMM". The fraction has one digit or more; what
    /// is below a millisecond is cut off.
    /// @param text terminated. Without a zone it is taken as UTC
    /// @throw ATL::CAtlException E_INVALIDARG for any other text, a field out of range, or null
    explicit CDateTime(const char* text);

    /// @throw ATL::CAtlException E_INVALIDARG when the sum is outside the years 0 to 9999
    CDateTime& operator+=(const CDateTimeSpan& span);

    int year() const noexcept;        ///< 0 to 9999
    int month() const noexcept;       ///< 1 to 12
    int day() const noexcept;         ///< 1 to 31
    int hour() const noexcept;        ///< 0 to 23
    int minute() const noexcept;      ///< 0 to 59
    int second() const noexcept;      ///< 0 to 59
    int millisecond() const noexcept; ///< 0 to 999

    /// The GeneralizedTime that DER prescribes (X.690, 11.7): YYYYMMDDHHMMSS, a point and the
    /// milliseconds without trailing zeros unless they are 0, "Z".
    CStringProxy getGeneralizedTime() const;

    friend constexpr bool operator==(CDateTime a, CDateTime b) noexcept {
        return a.milliseconds_ == b.milliseconds_;
    }
    friend constexpr bool operator!=(CDateTime a, CDateTime b) noexcept { return !(a == b); }
    friend constexpr bool operator<(CDateTime a, CDateTime b) noexcept {
        return a.milliseconds_ < b.milliseconds_;
    }
    friend constexpr bool operator>(CDateTime a, CDateTime b) noexcept { return b < a; }
    friend constexpr bool operator<=(CDateTime a, CDateTime b) noexcept { return !(b < a); }
    friend constexpr bool operator>=(CDateTime a, CDateTime b) noexcept { return !(a < b); }

private:
    long long milliseconds_ = 0; // since 1970-01-01 00:00:00
};

} // namespace Brevantis

#endif
