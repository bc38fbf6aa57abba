// Answers a time-stamp request (RFC 3161).

#include <cstdio>
#include <ctime>

#include "signing.h"

using namespace Brevantis;
using namespace Brevantis::ASN1;
using namespace asn1data;

namespace {

int respond(int argc, char** argv) {
    if (argc != 5) {
        std::fputs("usage: timestamp_response REQUEST CERTIFICATE KEY OUT\n", stderr);
        return 2;
    }
    Decoded<ASN1C_TimeStampReq, ASN1T_TimeStampReq> request(readMessage(argv[1]));
    const CBlob certificate = readMessage(argv[2]);
    const Key key(argv[3]);

    ASN1BERDecodeBuffer memory;
    ASN1CTXT* const heap = memory.getCtxtPtr();
    ASN1T_TSTInfo content;
    content.version = "1";
    str2oid("1.3.6.1.4.1.99999.1", &content.policy);
    asn1Copy_MessageImprint(heap, &request.record.messageImprint, &content.messageImprint);
    content.serialNumber = "4711";
    const CStringProxy now = CDateTime(std::time(nullptr), 0).getGeneralizedTime();
    content.genTime = now.c_str();
    if (request.record.m.noncePresent != 0) {
        content.m.noncePresent = 1;
        content.nonce = request.record.nonce;
    }
    const CBlob stamped = encoded<ASN1C_TSTInfo>(content);

    // The signature covers attributes, among them the digest of what is signed, and tells whose it
    // is.
    CSignerInfoBuilder signer(certificate);
    signer.put_digestAlgorithm(sha256Algorithm());
    signer.put_signatureAlgorithm(key.algorithm());
    CAttrMessageDigest messageDigest;
    messageDigest.put_messageDigest(sha256(stamped));
    const CESSCertIDv2List signers{CESSCertIDv2(sha256(certificate))};
    const CStringProxy type = toOID(id_ct_TSTInfo);
    signer.signedAttributes().emplace_back(CAttrContentType(type.c_str()));
    signer.signedAttributes().emplace_back(messageDigest);
    signer.signedAttributes().emplace_back(CAttrSigningCertificateV2(signers));
    signer.put_signature(key.sign(signer.toBeSigned()));
    CSignedDataBuilder token(type.c_str(), stamped);
    if (request.record.certReq != 0) {
        token.certificates().push_back(certificate);
    }
    token.add(signer);

    // Granted, and the token, which is put between as it is: decoding would not leave it the same
    // octets if the certificate in it were not DER.
    Decoded<ASN1C_ContentInfo, ASN1T_ContentInfo> signedToken(token.encode());
    ASN1T_TimeStampResp response;
    response.status.status = PKIStatus_granted;
    response.m.timeStampTokenPresent = 1;
    asn1Copy_ContentInfo(heap, &signedToken.record, &response.timeStampToken);
    writeOctets(encoded<ASN1C_TimeStampResp>(response), argv[4]);
    std::printf("number %s\n", content.serialNumber);
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    return runExample("timestamp_response", respond, argc, argv);
}
