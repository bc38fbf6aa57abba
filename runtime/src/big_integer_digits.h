#ifndef BREVANTIS_ASN1_RUNTIME_SRC_BIG_INTEGER_DIGITS_H
#define BREVANTIS_ASN1_RUNTIME_SRC_BIG_INTEGER_DIGITS_H

namespace runtime_detail {

/// Value of a digit of any radix up to 16, in either case.
/// @return 16, which is no digit of any radix, for another character
inline unsigned int digitValue(char digit) noexcept {
    if (digit >= '0' && digit <= '9') {
        return static_cast<unsigned int>(digit - '0');
    }
    if (digit >= 'a' && digit <= 'f') {
        return static_cast<unsigned int>(digit - 'a') + 10;
    }
    if (digit >= 'A' && digit <= 'F') {
        return static_cast<unsigned int>(digit - 'A') + 10;
    }
    return 16;
}

/// The lower case digit of a value below 16.
inline char digitOf(unsigned int value) noexcept {
    return "0123456789abcdef"[value];
}

} // namespace runtime_detail

#endif
