#include "value_kind.h"

namespace derview {

using asn1data::WalkElement;

namespace {

enum : ASN1TAG { Utf8StringTag = 12, UtcTimeTag = 23, GeneralizedTimeTag = 24 };

} // namespace

using asn1data::Shape;

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

} // namespace derview
