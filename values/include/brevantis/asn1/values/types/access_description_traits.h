#ifndef BREVANTIS_ASN1_VALUES_TYPES_ACCESS_DESCRIPTION_TRAITS_H
#define BREVANTIS_ASN1_VALUES_TYPES_ACCESS_DESCRIPTION_TRAITS_H

#include <brevantis/asn1/asn1data/extensions.h>
#include <brevantis/asn1/export.h>
#include <brevantis/asn1/values/types/access_description.h>
#include <brevantis/asn1/values/util/coding.h>
#include <brevantis/asn1/values/util/instances.h>
#include <brevantis/asn1/values/util/traits.h>

/// @file
/// Traits of CAccessDescription and CAuthorityInfoAccessSyntax. Where nothing else is said a
/// failure is ATL::CAtlException with CRYPT_E_ASN1_MEMORY, when memory is out.

namespace Brevantis::ASN1 {

/// AccessDescription (RFC 5280, 4.2.2.1).
struct BREVANTIS_ASN1_API ASN1T_AccessDescription_traits
    : CatalogueTraits<asn1data::ASN1T_AccessDescription, asn1data::ASN1C_AccessDescription,
                      &asn1data::asn1Copy_AccessDescription> {
    /// @throws as ASN1TObjId_traits::set and ASN1T_GeneralName_traits::set
    static void set(ASN1CTXT* ctxt, asn1data::ASN1T_AccessDescription& record,
                    const CAccessDescription& value);
    /// @throws ATL::CAtlException with E_INVALIDARG for a name of a kind that CGeneralName does not
    ///         carry; @p value stays as it was
    static void get(const asn1data::ASN1T_AccessDescription& record, CAccessDescription& value);
};

/// The descriptions of AuthorityInfoAccessSyntax.
using AccessDescriptionListTraits =
    ASN1TSeqOfList_traits<asn1data::ASN1T_AccessDescription, ASN1T_AccessDescription_traits,
                          CAccessDescription, CAuthorityInfoAccessSyntax>;
BREVANTIS_ASN1_INSTANCE struct BREVANTIS_ASN1_API
    ASN1TSeqOfList_traits<asn1data::ASN1T_AccessDescription, ASN1T_AccessDescription_traits,
                          CAccessDescription, CAuthorityInfoAccessSyntax>;

/// AuthorityInfoAccessSyntax (RFC 5280, 4.2.2.1).
struct BREVANTIS_ASN1_API ASN1T_AuthorityInfoAccessSyntax_traits
    : CatalogueTraits<asn1data::ASN1T_AuthorityInfoAccessSyntax,
                      asn1data::ASN1C_AuthorityInfoAccessSyntax,
                      &asn1data::asn1Copy_AuthorityInfoAccessSyntax> {
    /// @throws as ASN1T_AccessDescription_traits::set
    static void set(ASN1CTXT* ctxt, asn1data::ASN1T_AuthorityInfoAccessSyntax& record,
                    const CAuthorityInfoAccessSyntax& value);
    /// @throws as ASN1T_AccessDescription_traits::get, with the descriptions before the refused one
    ///         in @p value
    static void get(const asn1data::ASN1T_AuthorityInfoAccessSyntax& record,
                    CAuthorityInfoAccessSyntax& value);
};

BREVANTIS_ASN1_CODED(ASN1T_AccessDescription_traits, CAccessDescription)
BREVANTIS_ASN1_CODED(ASN1T_AuthorityInfoAccessSyntax_traits, CAuthorityInfoAccessSyntax)

} // namespace Brevantis::ASN1

#endif
