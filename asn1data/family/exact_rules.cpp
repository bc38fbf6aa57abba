#include "exact_rules.h"

#include <cstring>

#include <brevantis/asn1/runtime/element_walk.h>
#include <brevantis/asn1/runtime/tag_length.h>

namespace asn1data::family {

namespace {

constexpr Inexactness Exact{nullptr, ASN1S_SUCCESS};
constexpr Inexactness WrongLength{"a length that is not that of the octets inside",
                                  ASN1S_INVALID_LENGTH};
constexpr Inexactness HiddenOctets{"octets behind the value in an OCTET STRING",
                                   ASN1S_EXTRA_ELEMENT};
constexpr Inexactness NoElement{"end-of-contents octets in place of an element",
                                ASN1S_EXTRA_ELEMENT};
constexpr Inexactness ZeroInText{"text with a zero octet inside", ASN1S_BAD_VALUE};
constexpr Inexactness PartOfCharacter{"octets that are no whole character", ASN1S_INVALID_LENGTH};
constexpr Inexactness WrongNumber{"a number that its field cannot hold", ASN1S_VALUE_TOO_BIG};
constexpr Inexactness WrongArc{"an arc of an identifier that 32 bits cannot hold",
                               ASN1S_INVALID_OBJID};
constexpr Inexactness CutArc{"an arc of an identifier that is cut off", ASN1S_INVALID_OBJID};
constexpr Inexactness NoUnusedBits{"a BIT STRING without its count of unused bits",
                                   ASN1S_INVALID_LENGTH};
constexpr Inexactness WrongBits{"bits that the field cannot hold", ASN1S_STRING_OVERFLOW};
constexpr Inexactness BitSegments{"a BIT STRING in several segments", ASN1S_BAD_VALUE};

/// Octets that an element takes, its end-of-contents included; 0 when it is not whole.
std::size_t sizeOf(const unsigned char* start, const unsigned char* end) {
    const Octets octets(start, static_cast<std::size_t>(end - start));
    ASN1Header header{};
    if (!readHeader(octets, header)) {
        return 0;
    }
    if (header.length != ASN1IndefiniteLength) {
        const std::size_t size = header.size + static_cast<std::size_t>(header.length);
        return size <= octets.size() ? size : 0;
    }
    ASN1CTXT reader;
    rtInitReader(&reader, start, static_cast<unsigned>(octets.size()));
    return xd_NextElement(&reader) == ASN1S_SUCCESS ? reader.buffer.byteIndex : 0;
}

/// Calls `take(contents)` for each segment of a string in constructed form.
template <class Take>
void forEachSegment(const WalkElement& element, const unsigned char* end, Take take) {
    const unsigned char* place = element.data + element.headerLength;
    if (element.contentLength != ASN1IndefiniteLength) {
        end = place + element.contentLength;
    }
    ASN1Header header{};
    while (place < end && readHeader({place, static_cast<std::size_t>(end - place)}, header) &&
           (header.tag != 0 || header.length != 0) && header.length >= 0 &&
           header.length <= end - place - static_cast<int>(header.size)) {
        take(Octets(place + header.size, static_cast<std::size_t>(header.length)));
        place += header.size + static_cast<unsigned>(header.length);
    }
}

/// Whether contents are the number that was read of them (X.690, 8.3).
bool isNumber(Octets contents, Shape shape, long long read) {
    if (contents.empty()) {
        return false;
    }
    const bool negative = (contents[0] & 0x80u) != 0;
    const unsigned char sign = negative ? 0xFF : 0;
    while (contents.size() > 1 && contents[0] == sign && ((contents[1] & 0x80u) != 0) == negative) {
        contents = contents.behind(1);
    }
    if (contents.size() > sizeof(long long)) {
        return false;
    }
    unsigned long long bits = negative ? ~0ULL : 0;
    for (const unsigned char octet : contents) {
        bits = bits << 8 | octet;
    }
    const auto number = static_cast<long long>(bits);
    // An ENUMERATED is kept as the bits of a signed number.
    return shape == Shape::Enumerated ? number == static_cast<int>(static_cast<unsigned>(read))
                                      : number == read;
}

/// No arc may go beyond 32 bits, none be cut off (X.690, 8.19).
Inexactness lookAtArcs(Octets contents) {
    unsigned long long arc = 0;
    for (const unsigned char octet : contents) {
        arc = arc << 7 | (octet & 0x7Fu);
        if (arc > 0xFFFFFFFFu) {
            return WrongArc;
        }
        arc = (octet & 0x80u) != 0 ? arc : 0;
    }
    return contents.empty() || (contents.back() & 0x80u) != 0 ? CutArc : Exact;
}

Inexactness lookAtBits(const WalkElement& element, const unsigned char* end) {
    Octets contents = contentsOf(element);
    if (element.segmented) {
        // The decoder takes the leading octets of segments but the last one for bits.
        unsigned segments = 0;
        forEachSegment(element, end, [&](Octets segment) {
            contents = segment;
            ++segments;
        });
        if (segments != 1) {
            return BitSegments;
        }
    }
    if (contents.empty()) {
        return NoUnusedBits;
    }
    const bool whole = contents[0] <= 7 && (contents.size() > 1 || contents[0] == 0) &&
                       (contents.size() - 1) * 8 - contents[0] == element.value.bitCount;
    const bool fits = element.type->shape != Shape::FixedBitString ||
                      element.value.bitCount <= element.type->capacity;
    return whole && fits ? Exact : WrongBits;
}

Inexactness lookAtOctets(const WalkElement& element, const unsigned char* end) {
    const bool ends = element.type->shape == Shape::Text;
    std::size_t count = 0;
    bool hasZero = false;
    const auto take = [&](Octets octets) {
        count += octets.size();
        hasZero = hasZero || (ends && !octets.empty() &&
                              std::memchr(octets.begin(), 0, octets.size()) != nullptr);
    };
    if (element.segmented) {
        forEachSegment(element, end, take);
    } else {
        take(contentsOf(element));
    }
    return hasZero ? ZeroInText : count != element.value.octetCount ? PartOfCharacter : Exact;
}

Inexactness lookAtValue(const WalkElement& element, const unsigned char* end) {
    const Octets contents = contentsOf(element);
    const Shape shape = element.type->shape;
    switch (kindOf(shape)) {
    case ShapeKind::Boolean:
        return contents.size() == 1 ? Exact : WrongLength;
    case ShapeKind::Null:
        return contents.empty() ? Exact : WrongLength;
    case ShapeKind::Number:
        return isNumber(contents, shape, element.value.number) ? Exact : WrongNumber;
    case ShapeKind::BigNumber:
        return contents.empty() || (shape == Shape::BigUnsigned && (contents[0] & 0x80u) != 0)
                   ? WrongNumber
                   : Exact;
    case ShapeKind::ObjectIdentifier:
        return lookAtArcs(contents);
    case ShapeKind::BitString:
        return lookAtBits(element, end);
    case ShapeKind::OctetString:
    case ShapeKind::Text:
        return lookAtOctets(element, end);
    case ShapeKind::OpenType:
    case ShapeKind::Record:
    case ShapeKind::Choice:
    case ShapeKind::Repeated:
        break; // kept as octets, or looked at element by element
    }
    return Exact;
}

} // namespace

/// Behind the octets that an element lies in: the message, or what was put together.
const unsigned char* ExactRules::endOf(const WalkElement& element) const {
    return element.assembled ? containers_.back().end : end_;
}

Inexactness ExactRules::lookAtHeaders(const WalkElement& element, std::size_t& size) const {
    const unsigned char* const end = endOf(element);
    const unsigned char* start = element.data;
    const unsigned char* const contents = start + element.headerLength;
    size = sizeOf(start, end);
    const unsigned char* after = start + size;
    for (;;) {
        ASN1Header header{};
        if (after == start || !readHeader({start, static_cast<std::size_t>(end - start)}, header)) {
            return WrongLength;
        }
        const bool definite = header.length != ASN1IndefiniteLength;
        const unsigned char* const inside = start + header.size;
        if (inside >= contents) {
            return !definite || header.length == element.contentLength ? Exact : WrongLength;
        }
        const unsigned char* const insideEnd = definite ? after : after - 2;
        after = inside + sizeOf(inside, end);
        if (after != insideEnd) {
            return WrongLength;
        }
        start = inside;
    }
}

void ExactRules::take(const WalkElement& element, std::size_t size) {
    if (!containers_.empty()) {
        Container& around = containers_.back();
        around.left -= size; // below 0 it wraps, and stays wrong
        around.reached = std::max(around.reached, element.data + size);
    }
}

Inexactness ExactRules::lookAtWhole(const WalkElement& element) {
    if (element.assembled && containers_.back().end == nullptr) {
        Container& octets = containers_.back();
        octets.reached = element.data - element.offset;
        octets.last = octets.end = octets.reached + octets.left;
    }
    std::size_t size = 0;
    const Inexactness found = lookAtHeaders(element, size);
    if (found.what == nullptr) {
        take(element, size);
    }
    return found;
}

Inexactness ExactRules::enter(const WalkElement& element) {
    const Inexactness found = lookAtWhole(element);
    if (found.what != nullptr) {
        return found;
    }
    const unsigned char* const end = endOf(element);
    const unsigned char* start = element.data + element.headerLength;
    if (!element.encapsulates) {
        const unsigned char* const header = element.data + (element.valueOffset - element.offset);
        const unsigned char* const last = element.contentLength == ASN1IndefiniteLength
                                              ? header + sizeOf(header, end) - 2
                                              : start + element.contentLength;
        containers_.push_back({static_cast<std::size_t>(last - start), last, start, end});
        return Exact;
    }
    const std::size_t count = element.value.octetCount;
    if (element.segmented) {
        // Where they are put together is known with the first element in them.
        containers_.push_back({count, nullptr, nullptr, nullptr});
    } else {
        containers_.push_back({count, start + count, start, end});
    }
    return Exact;
}

void ExactRules::skip(const WalkElement& /*element*/) {
    containers_.pop_back();
}

Inexactness ExactRules::leave(const WalkElement& element) {
    const Container inside = containers_.back();
    containers_.pop_back();
    if (inside.left == 0 && inside.reached == inside.last) {
        return Exact;
    }
    return element.encapsulates ? HiddenOctets : WrongLength;
}

Inexactness ExactRules::primitive(const WalkElement& element) {
    if (isRaw(element) && element.value.octetCount != 0 && element.value.octets[0] == 0) {
        return NoElement;
    }
    const Inexactness found = lookAtWhole(element);
    return found.what == nullptr && !isRaw(element) ? lookAtValue(element, endOf(element)) : found;
}

} // namespace asn1data::family
