#include <brevantis/asn1/values/types/distribution_point.h>

#include <brevantis/asn1/values/types/distribution_point_traits.h>

namespace Brevantis::ASN1 {

CDistributionPointName::CDistributionPointName(const CGeneralNames& fullName) {
    put_fullName(fullName);
}

CBlob CDistributionPointName::encode() const {
    return asn1Encode<ASN1T_DistributionPointName_traits>(*this);
}

void CDistributionPointName::decode(const CBlob& blob) {
    asn1Decode<ASN1T_DistributionPointName_traits>(blob, *this);
}

bool operator==(const CDistributionPointName& a, const CDistributionPointName& b) {
    const CGeneralNames* left = a.get_fullName();
    const CGeneralNames* right = b.get_fullName();
    return left == nullptr || right == nullptr ? left == right : *left == *right;
}

bool operator!=(const CDistributionPointName& a, const CDistributionPointName& b) {
    return !(a == b);
}

const CDistributionPointName* CDistributionPoint::get_distributionPoint() const {
    return content_.read().distributionPoint.get();
}

const CReasonFlags* CDistributionPoint::get_reasons() const {
    return content_.read().reasons.get();
}

const CGeneralNames* CDistributionPoint::get_cRLIssuer() const {
    return content_.read().cRLIssuer.get();
}

void CDistributionPoint::put_distributionPoint(const CDistributionPointName* name) {
    content_.edit().distributionPoint.put(name);
}

void CDistributionPoint::put_reasons(const CReasonFlags* reasons) {
    content_.edit().reasons.put(reasons);
}

void CDistributionPoint::put_cRLIssuer(const CGeneralNames* issuer) {
    content_.edit().cRLIssuer.put(issuer);
}

void CDistributionPoint::clear() {
    content_.clear();
}

CBlob CDistributionPoint::encode() const {
    return asn1Encode<ASN1T_DistributionPoint_traits>(*this);
}

void CDistributionPoint::decode(const CBlob& blob) {
    asn1Decode<ASN1T_DistributionPoint_traits>(blob, *this);
}

bool operator==(const CDistributionPoint& a, const CDistributionPoint& b) {
    const CDistributionPoint::Content& left = a.content_.read();
    const CDistributionPoint::Content& right = b.content_.read();
    return left.cRLIssuer == right.cRLIssuer && left.distributionPoint == right.distributionPoint &&
           left.reasons == right.reasons;
}

bool operator!=(const CDistributionPoint& a, const CDistributionPoint& b) {
    return !(a == b);
}

CBlob CCRLDistPointsSyntax::encode() const {
    return asn1Encode<ASN1T_CRLDistPointsSyntax_traits>(*this);
}

void CCRLDistPointsSyntax::decode(const CBlob& blob) {
    asn1Decode<ASN1T_CRLDistPointsSyntax_traits>(blob, *this);
}

} // namespace Brevantis::ASN1
