#ifndef BREVANTIS_ASN1_VALUES_TYPES_ATTRIBUTE_TYPE_AND_VALUE_TRAITS_H
#define BREVANTIS_ASN1_VALUES_TYPES_ATTRIBUTE_TYPE_AND_VALUE_TRAITS_H

#include <brevantis/asn1/asn1data/x509.h>
#include <brevantis/asn1/values/types/attribute_type_and_value.h>
#include <brevantis/asn1/values/util/coding.h>
#include <brevantis/asn1/values/util/instances.h>
#include <brevantis/asn1/values/util/traits.h>

/// @file
/// Traits of CAttributeTypeAndValue.

namespace Brevantis::ASN1 {

/// AttributeTypeAndValue (X.501, 9.3) as a CAttributeTypeAndValue.
struct BREVANTIS_ASN1_API ASN1T_AttributeTypeAndValue_traits
    : CatalogueTraits<asn1data::ASN1T_AttributeTypeAndValue, asn1data::ASN1C_AttributeTypeAndValue,
                      &asn1data::asn1Copy_AttributeTypeAndValue> {
    /// @throws ATL::CAtlException with E_INVALIDARG when the type is no identifier, with
    ///         CRYPT_E_ASN1_INTERNAL when the attribute is known and the value does not decode as
    ///         its type, with CRYPT_E_ASN1_MEMORY when memory is out
    static void set(ASN1CTXT* ctxt, asn1data::ASN1T_AttributeTypeAndValue& record,
                    const CAttributeTypeAndValue& value);
    static void get(const asn1data::ASN1T_AttributeTypeAndValue& record,
                    CAttributeTypeAndValue& value);
};

BREVANTIS_ASN1_CODED(ASN1T_AttributeTypeAndValue_traits, CAttributeTypeAndValue)

} // namespace Brevantis::ASN1

#endif
