#ifndef BREVANTIS_ASN1_VALUES_CMS_CONTENT_INFO_TRAITS_H
#define BREVANTIS_ASN1_VALUES_CMS_CONTENT_INFO_TRAITS_H

#include <brevantis/asn1/asn1data/cms.h>
#include <brevantis/asn1/export.h>
#include <brevantis/asn1/values/cms/content_info.h>
#include <brevantis/asn1/values/util/coding.h>
#include <brevantis/asn1/values/util/instances.h>
#include <brevantis/asn1/values/util/traits.h>

/// @file
/// Traits of CContentInfo.

namespace Brevantis::ASN1 {

/// ContentInfo (RFC 5652, 3) as a type and a content, or as a blob of the complete encoding.
/// Failures are ATL::CAtlException, with CRYPT_E_ASN1_MEMORY when memory is out.
struct BREVANTIS_ASN1_API ASN1T_ContentInfo_traits
    : CatalogueTraits<asn1data::ASN1T_ContentInfo, asn1data::ASN1C_ContentInfo,
                      &asn1data::asn1Copy_ContentInfo> {
    /// @throws ATL::CAtlException with E_INVALIDARG for a type that is no object identifier, with
    ///         CRYPT_E_ASN1_INTERNAL for the content of a known type that does not decode
    static void set(ASN1CTXT* ctxt, asn1data::ASN1T_ContentInfo& record, const CContentInfo& value);
    static void get(const asn1data::ASN1T_ContentInfo& record, CContentInfo& value);

    /// @throws ATL::CAtlException with CRYPT_E_ASN1_INTERNAL when @p encoded does not decode
    static void set(ASN1CTXT* ctxt, asn1data::ASN1T_ContentInfo& record, const CBlob& encoded);
    /// @throws ATL::CAtlException with CRYPT_E_ASN1_INTERNAL when the record does not encode
    static void get(const asn1data::ASN1T_ContentInfo& record, CBlob& encoded);
};

BREVANTIS_ASN1_CODED(ASN1T_ContentInfo_traits, CContentInfo)
BREVANTIS_ASN1_CODED(ASN1T_ContentInfo_traits, CBlob)

} // namespace Brevantis::ASN1

#endif
