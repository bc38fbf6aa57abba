#ifndef BREVANTIS_ASN1_RUNTIME_SRC_BIG_INTEGER_DIGITS_H
#define BREVANTIS_ASN1_RUNTIME_SRC_BIG_INTEGER_DIGITS_H

#include <array>
#include <cstring>

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

/// Both lower case digits of all octets.
constexpr std::array<char, 512> makeDigitPairs() noexcept {
    std::array<char, 512> pairs{};
    for (unsigned int octet = 0; octet < 256; ++octet) {
        pairs[2 * octet] = "0123456789abcdef"[octet >> 4];
        pairs[2 * octet + 1] = "0123456789abcdef"[octet & 0x0F];
    }
    return pairs;
}

/// Writes the two lower case digits of an octet.
/// @return behind them
inline char* putDigits(char* text, unsigned char octet) noexcept {
    static constexpr std::array<char, 512> pairs = makeDigitPairs();
    std::memcpy(text, &pairs[2U * octet], 2);
    return text + 2;
}

/// The lower case digit of a value below 16.
inline char digitOf(unsigned int value) noexcept {
    return "0123456789abcdef"[value];
}

} // namespace runtime_detail

#endif
