#ifndef BREVANTIS_ASN1_VALUES_CMS_SIGNED_DATA_BUILDER_H
#define BREVANTIS_ASN1_VALUES_CMS_SIGNED_DATA_BUILDER_H

#include <brevantis/asn1/export.h>
#include <brevantis/asn1/values/attribute/attribute.h>
#include <brevantis/asn1/values/attribute/certificate_value.h>
#include <brevantis/asn1/values/types/algorithm_identifier.h>
#include <brevantis/asn1/values/types/big_integer.h>
#include <brevantis/asn1/values/util/whole_assignment.h>
#include <brevantis/support/blob.h>

/// @file
/// Signed messages from nothing (RFC 5652, 5). What is signed comes out of these classes, the
/// signature over it goes in: they know neither keys nor digests.
///
///     CSignerInfoBuilder signer(certificate);
///     signer.put_digestAlgorithm(sha256);
///     signer.put_signatureAlgorithm(ecdsaWithSha256);
///     signer.signedAttributes() = attributes;       // content type, message digest, ...
///     signer.put_signature(sign(signer.toBeSigned()));
///     CSignedDataBuilder message("1.2.840.113549.1.7.1", content);
///     message.certificates().push_back(certificate);
///     message.add(signer);
///     const CBlob octets = message.encode();        // a ContentInfo

namespace Brevantis::ASN1 {

/// A SignerInfo of version 1 (RFC 5652, 5.3): the signer is told by the issuer and serial number of
/// the certificate.
class BREVANTIS_ASN1_API CSignerInfoBuilder {
public:
    /// No signer.
    CSignerInfoBuilder() = default;
    /// The signer that a certificate is for.
    /// @param certificate its DER
    /// @throws ATL::CAtlException with CRYPT_E_ASN1_INTERNAL when it is no certificate, with
    ///         CRYPT_E_ASN1_MEMORY when memory is out
    explicit CSignerInfoBuilder(const CBlob& certificate);

    /// @return the DER of the Name of the certificate's issuer
    const CBlob& get_issuer() const { return issuer_; }
    /// @return the serial number of the certificate
    const CBigInteger& get_serialNumber() const { return serialNumber_; }
    /// @return what the content was digested by
    const CAlgorithmIdentifier& get_digestAlgorithm() const { return digestAlgorithm_; }
    /// @return what the signature was made by
    const CAlgorithmIdentifier& get_signatureAlgorithm() const { return signatureAlgorithm_; }
    /// @return the signature as it was put
    const CBlob& get_signature() const { return signature_; }

    /// @param issuer the DER of a Name
    void put_issuer(const CBlob& issuer) { issuer_ = issuer; }
    /// @param serialNumber of the certificate
    void put_serialNumber(const CBigInteger& serialNumber) { serialNumber_ = serialNumber; }
    /// @param algorithm what the content was digested by
    void put_digestAlgorithm(const CAlgorithmIdentifier& algorithm) {
        digestAlgorithm_ = algorithm;
    }
    /// @param algorithm what the signature was made by
    void put_signatureAlgorithm(const CAlgorithmIdentifier& algorithm) {
        signatureAlgorithm_ = algorithm;
    }
    /// @param signature over toBeSigned, or over the content where there are no signed attributes
    void put_signature(const CBlob& signature) { signature_ = signature; }

    /// What the signature covers, to be changed. With none it covers the content itself.
    CAttributes& signedAttributes() { return signedAttributes_; }
    /// What the signature covers.
    const CAttributes& signedAttributes() const { return signedAttributes_; }
    /// What is put beside the signature, such as a time-stamp over it, to be changed.
    CAttributes& unsignedAttributes() { return unsignedAttributes_; }
    /// What is put beside the signature.
    const CAttributes& unsignedAttributes() const { return unsignedAttributes_; }

    /// @return what is to be signed: the DER of the signed attributes, with the tag of a SET
    /// @throws as CAttributes::encode, for an empty set too
    CBlob toBeSigned() const { return signedAttributes_.encode(); }

    /// @return the DER of the SignerInfo
    /// @throws ATL::CAtlException with CRYPT_E_ASN1_INTERNAL for an issuer that is no Name, an
    ///         algorithm that is none and where the coder refuses a part, with E_INVALIDARG for an
    ///         attribute whose identifier is none, with CRYPT_E_ASN1_MEMORY when memory is out
    CBlob encode() const;

private:
    CBlob issuer_;
    CBigInteger serialNumber_;
    CAlgorithmIdentifier digestAlgorithm_;
    CAlgorithmIdentifier signatureAlgorithm_;
    CAttributes signedAttributes_;
    CAttributes unsignedAttributes_;
    CBlob signature_;
};

/// A SignedData (RFC 5652, 5.1) with its ContentInfo around it.
class BREVANTIS_ASN1_API CSignedDataBuilder {
public:
    /// A message that holds its content.
    /// @param contentType dotted text; 1.2.840.113549.1.7.1 for any octets
    /// @param content the octets that were signed; of another type than that its DER
    CSignedDataBuilder(const char* contentType, const CBlob& content);
    /// A message whose content is elsewhere (a detached signature).
    /// @param contentType as above
    explicit CSignedDataBuilder(const char* contentType);

    /// The certificates that go along, each its DER, to be changed. What is signed in them goes out
    /// as it came.
    CBlobList& certificates() { return certificates_; }
    /// The certificates that go along.
    const CBlobList& certificates() const { return certificates_; }

    /// Adds a signer. The digest algorithms of the message are those of its signers.
    /// @throws as CSignerInfoBuilder::encode; the message stays as it was
    void add(const CSignerInfoBuilder& signer);

    /// Version 1 for plain octets and 3 for any other content. A content is written as it was
    /// given.
    /// @return the DER of the ContentInfo
    /// @throws ATL::CAtlException with E_INVALIDARG for a type that is no identifier, with
    ///         CRYPT_E_ASN1_INTERNAL for a certificate that is none, with
    ///         CRYPT_E_ASN1_MEMORY when memory is out
    CBlob encode() const;

private:
    friend struct SignedDataRecord;

    CStringProxy contentType_;
    CBlob content_;
    bool isDetached_ = false;
    CBlobList certificates_;
    CBlobList signers_; // each its DER
    std::list<CAlgorithmIdentifier> digestAlgorithms_;
};

} // namespace Brevantis::ASN1

#endif
