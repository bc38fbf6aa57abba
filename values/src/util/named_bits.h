#ifndef BREVANTIS_ASN1_VALUES_SRC_UTIL_NAMED_BITS_H
#define BREVANTIS_ASN1_VALUES_SRC_UTIL_NAMED_BITS_H

#include <brevantis/asn1/runtime/bit_set.h>

namespace Brevantis::ASN1 {

/// Fills a record of at most @p capacity named bits, up to the last that is set: zero bits at the
/// end are left out, as DER has it (X.690, 11.2.2).
template <unsigned capacity, class Record, class Value>
void setNamedBits(Record& record, const Value& value) {
    record = {};
    for (unsigned i = 0; i < capacity; ++i) {
        if (value.get_bit(i)) {
            rtSetBit(record.data, capacity, i);
            record.numbits = i + 1;
        }
    }
}

} // namespace Brevantis::ASN1

#endif
