#ifndef BREVANTIS_ASN1_VALUES_CMP_CERT_ID_TRAITS_H
#define BREVANTIS_ASN1_VALUES_CMP_CERT_ID_TRAITS_H

#include <brevantis/asn1/asn1data/crmf.h>
#include <brevantis/asn1/export.h>
#include <brevantis/asn1/values/cmp/cert_id.h>
#include <brevantis/asn1/values/util/traits.h>

/// @file
/// Traits of CCertId.

namespace Brevantis::ASN1 {

/// CertId (RFC 4211, 6.5).
struct BREVANTIS_ASN1_API ASN1T_CertId_traits
    : CatalogueTraits<asn1data::ASN1T_CertId, asn1data::ASN1C_CertId, &asn1data::asn1Copy_CertId> {
    /// @throws ATL::CAtlException with E_INVALIDARG for an issuer without an alternative, with
    ///         CRYPT_E_ASN1_MEMORY when memory is out
    static void set(ASN1CTXT* ctxt, asn1data::ASN1T_CertId& record, const CCertId& value);
    /// @throws ATL::CAtlException with E_INVALIDARG for an issuer of an alternative that
    ///         CGeneralName does not carry, with CRYPT_E_ASN1_MEMORY when memory is out
    static void get(const asn1data::ASN1T_CertId& record, CCertId& value);
};

} // namespace Brevantis::ASN1

#endif
