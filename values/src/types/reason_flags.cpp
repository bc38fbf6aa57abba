#include <brevantis/asn1/values/types/reason_flags.h>

#include <brevantis/asn1/values/types/reason_flags_traits.h>

namespace Brevantis::ASN1 {

CBlob CReasonFlags::encode() const {
    return asn1Encode<ASN1T_ReasonFlags_traits>(*this);
}

void CReasonFlags::decode(const CBlob& blob) {
    asn1Decode<ASN1T_ReasonFlags_traits>(blob, *this);
}

} // namespace Brevantis::ASN1
