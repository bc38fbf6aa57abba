#ifndef BREVANTIS_ASN1_RUNTIME_SRC_BIG_INTEGER_DIGITS_H
#define BREVANTIS_ASN1_RUNTIME_SRC_BIG_INTEGER_DIGITS_H

#include <array>

namespace runtime_detail {

/// Values of all characters as digits of any radix up to 16, in either case; 16, which is no digit
/// of any radix, for every other character.
constexpr std::array<unsigned char, 256> makeDigitValues() noexcept {
    std::array<unsigned char, 256> values{};
    for (unsigned char& value : values) {
        value = 16;
    }
    for (unsigned char digit = 0; digit < 10; ++digit) {
        values['0' + digit] = digit;
    }
    for (unsigned char digit = 10; digit < 16; ++digit) {
        values['a' - 10 + digit] = digit;
        values['A' - 10 + digit] = digit;
    }
    return values;
}

/// Value of a digit, 16 for another character.
inline unsigned int digitValue(char digit) noexcept {
    static constexpr std::array<unsigned char, 256> values = makeDigitValues();
    return values[static_cast<unsigned char>(digit)];
}

/// The lower case digit of a value below 16.
inline char digitOf(unsigned int value) noexcept {
    return "0123456789abcdef"[value];
}

} // namespace runtime_detail

#endif
