#include <brevantis/asn1/values/attribute/signed_attributes.h>

#include <brevantis/asn1/values/types/primitive_traits.h>
#include <brevantis/asn1/values/types/time_choice_traits.h>
#include <brevantis/asn1/values/util/octet_string_value.h>

#include "util/value_with_field.h"

namespace Brevantis::ASN1 {

template <>
struct FieldCoder<CAttrValue, CStringProxy> : TraitsCoder<ASN1TObjId_traits, CStringProxy> {};
template <>
struct FieldCoder<CAttrValue, CTimeChoice> : TraitsCoder<ASN1T_Time_traits, CTimeChoice> {};
template <>
struct FieldCoder<CAttrValue, CBlob> {
    static CBlob encode(const CBlob& octets) { return toOctetString(octets); }
    static void decode(const CBlob& value, CBlob& octets) { octets = fromOctetString(value); }
};

template class ValueWithField<CAttrValue, CStringProxy>;
template class ValueWithField<CAttrValue, CBlob>;
template class ValueWithField<CAttrValue, CTimeChoice>;

namespace {

constexpr const char* contentTypeId = "1.2.840.113549.1.9.3";
constexpr const char* messageDigestId = "1.2.840.113549.1.9.4";
constexpr const char* signingTimeId = "1.2.840.113549.1.9.5";

} // namespace

CAttrContentType::CAttrContentType(const char* contentType) : ValueWithField(contentTypeId) {
    put_contentType(contentType);
}

CAttrContentType::CAttrContentType(const CBlob& encoded) : ValueWithField(contentTypeId, encoded) {}

void CAttrContentType::put_contentType(const char* contentType) {
    putField(contentType);
}

CAttrMessageDigest::CAttrMessageDigest() : ValueWithField(messageDigestId) {}

CAttrMessageDigest::CAttrMessageDigest(const CBlob& encoded)
    : ValueWithField(messageDigestId, encoded) {}

void CAttrMessageDigest::put_messageDigest(const CBlob& messageDigest) {
    putField(messageDigest);
}

CAttrSigningTime::CAttrSigningTime(const CDateTime& time) : ValueWithField(signingTimeId) {
    put_time(time);
}

CAttrSigningTime::CAttrSigningTime(const CBlob& encoded) : ValueWithField(signingTimeId, encoded) {}

void CAttrSigningTime::put_time(const CDateTime& time) {
    putField(CTimeChoice(time));
}

} // namespace Brevantis::ASN1
