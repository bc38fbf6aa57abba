#ifndef BREVANTIS_ASN1_VALUES_TYPES_GENERAL_NAME_TRAITS_H
#define BREVANTIS_ASN1_VALUES_TYPES_GENERAL_NAME_TRAITS_H

#include <brevantis/asn1/asn1data/extensions.h>
#include <brevantis/asn1/values/types/general_name.h>
#include <brevantis/asn1/values/util/coding.h>
#include <brevantis/asn1/values/util/instances.h>
#include <brevantis/asn1/values/util/traits.h>

/// @file
/// Traits of CGeneralName and CGeneralNames.

namespace Brevantis::ASN1 {

/// GeneralName (RFC 5280, 4.2.1.6) as a CGeneralName.
struct BREVANTIS_ASN1_API ASN1T_GeneralName_traits
    : CatalogueTraits<asn1data::ASN1T_GeneralName, asn1data::ASN1C_GeneralName,
                      &asn1data::asn1Copy_GeneralName> {
    /// @throws ATL::CAtlException with E_INVALIDARG for no name and for an identifier whose text is
    ///         none, with CRYPT_E_ASN1_INTERNAL for a directoryName that does not decode, with
    ///         CRYPT_E_ASN1_MEMORY when memory is out
    static void set(ASN1CTXT* ctxt, asn1data::ASN1T_GeneralName& record, const CGeneralName& value);
    /// @throws ATL::CAtlException with E_INVALIDARG for an alternative that CGeneralName does not
    ///         carry; @p value stays as it was
    static void get(const asn1data::ASN1T_GeneralName& record, CGeneralName& value);
};

/// The names of GeneralNames.
using GeneralNameListTraits =
    ASN1TSeqOfList_traits<asn1data::ASN1T_GeneralName, ASN1T_GeneralName_traits, CGeneralName,
                          CGeneralNames>;
BREVANTIS_ASN1_INSTANCE struct BREVANTIS_ASN1_API ASN1TSeqOfList_traits<
    asn1data::ASN1T_GeneralName, ASN1T_GeneralName_traits, CGeneralName, CGeneralNames>;

/// GeneralNames (RFC 5280, 4.2.1.6) as a CGeneralNames.
struct BREVANTIS_ASN1_API ASN1T_GeneralNames_traits
    : CatalogueTraits<asn1data::ASN1T_GeneralNames, asn1data::ASN1C_GeneralNames,
                      &asn1data::asn1Copy_GeneralNames> {
    /// @throws as ASN1T_GeneralName_traits::set
    static void set(ASN1CTXT* ctxt, asn1data::ASN1T_GeneralNames& record,
                    const CGeneralNames& value);
    /// @throws as ASN1T_GeneralName_traits::get, with the names before the refused one in @p value
    static void get(const asn1data::ASN1T_GeneralNames& record, CGeneralNames& value);
};

BREVANTIS_ASN1_CODED(ASN1T_GeneralNames_traits, CGeneralNames)

} // namespace Brevantis::ASN1

#endif
