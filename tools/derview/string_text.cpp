#include "string_text.h"

#include <algorithm>

#include "escape.h"
#include "value_kind.h"
#include "value_octets.h"

namespace derview {

using asn1data::WalkElement;

namespace {

/// The octets of a value as far as they fit.
ValueText hexValue(const std::string& prefix, const WalkElement& element, std::size_t room) {
    OctetStore store;
    const Octets octets = valueOctets(element, std::max(room, SmallestRoom), store);
    return cutHex(prefix, octets, element.value.octetCount, room);
}

} // namespace

std::vector<std::string> bitNames(const asn1data::TypeDescription& type, Octets octets,
                                  std::size_t bitCount, std::size_t limit) {
    std::vector<std::string> names;
    const std::size_t count = std::min(bitCount, octets.size() * 8);
    for (std::size_t bit = 0; bit < count && names.size() < limit; ++bit) {
        if ((octets[bit / 8] & (0x80u >> bit % 8)) != 0) {
            const char* const name = asn1data::numberName(type, static_cast<long long>(bit));
            names.push_back(name != nullptr ? name : "bit " + std::to_string(bit));
        }
    }
    return names;
}

ValueText characterText(const WalkElement& element, std::size_t room) {
    OctetStore store;
    const std::size_t total = element.value.octetCount;
    std::size_t columns = room > SmallestRoom + 2 ? room - 2 : SmallestRoom;
    // Four octets a character at most, none of them less than a column but for combining marks.
    const std::size_t limit = columns > total ? total : columns * 8;
    EscapedText text = escape(valueOctets(element, limit, store), codingOf(element), columns);
    if (text.rest != 0 || limit < total) {
        const std::size_t note = restText(total).size();
        columns = columns > note + SmallestRoom ? columns - note : SmallestRoom;
        text = escape(valueOctets(element, limit, store), codingOf(element), columns);
        text.rest += total - std::min(limit, total);
    }
    return {"\"" + text.text + "\"", text.rest};
}

ValueText bitText(const WalkElement& element, std::size_t room) {
    constexpr std::size_t most = 64;
    if (element.type->nameCount != 0 && element.value.bitCount <= most) {
        OctetStore store;
        std::string text;
        for (const std::string& name : bitNames(*element.type, valueOctets(element, most, store),
                                                element.value.bitCount, most)) {
            text += (text.empty() ? "" : ", ") + name;
        }
        return {text.empty() ? "no bits" : text};
    }
    const unsigned bits = element.value.bitCount;
    const std::string prefix = std::to_string(bits) + (bits == 1 ? " bit" : " bits");
    return bits == 0 ? ValueText{prefix} : hexValue(prefix + " ", element, room);
}

ValueText octetText(const WalkElement& element, std::size_t room) {
    return element.value.octetCount != 0 ? hexValue("", element, room) : ValueText{"(empty)"};
}

} // namespace derview
