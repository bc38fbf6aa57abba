// Answers an OCSP request (RFC 6960): every certificate that it asks for is good, but for one whose
// number is given.

#include <cstdio>
#include <cstring>
#include <ctime>

#include <brevantis/asn1/asn1data/list_records.h>

#include "signing.h"

using namespace Brevantis;
using namespace Brevantis::ASN1;
using namespace asn1data;

namespace {

/// Tells about one certificate.
void answer(ASN1CTXT* heap, ASN1T_ReqCert& asked, const char* revoked, const char* now,
            ASN1T_SingleResponse& response) {
    asn1Copy_ReqCert(heap, &asked, &response.certID);
    response.thisUpdate = now;
    const char* const serial = asked.u.certID->serialNumber;
    if (revoked == nullptr || std::strcmp(serial, revoked) != 0) {
        response.certStatus.t = T_CertStatus_good;
        std::printf("%s: good\n", serial);
        return;
    }
    auto& info = newRecord<ASN1T_RevokedInfo>(heap);
    info.revocationTime = now;
    info.m.revocationReasonPresent = 1;
    info.revocationReason = CrlReason_keyCompromise;
    response.certStatus.t = T_CertStatus_revoked;
    response.certStatus.u.revoked = &info;
    std::printf("%s: revoked\n", serial);
}

int respond(int argc, char** argv) {
    if (argc != 5 && argc != 6) {
        std::fputs("usage: ocsp_response REQUEST CERTIFICATE KEY OUT [REVOKED-SERIAL]\n", stderr);
        return 2;
    }
    Decoded<ASN1C_OCSPRequest, ASN1T_OCSPRequest> request(readMessage(argv[1]));
    const CBlob responder = readMessage(argv[2]);
    Decoded<ASN1C_Certificate, ASN1T_Certificate> certificate(responder);
    const Key key(argv[3]);

    ASN1BERDecodeBuffer memory;
    ASN1CTXT* const heap = memory.getCtxtPtr();
    ASN1T_BasicOCSPResponse basic;
    ASN1T_ResponseData& content = basic.tbsResponseData;
    auto& name = newRecord<ASN1T_Name>(heap);
    asn1Copy_Name(heap, &certificate.record.tbsCertificate.subject, &name);
    content.responderID.t = T_ResponderID_byName;
    content.responderID.u.byName = &name;
    const CStringProxy now = CDateTime(std::time(nullptr), 0).getGeneralizedTime();
    content.producedAt = now.c_str();
    auto& asked = request.record.tbsRequest;
    for (auto& each : recordsOf(asked.requestList)) {
        if (each.reqCert.t != T_ReqCert_certID) {
            throw std::runtime_error("a certificate is told in a way that is not known here");
        }
        auto& single = newElement(heap, content.responses);
        answer(heap, each.reqCert, argc == 6 ? argv[5] : nullptr, now.c_str(), single);
    }
    // A nonce goes back as it came.
    if (asked.m.requestExtensionsPresent != 0) {
        content.m.responseExtensionsPresent = 1;
        asn1Copy_Extensions(heap, &asked.requestExtensions, &content.responseExtensions);
    }

    const CBlob signature = key.sign(encoded<ASN1C_ResponseData>(content));
    ASN1T_AlgorithmIdentifier_traits::set(heap, basic.signatureAlgorithm, key.algorithm());
    basic.signature = bitString(signature);
    const CBlob answered = encoded<ASN1C_BasicOCSPResponse>(basic);

    ASN1T_OCSPResponse response;
    response.responseStatus = 0; // successful
    response.m.responseBytesPresent = 1;
    response.responseBytes.responseType = id_pkix_ocsp_basic;
    response.responseBytes.response = octetString(answered);
    writeOctets(encoded<ASN1C_OCSPResponse>(response), argv[4]);
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    return runExample("ocsp_response", respond, argc, argv);
}
