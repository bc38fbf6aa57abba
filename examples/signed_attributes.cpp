// Builds the attributes that a CMS or CAdES signature covers, writes them in DER, and reads them
// back.
//
// What a signature is computed over is just these octets. The two digests come from elsewhere, as
// the signature does: the library encodes and decodes, and leaves cryptography to others.

#include <cstdio>
#include <ctime>
#include <exception>
#include <string>

#include <brevantis/asn1/values/attribute/attribute.h>
#include <brevantis/asn1/values/attribute/signed_attributes.h>
#include <brevantis/asn1/values/attribute/signing_certificate.h>

namespace {

using namespace Brevantis;
using namespace Brevantis::ASN1;

constexpr const char* Data = "1.2.840.113549.1.7.1";

/// @param contentDigest SHA-256 of the content that is signed
/// @param certificateDigest SHA-256 of the signer's certificate
CAttributes signedAttributes(const CBlob& contentDigest, const CBlob& certificateDigest) {
    CAttrMessageDigest messageDigest;
    messageDigest.put_messageDigest(contentDigest);
    const CESSCertIDv2List signer{CESSCertIDv2(certificateDigest)};

    CAttributes attributes;
    attributes.emplace_back(CAttrContentType(Data));
    attributes.emplace_back(CAttrSigningTime(CDateTime(std::time(nullptr), 0)));
    attributes.emplace_back(messageDigest);
    attributes.emplace_back(CAttrSigningCertificateV2(signer));
    return attributes;
}

/// The value of an attribute that the program knows.
/// @param name receives the name of the attribute
CStringProxy textOf(const CAttrValue& value, const char*& name) {
    const std::string oid = value.get_oid();
    const CBlob& encoded = value.get_value();
    if (oid == "1.2.840.113549.1.9.3") {
        name = "content type";
        return CAttrContentType(encoded).get_contentType();
    }
    if (oid == "1.2.840.113549.1.9.4") {
        name = "message digest";
        return CAttrMessageDigest(encoded).get_messageDigest().writeToHexString(0);
    }
    if (oid == "1.2.840.113549.1.9.5") {
        name = "signing time";
        return CAttrSigningTime(encoded).get_time().getGeneralizedTime();
    }
    if (oid == "1.2.840.113549.1.9.16.2.47") {
        name = "signing certificate";
        const CAttrSigningCertificateV2 signers(encoded);
        return signers.get_certs().empty()
                   ? CStringProxy("none")
                   : signers.get_certs().front().get_certHash().writeToHexString(0);
    }
    name = "unknown";
    return encoded.writeToHexString(0);
}

void print(const CAttributes& attributes, std::FILE* output) {
    for (const CAttribute& attribute : attributes) {
        for (const CAttrValue& value : attribute) {
            const char* name = nullptr;
            const CStringProxy text = textOf(value, name);
            std::fprintf(output, "%s (%s): %s\n", attribute.get_oid(), name, text.c_str());
        }
    }
}

bool write(const CBlob& octets, std::FILE* output) {
    return output != nullptr &&
           std::fwrite(octets.pbData(), 1, octets.cbData(), output) == octets.cbData() &&
           std::fflush(output) == 0;
}

int run(const char* contentDigest, const char* certificateDigest, const char* path) {
    CBlob content;
    CBlob certificate;
    content.readFromHexString(contentDigest);
    certificate.readFromHexString(certificateDigest);
    const CBlob encoded = signedAttributes(content, certificate).encode();

    std::FILE* const output = path != nullptr ? std::fopen(path, "wb") : stdout;
    bool written = write(encoded, output);
    if (path != nullptr && output != nullptr) {
        written = std::fclose(output) == 0 && written;
    }
    if (!written) {
        std::fprintf(stderr, "%s: cannot be written\n", path != nullptr ? path : "standard output");
        return 1;
    }

    CAttributes read;
    read.decode(encoded);
    print(read, path != nullptr ? stdout : stderr);
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 3 || argc > 4) {
        std::fputs(
            "usage: signed_attributes CONTENT-DIGEST CERTIFICATE-DIGEST [FILE]\n"
            "Writes signed attributes in DER to the file, or to standard output, and prints\n"
            "what it reads there, then to standard error. The digests are SHA-256, in\n"
            "hexadecimal digits.\n",
            stderr);
        return 2;
    }
    try {
        return run(argv[1], argv[2], argc == 4 ? argv[3] : nullptr);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "signed_attributes: %s\n", failure.what());
        return 1;
    }
}
