#ifndef TESTS_SUPPORT_HEX_H
#define TESTS_SUPPORT_HEX_H

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace tests {

using Octets = std::vector<unsigned char>;

inline void append(Octets& to, const Octets& octets) {
    to.insert(to.end(), octets.begin(), octets.end());
}

/// Octets of a hexadecimal text; blanks are ignored.
inline Octets fromHex(std::string_view text) {
    Octets octets;
    int high = -1;
    for (char c : text) {
        if (c == ' ' || c == '\n') {
            continue;
        }
        const std::string_view digits = "0123456789abcdef";
        const auto digit = digits.find(static_cast<char>(c >= 'A' && c <= 'F' ? c + 32 : c));
        if (digit == std::string_view::npos) {
            throw std::invalid_argument("bad hexadecimal digit in " + std::string(text));
        }
        if (high < 0) {
            high = static_cast<int>(digit);
        } else {
            octets.push_back(static_cast<unsigned char>(high * 16 + static_cast<int>(digit)));
            high = -1;
        }
    }
    if (high >= 0) {
        throw std::invalid_argument("odd count of digits in " + std::string(text));
    }
    return octets;
}

/// Hexadecimal text in blocks of one octet: "30 03 02 01 00".
inline std::string toHex(const unsigned char* data, std::size_t count) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
        const char* digits = "0123456789ABCDEF";
        if (i != 0) {
            text += ' ';
        }
        text += digits[data[i] >> 4];
        text += digits[data[i] & 15];
    }
    return text;
}

inline std::string toHex(const Octets& octets) {
    return toHex(octets.data(), octets.size());
}

} // namespace tests

#endif
