#ifndef BREVANTIS_ASN1_VALUES_ATTRIBUTE_CERTIFICATE_VALUE_H
#define BREVANTIS_ASN1_VALUES_ATTRIBUTE_CERTIFICATE_VALUE_H

#include <brevantis/asn1/export.h>
#include <brevantis/support/blob.h>

/// @file
/// Certificates (RFC 5280, 4.1) as their encodings, alone and in the certificate-values attribute
/// (RFC 5126, 6.3.3).
///
/// A certificate is parsed and written again on each way in and out: what is no certificate is
/// refused, and what is not in DER becomes so.

namespace Brevantis::ASN1 {

/// One encoded certificate.
class BREVANTIS_ASN1_API CCertificateValue : public CBlob {
public:
    /// The octets are not looked at before they are encoded.
    using CBlob::CBlob;

    /// @return the certificate as the library writes it
    /// @throws ATL::CAtlException with CRYPT_E_ASN1_INTERNAL when the content is no certificate,
    ///         with CRYPT_E_ASN1_MEMORY when memory is out
    CBlob encode() const;
    /// @throws ATL::CAtlException with CRYPT_E_ASN1_INTERNAL when @p blob is no certificate, with
    ///         CRYPT_E_ASN1_MEMORY when memory is out; the object stays as it was
    void decode(const CBlob& blob);
};

/// A list of encoded certificates, encoded as CertificateValues.
class BREVANTIS_ASN1_API CCertificateValues : public CBlobList {
public:
    using CBlobList::CBlobList;

    /// @return the DER
    /// @throws as CCertificateValue::encode, for any of the certificates
    CBlob encode() const;
    /// @throws ATL::CAtlException with CRYPT_E_ASN1_INTERNAL when @p blob is no CertificateValues;
    ///         the list stays as it was. With CRYPT_E_ASN1_MEMORY when memory is out, which may
    ///         leave the first of the new certificates
    void decode(const CBlob& blob);
};

} // namespace Brevantis::ASN1

#endif
