#ifndef BREVANTIS_ASN1_VALUES_EXTENSION_NAMED_EXTENSION_TRAITS_H
#define BREVANTIS_ASN1_VALUES_EXTENSION_NAMED_EXTENSION_TRAITS_H

#include <brevantis/asn1/asn1data/extensions.h>
#include <brevantis/asn1/values/extension/named_extensions.h>
#include <brevantis/asn1/values/util/coding.h>
#include <brevantis/asn1/values/util/instances.h>
#include <brevantis/asn1/values/util/traits.h>

/// @file
/// Traits of the values in named extensions.

namespace Brevantis::ASN1 {

/// CRLReason (RFC 5280, 5.3.1) as a CrlReason; numbers without a name pass too.
struct BREVANTIS_ASN1_API ASN1T_CRLReason_traits
    : CatalogueTraits<asn1data::ASN1T_CRLReason, asn1data::ASN1C_CRLReason,
                      &asn1data::asn1Copy_CRLReason> {
    /// @param ctxt not used, may be null
    static void set(ASN1CTXT* ctxt, asn1data::ASN1T_CRLReason& record, CrlReason value);
    static void get(const asn1data::ASN1T_CRLReason& record, CrlReason& value);
};

/// PrivateKeyUsagePeriod (RFC 3280, 4.2.1.4) as a CExtPrivateKeyUsagePeriod.
struct BREVANTIS_ASN1_API ASN1T_PrivateKeyUsagePeriod_traits
    : CatalogueTraits<asn1data::ASN1T_PrivateKeyUsagePeriod, asn1data::ASN1C_PrivateKeyUsagePeriod,
                      &asn1data::asn1Copy_PrivateKeyUsagePeriod> {
    /// @throws ATL::CAtlException with CRYPT_E_ASN1_MEMORY when memory is out
    static void set(ASN1CTXT* ctxt, asn1data::ASN1T_PrivateKeyUsagePeriod& record,
                    const CExtPrivateKeyUsagePeriod& value);
    /// Encodes the extension's value anew, too.
    /// @throws ATL::CAtlException with E_INVALIDARG when a text is no time; @p value stays as it
    /// was
    static void get(const asn1data::ASN1T_PrivateKeyUsagePeriod& record,
                    CExtPrivateKeyUsagePeriod& value);
};

BREVANTIS_ASN1_ENCODED(ASN1T_CRLReason_traits, CrlReason)
BREVANTIS_ASN1_CODED(ASN1T_PrivateKeyUsagePeriod_traits, CExtPrivateKeyUsagePeriod)

} // namespace Brevantis::ASN1

#endif
