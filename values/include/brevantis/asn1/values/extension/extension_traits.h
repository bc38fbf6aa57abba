#ifndef BREVANTIS_ASN1_VALUES_EXTENSION_EXTENSION_TRAITS_H
#define BREVANTIS_ASN1_VALUES_EXTENSION_EXTENSION_TRAITS_H

#include <brevantis/asn1/asn1data/x509.h>
#include <brevantis/asn1/values/extension/extension.h>
#include <brevantis/asn1/values/util/coding.h>
#include <brevantis/asn1/values/util/instances.h>
#include <brevantis/asn1/values/util/traits.h>

/// @file
/// Traits of CExtension and CExtensions.

namespace Brevantis::ASN1 {

/// Extension (RFC 5280, 4.1) as a CExtension.
struct BREVANTIS_ASN1_API ASN1T_Extension_traits
    : CatalogueTraits<asn1data::ASN1T_Extension, asn1data::ASN1C_Extension,
                      &asn1data::asn1Copy_Extension> {
    /// Decodes the value on the way when the library knows the identifier.
    /// @throws ATL::CAtlException with E_INVALIDARG when the identifier is none, with
    ///         CRYPT_E_ASN1_INTERNAL when the value does not decode, with CRYPT_E_ASN1_MEMORY when
    ///         memory is out
    static void set(ASN1CTXT* ctxt, asn1data::ASN1T_Extension& record, const CExtension& value);
    static void get(const asn1data::ASN1T_Extension& record, CExtension& value);
};

/// The extensions of Extensions.
using ExtensionListTraits = ASN1TSeqOfList_traits<asn1data::ASN1T_Extension, ASN1T_Extension_traits,
                                                  CExtension, CExtensions>;
BREVANTIS_ASN1_INSTANCE struct BREVANTIS_ASN1_API ASN1TSeqOfList_traits<
    asn1data::ASN1T_Extension, ASN1T_Extension_traits, CExtension, CExtensions>;

/// Extensions (RFC 5280, 4.1) as a CExtensions.
struct BREVANTIS_ASN1_API ASN1T_Extensions_traits
    : CatalogueTraits<asn1data::ASN1T_Extensions, asn1data::ASN1C_Extensions,
                      &asn1data::asn1Copy_Extensions> {
    /// @throws as ASN1T_Extension_traits::set
    static void set(ASN1CTXT* ctxt, asn1data::ASN1T_Extensions& record, const CExtensions& value);
    static void get(const asn1data::ASN1T_Extensions& record, CExtensions& value);
};

BREVANTIS_ASN1_CODED(ASN1T_Extension_traits, CExtension)
BREVANTIS_ASN1_CODED(ASN1T_Extensions_traits, CExtensions)

} // namespace Brevantis::ASN1

#endif
