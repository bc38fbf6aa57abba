#include "value_text.h"

#include <algorithm>
#include <limits>

#include "header.h"

namespace derview {

using asn1data::Shape;
using asn1data::WalkElement;

namespace {

enum : ASN1TAG { Utf8StringTag = 12, UtcTimeTag = 23, GeneralizedTimeTag = 24 };

/// Columns of values that are never cut below what can be told.
constexpr std::size_t SmallestRoom = 16;

/// Goes from segment to segment of a string in constructed form. The walk has read them, so that
/// all lengths are known to fit.
template <class Take>
void forEachSegment(const WalkElement& element, Take take) {
    constexpr std::size_t longestHeader = 16;
    const unsigned char* place = element.data + element.headerLength;
    const bool bits = valueKind(element) == ValueKind::Bits;
    std::size_t left = element.value.octetCount;
    while (left != 0) {
        const Header header = readHeader({place, longestHeader});
        if (header.size == 0) {
            return;
        }
        place += header.size;
        // In front of the last segment's bits stands the count of the unused ones. The decoder
        // keeps those of the other segments as data.
        const std::size_t leading = bits && header.length == left + 1 ? 1 : 0;
        const std::size_t size = std::min(header.length - leading, left);
        if (!take(Octets(place + leading, size))) {
            return;
        }
        left -= size;
        place += header.length;
    }
}

std::optional<int> digitsAt(std::string_view text, std::size_t place, std::size_t count) {
    if (text.size() < place + count) {
        return std::nullopt;
    }
    int number = 0;
    for (const char digit : text.substr(place, count)) {
        if (digit < '0' || digit > '9') {
            return std::nullopt;
        }
        number = number * 10 + (digit - '0');
    }
    return number;
}

/// "Z" or "+0200" as "Z" or "+02:00"; nothing for anything else.
std::optional<std::string> isoZone(std::string_view zone) {
    if (zone.empty() || zone == "Z") {
        return std::string(zone);
    }
    const bool known = (zone[0] == '+' || zone[0] == '-') &&
                       (zone.size() == 3 || zone.size() == 5) && digitsAt(zone, 1, zone.size() - 1);
    if (!known) {
        return std::nullopt;
    }
    return std::string(zone.substr(0, 3)) + ":" +
           std::string(zone.size() == 5 ? zone.substr(3) : "00");
}

std::string numberText(const WalkElement& element) {
    const char* const name = asn1data::numberName(*element.type, element.value.number);
    const std::string number = std::to_string(element.value.number);
    return name != nullptr ? escapeName(name) + " (" + number + ")" : number;
}

std::string identifierText(const ASN1OBJID& identifier) {
    const char* const name = asn1data::identifierName(identifier);
    const std::string dotted = dottedText(identifier);
    return name != nullptr ? std::string(name) + " (" + dotted + ")" : dotted;
}

/// Digits as far as they fit; the rest is counted.
/// @param octets the first ones of @p total, at least as many as fit
ValueText hexValue(const std::string& prefix, Octets octets, std::size_t total, std::size_t room) {
    const std::size_t digits =
        room > prefix.size() + SmallestRoom ? room - prefix.size() : SmallestRoom;
    std::size_t shown = total;
    if (total > digits / 2) {
        const std::size_t note = restText(total).size();
        shown = digits > note + SmallestRoom ? (digits - note) / 2 : SmallestRoom / 2;
    }
    return {prefix + hexText(octets.first(shown)), total - shown};
}

/// The same of a value's own octets.
ValueText hexValue(const std::string& prefix, const WalkElement& element, std::size_t room) {
    OctetStore store;
    const Octets octets = valueOctets(element, std::max(room, SmallestRoom), store);
    return hexValue(prefix, octets, element.value.octetCount, room);
}

ValueText bigNumberText(const WalkElement& element, std::size_t room) {
    OctetStore store;
    const bool isUnsigned = element.type->shape == Shape::BigUnsigned;
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
    return hexValue(magnitude.negative ? "-0x" : "0x", magnitude.octets, total, room);
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

} // namespace

ValueKind valueKind(const WalkElement& element) {
    if (element.type == nullptr) {
        return ValueKind::Raw;
    }
    switch (element.type->shape) {
    case Shape::Boolean:
        return ValueKind::Boolean;
    case Shape::Integer:
    case Shape::Unsigned:
    case Shape::Unsigned16:
    case Shape::Enumerated:
        return ValueKind::Number;
    case Shape::BigInteger:
    case Shape::BigUnsigned:
        return ValueKind::BigNumber;
    case Shape::Null:
        return ValueKind::Null;
    case Shape::ObjectIdentifier:
        return ValueKind::Identifier;
    case Shape::BitString:
    case Shape::FixedBitString:
        return ValueKind::Bits;
    case Shape::Text:
        return element.type->tag == UtcTimeTag || element.type->tag == GeneralizedTimeTag
                   ? ValueKind::Time
                   : ValueKind::Text;
    case Shape::Text16:
    case Shape::Text32:
        return ValueKind::Text;
    case Shape::OpenType:
        return ValueKind::Raw;
    default:
        return ValueKind::OctetString;
    }
}

CharacterCoding codingOf(const WalkElement& element) {
    switch (element.type->shape) {
    case Shape::Text16:
        return CharacterCoding::Utf16;
    case Shape::Text32:
        return CharacterCoding::Utf32;
    default:
        return element.type->tag == Utf8StringTag ? CharacterCoding::Utf8 : CharacterCoding::Latin1;
    }
}

Octets valueOctets(const WalkElement& element, std::size_t limit, OctetStore& store) {
    const std::size_t count = std::min<std::size_t>(element.value.octetCount, limit);
    if (!element.segmented) {
        return {element.value.octets, element.value.octets != nullptr ? count : 0};
    }
    store.clear();
    store.reserve(count);
    forEachSegment(element, [&](Octets segment) {
        const Octets part = segment.first(std::min(segment.size(), count - store.size()));
        store.insert(store.end(), part.begin(), part.end());
        return store.size() < count;
    });
    return store;
}

std::string dottedText(const ASN1OBJID& identifier) {
    std::string text;
    for (unsigned i = 0; i < identifier.numids; ++i) {
        text += (i == 0 ? "" : ".") + std::to_string(identifier.subid[i]);
    }
    return text;
}

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

std::optional<std::string> isoTime(std::string_view text, bool generalized) {
    const std::size_t yearDigits = generalized ? 4 : 2;
    std::string iso;
    const auto year = digitsAt(text, 0, yearDigits);
    if (!year) {
        return std::nullopt;
    }
    iso = generalized ? std::string(text.substr(0, 4))
                      : (*year < 50 ? "20" : "19") + std::string(text.substr(0, 2));
    struct Field {
        char separator;
        int lower;
        int upper;
        bool optional;
    };
    const Field fields[] = {{'-', 1, 12, false},
                            {'-', 1, 31, false},
                            {'T', 0, 23, false},
                            {':', 0, 59, generalized},
                            {':', 0, 60, true}};
    std::size_t place = yearDigits;
    for (const Field& field : fields) {
        const auto number = digitsAt(text, place, 2);
        if (!number && field.optional) {
            iso += field.separator + std::string("00");
            continue;
        }
        if (!number || *number < field.lower || *number > field.upper) {
            return std::nullopt;
        }
        iso += field.separator;
        iso += text.substr(place, 2);
        place += 2;
    }
    if (generalized && place < text.size() && (text[place] == '.' || text[place] == ',')) {
        std::size_t end = place + 1;
        while (digitsAt(text, end, 1)) {
            ++end;
        }
        if (end == place + 1 || place != yearDigits + 10) {
            return std::nullopt;
        }
        iso += '.';
        iso += text.substr(place + 1, end - place - 1);
        place = end;
    }
    const auto zone = isoZone(text.substr(place));
    return zone ? std::optional(iso + *zone) : std::nullopt;
}

std::optional<std::string> isoTime(const WalkElement& element) {
    constexpr std::size_t longest = 64;
    if (element.value.octetCount > longest) {
        return std::nullopt;
    }
    OctetStore store;
    const Octets octets = valueOctets(element, longest, store);
    return isoTime(std::string(octets.begin(), octets.end()),
                   element.type->tag == GeneralizedTimeTag);
}

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

ValueText valueText(const WalkElement& element, std::size_t room) {
    switch (valueKind(element)) {
    case ValueKind::Null:
        return {"NULL"};
    case ValueKind::Boolean:
        return {element.value.number != 0 ? "TRUE" : "FALSE"};
    case ValueKind::Number:
        return {numberText(element)};
    case ValueKind::BigNumber:
        return bigNumberText(element, room);
    case ValueKind::Identifier:
        return {identifierText(*element.value.identifier)};
    case ValueKind::Time:
        if (auto iso = isoTime(element)) {
            iso->replace(iso->find('T'), 1, " ");
            if (iso->back() == 'Z') {
                iso->replace(iso->size() - 1, 1, " UTC");
            }
            return {*iso};
        }
        return characterText(element, room);
    case ValueKind::Text:
        return characterText(element, room);
    case ValueKind::Bits:
        return bitText(element, room);
    case ValueKind::OctetString:
    case ValueKind::Raw:
        return element.value.octetCount != 0 ? hexValue("", element, room) : ValueText{"(empty)"};
    }
    return {};
}

std::string restText(std::size_t octets) {
    return "… " + std::to_string(octets) + (octets == 1 ? " more octet" : " more octets");
}

} // namespace derview
