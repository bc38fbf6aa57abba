#ifndef BREVANTIS_ASN1_VALUES_CMS_SIGNER_INFO_H
#define BREVANTIS_ASN1_VALUES_CMS_SIGNER_INFO_H

#include <brevantis/asn1/export.h>
#include <brevantis/asn1/values/types/algorithm_identifier.h>
#include <brevantis/asn1/values/types/big_integer.h>
#include <brevantis/asn1/values/util/whole_assignment.h>
#include <brevantis/support/blob.h>

/// @file
/// One signer of a cryptographic message (RFC 5652, 5.3).

namespace Brevantis::ASN1 {

/// What identifies a signer and its signature in SignerInfo of RFC 5652, 5.3. Signed and unsigned
/// attributes are not carried, which is why the object is read out of a record by
/// ASN1T_SignerInfo_get and cannot be encoded.
class BREVANTIS_ASN1_API CSignerInfo {
public:
    /// Version 0, everything else empty.
    CSignerInfo() = default;
    CSignerInfo(const CSignerInfo&) = default;
    CSignerInfo(CSignerInfo&&) noexcept = default;
    CSignerInfo& operator=(const CSignerInfo& other) { return assignWhole(*this, other); }
    CSignerInfo& operator=(CSignerInfo&&) noexcept = default;
    ~CSignerInfo() = default;

    /// 1 where the signer is told by issuer and serial number, 3 where by a key identifier.
    unsigned int get_version() const { return version_; }
    /// The encoded Name of the issuer of the signer's certificate.
    const CBlob& get_issuer() const { return issuer_; }
    /// The serial number of that certificate.
    const CBigInteger& get_serialNumber() const { return serialNumber_; }
    /// What made the signature.
    const CAlgorithmIdentifier& get_signatureAlgorithm() const { return signatureAlgorithm_; }
    /// What made the digest that is signed.
    const CAlgorithmIdentifier& get_digestAlgorithm() const { return digestAlgorithm_; }
    /// The octets of the signature.
    const CBlob& get_signature() const { return signature_; }

    /// The setters copy. What they are given is not looked at: the object is not encoded.
    void put_version(unsigned int version) { version_ = version; }
    void put_issuer(const CBlob& issuer) { issuer_ = issuer; }
    void put_serialNumber(const CBigInteger& serialNumber) { serialNumber_ = serialNumber; }
    void put_signatureAlgorithm(const CAlgorithmIdentifier& algorithm) {
        signatureAlgorithm_ = algorithm;
    }
    void put_digestAlgorithm(const CAlgorithmIdentifier& algorithm) {
        digestAlgorithm_ = algorithm;
    }
    void put_signature(const CBlob& signature) { signature_ = signature; }

private:
    unsigned int version_ = 0;
    CBlob issuer_;
    CBigInteger serialNumber_;
    CAlgorithmIdentifier signatureAlgorithm_;
    CAlgorithmIdentifier digestAlgorithm_;
    CBlob signature_;
};

/// Equal in every field.
BREVANTIS_ASN1_API bool operator==(const CSignerInfo& a, const CSignerInfo& b);
BREVANTIS_ASN1_API bool operator!=(const CSignerInfo& a, const CSignerInfo& b);

} // namespace Brevantis::ASN1

#endif
