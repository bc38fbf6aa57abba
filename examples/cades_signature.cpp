// Signs a file: a CAdES-BES signature (ETSI EN 319 122-1), which is a CMS message whose signed
// attributes tell the signer's certificate. The content is inside, or elsewhere.

#include <cstdio>
#include <cstring>
#include <ctime>

#include "signing.h"

using namespace Brevantis;
using namespace Brevantis::ASN1;

namespace {

constexpr const char* Data = "1.2.840.113549.1.7.1";

int sign(int argc, char** argv) {
    const bool detached = argc == 6 && std::strcmp(argv[5], "--detached") == 0;
    if (argc != 5 && !detached) {
        std::fputs("usage: cades_signature FILE CERTIFICATE KEY OUT [--detached]\n", stderr);
        return 2;
    }
    const CBlob content = readOctets(argv[1]);
    const CBlob certificate = readMessage(argv[2]);
    const Key key(argv[3]);

    CSignerInfoBuilder signer(certificate);
    signer.put_digestAlgorithm(sha256Algorithm());
    signer.put_signatureAlgorithm(key.algorithm());

    CAttrMessageDigest messageDigest;
    messageDigest.put_messageDigest(sha256(content));
    const CESSCertIDv2List signers{CESSCertIDv2(sha256(certificate))};
    CAttributes& attributes = signer.signedAttributes();
    attributes.emplace_back(CAttrContentType(Data));
    attributes.emplace_back(CAttrSigningTime(CDateTime(std::time(nullptr), 0)));
    attributes.emplace_back(messageDigest);
    attributes.emplace_back(CAttrSigningCertificateV2(signers));
    signer.put_signature(key.sign(signer.toBeSigned()));

    CSignedDataBuilder message =
        detached ? CSignedDataBuilder(Data) : CSignedDataBuilder(Data, content);
    message.certificates().push_back(certificate);
    message.add(signer);
    writeOctets(message.encode(), argv[4]);

    CName issuer;
    issuer.decode(signer.get_issuer());
    CBlob number;
    BigIntegerToString(signer.get_serialNumber(), number);
    std::printf("signed by number %s of %s\n", reinterpret_cast<const char*>(number.pbData()),
                toRfc4514(issuer).c_str());
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    return runExample("cades_signature", sign, argc, argv);
}
