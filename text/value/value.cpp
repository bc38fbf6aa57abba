#include <brevantis/asn1/text/value.h>

#include <brevantis/asn1/runtime/header.h>

namespace asn1text {

using asn1data::Shape;
using asn1data::ShapeKind;
using asn1data::TypeDescription;
using asn1data::WalkElement;

namespace {

enum : ASN1TAG { Utf8StringTag = 12, UtcTimeTag = 23, GeneralizedTimeTag = 24 };

} // namespace

ValueKind valueKind(const TypeDescription& type) noexcept {
    switch (asn1data::kindOf(type.shape)) {
    case ShapeKind::Boolean:
        return ValueKind::Boolean;
    case ShapeKind::Number:
        return ValueKind::Number;
    case ShapeKind::BigNumber:
        return ValueKind::BigNumber;
    case ShapeKind::Null:
        return ValueKind::Null;
    case ShapeKind::ObjectIdentifier:
        return ValueKind::Identifier;
    case ShapeKind::BitString:
        return ValueKind::Bits;
    case ShapeKind::Text:
        return type.tag == UtcTimeTag || type.tag == GeneralizedTimeTag ? ValueKind::Time
                                                                        : ValueKind::Text;
    case ShapeKind::OpenType:
        return ValueKind::Raw;
    case ShapeKind::OctetString:
    case ShapeKind::Record:
    case ShapeKind::Choice:
    case ShapeKind::Repeated:
        break;
    }
    return ValueKind::OctetString;
}

ValueKind valueKind(const WalkElement& element) noexcept {
    return element.type != nullptr ? valueKind(*element.type) : ValueKind::Raw;
}

CharacterCoding codingOf(const TypeDescription& type) noexcept {
    switch (type.shape) {
    case Shape::Text16:
        return CharacterCoding::Utf16;
    case Shape::Text32:
        return CharacterCoding::Utf32;
    default:
        return type.tag == Utf8StringTag ? CharacterCoding::Utf8 : CharacterCoding::Latin1;
    }
}

bool isGeneralizedTime(const TypeDescription& type) noexcept {
    return type.tag == GeneralizedTimeTag;
}

Segments::Segments(const WalkElement& element) noexcept
    : place_(element.data + element.headerLength), left_(element.value.octetCount),
      bits_(valueKind(element) == ValueKind::Bits) {}

bool Segments::next(Octets& segment) noexcept {
    // The walk has read them, so that all lengths are known to fit.
    constexpr unsigned longestHeader = 16;
    ASN1Header header;
    if (left_ == 0 || rtReadHeader(place_, longestHeader, &header) != 0 ||
        header.length == ASN1IndefiniteLength) {
        return false;
    }
    const auto length = static_cast<std::size_t>(header.length);
    place_ += header.size;
    // In front of the last segment's bits stands the count of the unused ones. The decoder keeps
    // those of the other segments as data.
    const std::size_t leading = bits_ && length == left_ + 1 ? 1 : 0;
    segment = Octets(place_ + leading, std::min(length - leading, left_));
    left_ -= segment.size();
    place_ += length;
    return true;
}

Octets valueOctets(const WalkElement& element, std::size_t limit, OctetStore& store) {
    const std::size_t count = std::min<std::size_t>(element.value.octetCount, limit);
    if (!element.segmented) {
        return {element.value.octets, element.value.octets != nullptr ? count : 0};
    }
    store.clear();
    store.reserve(count);
    forEachPiece(element, [&](Octets piece) {
        const Octets part = piece.first(std::min(piece.size(), count - store.size()));
        store.insert(store.end(), part.begin(), part.end());
        return store.size() < count;
    });
    return store;
}

Magnitude::Magnitude(Octets contents, bool isUnsigned) noexcept
    : negative_(!isUnsigned && !contents.empty() && (contents[0] & 0x80u) != 0) {
    const auto* last = contents.end();
    while (last != contents.begin() && last[-1] == 0) {
        --last;
    }
    if (last == contents.begin()) {
        return;
    }
    // The magnitude of a negative number is the complement and one: zeros at the end stay, the
    // octet in front of them turns its sign, all others are complemented.
    const auto* first = contents.begin();
    while (negative_ ? *first == 0xFF && first + 1 != last : *first == 0) {
        ++first;
    }
    contents_ = {first, static_cast<std::size_t>(contents.end() - first)};
    lowest_ = static_cast<std::size_t>(last - first) - 1;
}

unsigned char Magnitude::operator[](std::size_t place) const noexcept {
    const unsigned char octet = contents_[place];
    if (!negative_ || place > lowest_) {
        return octet;
    }
    return static_cast<unsigned char>(~octet + (place == lowest_ ? 1 : 0));
}

std::optional<long long> Magnitude::within(long long largest) const noexcept {
    if (size() > sizeof(long long)) {
        return std::nullopt;
    }
    unsigned long long number = 0;
    for (std::size_t place = 0; place < size(); ++place) {
        number = number << 8 | (*this)[place];
    }
    if (number > static_cast<unsigned long long>(largest)) {
        return std::nullopt;
    }
    const auto result = static_cast<long long>(number);
    return negative_ ? -result : result;
}

std::vector<std::string> bitNames(const TypeDescription& type, Octets octets, std::size_t bitCount,
                                  std::size_t limit) {
    std::vector<std::string> names;
    const std::size_t count = std::min(bitCount, octets.size() * 8);
    for (std::size_t bit = 0; bit < count && names.size() < limit; ++bit) {
        if ((octets[bit / 8] & (0x80u >> bit % 8)) != 0) {
            names.push_back(bitName(type, bit));
        }
    }
    return names;
}

} // namespace asn1text
