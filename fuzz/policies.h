#ifndef FUZZ_POLICIES_H
#define FUZZ_POLICIES_H

#include <brevantis/asn1/runtime/context.h>

namespace fuzz {

/// Flags of contexts that messages are read with.
inline constexpr int policies[] = {
    0,
    ASN1F_TOLERATE_OPEN_VALUES,
    ASN1F_TOLERATE_SIZES,
    ASN1F_TOLERATE_OPEN_VALUES | ASN1F_TOLERATE_SIZES,
    ASN1F_EXACT,
    ASN1F_DER,
    ASN1F_EXACT | ASN1F_DER,
    ASN1F_EXACT | ASN1F_DER | ASN1F_TOLERATE_OPEN_VALUES,
};

} // namespace fuzz

#endif
