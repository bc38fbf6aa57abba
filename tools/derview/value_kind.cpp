#include "value_kind.h"

namespace derview {

using asn1data::WalkElement;

namespace {

enum : ASN1TAG { Utf8StringTag = 12, UtcTimeTag = 23, GeneralizedTimeTag = 24 };

} // namespace

using asn1data::Shape;
using asn1data::ShapeKind;

ValueKind valueKind(const WalkElement& element) {
    if (element.type == nullptr) {
        return ValueKind::Raw;
    }
    switch (asn1data::kindOf(element.type->shape)) {
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
        return element.type->tag == UtcTimeTag || element.type->tag == GeneralizedTimeTag
                   ? ValueKind::Time
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
