#include <brevantis/asn1/values/attribute/certificate_value.h>

#include <brevantis/asn1/values/attribute/certificate_traits.h>

namespace Brevantis::ASN1 {

CBlob CCertificateValue::encode() const {
    return asn1Encode<ASN1T_Certificate_traits>(*this);
}

void CCertificateValue::decode(const CBlob& blob) {
    asn1Decode<ASN1T_Certificate_traits>(blob, *this);
}

CBlob CCertificateValues::encode() const {
    return asn1Encode<ASN1T_CertificateValues_traits>(*this);
}

void CCertificateValues::decode(const CBlob& blob) {
    asn1Decode<ASN1T_CertificateValues_traits>(blob, *this);
}

} // namespace Brevantis::ASN1
