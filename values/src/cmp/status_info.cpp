#include <brevantis/asn1/values/cmp/status_info.h>

#include <brevantis/asn1/values/cmp/status_info_traits.h>

namespace Brevantis::ASN1 {

CPKIStatusInfo::CPKIStatusInfo(PKIStatusEnum status) : pkiStatus_(status), failureInfo_(0) {}

void CPKIStatusInfo::put_statusString(const CPKIFreeText& text) {
    statusString_ = CPKIFreeText(text);
}

CBlob CPKIStatusInfo::encode() const {
    return asn1Encode<ASN1T_PKIStatusInfo_traits>(*this);
}

void CPKIStatusInfo::decode(const CBlob& blob) {
    asn1Decode<ASN1T_PKIStatusInfo_traits>(blob, *this);
}

} // namespace Brevantis::ASN1
