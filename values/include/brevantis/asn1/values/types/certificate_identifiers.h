#ifndef BREVANTIS_ASN1_VALUES_TYPES_CERTIFICATE_IDENTIFIERS_H
#define BREVANTIS_ASN1_VALUES_TYPES_CERTIFICATE_IDENTIFIERS_H

#include <list>

#include <brevantis/asn1/export.h>
#include <brevantis/asn1/values/types/algorithm_identifier.h>
#include <brevantis/asn1/values/types/issuer_serial.h>
#include <brevantis/asn1/values/types/other_hash.h>
#include <brevantis/asn1/values/util/owned_copy.h>
#include <brevantis/support/blob.h>

/// @file
/// Certificates, told by a hash of their DER and, optionally, by issuer and serial number.

namespace Brevantis::ASN1 {

/// What all of them have: a hash, and the optional issuer and serial number. A moved-from object
/// is as new.
/// @tparam Hash the part that each type has in a form of its own
template <class Hash>
class BREVANTIS_ASN1_API CertificateIdentifier {
public:
    /// @return null when absent; otherwise valid until it changes or the object goes
    const CIssuerSerial* get_issuerSerial() const { return content_.read().issuerSerial.get(); }
    /// @param issuerSerial copied; null for absent
    void put_issuerSerial(const CIssuerSerial* issuerSerial) {
        content_.edit().issuerSerial.put(issuerSerial);
    }

protected:
    /// No hash, no issuer and no serial number.
    CertificateIdentifier() = default;

    /// The hash, for reading: as new until one is set.
    const Hash& hash() const { return content_.read().hash; }
    /// The hash, for changing.
    Hash& hash() { return content_.edit().hash; }
    /// Whether both have equal issuers and serial numbers, or none.
    bool sameIssuerSerial(const CertificateIdentifier& other) const {
        return content_.read().issuerSerial == other.content_.read().issuerSerial;
    }

private:
    struct Content {
        Hash hash;
        OwnedCopy<CIssuerSerial> issuerSerial;
    };

    OwnedCopy<Content> content_;
};

/// ESSCertID (RFC 2634, 5.4.1).
class BREVANTIS_ASN1_API CESSCertID : public CertificateIdentifier<CBlob> {
public:
    /// An empty hash.
    CESSCertID() = default;
    /// @param certHash as for `put_certHash`
    explicit CESSCertID(const CBlob& certHash);

    /// @return the SHA-1 hash of the certificate
    const CBlob& get_certHash() const { return hash(); }
    /// @param certHash the SHA-1 hash of the certificate's DER, 20 octets; their count is not
    ///        checked
    void put_certHash(const CBlob& certHash) { hash() = certHash; }

    /// @return the DER
    /// @throws as CIssuerSerial::encode
    CBlob encode() const;
    /// @throws ATL::CAtlException with CRYPT_E_ASN1_INTERNAL when @p blob is none, with
    ///         E_INVALIDARG for a name of a kind that CGeneralName does not carry, with
    ///         CRYPT_E_ASN1_MEMORY when memory is out; the object stays as it was
    void decode(const CBlob& blob);

    friend BREVANTIS_ASN1_API bool operator==(const CESSCertID& a, const CESSCertID& b);
};

/// A hash and its algorithm, SHA-256 unless another is told.
struct HashWithAlgorithm {
    /// SHA-256, id-sha256 of RFC 5754.
    static constexpr const char* defaultAlgorithm = "2.16.840.1.101.3.4.2.1";

    CAlgorithmIdentifier algorithm{defaultAlgorithm}; ///< what made the hash
    CBlob value;                                      ///< the octets of the hash
};

/// ESSCertIDv2 (RFC 5035, 4).
class BREVANTIS_ASN1_API CESSCertIDv2 : public CertificateIdentifier<HashWithAlgorithm> {
public:
    /// An empty hash by SHA-256.
    CESSCertIDv2() = default;
    /// A hash by SHA-256.
    explicit CESSCertIDv2(const CBlob& certHash);
    /// A hash by any algorithm.
    CESSCertIDv2(const CBlob& certHash, const CAlgorithmIdentifier& hashAlgorithm);

    /// The algorithm of the hash; valid until it is set or the object goes.
    const CAlgorithmIdentifier& get_hashAlgorithm() const { return hash().algorithm; }
    /// The hash of the certificate's DER by that algorithm; valid likewise.
    const CBlob& get_certHash() const { return hash().value; }
    /// @warning Of SHA-256, the default, parameters are not encoded.
    void put_hashAlgorithm(const CAlgorithmIdentifier& algorithm) { hash().algorithm = algorithm; }
    /// @param certHash the hash of the certificate's DER; its size is not checked
    void put_certHash(const CBlob& certHash) { hash().value = certHash; }

    /// @return the DER
    /// @throws as CIssuerSerial::encode and CAlgorithmIdentifier::encode
    CBlob encode() const;
    /// @throws as CESSCertID::decode
    void decode(const CBlob& blob);

    friend BREVANTIS_ASN1_API bool operator==(const CESSCertIDv2& a, const CESSCertIDv2& b);
};

/// OtherCertID (RFC 5126, 5.7.3.3).
class BREVANTIS_ASN1_API COtherCertID : public CertificateIdentifier<COtherHash> {
public:
    /// No hash.
    COtherCertID() = default;
    /// A `sha1Hash`.
    explicit COtherCertID(const CBlob& hash);
    /// An `otherHash`.
    COtherCertID(const CBlob& hash, const CAlgorithmIdentifier& algorithm);

    /// The hash and, unless it is by SHA-1, its algorithm; valid until it is set or the object
    /// goes.
    const COtherHash& get_otherCertHash() const { return hash(); }
    /// @param otherCertHash copied
    void put_otherCertHash(const COtherHash& otherCertHash) { hash() = otherCertHash; }

    /// As `==`, but the algorithm of an `otherHash` does not count.
    bool compare_noHashParam(const COtherCertID& other) const;

    /// @return the DER
    /// @throws as CIssuerSerial::encode and COtherHash::encode
    CBlob encode() const;
    /// @throws as CESSCertID::decode
    void decode(const CBlob& blob);

    friend BREVANTIS_ASN1_API bool operator==(const COtherCertID& a, const COtherCertID& b);
};

/// Compare algorithm, hash, issuer and serial number.
/// @warning Of issuers the texts are compared by their first characters alone.
BREVANTIS_ASN1_API bool operator==(const CESSCertID& a, const CESSCertID& b);
BREVANTIS_ASN1_API bool operator==(const CESSCertIDv2& a, const CESSCertIDv2& b);
BREVANTIS_ASN1_API bool operator==(const COtherCertID& a, const COtherCertID& b);
BREVANTIS_ASN1_API bool operator!=(const CESSCertID& a, const CESSCertID& b);
BREVANTIS_ASN1_API bool operator!=(const CESSCertIDv2& a, const CESSCertIDv2& b);
BREVANTIS_ASN1_API bool operator!=(const COtherCertID& a, const COtherCertID& b);

/// A list of certificates by SHA-1 hashes.
class BREVANTIS_ASN1_API CESSCertIDList : public std::list<CESSCertID> {
public:
    using std::list<CESSCertID>::list;
};

/// A list of certificates by hashes of any algorithm.
class BREVANTIS_ASN1_API CESSCertIDv2List : public std::list<CESSCertIDv2> {
public:
    using std::list<CESSCertIDv2>::list;
};

/// A list of certificates by SHA-1 or other hashes.
class BREVANTIS_ASN1_API COtherCertIDList : public std::list<COtherCertID> {
public:
    using std::list<COtherCertID>::list;
};

} // namespace Brevantis::ASN1

#endif
