// Both sides of an exchange of CMP (RFC 4210): somebody asks with a PKCS #10 request for a
// certificate, and the authority answers with the one that it has made. Each message is protected
// by a signature over header and body.

#include <cstdio>

#include <brevantis/asn1/asn1data/list_records.h>

#include "signing.h"

using namespace Brevantis;
using namespace Brevantis::ASN1;
using namespace asn1data;

namespace {

using Message = Decoded<ASN1C_PKIMessage, ASN1T_PKIMessage>;
using CertificateMessage = Decoded<ASN1C_Certificate, ASN1T_Certificate>;

/// What is signed of a message. Header and body are lent to the record, and taken back.
CBlob protectedPart(ASN1CTXT* heap, ASN1T_PKIMessage& message) {
    ASN1T_ProtectedPart part;
    asn1Copy_PKIHeader(heap, &message.header, &part.header);
    asn1Copy_PKIBody(heap, &message.body, &part.body);
    return encoded<ASN1C_ProtectedPart>(part);
}

/// Puts on the header that both sides put on, signs, and writes the message.
CBlob finish(ASN1CTXT* heap, ASN1T_PKIMessage& message, const CName& from, const CName& to,
             const CBlob& transaction, const Key& key) {
    ASN1T_PKIHeader& header = message.header;
    header.pvno = PKIHeader_pvno_cmp2000;
    ASN1T_GeneralName_traits::set(heap, header.sender, CGeneralName::directoryName(from));
    ASN1T_GeneralName_traits::set(heap, header.recipient, CGeneralName::directoryName(to));
    header.m.protectionAlgPresent = 1;
    ASN1T_AlgorithmIdentifier_traits::set(heap, header.protectionAlg, key.algorithm());
    header.m.transactionIDPresent = 1;
    header.transactionID = octetString(transaction);
    const CBlob signature = key.sign(protectedPart(heap, message));
    message.m.protectionPresent = 1;
    message.protection = bitString(signature);
    return encoded<ASN1C_PKIMessage>(message);
}

/// @throws std::runtime_error for a message that its sender did not sign
void requireProtection(Message& message, const CBlob& publicKeyInfo) {
    if (message.record.m.protectionPresent == 0 ||
        !isSignature(octetsOf(message.record.protection),
                     protectedPart(message.context(), message.record), publicKeyInfo)) {
        throw std::runtime_error("a message is not protected by its sender");
    }
}

CBlob ask(const CBlob& request, const Key& key, const CName& self, const CName& authority) {
    Decoded<ASN1C_CertificationRequest, ASN1T_CertificationRequest> pkcs10(request);
    ASN1T_PKIMessage message;
    message.body.t = T_PKIBody_p10cr;
    message.body.u.p10cr = &pkcs10.record;
    CBlob transaction;
    transaction.readFromHexString("00112233445566778899aabbccddeeff"); // random octets, in earnest
    return finish(pkcs10.context(), message, self, authority, transaction, key);
}

CBlob answer(const CBlob& question, const CBlob& issued, const Key& key, const CName& authority) {
    Message asked(question);
    if (asked.record.body.t != T_PKIBody_p10cr) {
        throw std::runtime_error("only requests of PKCS #10 are answered here");
    }
    auto& info = asked.record.body.u.p10cr->certificationRequestInfo;
    requireProtection(
        asked, encoded<ASN1C_CertificationRequest_certificationRequestInfo_subjectPublicKeyInfo>(
                   info.subjectPublicKeyInfo));
    CName subject;
    ASN1T_Name_traits::get(info.subject, subject);
    std::printf("authority: asked by %s\n", toRfc4514(subject).c_str());

    CertificateMessage certificate(issued);
    auto& body = newRecord<ASN1T_CertRepMessage>(asked.context());
    auto& response = newElement(asked.context(), body.response);
    response.certReqId = -1; // RFC 9483, 4.1.4: of PKCS #10 there is no number
    response.status.status = PKIStatus_granted;
    response.m.certifiedKeyPairPresent = 1;
    response.certifiedKeyPair.certOrEncCert.t = T_CertOrEncCert_certificate;
    response.certifiedKeyPair.certOrEncCert.u.certificate = &certificate.record;
    ASN1T_PKIMessage message;
    message.body.t = T_PKIBody_cp;
    message.body.u.cp = &body;
    const ASN1TDynOctStr& transaction = asked.record.header.transactionID;
    return finish(asked.context(), message, authority, subject,
                  CBlob(transaction.data, transaction.numocts), key);
}

int exchange(int argc, char** argv) {
    if (argc != 7) {
        std::fputs("usage: cmp_exchange REQUEST KEY CA-CERTIFICATE CA-KEY CERTIFICATE OUT\n"
                   "Writes the answer to the file OUT.\n",
                   stderr);
        return 2;
    }
    const Key key(argv[2]);
    CertificateMessage authority(readMessage(argv[3]));
    const Key authorityKey(argv[4]);
    const CName self(L"CN=Somebody");
    CName name;
    ASN1T_Name_traits::get(authority.record.tbsCertificate.subject, name);

    const CBlob question = ask(readMessage(argv[1]), key, self, name);
    const CBlob answered = answer(question, readMessage(argv[5]), authorityKey, name);
    writeOctets(answered, argv[6]);

    Message read(answered);
    if (read.record.body.t != T_PKIBody_cp) {
        throw std::runtime_error("the answer is of another kind");
    }
    requireProtection(read, encoded<ASN1C_SubjectPublicKeyInfo>(
                                authority.record.tbsCertificate.subjectPublicKeyInfo));
    for (auto& each : recordsOf(read.record.body.u.cp->response)) {
        if (each.status.status != PKIStatus_granted || each.m.certifiedKeyPairPresent == 0 ||
            each.certifiedKeyPair.certOrEncCert.t != T_CertOrEncCert_certificate) {
            throw std::runtime_error("no certificate was granted");
        }
        const auto& issued = *each.certifiedKeyPair.certOrEncCert.u.certificate;
        std::printf("client: certificate %s\n", issued.tbsCertificate.serialNumber);
    }
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    return runExample("cmp_exchange", exchange, argc, argv);
}
