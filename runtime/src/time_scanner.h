#ifndef RUNTIME_SRC_TIME_SCANNER_H
#define RUNTIME_SRC_TIME_SCANNER_H

#include <cstddef>
#include <cstring>
#include <optional>

#include <brevantis/asn1/runtime/character_classes.h>

// What the parsers of the plain functions and of the time classes read in the same way. Where they
// differ (fractions, texts without a date, DER) each has code of its own.

namespace runtime_detail {

/// Reads a terminated text by place. From the terminator on there are terminators only, so that no
/// place is outside of it.
class TimeScanner {
public:
    explicit TimeScanner(const char* text) noexcept
        : text_(text != nullptr ? text : ""), size_(std::strlen(text_)) {}

    char at(std::size_t place) const noexcept { return place < size_ ? text_[place] : '\0'; }
    bool isDigit(std::size_t place) const noexcept { return hasClass(place, ASN1CharDigit); }

    /// Reads a decimal number: white space of any length, then a sign and digits, which take
    /// @p width places together. Producers that fill fields with blanks rely on the white space.
    /// @param place moves behind the number
    /// @return nothing when there is no digit or the number exceeds an int
    std::optional<int> number(std::size_t& place, std::size_t width) const noexcept;
    /// Reads a field of two places from a place with a digit; one digit alone counts too.
    int field(std::size_t place) const noexcept;

private:
    bool hasClass(std::size_t place, ASN1CharacterClass wanted) const noexcept {
        return (rtCtypeTable[static_cast<unsigned char>(at(place))] & wanted) != 0;
    }

    const char* text_;
    std::size_t size_;
};

struct ScannedDate {
    int year;
    int month;
    int day;
};

struct ScannedTimeOfDay {
    int hour;
    int minute;
    int second;
    bool hasSecond;
    std::size_t end; ///< the place behind
};

struct ScannedOffset {
    int hours;
    int minutes;
};

/// Reads the three numbers at the beginning of a text; their values are not checked.
std::optional<ScannedDate> scanDate(const TimeScanner& text, std::size_t yearWidth) noexcept;

/// Reads hhmm[ss] of a UTCTime (X.680, 47.3).
std::optional<ScannedTimeOfDay> scanUtcTimeOfDay(const TimeScanner& text) noexcept;

/// Reads hh[mm[ss]] of a GeneralizedTime (X.680, 46.2).
std::optional<ScannedTimeOfDay> scanGeneralizedTimeOfDay(const TimeScanner& text) noexcept;

/// Reads an offset; what stands behind it is not looked at.
/// @param sign the place of "+" or "-"
/// @param minutesRequired false where hours may stand alone
std::optional<ScannedOffset> scanOffset(const TimeScanner& text, std::size_t sign,
                                        bool minutesRequired) noexcept;

/// The year that two digits stand for (RFC 5280, 4.1.2.5.1); a negative one stays negative.
constexpr int expandYear(int twoDigits) noexcept {
    return twoDigits < 0 ? twoDigits : twoDigits + (twoDigits < 50 ? 2000 : 1900);
}

/// Sets date and time of day of a record of fields.
template <class Fields>
void setFields(Fields& fields, const ScannedDate& date, const ScannedTimeOfDay& time) noexcept {
    fields.year = static_cast<short>(date.year);
    fields.month = static_cast<short>(date.month);
    fields.day = static_cast<short>(date.day);
    fields.hour = static_cast<short>(time.hour);
    fields.minute = static_cast<short>(time.minute);
    fields.second = static_cast<short>(time.second);
}

/// Reads an offset, as scanOffset does, into a record of fields.
template <class Fields>
bool takeOffset(const TimeScanner& text, std::size_t sign, bool minutesRequired,
                Fields& fields) noexcept {
    const auto offset = scanOffset(text, sign, minutesRequired);
    if (!offset) {
        return false;
    }
    fields.diffHour = static_cast<short>(offset->hours);
    fields.diffMinute = static_cast<short>(offset->minutes);
    return true;
}

} // namespace runtime_detail

#endif
