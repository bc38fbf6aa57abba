#include <brevantis/asn1/text/octets.h>

namespace asn1text {

std::string hexText(Octets octets) {
    constexpr char digits[] = "0123456789abcdef";
    std::string text;
    text.reserve(octets.size() * 2);
    for (const unsigned char octet : octets) {
        text += digits[octet >> 4];
        text += digits[octet & 0xFu];
    }
    return text;
}

bool readHex(std::string_view digits, OctetStore& octets) {
    octets.clear();
    octets.reserve(digits.size() / 2);
    for (std::size_t place = 0; place + 1 < digits.size(); place += 2) {
        const int high = hexDigit(static_cast<unsigned char>(digits[place]));
        const int low = hexDigit(static_cast<unsigned char>(digits[place + 1]));
        if (high < 0 || low < 0) {
            return false;
        }
        octets.push_back(static_cast<unsigned char>(high << 4 | low));
    }
    return digits.size() % 2 == 0;
}

} // namespace asn1text
