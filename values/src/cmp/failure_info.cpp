#include <brevantis/asn1/values/cmp/failure_info.h>

#include <brevantis/asn1/values/cmp/failure_info_traits.h>
#include <brevantis/support/error.h>

namespace Brevantis::ASN1 {

namespace {

unsigned maskOf(unsigned index) {
    if (index > 31) {
        ATL::AtlThrowImpl(E_INVALIDARG);
    }
    return 1u << index;
}

} // namespace

bool CPKIFailureInfo::get_bit(unsigned int index) const {
    return (value_ & maskOf(index)) != 0;
}

void CPKIFailureInfo::put_bit(unsigned int index, bool flag) {
    const unsigned mask = maskOf(index);
    value_ = flag ? value_ | mask : value_ & ~mask;
}

CBlob CPKIFailureInfo::encode() const {
    return asn1Encode<ASN1T_PKIFailureInfo_traits>(*this);
}

void CPKIFailureInfo::decode(const CBlob& blob) {
    asn1Decode<ASN1T_PKIFailureInfo_traits>(blob, *this);
}

bool operator==(const CPKIFailureInfo& a, const CPKIFailureInfo& b) {
    return a.get_value() == b.get_value();
}

bool operator!=(const CPKIFailureInfo& a, const CPKIFailureInfo& b) {
    return !(a == b);
}

} // namespace Brevantis::ASN1
