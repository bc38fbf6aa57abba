#ifndef BREVANTIS_ASN1_VALUES_TYPES_ISSUER_SERIAL_TRAITS_H
#define BREVANTIS_ASN1_VALUES_TYPES_ISSUER_SERIAL_TRAITS_H

#include <brevantis/asn1/asn1data/ess.h>
#include <brevantis/asn1/export.h>
#include <brevantis/asn1/values/types/issuer_serial.h>
#include <brevantis/asn1/values/util/coding.h>
#include <brevantis/asn1/values/util/instances.h>
#include <brevantis/asn1/values/util/traits.h>

/// @file
/// Traits of CIssuerSerial. Where nothing else is said a failure is ATL::CAtlException with
/// CRYPT_E_ASN1_MEMORY, when memory is out.

namespace Brevantis::ASN1 {

/// IssuerSerial (RFC 2634, 5.4.1).
struct BREVANTIS_ASN1_API ASN1T_IssuerSerial_traits
    : CatalogueTraits<asn1data::ASN1T_IssuerSerial, asn1data::ASN1C_IssuerSerial,
                      &asn1data::asn1Copy_IssuerSerial> {
    /// @throws as ASN1T_GeneralName_traits::set
    static void set(ASN1CTXT* ctxt, asn1data::ASN1T_IssuerSerial& record,
                    const CIssuerSerial& value);
    /// @throws ATL::CAtlException with E_INVALIDARG for a name of a kind that CGeneralName does not
    ///         carry; @p value stays as it was
    static void get(const asn1data::ASN1T_IssuerSerial& record, CIssuerSerial& value);
};

BREVANTIS_ASN1_CODED(ASN1T_IssuerSerial_traits, CIssuerSerial)

} // namespace Brevantis::ASN1

#endif
