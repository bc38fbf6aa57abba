#ifndef BREVANTIS_ASN1_VALUES_CMP_FAILURE_INFO_TRAITS_H
#define BREVANTIS_ASN1_VALUES_CMP_FAILURE_INFO_TRAITS_H

#include <brevantis/asn1/asn1data/cmp.h>
#include <brevantis/asn1/export.h>
#include <brevantis/asn1/values/cmp/failure_info.h>
#include <brevantis/asn1/values/util/coding.h>
#include <brevantis/asn1/values/util/instances.h>
#include <brevantis/asn1/values/util/traits.h>

/// @file
/// Traits of CPKIFailureInfo.

namespace Brevantis::ASN1 {

/// PKIFailureInfo (RFC 4210, 5.2.3).
struct BREVANTIS_ASN1_API ASN1T_PKIFailureInfo_traits
    : NamedBitsTraits<asn1data::ASN1T_PKIFailureInfo, asn1data::ASN1C_PKIFailureInfo,
                      &asn1data::asn1Copy_PKIFailureInfo, &asn1data::asn1E_PKIFailureInfo> {
    /// Zero bits at the end are left out, as DER has it for named bits (X.690, 11.2.2).
    static void set(ASN1CTXT* ctxt, asn1data::ASN1T_PKIFailureInfo& record,
                    const CPKIFailureInfo& value);
    /// Adds the bits of the record to @p value.
    /// @warning Bits that were set before stay set.
    /// @throws ATL::CAtlException with E_INVALIDARG for a record of more than 32 bits
    static void get(const asn1data::ASN1T_PKIFailureInfo& record, CPKIFailureInfo& value);
};

BREVANTIS_ASN1_ENCODED(ASN1T_PKIFailureInfo_traits, CPKIFailureInfo)

} // namespace Brevantis::ASN1

#endif
