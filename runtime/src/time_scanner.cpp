#include "time_scanner.h"

#include <limits>

#include "calendar.h"

namespace runtime_detail {

std::optional<int> TimeScanner::number(std::size_t& place, std::size_t width) const noexcept {
    std::size_t position = place;
    while (hasClass(position, ASN1CharWhiteSpace)) {
        ++position;
    }
    const std::size_t end = width < size_ - position ? position + width : size_;
    const bool negative = at(position) == '-';
    if (negative || at(position) == '+') {
        ++position;
    }
    if (position >= end || !isDigit(position)) {
        return std::nullopt;
    }
    int value = 0;
    for (; position < end && isDigit(position); ++position) {
        const int digit = text_[position] - '0';
        if (value > (std::numeric_limits<int>::max() - digit) / 10) {
            return std::nullopt;
        }
        value = value * 10 + digit;
    }
    place = position;
    return negative ? -value : value;
}

int TimeScanner::field(std::size_t place) const noexcept {
    const int high = at(place) - '0';
    return isDigit(place + 1) ? high * 10 + (at(place + 1) - '0') : high;
}

std::optional<ScannedDate> scanDate(const TimeScanner& text, std::size_t yearWidth) noexcept {
    std::size_t place = 0;
    const std::optional<int> year = text.number(place, yearWidth);
    const std::optional<int> month = year ? text.number(place, 2) : std::nullopt;
    const std::optional<int> day = month ? text.number(place, 2) : std::nullopt;
    if (!day) {
        return std::nullopt;
    }
    return ScannedDate{*year, *month, *day};
}

std::optional<ScannedTimeOfDay> scanUtcTimeOfDay(const TimeScanner& text) noexcept {
    if (!text.isDigit(6) || !text.isDigit(8)) {
        return std::nullopt;
    }
    ScannedTimeOfDay time{text.field(6), text.field(8), 0, text.isDigit(10), 10};
    if (time.hasSecond) {
        time.second = text.field(10);
        time.end = 12;
    }
    return isTimeOfDay(time.hour, time.minute, time.second) ? std::optional(time) : std::nullopt;
}

std::optional<ScannedTimeOfDay> scanGeneralizedTimeOfDay(const TimeScanner& text) noexcept {
    if (!text.isDigit(8)) {
        return std::nullopt;
    }
    ScannedTimeOfDay time{text.field(8), 0, 0, false, 10};
    if (text.isDigit(10)) {
        time.minute = text.field(10);
        time.end = 12;
        if (text.isDigit(12)) {
            time.second = text.field(12);
            time.hasSecond = true;
            time.end = 14;
        }
    }
    return isTimeOfDay(time.hour, time.minute, time.second) ? std::optional(time) : std::nullopt;
}

std::optional<ScannedOffset> scanOffset(const TimeScanner& text, std::size_t sign,
                                        bool minutesRequired) noexcept {
    const bool hasMinutes = text.isDigit(sign + 3);
    if (!text.isDigit(sign + 1) || (minutesRequired && !hasMinutes)) {
        return std::nullopt;
    }
    const int hours = text.field(sign + 1);
    const int minutes = hasMinutes ? text.field(sign + 3) : 0;
    if (hours > 12 || minutes > 59) {
        return std::nullopt;
    }
    const int direction = text.at(sign) == '-' ? -1 : 1;
    return ScannedOffset{direction * hours, direction * minutes};
}

} // namespace runtime_detail
