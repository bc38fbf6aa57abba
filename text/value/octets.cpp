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

} // namespace asn1text
