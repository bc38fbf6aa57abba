#ifndef BREVANTIS_ASN1_VALUES_TYPES_REASON_FLAGS_TRAITS_H
#define BREVANTIS_ASN1_VALUES_TYPES_REASON_FLAGS_TRAITS_H

#include <brevantis/asn1/asn1data/extensions.h>
#include <brevantis/asn1/export.h>
#include <brevantis/asn1/values/types/reason_flags.h>
#include <brevantis/asn1/values/util/coding.h>
#include <brevantis/asn1/values/util/traits.h>

/// @file
/// Traits of CReasonFlags. Where nothing else is said a failure is ATL::CAtlException with
/// CRYPT_E_ASN1_MEMORY, when memory is out.

namespace Brevantis::ASN1 {

/// ReasonFlags (RFC 5280, 4.2.1.13). A record has room for 16 bits.
struct BREVANTIS_ASN1_API ASN1T_ReasonFlags_traits
    : NamedBitsTraits<asn1data::ASN1T_ReasonFlags, asn1data::ASN1C_ReasonFlags,
                      &asn1data::asn1Copy_ReasonFlags, &asn1data::asn1E_ReasonFlags> {
    /// Bits of @p value from 16 on are dropped.
    static void set(ASN1CTXT* ctxt, asn1data::ASN1T_ReasonFlags& record, const CReasonFlags& value);
    static void get(const asn1data::ASN1T_ReasonFlags& record, CReasonFlags& value);
};

} // namespace Brevantis::ASN1

#endif
