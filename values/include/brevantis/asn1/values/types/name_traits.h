#ifndef BREVANTIS_ASN1_VALUES_TYPES_NAME_TRAITS_H
#define BREVANTIS_ASN1_VALUES_TYPES_NAME_TRAITS_H

#include <brevantis/asn1/asn1data/x509.h>
#include <brevantis/asn1/values/types/attribute_type_and_value_traits.h>
#include <brevantis/asn1/values/types/name.h>
#include <brevantis/asn1/values/util/coding.h>
#include <brevantis/asn1/values/util/instances.h>
#include <brevantis/asn1/values/util/traits.h>

/// @file
/// Traits of CRelativeDistinguishedName and CName.

namespace Brevantis::ASN1 {

/// The pairs of RelativeDistinguishedName.
using AttributeTypeAndValueListTraits =
    ASN1TSeqOfList_traits<asn1data::ASN1T_AttributeTypeAndValue, ASN1T_AttributeTypeAndValue_traits,
                          CAttributeTypeAndValue, CRelativeDistinguishedName>;
BREVANTIS_ASN1_INSTANCE struct BREVANTIS_ASN1_API
    ASN1TSeqOfList_traits<asn1data::ASN1T_AttributeTypeAndValue, ASN1T_AttributeTypeAndValue_traits,
                          CAttributeTypeAndValue, CRelativeDistinguishedName>;

/// RelativeDistinguishedName (X.501, 9.3) as a CRelativeDistinguishedName.
struct BREVANTIS_ASN1_API ASN1T_RelativeDistinguishedName_traits
    : CatalogueTraits<asn1data::ASN1T_RelativeDistinguishedName,
                      asn1data::ASN1C_RelativeDistinguishedName,
                      &asn1data::asn1Copy_RelativeDistinguishedName> {
    /// @throws as ASN1T_AttributeTypeAndValue_traits::set
    static void set(ASN1CTXT* ctxt, asn1data::ASN1T_RelativeDistinguishedName& record,
                    const CRelativeDistinguishedName& value);
    static void get(const asn1data::ASN1T_RelativeDistinguishedName& record,
                    CRelativeDistinguishedName& value);
};

BREVANTIS_ASN1_CODED(ASN1T_RelativeDistinguishedName_traits, CRelativeDistinguishedName)

/// The relative names of RDNSequence.
using RelativeDistinguishedNameListTraits =
    ASN1TSeqOfList_traits<asn1data::ASN1T_RelativeDistinguishedName,
                          ASN1T_RelativeDistinguishedName_traits, CRelativeDistinguishedName,
                          CRDNSequence>;
BREVANTIS_ASN1_INSTANCE struct BREVANTIS_ASN1_API ASN1TSeqOfList_traits<
    asn1data::ASN1T_RelativeDistinguishedName, ASN1T_RelativeDistinguishedName_traits,
    CRelativeDistinguishedName, CRDNSequence>;

/// Name (RFC 5280, 4.1.2.4) as a CName, or as a blob that holds its encoding.
struct BREVANTIS_ASN1_API ASN1T_Name_traits
    : CatalogueTraits<asn1data::ASN1T_Name, asn1data::ASN1C_Name, &asn1data::asn1Copy_Name> {
    /// @throws as ASN1T_AttributeTypeAndValue_traits::set
    static void set(ASN1CTXT* ctxt, asn1data::ASN1T_Name& record, const CName& value);
    /// @throws ATL::CAtlException with CRYPT_E_ASN1_INTERNAL when @p record holds nothing
    static void get(const asn1data::ASN1T_Name& record, CName& value);

    /// @param encoding octets behind the name are not looked at
    /// @throws ATL::CAtlException with CRYPT_E_ASN1_INTERNAL when @p encoding is no Name, with
    ///         CRYPT_E_ASN1_MEMORY when memory is out
    static void set(ASN1CTXT* ctxt, asn1data::ASN1T_Name& record, const CBlob& encoding);
    /// @param encoding receives the DER, written anew
    /// @throws ATL::CAtlException with CRYPT_E_ASN1_INTERNAL when the encoder refuses @p record,
    ///         with CRYPT_E_ASN1_MEMORY when memory is out; @p encoding stays as it was
    static void get(const asn1data::ASN1T_Name& record, CBlob& encoding);
};

BREVANTIS_ASN1_ENCODED(ASN1T_Name_traits, CName)

} // namespace Brevantis::ASN1

#endif
