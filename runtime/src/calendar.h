#ifndef RUNTIME_SRC_CALENDAR_H
#define RUNTIME_SRC_CALENDAR_H

#include <cstddef>

#include <brevantis/asn1/runtime/time_text.h>

// The proleptic Gregorian calendar, as far as the times need it.

namespace runtime_detail {

constexpr bool isLeapYear(int year) noexcept {
    return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

/// Whether a day exists; years before 0 do not.
inline bool isDate(int year, int month, int day) noexcept {
    if (year < 0 || month < 1 || month > 12 || day < 1) {
        return false;
    }
    const int leapDay = month == 2 && isLeapYear(year) ? 1 : 0;
    return day <= OS_daysInMonth[static_cast<std::size_t>(month - 1)] + leapDay;
}

inline bool isTimeOfDay(int hour, int minute, int second) noexcept {
    return hour >= 0 && hour < 24 && minute >= 0 && minute < 60 && second >= 0 && second < 60;
}

/// Quotient rounded down, for a divisor above 0.
template <class Integer>
constexpr Integer floorDivide(Integer value, Integer divisor) noexcept {
    return value / divisor - (value % divisor < 0 ? 1 : 0);
}

} // namespace runtime_detail

#endif
