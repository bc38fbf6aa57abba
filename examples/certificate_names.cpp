// Prints the distinguished names and the alternative names of certificates.

#include <cstdio>
#include <exception>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

#include <brevantis/asn1/asn1data.h>
#include <brevantis/asn1/runtime.h>
#include <brevantis/asn1/values.h>

#include "name_text.h"
#include <brevantis/asn1/text/pem.h>

using namespace Brevantis;
using namespace Brevantis::ASN1;

namespace {

/// Names come from whoever made the certificate, so they are made safe to print.
void print(const char* what, const CWStringProxy& text) {
    const CBlob string = encodeCharString(text.c_str(), StringTypeUTF8);
    const auto size = static_cast<unsigned>(string.cbData());
    std::printf("%s: %s\n", what, displayText(string.pbData(), size).c_str());
}

/// @throws std::runtime_error when it is no certificate
void printNames(const std::vector<unsigned char>& der) {
    ASN1BERDecodeBuffer buffer(der.data(), static_cast<int>(der.size()));
    asn1data::ASN1T_Certificate certificate;
    asn1data::ASN1C_Certificate control(buffer, certificate);
    if (const int status = control.Decode(); status != 0) {
        throw std::runtime_error(std::string("no certificate: ") + rtStatusName(status));
    }
    const asn1data::ASN1T_TBSCertificate& content = certificate.tbsCertificate;
    CName name;
    ASN1T_Name_traits::get(content.issuer, name);
    print("issuer", name.toString());
    ASN1T_Name_traits::get(content.subject, name);
    print("subject", name.toString());

    CExtensions extensions;
    ASN1T_Extensions_traits::get(content.extensions, extensions);
    const auto found = extensions.find(toOID(asn1data::id_ce_subjectAltName).c_str());
    if (found != extensions.end()) {
        CGeneralNames alternatives;
        try {
            alternatives.decode(found->get_value());
        } catch (const ATL::CAtlException&) {
            std::puts("  (a name of a kind that is not read here, and those behind it)");
        }
        for (const CGeneralName& alternative : alternatives) {
            print("  also", alternative.wholeText());
        }
    }
}

void printFile(const char* path) {
    std::ifstream stream(path, std::ios::binary);
    const std::string file{std::istreambuf_iterator<char>(stream), {}};
    if (!asn1text::pem::isPem(file)) {
        printNames({file.begin(), file.end()});
        return;
    }
    for (const asn1text::pem::Block& block : asn1text::pem::read(file)) {
        if (block.problem != nullptr) {
            throw std::runtime_error("line " + std::to_string(block.line) + ": " + block.problem);
        }
        if (block.label == "CERTIFICATE") {
            printNames(block.octets);
        }
    }
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: certificate_names FILE\n"
                             "Prints the names in the certificates of a PEM or DER file.\n");
        return 2;
    }
    try {
        printFile(argv[1]);
        return 0;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "certificate_names: %s: %s\n", argv[1], failure.what());
        return 1;
    }
}
