#ifndef BREVANTIS_ASN1_VALUES_TYPES_OTHER_HASH_TRAITS_H
#define BREVANTIS_ASN1_VALUES_TYPES_OTHER_HASH_TRAITS_H

#include <brevantis/asn1/asn1data/ess.h>
#include <brevantis/asn1/export.h>
#include <brevantis/asn1/values/types/other_hash.h>
#include <brevantis/asn1/values/util/coding.h>
#include <brevantis/asn1/values/util/instances.h>
#include <brevantis/asn1/values/util/traits.h>

/// @file
/// Traits of COtherHashAlgAndValue and COtherHash. Where nothing else is said a failure is
/// ATL::CAtlException with CRYPT_E_ASN1_MEMORY, when memory is out.

namespace Brevantis::ASN1 {

/// OtherHashAlgAndValue (RFC 5126, 5.7.3.3).
struct BREVANTIS_ASN1_API ASN1T_OtherHashAlgAndValue_traits
    : CatalogueTraits<asn1data::ASN1T_OtherHashAlgAndValue, asn1data::ASN1C_OtherHashAlgAndValue,
                      &asn1data::asn1Copy_OtherHashAlgAndValue> {
    /// @throws as ASN1T_AlgorithmIdentifier_set
    static void set(ASN1CTXT* ctxt, asn1data::ASN1T_OtherHashAlgAndValue& record,
                    const COtherHashAlgAndValue& value);
    static void get(const asn1data::ASN1T_OtherHashAlgAndValue& record,
                    COtherHashAlgAndValue& value);
};

/// OtherHash (RFC 5126, 5.7.3.3).
struct BREVANTIS_ASN1_API ASN1T_OtherHash_traits
    : CatalogueTraits<asn1data::ASN1T_OtherHash, asn1data::ASN1C_OtherHash,
                      &asn1data::asn1Copy_OtherHash> {
    /// A value without a hash leaves @p record as it is.
    /// @throws as ASN1T_AlgorithmIdentifier_set
    static void set(ASN1CTXT* ctxt, asn1data::ASN1T_OtherHash& record, const COtherHash& value);
    /// A record without a hash leaves @p value as it is.
    static void get(const asn1data::ASN1T_OtherHash& record, COtherHash& value);
};

BREVANTIS_ASN1_CODED(ASN1T_OtherHashAlgAndValue_traits, COtherHashAlgAndValue)
BREVANTIS_ASN1_ENCODED(ASN1T_OtherHash_traits, COtherHash)

} // namespace Brevantis::ASN1

#endif
