#include <brevantis/asn1/values/attribute/signed_attributes.h>

namespace Brevantis::ASN1 {

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
