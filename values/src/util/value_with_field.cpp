#include <brevantis/asn1/values/util/value_with_field.h>

#include <utility>

#include <brevantis/asn1/values/attribute/signed_attributes.h>
#include <brevantis/asn1/values/extension/named_extensions.h>
#include <brevantis/asn1/values/extension_traits/named_extension_traits.h>
#include <brevantis/asn1/values/types_traits/general_name_traits.h>
#include <brevantis/asn1/values/types_traits/primitive_traits.h>
#include <brevantis/asn1/values/types_traits/time_choice_traits.h>
#include <brevantis/asn1/values/util/octet_string_value.h>

namespace Brevantis::ASN1 {

namespace {

CBlob encodeField(CrlReason reason) {
    return asn1Encode<ASN1T_CRLReason_traits>(reason);
}

void decodeField(const CBlob& value, CrlReason& reason) {
    asn1Decode<ASN1T_CRLReason_traits>(value, reason);
}

CBlob encodeField(const CStringProxy& oid) {
    return asn1Encode<ASN1TObjId_traits, const char*>(oid.c_str());
}

void decodeField(const CBlob& value, CStringProxy& oid) {
    asn1Decode<ASN1TObjId_traits>(value, oid);
}

CBlob encodeField(const CDateTime& time) {
    return asn1Encode<ASN1GeneralizedTime_traits>(time);
}

void decodeField(const CBlob& value, CDateTime& time) {
    asn1Decode<ASN1GeneralizedTime_traits>(value, time);
}

CBlob encodeField(const CTimeChoice& time) {
    return asn1Encode<ASN1T_Time_traits>(time);
}

void decodeField(const CBlob& value, CTimeChoice& time) {
    asn1Decode<ASN1T_Time_traits>(value, time);
}

CBlob encodeField(const CGeneralNames& names) {
    return asn1Encode<ASN1T_GeneralNames_traits>(names);
}

void decodeField(const CBlob& value, CGeneralNames& names) {
    asn1Decode<ASN1T_GeneralNames_traits>(value, names);
}

CBlob encodeField(const CBlob& octets) {
    return toOctetString(octets);
}

void decodeField(const CBlob& value, CBlob& octets) {
    octets = fromOctetString(value);
}

} // namespace

template <class Base, class Field>
ValueWithField<Base, Field>::ValueWithField(const char* oid, const CBlob& encoded)
    : Base(oid, encoded) {
    decode();
}

template <class Base, class Field>
void ValueWithField<Base, Field>::encode() {
    this->value() = encodeField(field_);
}

template <class Base, class Field>
void ValueWithField<Base, Field>::decode() {
    Field decoded{};
    decodeField(this->get_value(), decoded);
    field_ = std::move(decoded);
}

template <class Base, class Field>
void ValueWithField<Base, Field>::putField(Field field) {
    CBlob encoded = encodeField(field);
    field_ = std::move(field);
    this->value() = std::move(encoded);
}

template class ValueWithField<CExtValue, CrlReason>;
template class ValueWithField<CExtValue, CStringProxy>;
template class ValueWithField<CExtValue, CDateTime>;
template class ValueWithField<CExtValue, CGeneralNames>;

template class ValueWithField<CAttrValue, CStringProxy>;
template class ValueWithField<CAttrValue, CBlob>;
template class ValueWithField<CAttrValue, CTimeChoice>;

} // namespace Brevantis::ASN1
