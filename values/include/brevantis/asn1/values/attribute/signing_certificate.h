#ifndef BREVANTIS_ASN1_VALUES_ATTRIBUTE_SIGNING_CERTIFICATE_H
#define BREVANTIS_ASN1_VALUES_ATTRIBUTE_SIGNING_CERTIFICATE_H

#include <memory>

#include <brevantis/asn1/export.h>
#include <brevantis/asn1/values/types/attr_value.h>
#include <brevantis/asn1/values/types/certificate_identifiers.h>
#include <brevantis/asn1/values/types/policy_information.h>
#include <brevantis/asn1/values/util/optional_member.h>
#include <brevantis/support/blob.h>

/// @file
/// Values of the attributes that tie a signature to the signer's certificate.
///
/// Where nothing else is said an operation that throws leaves the object as it was.

namespace Brevantis::ASN1 {

/// What the three have: identifiers of certificates, the signer's own first, and the policies, if
/// any, that the certificates are meant to be used under.
/// @tparam Attribute the class that derives from this one
/// @tparam CertificateList the list of its kind of identifiers
template <class Attribute, class CertificateList>
class BREVANTIS_ASN1_API SigningCertificateAttribute : public CAttrValue {
public:
    SigningCertificateAttribute(const SigningCertificateAttribute&) = delete;
    SigningCertificateAttribute& operator=(const SigningCertificateAttribute&) = delete;

    /// @return identifiers of certificates, the signer's own first; valid until they change or the
    ///         object goes
    const CertificateList& get_certs() const { return content_->certs; }
    /// @return null when absent; otherwise valid until they change or the object goes
    const CPolicyInformationList* get_policies() const { return content_->policies.get(); }
    /// Also calls `encode`.
    /// @throws as `encode`
    void put_certs(const CertificateList& certs);

    /// Replaces the value by the DER of the certificates and policies. An empty list of policies is
    /// encoded as none.
    /// @throws ATL::CAtlException with E_INVALIDARG for a text that is no identifier, with
    ///         CRYPT_E_ASN1_INTERNAL when the coder refuses a part, with CRYPT_E_ASN1_MEMORY when
    ///         memory is out
    void encode();
    /// Reads the certificates and policies from the value and stores them by `put_certs` and
    /// `put_policies`. Octets behind them in the value are not looked at.
    /// @warning `put_certs` encodes, while the object still has the policies of before. Where
    ///          `put_policies` does not encode, the value is left with these instead of its own.
    /// @throws ATL::CAtlException with CRYPT_E_ASN1_INTERNAL when the value does not decode, with
    ///         E_INVALIDARG for a name of a kind that CGeneralName does not carry, with
    ///         CRYPT_E_ASN1_MEMORY when memory is out; std::bad_alloc may leave the new
    ///         certificates with the old policies
    void decode();

protected:
    /// No certificates, no policies, no value.
    explicit SigningCertificateAttribute(const char* oid);
    /// A value that is decoded at once.
    /// @throws as `decode`
    SigningCertificateAttribute(const char* oid, const CBlob& encoded);
    ~SigningCertificateAttribute() = default;

    /// Does not encode.
    void storePolicies(const CPolicyInformationList* policies);
    /// As storePolicies and `encode`.
    void encodeWithPolicies(const CPolicyInformationList* policies);

private:
    struct Content {
        CertificateList certs;
        OptionalMember<CPolicyInformationList> policies;
    };

    std::unique_ptr<Content> content_;
};

class CAttrSigningCertificate;
class CAttrSigningCertificateV2;
class CAttrOtherSigningCertificate;
extern template class SigningCertificateAttribute<CAttrSigningCertificate, CESSCertIDList>;
extern template class SigningCertificateAttribute<CAttrSigningCertificateV2, CESSCertIDv2List>;
extern template class SigningCertificateAttribute<CAttrOtherSigningCertificate, COtherCertIDList>;

/// SigningCertificate (RFC 2634, 5.4), 1.2.840.113549.1.9.16.2.12: certificates told by their SHA-1
/// hash.
class BREVANTIS_ASN1_API CAttrSigningCertificate
    : public SigningCertificateAttribute<CAttrSigningCertificate, CESSCertIDList> {
public:
    /// No certificates, no policies.
    /// @warning The value is empty until `put_certs` or `encode` is called.
    CAttrSigningCertificate();
    /// @throws as `encode`
    explicit CAttrSigningCertificate(const CESSCertIDList& certs);
    /// @param encoded the DER of a SigningCertificate
    /// @throws as `decode`
    /// @warning The value then lacks the policies of @p encoded, though `get_policies` has them.
    ///          Call `encode` to have them in both.
    explicit CAttrSigningCertificate(const CBlob& encoded);

    /// @param policies copied; null for none
    /// @warning The value does not show them until `encode` is called.
    void put_policies(const CPolicyInformationList* policies) { storePolicies(policies); }
};

/// SigningCertificateV2 (RFC 5035, 3), 1.2.840.113549.1.9.16.2.47: certificates told by a hash of
/// any algorithm.
class BREVANTIS_ASN1_API CAttrSigningCertificateV2
    : public SigningCertificateAttribute<CAttrSigningCertificateV2, CESSCertIDv2List> {
public:
    /// No certificates, no policies.
    /// @warning The value is empty until `put_certs` or `encode` is called.
    CAttrSigningCertificateV2();
    /// @throws as `encode`
    explicit CAttrSigningCertificateV2(const CESSCertIDv2List& certs);
    /// @param encoded the DER of a SigningCertificateV2
    /// @throws as `decode`
    /// @warning The value then lacks the policies of @p encoded, though `get_policies` has them.
    ///          Call `encode` to have them in both.
    explicit CAttrSigningCertificateV2(const CBlob& encoded);

    /// @param policies copied; null for none
    /// @warning The value does not show them until `encode` is called.
    void put_policies(const CPolicyInformationList* policies) { storePolicies(policies); }
};

/// OtherSigningCertificate (RFC 5126, 5.7.3.3), 1.2.840.113549.1.9.16.2.19: certificates told by a
/// SHA-1 or another hash.
class BREVANTIS_ASN1_API CAttrOtherSigningCertificate
    : public SigningCertificateAttribute<CAttrOtherSigningCertificate, COtherCertIDList> {
public:
    /// No certificates, no policies.
    /// @warning The value is empty until `put_certs`, `put_policies` or `encode` is called.
    CAttrOtherSigningCertificate();
    /// @throws as `encode`
    explicit CAttrOtherSigningCertificate(const COtherCertIDList& certs);
    /// @param encoded the DER of an OtherSigningCertificate
    /// @throws as `decode`
    explicit CAttrOtherSigningCertificate(const CBlob& encoded);

    /// Also calls `encode`, other than its namesakes.
    /// @param policies copied; null for none
    /// @throws as `encode`
    void put_policies(const CPolicyInformationList* policies) { encodeWithPolicies(policies); }
};

} // namespace Brevantis::ASN1

#endif
