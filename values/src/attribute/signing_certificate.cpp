#include <brevantis/asn1/values/attribute/signing_certificate.h>

#include <brevantis/asn1/asn1data/oids.h>
#include <brevantis/asn1/values/attribute/signing_certificate_traits.h>
#include <brevantis/asn1/values/util/object_identifier_text.h>

namespace Brevantis::ASN1 {

namespace {

const CStringProxy signingCertificateId = toOID(asn1data::id_aa_signingCertificate);
const CStringProxy otherSigningCertificateId = toOID(asn1data::id_aa_ets_otherSigCert);
const CStringProxy signingCertificateV2Id = toOID(asn1data::id_aa_signingCertificateV2);

template <class Attribute>
struct TraitsOf;
template <>
struct TraitsOf<CAttrSigningCertificate> {
    using Type = ASN1T_SigningCertificate_traits;
};
template <>
struct TraitsOf<CAttrSigningCertificateV2> {
    using Type = ASN1T_SigningCertificateV2_traits;
};
template <>
struct TraitsOf<CAttrOtherSigningCertificate> {
    using Type = ASN1T_OtherSigningCertificate_traits;
};

/// Exchanges two members. They have no such operation of their own.
template <class T>
void exchange(OptionalMember<T>& a, OptionalMember<T>& b) {
    T* const held = a.release();
    a.reset(b.release());
    b.reset(held);
}

} // namespace

template <class Attribute, class CertificateList>
SigningCertificateAttribute<Attribute, CertificateList>::SigningCertificateAttribute(
    const char* oid)
    : CAttrValue(oid), content_(std::make_unique<Content>()) {}

template <class Attribute, class CertificateList>
SigningCertificateAttribute<Attribute, CertificateList>::SigningCertificateAttribute(
    const char* oid, const CBlob& encoded)
    : CAttrValue(oid, encoded), content_(std::make_unique<Content>()) {}

template <class Attribute, class CertificateList>
void SigningCertificateAttribute<Attribute, CertificateList>::encode() {
    using Traits = typename TraitsOf<Attribute>::Type;
    value() = asn1Encode<Traits>(static_cast<const Attribute&>(*this));
}

template <class Attribute, class CertificateList>
void SigningCertificateAttribute<Attribute, CertificateList>::decode() {
    using Traits = typename TraitsOf<Attribute>::Type;
    asn1Decode<Traits>(get_value(), static_cast<Attribute&>(*this));
}

template <class Attribute, class CertificateList>
void SigningCertificateAttribute<Attribute, CertificateList>::put_certs(
    const CertificateList& certs) {
    CertificateList other(certs);
    content_->certs.swap(other);
    try {
        encode();
    } catch (...) {
        content_->certs.swap(other);
        throw;
    }
}

template <class Attribute, class CertificateList>
void SigningCertificateAttribute<Attribute, CertificateList>::storePolicies(
    const CPolicyInformationList* policies) {
    // Kept: the value is not encoded anew, as encodeWithPolicies does for one of the three.
    // Programs depend on it.
    copy_to_member(content_->policies, policies);
}

template <class Attribute, class CertificateList>
void SigningCertificateAttribute<Attribute, CertificateList>::encodeWithPolicies(
    const CPolicyInformationList* policies) {
    OptionalMember<CPolicyInformationList> other;
    copy_to_member(other, policies);
    exchange(content_->policies, other);
    try {
        encode();
    } catch (...) {
        exchange(content_->policies, other);
        throw;
    }
}

template class SigningCertificateAttribute<CAttrSigningCertificate, CESSCertIDList>;
template class SigningCertificateAttribute<CAttrSigningCertificateV2, CESSCertIDv2List>;
template class SigningCertificateAttribute<CAttrOtherSigningCertificate, COtherCertIDList>;

CAttrSigningCertificate::CAttrSigningCertificate()
    : SigningCertificateAttribute(signingCertificateId.c_str()) {}

CAttrSigningCertificate::CAttrSigningCertificate(const CESSCertIDList& certs)
    : CAttrSigningCertificate() {
    put_certs(certs);
}

CAttrSigningCertificate::CAttrSigningCertificate(const CBlob& encoded)
    : SigningCertificateAttribute(signingCertificateId.c_str(), encoded) {
    decode();
}

CAttrSigningCertificateV2::CAttrSigningCertificateV2()
    : SigningCertificateAttribute(signingCertificateV2Id.c_str()) {}

CAttrSigningCertificateV2::CAttrSigningCertificateV2(const CESSCertIDv2List& certs)
    : CAttrSigningCertificateV2() {
    put_certs(certs);
}

CAttrSigningCertificateV2::CAttrSigningCertificateV2(const CBlob& encoded)
    : SigningCertificateAttribute(signingCertificateV2Id.c_str(), encoded) {
    decode();
}

CAttrOtherSigningCertificate::CAttrOtherSigningCertificate()
    : SigningCertificateAttribute(otherSigningCertificateId.c_str()) {}

CAttrOtherSigningCertificate::CAttrOtherSigningCertificate(const COtherCertIDList& certs)
    : CAttrOtherSigningCertificate() {
    put_certs(certs);
}

CAttrOtherSigningCertificate::CAttrOtherSigningCertificate(const CBlob& encoded)
    : SigningCertificateAttribute(otherSigningCertificateId.c_str(), encoded) {
    decode();
}

} // namespace Brevantis::ASN1
