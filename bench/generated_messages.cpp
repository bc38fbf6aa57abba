#include "generated_messages.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <iterator>
#include <stdexcept>

#include <brevantis/asn1/asn1data.h>
#include <brevantis/asn1/asn1data/walk.h>
#include <brevantis/asn1/runtime.h>
#include <brevantis/asn1/values/extension/extension_traits.h>
#include <brevantis/asn1/values/extension/named_extensions.h>
#include <brevantis/asn1/values/types/algorithm_identifier_traits.h>
#include <brevantis/asn1/values/types/name_traits.h>

#include "corpus.h"

namespace bench {

namespace {

namespace values = Brevantis::ASN1;
using Brevantis::CBlob;
using Entry = asn1data::ASN1T_TBSCertList_revokedCertificates_element;
using Encoding = std::vector<unsigned char>;

void append(Encoding& target, const Encoding& octets) {
    target.insert(target.end(), octets.begin(), octets.end());
}

Encoding element(unsigned char identifier, const Encoding& contents) {
    Encoding octets{identifier};
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

/// The element at a path of a message.
Encoding part(const char* type, const Encoding& message, const std::string& path) {
    const asn1data::ElementSpan span = asn1data::findElement(
        *asn1data::findType(type), message.data(), message.size(), path.c_str());
    if (span.status != 0) {
        throw std::runtime_error("no " + path + " in the " + type);
    }
    return {span.data, span.data + span.size};
}

/// Contents of an element of definite length.
Encoding contents(const Encoding& element) {
    const std::size_t header = element.at(1) < 0x80 ? 2 : 2 + (element[1] & 0x7Fu);
    return {element.begin() + static_cast<std::ptrdiff_t>(header), element.end()};
}

/// Texts of an entry, to which its record points.
struct EntryTexts {
    char serial[sizeof("0x") + 32];
    char date[sizeof("261121120000Z")];
};

/// @param number of the entry, from 0: every number gives another serial, of 16 octets
EntryTexts entryTexts(std::size_t number) {
    // An odd factor takes no two numbers to the same one. Bits 63 and 62 of the upper half are 0
    // and 1: a positive number of the full length.
    const std::uint64_t lower = (number + 1) * UINT64_C(0x9E3779B97F4A7C15);
    const std::uint64_t upper = lower >> 2 | UINT64_C(1) << 62;
    EntryTexts texts;
    std::snprintf(texts.serial, sizeof(texts.serial), "0x%016llx%016llx",
                  static_cast<unsigned long long>(upper), static_cast<unsigned long long>(lower));
    std::snprintf(texts.date, sizeof(texts.date), "26%02u%02u%02u%02u00Z",
                  static_cast<unsigned>(number % 12 + 1), static_cast<unsigned>(number % 28 + 1),
                  static_cast<unsigned>(number % 24), static_cast<unsigned>(number % 60));
    return texts;
}

CBlob fromHex(const char* digits) {
    CBlob octets;
    octets.readFromHexString(digits);
    return octets;
}

values::CExtension extension(const char* identifier, const char* value) {
    return {values::CExtValue(identifier, fromHex(value)), false};
}

/// Everything around the entries.
void fillHead(ASN1CTXT* context, asn1data::ASN1T_CertificateList& list) {
    values::CAlgorithmIdentifier algorithm("1.2.840.113549.1.1.11"); // sha256WithRSAEncryption
    algorithm.put_parameters(fromHex("05 00"));
    values::ASN1T_AlgorithmIdentifier_traits::set(context, list.signatureAlgorithm, algorithm);

    asn1data::ASN1T_TBSCertList& head = list.tbsCertList;
    head.m.versionPresent = 1;
    head.version = asn1data::Version_v2;
    values::ASN1T_AlgorithmIdentifier_traits::set(context, head.signature, algorithm);
    values::ASN1T_Name_traits::set(
        context, head.issuer,
        values::CName(L"C=DE,O=Example Trust Services GmbH,CN=Server Authority 3"));
    head.thisUpdate.t = asn1data::T_Time_utcTime;
    head.thisUpdate.u.utcTime = "261121120000Z";
    head.m.nextUpdatePresent = 1;
    head.nextUpdate.t = asn1data::T_Time_utcTime;
    head.nextUpdate.u.utcTime = "261128120000Z";
    head.m.crlExtensionsPresent = 1;
    const values::CExtensions extensions = {
        extension("2.5.29.35",
                  "30168014 8D3F5C2A719E04B6D85A13C7E2906B4F7A21D8C3"), // key identifier
        extension("2.5.29.20", "02021A85")};                            // number
    values::ASN1T_Extensions_traits::set(context, head.crlExtensions, extensions);

    static constexpr unsigned char zeros[256] = {};
    list.signature = {8 * sizeof(zeros), zeros};
}

} // namespace

std::vector<unsigned char> makeRevocationList(std::size_t entries) {
    ASN1BEREncodeBuffer output;
    ASN1CTXT* const context = output.getCtxtPtr();
    asn1data::ASN1T_CertificateList list;
    fillHead(context, list);

    // Entries with the same reason share its record, whose identifier alone has room for 128 arcs.
    constexpr values::CrlReason reasons[] = {values::CrlReason_keyCompromise,
                                             values::CrlReason_superseded,
                                             values::CrlReason_cessationOfOperation};
    std::array<asn1data::ASN1T_Extensions, std::size(reasons)> reasonExtensions;
    for (std::size_t i = 0; i < std::size(reasons); ++i) {
        const values::CExtensions reason = {
            values::CExtension(values::CExtCRLReason(reasons[i]), false)};
        values::ASN1T_Extensions_traits::set(context, reasonExtensions[i], reason);
    }

    std::vector<EntryTexts> texts(entries);
    std::vector<Entry> records(entries);
    for (std::size_t i = 0; i < entries; ++i) {
        texts[i] = entryTexts(i);
        Entry& entry = records[i];
        entry.userCertificate = texts[i].serial;
        entry.revocationDate.t = asn1data::T_Time_utcTime;
        entry.revocationDate.u.utcTime = texts[i].date;
        if (i % 2 == 1) {
            entry.m.crlEntryExtensionsPresent = 1;
            static_cast<Asn1RTDList&>(entry.crlEntryExtensions) =
                reasonExtensions[i / 2 % std::size(reasons)];
        }
        if (rtDListAppend(context, &list.tbsCertList.revokedCertificates, &entry) == nullptr) {
            throw std::runtime_error("a revocation list does not fit into the memory");
        }
    }
    list.tbsCertList.m.revokedCertificatesPresent = entries != 0;

    const int size = asn1data::ASN1C_CertificateList(output, list).Encode();
    if (size < 0) {
        throw std::runtime_error(std::string("a revocation list cannot be encoded: ") +
                                 rtStatusName(size));
    }
    return {output.getMsgPtr(), output.getMsgPtr() + size};
}

std::vector<unsigned char> makeCertificationRequest(std::size_t members,
                                                    const std::string& directory) {
    const Encoding request = readFile(directory + "/certification-request.der");
    Encoding contents;
    std::uint32_t number = 1;
    for (std::size_t i = 0; i < members; ++i) {
        number = number * 1'664'525 + 1'013'904'223;
        append(contents, element(0x04, {static_cast<unsigned char>(number >> 24),
                                        static_cast<unsigned char>(number >> 16),
                                        static_cast<unsigned char>(number >> 8),
                                        static_cast<unsigned char>(number)}));
    }
    // 2.999 is the arc for examples.
    Encoding attribute = element(0x06, {0x88, 0x37});
    append(attribute, element(0x31, contents));

    Encoding info;
    for (const char* name : {"version", "subject", "subjectPublicKeyInfo"}) {
        append(info, part("CertificationRequest", request,
                          std::string("certificationRequestInfo.") + name));
    }
    append(info, element(0xA0, element(0x30, attribute)));

    Encoding made = element(0x30, info);
    append(made, part("CertificationRequest", request, "signatureAlgorithm"));
    append(made, part("CertificationRequest", request, "signature"));
    return element(0x30, made);
}

std::vector<unsigned char> makeTimeStampedData(const std::string& directory) {
    const Encoding message = readFile(directory + "/signed-ec.der");
    const Encoding token = part(
        "TimeStampResp", readFile(directory + "/time-stamp-of-signature.der"), "timeStampToken");
    // id-aa-signatureTimeStampToken
    Encoding attribute =
        element(0x06, {0x2A, 0x86, 0x48, 0x86, 0xF7, 0x0D, 0x01, 0x09, 0x10, 0x02, 0x0E});
    append(attribute, element(0x31, token));

    const std::string data = "content.signedData.";
    Encoding signer = contents(part("ContentInfo", message, data + "signerInfos[0]"));
    append(signer, element(0xA1, element(0x30, attribute)));
    Encoding made;
    for (const char* name : {"version", "digestAlgorithms", "encapContentInfo", "certificates"}) {
        append(made, part("ContentInfo", message, data + name));
    }
    append(made, element(0x31, element(0x30, signer)));
    Encoding whole = part("ContentInfo", message, "contentType");
    append(whole, element(0xA0, element(0x30, made)));
    return element(0x30, whole);
}

std::vector<unsigned char> certificatePart(const std::string& file, CertificatePart wanted) {
    const Encoding certificate = readFile(file);
    const auto find = [&](const std::string& path) {
        return part("Certificate", certificate, "tbsCertificate." + path);
    };
    switch (wanted) {
    case CertificatePart::Subject:
        return find("subject");
    case CertificatePart::Extensions:
        return contents(find("extensions"));
    default:
        break;
    }
    for (int index = 0;; ++index) {
        const std::string extension = "extensions[" + std::to_string(index) + "]";
        try {
            return find(extension + ".extnValue.subjectAltName");
        } catch (const std::runtime_error&) {
            find(extension); // throws behind the last one
        }
    }
}

std::vector<unsigned char> makeSignedData(std::size_t mebibytes, const std::string& directory) {
    const Encoding message = readFile(directory + "/signed-1k.der");
    const Encoding content(mebibytes << 20, 'x');
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
