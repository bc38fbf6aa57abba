#ifndef BREVANTIS_ASN1_VALUES_CMP_REVOCATION_ANNOUNCEMENT_TRAITS_H
#define BREVANTIS_ASN1_VALUES_CMP_REVOCATION_ANNOUNCEMENT_TRAITS_H

#include <brevantis/asn1/asn1data/cmp.h>
#include <brevantis/asn1/export.h>
#include <brevantis/asn1/values/cmp/revocation_announcement.h>
#include <brevantis/asn1/values/util/coding.h>
#include <brevantis/asn1/values/util/instances.h>
#include <brevantis/asn1/values/util/traits.h>

/// @file
/// Traits of CRevAnnContent.

namespace Brevantis::ASN1 {

/// RevAnnContent (RFC 4210, 5.3.15). Failures are those of CRevAnnContent's `encode` and `decode`.
struct BREVANTIS_ASN1_API ASN1T_RevAnnContent_traits
    : CatalogueTraits<asn1data::ASN1T_RevAnnContent, asn1data::ASN1C_RevAnnContent,
                      &asn1data::asn1Copy_RevAnnContent> {
    static void set(ASN1CTXT* ctxt, asn1data::ASN1T_RevAnnContent& record,
                    const CRevAnnContent& value);
    static void get(const asn1data::ASN1T_RevAnnContent& record, CRevAnnContent& value);
};

BREVANTIS_ASN1_CODED(ASN1T_RevAnnContent_traits, CRevAnnContent)

} // namespace Brevantis::ASN1

#endif
