#ifndef BREVANTIS_ASN1_VALUES_ATTRIBUTE_ATTRIBUTE_TRAITS_H
#define BREVANTIS_ASN1_VALUES_ATTRIBUTE_ATTRIBUTE_TRAITS_H

#include <brevantis/asn1/asn1data/cms.h>
#include <brevantis/asn1/asn1data/x509.h>
#include <brevantis/asn1/export.h>
#include <brevantis/asn1/values/attribute/attribute.h>
#include <brevantis/asn1/values/types/primitive_traits.h>
#include <brevantis/asn1/values/util/coding.h>
#include <brevantis/asn1/values/util/instances.h>
#include <brevantis/asn1/values/util/traits.h>

/// @file
/// Traits of CAttribute and CAttributes.

namespace Brevantis::ASN1 {

/// The open values of an attribute.
using OpenValueListTraits =
    ASN1TSeqOfList_traits<Asn1TObject, Asn1TObject_traits, CBlob, CBlobList>;
BREVANTIS_ASN1_INSTANCE struct BREVANTIS_ASN1_API
    ASN1TSeqOfList_traits<Asn1TObject, Asn1TObject_traits, CBlob, CBlobList>;

/// Attribute (X.501, 8.2) as a CAttribute.
struct BREVANTIS_ASN1_API ASN1T_Attribute_traits
    : CatalogueTraits<asn1data::ASN1T_Attribute, asn1data::ASN1C_Attribute,
                      &asn1data::asn1Copy_Attribute> {
    /// Decodes the values on the way when the library knows the identifier.
    /// @throws ATL::CAtlException with E_INVALIDARG when the identifier is none, with
    ///         CRYPT_E_ASN1_INTERNAL when a value does not decode, with CRYPT_E_ASN1_MEMORY when
    ///         memory is out
    static void set(ASN1CTXT* ctxt, asn1data::ASN1T_Attribute& record, const CAttribute& value);
    /// A failure, which only memory can cause, leaves @p value as it was.
    static void get(const asn1data::ASN1T_Attribute& record, CAttribute& value);
};

/// The attributes of SignedAttributes.
using AttributeListTraits = ASN1TSeqOfList_traits<asn1data::ASN1T_Attribute, ASN1T_Attribute_traits,
                                                  CAttribute, CAttributes>;
BREVANTIS_ASN1_INSTANCE struct BREVANTIS_ASN1_API ASN1TSeqOfList_traits<
    asn1data::ASN1T_Attribute, ASN1T_Attribute_traits, CAttribute, CAttributes>;

/// SignedAttributes (RFC 5652, 5.3) as a CAttributes.
struct BREVANTIS_ASN1_API ASN1T_Attributes_traits
    : CatalogueTraits<asn1data::ASN1T_SignedAttributes, asn1data::ASN1C_SignedAttributes,
                      &asn1data::asn1Copy_SignedAttributes> {
    /// @throws as ASN1T_Attribute_traits::set
    static void set(ASN1CTXT* ctxt, asn1data::ASN1T_SignedAttributes& record,
                    const CAttributes& value);
    static void get(const asn1data::ASN1T_SignedAttributes& record, CAttributes& value);
};

BREVANTIS_ASN1_CODED(ASN1T_Attribute_traits, CAttribute)
BREVANTIS_ASN1_CODED(ASN1T_Attributes_traits, CAttributes)

} // namespace Brevantis::ASN1

#endif
