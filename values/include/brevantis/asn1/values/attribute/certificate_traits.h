#ifndef BREVANTIS_ASN1_VALUES_ATTRIBUTE_CERTIFICATE_TRAITS_H
#define BREVANTIS_ASN1_VALUES_ATTRIBUTE_CERTIFICATE_TRAITS_H

#include <brevantis/asn1/asn1data/ess.h>
#include <brevantis/asn1/asn1data/x509.h>
#include <brevantis/asn1/export.h>
#include <brevantis/asn1/values/attribute/certificate_value.h>
#include <brevantis/asn1/values/util/coding.h>
#include <brevantis/asn1/values/util/instances.h>
#include <brevantis/asn1/values/util/traits.h>

/// @file
/// Traits of certificates and CRLs as their encodings. Where nothing else is said a failure is
/// ATL::CAtlException with CRYPT_E_ASN1_INTERNAL, when the octets do not decode or the record does
/// not encode, or with CRYPT_E_ASN1_MEMORY, when memory is out.

namespace Brevantis::ASN1 {

/// Certificate (RFC 5280, 4.1).
struct BREVANTIS_ASN1_API ASN1T_Certificate_traits
    : CatalogueTraits<asn1data::ASN1T_Certificate, asn1data::ASN1C_Certificate,
                      &asn1data::asn1Copy_Certificate> {
    static void set(ASN1CTXT* ctxt, asn1data::ASN1T_Certificate& record, const CBlob& encoded);
    static void get(const asn1data::ASN1T_Certificate& record, CBlob& encoded);
};

/// CertificateList (RFC 5280, 5.1).
struct BREVANTIS_ASN1_API ASN1T_CertificateList_traits
    : CatalogueTraits<asn1data::ASN1T_CertificateList, asn1data::ASN1C_CertificateList,
                      &asn1data::asn1Copy_CertificateList> {
    static void set(ASN1CTXT* ctxt, asn1data::ASN1T_CertificateList& record, const CBlob& encoded);
    static void get(const asn1data::ASN1T_CertificateList& record, CBlob& encoded);
};

/// SEQUENCE OF Certificate.
using CertificateSequenceTraits =
    ASN1TSeqOfList_traits<asn1data::ASN1T_Certificate, ASN1T_Certificate_traits, CBlob, CBlobList>;
BREVANTIS_ASN1_INSTANCE struct BREVANTIS_ASN1_API
    ASN1TSeqOfList_traits<asn1data::ASN1T_Certificate, ASN1T_Certificate_traits, CBlob, CBlobList>;

/// CertificateValues (RFC 5126, 6.3.3) as a CCertificateValues.
struct BREVANTIS_ASN1_API ASN1T_CertificateValues_traits
    : CatalogueTraits<asn1data::ASN1T_CertificateValues, asn1data::ASN1C_CertificateValues,
                      &asn1data::asn1Copy_CertificateValues> {
    static void set(ASN1CTXT* ctxt, asn1data::ASN1T_CertificateValues& record,
                    const CCertificateValues& value);
    /// A failure leaves @p value with the certificates before it.
    static void get(const asn1data::ASN1T_CertificateValues& record, CCertificateValues& value);
};

BREVANTIS_ASN1_CODED(ASN1T_Certificate_traits, CBlob)
BREVANTIS_ASN1_CODED(ASN1T_Certificate_traits, CCertificateValue)
BREVANTIS_ASN1_RECORD_CODED(ASN1T_Certificate_traits)
BREVANTIS_ASN1_RECORD_CODED(ASN1T_CertificateList_traits)
BREVANTIS_ASN1_CODED(ASN1T_CertificateValues_traits, CCertificateValues)

} // namespace Brevantis::ASN1

#endif
