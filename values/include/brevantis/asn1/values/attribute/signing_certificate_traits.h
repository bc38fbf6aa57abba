#ifndef BREVANTIS_ASN1_VALUES_ATTRIBUTE_SIGNING_CERTIFICATE_TRAITS_H
#define BREVANTIS_ASN1_VALUES_ATTRIBUTE_SIGNING_CERTIFICATE_TRAITS_H

#include <brevantis/asn1/asn1data/ess.h>
#include <brevantis/asn1/export.h>
#include <brevantis/asn1/values/attribute/signing_certificate.h>
#include <brevantis/asn1/values/util/coding.h>
#include <brevantis/asn1/values/util/instances.h>
#include <brevantis/asn1/values/util/traits.h>

/// @file
/// Traits of the attribute values that tie a signature to the signer's certificate.
///
/// Each `set` throws as `encode` of its value class, each `get` as `decode`. `get` stores by
/// `put_certs` and then `put_policies`, with what these do to the encoded value.

namespace Brevantis::ASN1 {

/// SigningCertificate (RFC 2634, 5.4).
struct BREVANTIS_ASN1_API ASN1T_SigningCertificate_traits
    : CatalogueTraits<asn1data::ASN1T_SigningCertificate, asn1data::ASN1C_SigningCertificate,
                      &asn1data::asn1Copy_SigningCertificate> {
    static void set(ASN1CTXT* ctxt, asn1data::ASN1T_SigningCertificate& record,
                    const CAttrSigningCertificate& value);
    static void get(const asn1data::ASN1T_SigningCertificate& record,
                    CAttrSigningCertificate& value);
};

/// SigningCertificateV2 (RFC 5035, 3).
struct BREVANTIS_ASN1_API ASN1T_SigningCertificateV2_traits
    : CatalogueTraits<asn1data::ASN1T_SigningCertificateV2, asn1data::ASN1C_SigningCertificateV2,
                      &asn1data::asn1Copy_SigningCertificateV2> {
    static void set(ASN1CTXT* ctxt, asn1data::ASN1T_SigningCertificateV2& record,
                    const CAttrSigningCertificateV2& value);
    static void get(const asn1data::ASN1T_SigningCertificateV2& record,
                    CAttrSigningCertificateV2& value);
};

/// OtherSigningCertificate (RFC 5126, 5.7.3.3).
struct BREVANTIS_ASN1_API ASN1T_OtherSigningCertificate_traits
    : CatalogueTraits<asn1data::ASN1T_OtherSigningCertificate,
                      asn1data::ASN1C_OtherSigningCertificate,
                      &asn1data::asn1Copy_OtherSigningCertificate> {
    static void set(ASN1CTXT* ctxt, asn1data::ASN1T_OtherSigningCertificate& record,
                    const CAttrOtherSigningCertificate& value);
    static void get(const asn1data::ASN1T_OtherSigningCertificate& record,
                    CAttrOtherSigningCertificate& value);
};

BREVANTIS_ASN1_CODED(ASN1T_SigningCertificate_traits, CAttrSigningCertificate)
BREVANTIS_ASN1_CODED(ASN1T_SigningCertificateV2_traits, CAttrSigningCertificateV2)
BREVANTIS_ASN1_CODED(ASN1T_OtherSigningCertificate_traits, CAttrOtherSigningCertificate)

} // namespace Brevantis::ASN1

#endif
