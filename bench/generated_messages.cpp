#include "generated_messages.h"

#include <fstream>
#include <iterator>
#include <stdexcept>

#include <brevantis/asn1/asn1data.h>
#include <brevantis/asn1/asn1data/walk.h>
#include <brevantis/asn1/runtime.h>

namespace bench {

namespace {

using Octets = std::vector<unsigned char>;

void append(Octets& target, const Octets& octets) {
    target.insert(target.end(), octets.begin(), octets.end());
}

Octets element(unsigned char identifier, const Octets& contents) {
    Octets octets{identifier};
    if (contents.size() < 0x80) {
        octets.push_back(static_cast<unsigned char>(contents.size()));
    } else {
        octets.push_back(0x84);
        for (int shift = 24; shift >= 0; shift -= 8) {
            octets.push_back(static_cast<unsigned char>(contents.size() >> shift));
        }
    }
    append(octets, contents);
    return octets;
}

/// The element at a path of a certification request.
Octets part(const Octets& request, const char* path) {
    const asn1data::ElementSpan span = asn1data::findElement(
        *asn1data::findType("CertificationRequest"), request.data(), request.size(), path);
    if (span.status != 0) {
        throw std::runtime_error(std::string("no ") + path + " in the certification request");
    }
    return {span.data, span.data + span.size};
}

} // namespace

std::vector<unsigned char> readFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    Octets content{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    if (content.empty()) {
        throw std::runtime_error(path + " cannot be read");
    }
    return content;
}

std::vector<unsigned char> makeCertificationRequest(std::size_t members,
                                                    const std::string& directory) {
    const Octets request = readFile(directory + "/certification-request.der");
    Octets values;
    std::uint32_t number = 1;
    for (std::size_t i = 0; i < members; ++i) {
        number = number * 1'664'525 + 1'013'904'223;
        append(values, element(0x04, {static_cast<unsigned char>(number >> 24),
                                      static_cast<unsigned char>(number >> 16),
                                      static_cast<unsigned char>(number >> 8),
                                      static_cast<unsigned char>(number)}));
    }
    // 2.999 is the arc for examples.
    Octets attribute = element(0x06, {0x88, 0x37});
    append(attribute, element(0x31, values));

    Octets info;
    for (const char* name : {"version", "subject", "subjectPublicKeyInfo"}) {
        append(info, part(request, (std::string("certificationRequestInfo.") + name).c_str()));
    }
    append(info, element(0xA0, element(0x30, attribute)));

    Octets made = element(0x30, info);
    append(made, part(request, "signatureAlgorithm"));
    append(made, part(request, "signature"));
    return element(0x30, made);
}

std::vector<unsigned char> makeSignedData(std::size_t mebibytes, const std::string& directory) {
    const Octets message = readFile(directory + "/signed-1k.der");
    const Octets content(mebibytes << 20, 'x');
    ASN1BERDecodeBuffer input(message.data(), static_cast<int>(message.size()));
    asn1data::ASN1T_ContentInfo info;
    asn1data::ASN1C_ContentInfo control(input, info);
    if (control.Decode() != 0 || info.content.decoded == nullptr) {
        throw std::runtime_error("the signed message of the corpus does not decode");
    }
    auto* signedData = static_cast<asn1data::ASN1T_SignedData*>(info.content.decoded);
    signedData->encapContentInfo.eContent.data = content.data();
    signedData->encapContentInfo.eContent.numocts = static_cast<unsigned>(content.size());
    ASN1BEREncodeBuffer output;
    const int size = control.EncodeTo(output);
    if (size < 0) {
        throw std::runtime_error("a signed message does not encode");
    }
    return {output.getMsgPtr(), output.getMsgPtr() + size};
}

} // namespace bench
