#ifndef BREVANTIS_ASN1_VALUES_CMP_STATUS_INFO_TRAITS_H
#define BREVANTIS_ASN1_VALUES_CMP_STATUS_INFO_TRAITS_H

#include <brevantis/asn1/asn1data/cmp.h>
#include <brevantis/asn1/export.h>
#include <brevantis/asn1/values/cmp/status_info.h>
#include <brevantis/asn1/values/util/coding.h>
#include <brevantis/asn1/values/util/instances.h>
#include <brevantis/asn1/values/util/traits.h>

/// @file
/// Traits of CPKIStatusInfo.

namespace Brevantis::ASN1 {

/// PKIStatusInfo (RFC 4210, 5.2.3). Failure bits of 0 and an empty text are the same as absent
/// ones. Failures are those of CPKIStatusInfo's `encode` and `decode`.
struct BREVANTIS_ASN1_API ASN1T_PKIStatusInfo_traits
    : CatalogueTraits<asn1data::ASN1T_PKIStatusInfo, asn1data::ASN1C_PKIStatusInfo,
                      &asn1data::asn1Copy_PKIStatusInfo> {
    static void set(ASN1CTXT* ctxt, asn1data::ASN1T_PKIStatusInfo& record,
                    const CPKIStatusInfo& value);
    static void get(const asn1data::ASN1T_PKIStatusInfo& record, CPKIStatusInfo& value);
};

BREVANTIS_ASN1_CODED(ASN1T_PKIStatusInfo_traits, CPKIStatusInfo)

} // namespace Brevantis::ASN1

#endif
