#ifndef BREVANTIS_ASN1_VALUES_EXTENSION_CERTIFICATE_EXTENSIONS_H
#define BREVANTIS_ASN1_VALUES_EXTENSION_CERTIFICATE_EXTENSIONS_H

#include <list>

#include <brevantis/asn1/export.h>
#include <brevantis/support/blob.h>
#include <brevantis/support/text.h>

/// @file
/// What a certificate may be used for (RFC 5280, 4.2.1.3, 4.2.1.4, 4.2.1.12). `encode` gives what a
/// CExtension takes: `CExtension("2.5.29.15", usage.encode(), true)`.
///
/// Where nothing else is said `encode` and `decode` fail with ATL::CAtlException: with
/// CRYPT_E_ASN1_INTERNAL for what the coder refuses, with E_INVALIDARG for a text that is no
/// identifier, with CRYPT_E_ASN1_MEMORY when memory is out. What fails leaves the object as it was.

namespace Brevantis::ASN1 {

/// KeyUsage, 2.5.29.15: what the key is for.
class BREVANTIS_ASN1_API CKeyUsage {
public:
    /// Masks of the published bits.
    enum Flag : unsigned int {
        digitalSignature = 1u << 0, ///< signatures other than the two below
        nonRepudiation = 1u << 1,   ///< signatures that bind the signer
        keyEncipherment = 1u << 2,  ///< encrypts keys
        dataEncipherment = 1u << 3, ///< encrypts data
        keyAgreement = 1u << 4,     ///< agrees on keys
        keyCertSign = 1u << 5,      ///< signs certificates
        cRLSign = 1u << 6,          ///< signs revocation lists
        encipherOnly = 1u << 7,     ///< of a key that agrees: to encrypt alone
        decipherOnly = 1u << 8      ///< of a key that agrees: to decrypt alone
    };

    /// @param flags ORed together
    explicit CKeyUsage(unsigned int flags = 0) : flags_(flags) {}

    /// @return all flags
    unsigned int get_value() const { return flags_; }
    /// @param flags all of them
    void put_value(unsigned int flags) { flags_ = flags; }
    /// @return whether any of the flags is set
    bool get_flag(Flag flags) const { return (flags_ & flags) != 0; }
    /// @param flags one, or several ORed together
    void add_flag(Flag flags) { flags_ |= flags; }
    /// @param flags one, or several ORed together
    void remove_flag(Flag flags) { flags_ &= ~static_cast<unsigned int>(flags); }

    /// Flags that are not published are not written.
    /// @return the DER
    CBlob encode() const;
    /// @param blob a BIT STRING of at most nine bits
    void decode(const CBlob& blob);

private:
    unsigned int flags_;
};

/// Compare the flags.
inline bool operator==(const CKeyUsage& a, const CKeyUsage& b) {
    return a.get_value() == b.get_value();
}
/// Compare the flags.
inline bool operator!=(const CKeyUsage& a, const CKeyUsage& b) {
    return !(a == b);
}

/// ExtKeyUsageSyntax, 2.5.29.37: purposes of the key, each an identifier as dotted text.
class BREVANTIS_ASN1_API CExtKeyUsage : public std::list<CStringProxy> {
public:
    using std::list<CStringProxy>::list;

    /// @param purpose dotted text, compared as text
    /// @return whether it is among them
    bool has(const char* purpose) const;

    /// @return the DER; an empty list is refused
    CBlob encode() const;
    /// @param blob an ExtKeyUsageSyntax
    void decode(const CBlob& blob);
};

/// A remark on a policy: the identifier of its kind, as dotted text, and its DER.
struct BREVANTIS_ASN1_API CPolicyQualifier {
    CStringProxy oid; ///< 1.3.6.1.5.5.7.2.1 for where the practices are told, .2 for a notice
    CBlob value;      ///< the DER of the qualifier
};

/// PolicyInformation with its qualifiers, which CPolicyInformation does not carry.
struct BREVANTIS_ASN1_API CCertificatePolicy {
    CStringProxy policyIdentifier;          ///< dotted text
    std::list<CPolicyQualifier> qualifiers; ///< in the order of the message

    /// Adds the place where the practices of the issuer are told.
    /// @param uri ASCII; null stands for the empty text
    void addPracticeStatement(const char* uri);
};

/// CertificatePoliciesSyntax, 2.5.29.32.
class BREVANTIS_ASN1_API CCertificatePolicies : public std::list<CCertificatePolicy> {
public:
    using std::list<CCertificatePolicy>::list;

    /// @return the DER; an empty list is refused
    CBlob encode() const;
    /// @param blob a CertificatePoliciesSyntax
    void decode(const CBlob& blob);
};

} // namespace Brevantis::ASN1

#endif
