#include <brevantis/asn1/values/attribute/signed_attributes.h>

#include <brevantis/asn1/asn1data/oids.h>
#include <brevantis/asn1/values/types/primitive_traits.h>
#include <brevantis/asn1/values/types/time_choice_traits.h>
#include <brevantis/asn1/values/util/object_identifier_text.h>
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

const CStringProxy contentTypeId = toOID(asn1data::id_contentType);
const CStringProxy messageDigestId = toOID(asn1data::id_messageDigest);
const CStringProxy signingTimeId = toOID(asn1data::id_signingTime);

} // namespace

CAttrContentType::CAttrContentType(const char* contentType)
    : ValueWithField(contentTypeId.c_str()) {
    put_contentType(contentType);
}

CAttrContentType::CAttrContentType(const CBlob& encoded)
    : ValueWithField(contentTypeId.c_str(), encoded) {}

void CAttrContentType::put_contentType(const char* contentType) {
    putField(contentType);
}

CAttrMessageDigest::CAttrMessageDigest() : ValueWithField(messageDigestId.c_str()) {}

CAttrMessageDigest::CAttrMessageDigest(const CBlob& encoded)
    : ValueWithField(messageDigestId.c_str(), encoded) {}

void CAttrMessageDigest::put_messageDigest(const CBlob& messageDigest) {
    putField(messageDigest);
}

CAttrSigningTime::CAttrSigningTime(const CDateTime& time) : ValueWithField(signingTimeId.c_str()) {
    put_time(time);
}

CAttrSigningTime::CAttrSigningTime(const CBlob& encoded)
    : ValueWithField(signingTimeId.c_str(), encoded) {}

void CAttrSigningTime::put_time(const CDateTime& time) {
    putField(CTimeChoice(time));
}

} // namespace Brevantis::ASN1
