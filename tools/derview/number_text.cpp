#include "number_text.h"

#include <algorithm>
#include <limits>

#include <brevantis/asn1/text/value.h>

#include "escape.h"

namespace derview {

using asn1data::WalkElement;

namespace {

std::string namedText(const asn1data::TypeDescription& type, long long number) {
    const char* const name = asn1data::numberName(type, number);
    const std::string digits = std::to_string(number);
    return name != nullptr ? escapeName(name) + " (" + digits + ")" : digits;
}

OctetStore octetsOf(const Magnitude& magnitude) {
    OctetStore octets(magnitude.size());
    for (std::size_t place = 0; place < octets.size(); ++place) {
        octets[place] = magnitude[place];
    }
    return octets;
}

} // namespace

std::string numberText(const WalkElement& element) {
    return namedText(*element.type, element.value.number);
}

ValueText bigNumberText(const WalkElement& element, std::size_t room) {
    const Magnitude magnitude({element.value.octets, element.value.octetCount},
                              element.type->shape == asn1data::Shape::BigUnsigned);
    const OctetStore octets = octetsOf(magnitude);
    const char* const prefix = magnitude.negative() ? "-0x" : "0x";
    if (element.value.octetCount > 9) {
        return cutHex(prefix, octets, octets.size(), room);
    }
    if (const auto small = magnitude.within(std::numeric_limits<long long>::max())) {
        return {namedText(*element.type, *small)};
    }
    return {prefix + hexText(octets)};
}

std::string otherFormText(const WalkElement& element) {
    constexpr std::size_t longest = 64;
    const Magnitude magnitude({element.value.octets, element.value.octetCount},
                              element.type->shape == asn1data::Shape::BigUnsigned);
    const char* const sign = magnitude.negative() ? "-" : "";
    OctetStore octets = octetsOf(magnitude);
    if (octets.size() > longest) {
        return "";
    }
    if (element.value.octetCount <= 9 && magnitude.within(std::numeric_limits<long long>::max())) {
        return std::string(sign) + "0x" + (octets.empty() ? "00" : hexText(octets));
    }
    std::string digits;
    while (!octets.empty()) {
        unsigned rest = 0;
        for (unsigned char& octet : octets) {
            rest = rest << 8 | octet;
            octet = static_cast<unsigned char>(rest / 10);
            rest %= 10;
        }
        digits.insert(digits.begin(), static_cast<char>('0' + rest));
        octets.erase(octets.begin(), std::find_if(octets.begin(), octets.end(),
                                                  [](unsigned char octet) { return octet != 0; }));
    }
    return sign + digits;
}

} // namespace derview
