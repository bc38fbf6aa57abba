#ifndef BREVANTIS_ASN1_VALUES_TYPES_TIME_CHOICE_TRAITS_H
#define BREVANTIS_ASN1_VALUES_TYPES_TIME_CHOICE_TRAITS_H

#include <brevantis/asn1/asn1data/x509.h>
#include <brevantis/asn1/values/types/time_choice.h>
#include <brevantis/asn1/values/util/coding.h>
#include <brevantis/asn1/values/util/instances.h>
#include <brevantis/asn1/values/util/traits.h>

/// @file
/// Traits of CTimeChoice.

namespace Brevantis::ASN1 {

/// Time (RFC 5280, 4.1) as a CTimeChoice.
struct BREVANTIS_ASN1_API ASN1T_Time_traits
    : CatalogueTraits<asn1data::ASN1T_Time, asn1data::ASN1C_Time, &asn1data::asn1Copy_Time> {
    /// A value without a time leaves @p record as it is.
    /// @throws ATL::CAtlException with CRYPT_E_ASN1_INTERNAL when the time cannot be written, with
    ///         CRYPT_E_ASN1_MEMORY when memory is out
    static void set(ASN1CTXT* ctxt, asn1data::ASN1T_Time& record, const CTimeChoice& value);
    /// @throws ATL::CAtlException with CRYPT_E_ASN1_INTERNAL when no alternative is chosen, with
    ///         E_INVALIDARG when the text is no time
    static void get(const asn1data::ASN1T_Time& record, CTimeChoice& value);
};

BREVANTIS_ASN1_CODED(ASN1T_Time_traits, CTimeChoice)

} // namespace Brevantis::ASN1

#endif
