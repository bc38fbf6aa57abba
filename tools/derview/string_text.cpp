#include "string_text.h"

#include <algorithm>

#include <brevantis/asn1/text/value.h>

#include "escape.h"

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

ValueText characterText(const WalkElement& element, std::size_t room) {
    OctetStore store;
    const std::size_t total = element.value.octetCount;
    std::size_t columns = room > SmallestRoom + 2 ? room - 2 : SmallestRoom;
    // Four octets a character at most, none of them less than a column but for combining marks.
    const std::size_t limit = columns > total ? total : columns * 8;
    EscapedText text = escape(valueOctets(element, limit, store), codingOf(*element.type), columns);
    if (text.rest != 0 || limit < total) {
        const std::size_t note = restText(total).size();
        columns = columns > note + SmallestRoom ? columns - note : SmallestRoom;
        text = escape(valueOctets(element, limit, store), codingOf(*element.type), columns);
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
