#ifndef BREVANTIS_ASN1_VALUES_CMS_SIGNER_INFO_TRAITS_H
#define BREVANTIS_ASN1_VALUES_CMS_SIGNER_INFO_TRAITS_H

#include <brevantis/asn1/asn1data/cms.h>
#include <brevantis/asn1/export.h>
#include <brevantis/asn1/values/cms/signer_info.h>
#include <brevantis/asn1/values/util/traits.h>

/// @file
/// Traits of CSignerInfo.

namespace Brevantis::ASN1 {

/// Reads one signer out of a record.
/// @warning A failure leaves @p value with the fields read so far: version, algorithms and
///          signature come first, issuer and serial number last.
/// @throws ATL::CAtlException with CRYPT_E_ASN1_INTERNAL for a signer that is told by its
///         subjectKeyIdentifier, or when the issuer does not encode; with E_INVALIDARG for a choice
///         or octets that the record tells of and does not have; with CRYPT_E_ASN1_MEMORY when
///         memory is out
BREVANTIS_ASN1_API void ASN1T_SignerInfo_get(CSignerInfo& value,
                                             const asn1data::ASN1T_SignerInfo& record);

/// SignerInfo (RFC 5652, 5.3). A value lacks what a record needs, so there is no `set`.
struct BREVANTIS_ASN1_API ASN1T_SignerInfo_traits
    : CatalogueTraits<asn1data::ASN1T_SignerInfo, asn1data::ASN1C_SignerInfo,
                      &asn1data::asn1Copy_SignerInfo> {
    /// As ASN1T_SignerInfo_get.
    static void get(const asn1data::ASN1T_SignerInfo& record, CSignerInfo& value);
};

} // namespace Brevantis::ASN1

#endif
