#include "number_text.h"

#include <algorithm>
#include <limits>

#include "escape.h"
#include "value_octets.h"

namespace derview {

using asn1data::WalkElement;

Magnitude magnitudeOf(Octets octets, bool isUnsigned) {
    Magnitude magnitude;
    magnitude.negative = !isUnsigned && !octets.empty() && (octets[0] & 0x80u) != 0;
    magnitude.octets.assign(octets.begin(), octets.end());
    if (magnitude.negative) {
        // The magnitude of a negative number is its complement and one.
        bool carry = true;
        for (auto octet = magnitude.octets.rbegin(); octet != magnitude.octets.rend(); ++octet) {
            *octet = static_cast<unsigned char>(~*octet + (carry ? 1 : 0));
            carry = carry && *octet == 0;
        }
    }
    const auto first = std::find_if(magnitude.octets.begin(), magnitude.octets.end(),
                                    [](unsigned char octet) { return octet != 0; });
    magnitude.octets.erase(magnitude.octets.begin(), first);
    return magnitude;
}

std::optional<long long> Magnitude::within(long long largest) const {
    if (octets.size() > sizeof(long long)) {
        return std::nullopt;
    }
    unsigned long long number = 0;
    for (const unsigned char octet : octets) {
        number = number << 8 | octet;
    }
    if (number > static_cast<unsigned long long>(largest)) {
        return std::nullopt;
    }
    const auto result = static_cast<long long>(number);
    return negative ? -result : result;
}

std::string numberText(const WalkElement& element) {
    const char* const name = asn1data::numberName(*element.type, element.value.number);
    const std::string number = std::to_string(element.value.number);
    return name != nullptr ? escapeName(name) + " (" + number + ")" : number;
}

ValueText bigNumberText(const WalkElement& element, std::size_t room) {
    OctetStore store;
    const bool isUnsigned = element.type->shape == asn1data::Shape::BigUnsigned;
    const Octets octets = valueOctets(element, std::numeric_limits<std::size_t>::max(), store);
    if (octets.size() <= 9) {
        const Magnitude magnitude = magnitudeOf(octets, isUnsigned);
        if (const auto small = magnitude.within(std::numeric_limits<long long>::max())) {
            return {std::to_string(*small)};
        }
        return {(magnitude.negative ? "-0x" : "0x") + hexText(magnitude.octets)};
    }
    const Magnitude magnitude = magnitudeOf(octets, isUnsigned);
    const std::size_t total = magnitude.octets.size();
    return cutHex(magnitude.negative ? "-0x" : "0x", magnitude.octets, total, room);
}

} // namespace derview
