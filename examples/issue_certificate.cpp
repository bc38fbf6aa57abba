// Makes a certificate of a PKCS #10 request: the certification authority's side of RFC 2986 and RFC
// 5280. The request says whose key it is; what it may be used for is the authority's to say.

#include <cstdio>
#include <ctime>

#include "signing.h"

using namespace Brevantis;
using namespace Brevantis::ASN1;
using namespace asn1data;

namespace {

/// Tells by which key a certificate is signed: what the authority's own certificate calls it.
void addAuthorityKey(const ASN1T_TBSCertificate& authority, CExtensions& extensions) {
    CExtensions own;
    ASN1T_Extensions_traits::get(authority.extensions, own);
    const auto found = own.find(toOID(id_ce_subjectKeyIdentifier).c_str());
    if (found != own.end()) {
        // An OCTET STRING there, and here the same octets with the tag [0].
        const CBlob& named = found->get_value();
        Decoded<ASN1C_SubjectKeyIdentifier, ASN1TDynOctStr> key(named);
        ASN1T_AuthorityKeyIdentifier identifier;
        identifier.m.keyIdentifierPresent = 1;
        identifier.keyIdentifier = key.record;
        extensions.insert(CExtension(toOID(id_ce_authorityKeyIdentifier).c_str(),
                                     encoded<ASN1C_AuthorityKeyIdentifier>(identifier)));
    }
}

CExtensions extensionsOf(const wchar_t* host, const CBlob& publicKey) {
    CExtKeyUsage purposes;
    purposes.push_back("1.3.6.1.5.5.7.3.1"); // servers
    CCertificatePolicies policies;
    CCertificatePolicy& policy = policies.emplace_back();
    policy.policyIdentifier = "2.23.140.1.2.1";
    policy.addPracticeStatement("https://ca.example/practices");

    CExtensions extensions;
    extensions.insert(CExtension(toOID(id_ce_keyUsage).c_str(),
                                 CKeyUsage(CKeyUsage::digitalSignature).encode(), true));
    extensions.insert(CExtension(toOID(id_ce_extKeyUsage).c_str(), purposes.encode()));
    extensions.insert(CExtension(toOID(id_ce_certificatePolicies).c_str(), policies.encode()));
    const CBlob hash = sha1(publicKey);
    ASN1TDynOctStr identifier = octetString(hash);
    extensions.insert(CExtension(toOID(id_ce_subjectKeyIdentifier).c_str(),
                                 encoded<ASN1C_SubjectKeyIdentifier>(identifier)));
    extensions.insert(CExtension(toOID(id_ce_subjectAltName).c_str(),
                                 CGeneralNames{CGeneralName::dNSName(host)}.encode()));
    return extensions;
}

int issue(int argc, char** argv) {
    if (argc != 7) {
        std::fputs("usage: issue_certificate REQUEST CA-CERTIFICATE CA-KEY SERIAL HOST OUT\n",
                   stderr);
        return 2;
    }
    Decoded<ASN1C_CertificationRequest, ASN1T_CertificationRequest> request(readMessage(argv[1]));
    Decoded<ASN1C_Certificate, ASN1T_Certificate> authority(readMessage(argv[2]));
    const Key key(argv[3]);
    auto& asked = request.record.certificationRequestInfo;

    // Whoever asks has the private key.
    const CBlob publicKey =
        encoded<ASN1C_CertificationRequest_certificationRequestInfo_subjectPublicKeyInfo>(
            asked.subjectPublicKeyInfo);
    if (!isSignature(octetsOf(request.record.signature),
                     encoded<ASN1C_CertificationRequest_certificationRequestInfo>(asked),
                     publicKey)) {
        throw std::runtime_error("the request is not signed with its key");
    }

    // Values go to the heap of a context, and the record points there.
    ASN1BERDecodeBuffer memory;
    ASN1CTXT* const heap = memory.getCtxtPtr();
    ASN1T_Certificate certificate;
    ASN1T_TBSCertificate& content = certificate.tbsCertificate;
    content.m.versionPresent = 1;
    content.version = Version_v3;
    content.serialNumber = argv[4];
    ASN1T_AlgorithmIdentifier_traits::set(heap, content.signature, key.algorithm());
    asn1Copy_Name(heap, &authority.record.tbsCertificate.subject, &content.issuer);
    const std::time_t now = std::time(nullptr);
    ASN1T_Time_traits::set(heap, content.validity.notBefore, CTimeChoice(CDateTime(now, 0)));
    ASN1T_Time_traits::set(heap, content.validity.notAfter,
                           CTimeChoice(CDateTime(now + 90 * 86400, 0)));
    asn1Copy_Name(heap, &asked.subject, &content.subject);
    Decoded<ASN1C_SubjectPublicKeyInfo, ASN1T_SubjectPublicKeyInfo> info(publicKey);
    asn1Copy_SubjectPublicKeyInfo(heap, &info.record, &content.subjectPublicKeyInfo);
    CExtensions extensions =
        extensionsOf(towstring(argv[5]).c_str(), octetsOf(info.record.subjectPublicKey));
    addAuthorityKey(authority.record.tbsCertificate, extensions);
    content.m.extensionsPresent = 1;
    ASN1T_Extensions_traits::set(heap, content.extensions, extensions);

    const CBlob signature = key.sign(encoded<ASN1C_TBSCertificate>(content));
    ASN1T_AlgorithmIdentifier_traits::set(heap, certificate.signatureAlgorithm, key.algorithm());
    certificate.signature = bitString(signature);
    writeOctets(encoded<ASN1C_Certificate>(certificate), argv[6]);

    CName subject;
    ASN1T_Name_traits::get(content.subject, subject);
    std::printf("%s is certified, number %s\n", toRfc4514(subject).c_str(), content.serialNumber);
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    return runExample("issue_certificate", issue, argc, argv);
}
