#include <brevantis/asn1/values/types/certificate_identifiers.h>

#include <brevantis/asn1/values/types/certificate_identifiers_traits.h>

namespace Brevantis::ASN1 {

CESSCertID::CESSCertID(const CBlob& certHash) {
    put_certHash(certHash);
}

CBlob CESSCertID::encode() const {
    return asn1Encode<ASN1T_ESSCertID_traits>(*this);
}

void CESSCertID::decode(const CBlob& blob) {
    asn1Decode<ASN1T_ESSCertID_traits>(blob, *this);
}

bool operator==(const CESSCertID& a, const CESSCertID& b) {
    return a.get_certHash() == b.get_certHash() && a.sameIssuerSerial(b);
}

bool operator!=(const CESSCertID& a, const CESSCertID& b) {
    return !(a == b);
}

CESSCertIDv2::CESSCertIDv2(const CBlob& certHash) {
    put_certHash(certHash);
}

CESSCertIDv2::CESSCertIDv2(const CBlob& certHash, const CAlgorithmIdentifier& hashAlgorithm) {
    put_certHash(certHash);
    put_hashAlgorithm(hashAlgorithm);
}

CBlob CESSCertIDv2::encode() const {
    return asn1Encode<ASN1T_ESSCertIDv2_traits>(*this);
}

void CESSCertIDv2::decode(const CBlob& blob) {
    asn1Decode<ASN1T_ESSCertIDv2_traits>(blob, *this);
}

bool operator==(const CESSCertIDv2& a, const CESSCertIDv2& b) {
    return a.get_hashAlgorithm() == b.get_hashAlgorithm() && a.get_certHash() == b.get_certHash() &&
           a.sameIssuerSerial(b);
}

bool operator!=(const CESSCertIDv2& a, const CESSCertIDv2& b) {
    return !(a == b);
}

COtherCertID::COtherCertID(const CBlob& hash) {
    put_otherCertHash(COtherHash(hash));
}

COtherCertID::COtherCertID(const CBlob& hash, const CAlgorithmIdentifier& algorithm) {
    put_otherCertHash(COtherHash(COtherHashAlgAndValue(hash, algorithm)));
}

bool COtherCertID::compare_noHashParam(const COtherCertID& other) const {
    return get_otherCertHash().compare_hashValue(other.get_otherCertHash()) &&
           sameIssuerSerial(other);
}

CBlob COtherCertID::encode() const {
    return asn1Encode<ASN1T_OtherCertID_traits>(*this);
}

void COtherCertID::decode(const CBlob& blob) {
    asn1Decode<ASN1T_OtherCertID_traits>(blob, *this);
}

bool operator==(const COtherCertID& a, const COtherCertID& b) {
    return a.get_otherCertHash() == b.get_otherCertHash() && a.sameIssuerSerial(b);
}

bool operator!=(const COtherCertID& a, const COtherCertID& b) {
    return !(a == b);
}

} // namespace Brevantis::ASN1
