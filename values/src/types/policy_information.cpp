#include <brevantis/asn1/values/types/policy_information.h>

#include <brevantis/asn1/values/types/policy_information_traits.h>

namespace Brevantis::ASN1 {

CPolicyInformation::CPolicyInformation(const char* policyIdentifier)
    : policyIdentifier_(policyIdentifier) {}

CBlob CPolicyInformation::encode() const {
    return asn1Encode<ASN1T_PolicyInformation_traits>(*this);
}

void CPolicyInformation::decode(const CBlob& blob) {
    asn1Decode<ASN1T_PolicyInformation_traits>(blob, *this);
}

} // namespace Brevantis::ASN1
