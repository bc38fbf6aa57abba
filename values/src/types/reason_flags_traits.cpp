#include <brevantis/asn1/values/types/reason_flags_traits.h>

#include <algorithm>

#include "util/named_bits.h"

namespace Brevantis::ASN1 {

namespace {

constexpr unsigned capacity = 16;

} // namespace

void ASN1T_ReasonFlags_traits::set(ASN1CTXT* /*ctxt*/, asn1data::ASN1T_ReasonFlags& record,
                                   const CReasonFlags& value) {
    setNamedBits<capacity>(record, value);
}

void ASN1T_ReasonFlags_traits::get(const asn1data::ASN1T_ReasonFlags& record, CReasonFlags& value) {
    const unsigned count = std::min(record.numbits, capacity);
    value.put_value(0);
    for (unsigned i = 0; i < count; ++i) {
        value.put_bit(i, rtTestBit(record.data, count, i) != 0);
    }
}

} // namespace Brevantis::ASN1
