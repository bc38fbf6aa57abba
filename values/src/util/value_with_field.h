#ifndef BREVANTIS_ASN1_VALUES_SRC_UTIL_VALUE_WITH_FIELD_H
#define BREVANTIS_ASN1_VALUES_SRC_UTIL_VALUE_WITH_FIELD_H

#include <utility>

#include <brevantis/asn1/values/util/coding.h>
#include <brevantis/asn1/values/util/value_with_field.h>

/// @file
/// The members of ValueWithField, for the sources of the classes that derive from it. Each source
/// specialises FieldCoder for its fields and instantiates what its header declares.

namespace Brevantis::ASN1 {

/// How the field of a class over a base is coded: `encode(field)` gives the value,
/// `decode(value, field)` reads it.
template <class Base, class Field>
struct FieldCoder;

/// A FieldCoder by way of a traits class.
template <class Traits, class Field>
struct TraitsCoder {
    static CBlob encode(const Field& field) { return asn1Encode<Traits>(field); }
    static void decode(const CBlob& value, Field& field) { asn1Decode<Traits>(value, field); }
};

template <class Base, class Field>
ValueWithField<Base, Field>::ValueWithField(const char* oid, const CBlob& encoded)
    : Base(oid, encoded) {
    decode();
}

template <class Base, class Field>
void ValueWithField<Base, Field>::encode() {
    this->value() = FieldCoder<Base, Field>::encode(field_);
}

template <class Base, class Field>
void ValueWithField<Base, Field>::decode() {
    Field decoded{};
    FieldCoder<Base, Field>::decode(this->get_value(), decoded);
    field_ = std::move(decoded);
}

template <class Base, class Field>
void ValueWithField<Base, Field>::putField(Field field) {
    CBlob encoded = FieldCoder<Base, Field>::encode(field);
    field_ = std::move(field);
    this->value() = std::move(encoded);
}

} // namespace Brevantis::ASN1

#endif
