#include <brevantis/asn1/values/cmp/failure_info_traits.h>

#include "util/named_bits.h"

namespace Brevantis::ASN1 {

namespace {

constexpr unsigned maxBits = 32;

} // namespace

void ASN1T_PKIFailureInfo_traits::set(ASN1CTXT* /*ctxt*/, asn1data::ASN1T_PKIFailureInfo& record,
                                      const CPKIFailureInfo& value) {
    setNamedBits<maxBits>(record, value);
}

void ASN1T_PKIFailureInfo_traits::get(const asn1data::ASN1T_PKIFailureInfo& record,
                                      CPKIFailureInfo& value) {
    if (record.numbits > maxBits) {
        ATL::AtlThrowImpl(E_INVALIDARG);
    }
    // Kept: bits that are set already stay. Programs depend on it.
    for (unsigned i = 0; i < record.numbits; ++i) {
        if (rtTestBit(record.data, record.numbits, i) != 0) {
            value.put_bit(i, true);
        }
    }
}

} // namespace Brevantis::ASN1
