#include "corpus.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <iostream>
#include <iterator>
#include <stdexcept>
#include <utility>

#include <brevantis/asn1/asn1data/x509.h>
#include <brevantis/asn1/runtime.h>
#include <brevantis/asn1/values/extension/named_extensions.h>
#include <brevantis/asn1/values/extension_traits/extension_traits.h>
#include <brevantis/asn1/values/types_traits/algorithm_identifier_traits.h>
#include <brevantis/asn1/values/types_traits/name_traits.h>

#include "../examples/pem.h"
#include "generated_messages.h"

namespace bench {

namespace {

namespace values = Brevantis::ASN1;
using Brevantis::CBlob;
using Entry = asn1data::ASN1T_TBSCertList_revokedCertificates_element;

struct MessageFile {
    const char* sample;
    Kind kind;
    const char* name; ///< in the directory of the corpus
};

constexpr MessageFile certificateFile = {"certificate", Kind::Certificate, "certificate.der"};
constexpr MessageFile furtherFiles[] = {
    {"CMS, 1 KiB", Kind::SignedData, "signed-1k.der"},
    {"CMS, 1 KiB, indefinite lengths", Kind::SignedData, "signed-1k.ber"},
    {"CMS, 1 MiB", Kind::SignedData, "signed-1m.der"},
    {"CMS, 1 MiB, indefinite lengths", Kind::SignedData, "signed-1m.ber"},
    {"OCSP request", Kind::OcspRequest, "ocsp-request.der"},
    {"OCSP response", Kind::OcspResponse, "ocsp-response.der"},
    {"time-stamp response", Kind::TimeStampResponse, "time-stamp-response.der"},
    {"PKCS #12", Kind::KeyContainer, "key-container.der"},
    {"PKCS #10", Kind::CertificationRequest, "certification-request.der"}};

/// Where Debian and what comes from it keep the CA certificates of the machine.
constexpr const char* rootsFile = "/etc/ssl/certs/ca-certificates.crt";

void leaveOut(const std::string& why) {
    std::cerr << "left out: " << why << '\n';
}

void addFile(std::vector<Sample>& samples, const std::string& directory, const MessageFile& file) {
    try {
        samples.push_back({file.sample, file.kind, {readFile(directory + "/" + file.name)}});
    } catch (const std::runtime_error& failure) {
        leaveOut(failure.what());
    }
}

void addRoots(std::vector<Sample>& samples) {
    std::string text;
    try {
        const std::vector<unsigned char> content = readFile(rootsFile);
        text.assign(content.begin(), content.end());
    } catch (const std::runtime_error& failure) {
        leaveOut(failure.what());
        return;
    }
    Sample roots{{}, Kind::Certificate, {}};
    for (pem::Block& block : pem::read(text)) {
        if (block.problem == nullptr) {
            roots.messages.push_back(std::move(block.octets));
        } else {
            leaveOut(std::string(rootsFile) + ", line " + std::to_string(block.line) + ": " +
                     block.problem);
        }
    }
    roots.name = std::to_string(roots.messages.size()) + " roots";
    if (!roots.messages.empty()) {
        samples.push_back(std::move(roots));
    }
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

std::size_t Sample::size() const {
    std::size_t sum = 0;
    for (const std::vector<unsigned char>& message : messages) {
        sum += message.size();
    }
    return sum;
}

std::vector<Sample> readCorpus(const std::string& directory) {
    std::vector<Sample> samples;
    addFile(samples, directory, certificateFile);
    addRoots(samples);
    samples.push_back({"CRL, 10 entries", Kind::RevocationList, {makeRevocationList(10)}, 10});
    samples.push_back(
        {"CRL, 10,000 entries", Kind::RevocationList, {makeRevocationList(10'000)}, 10'000});
    for (const MessageFile& file : furtherFiles) {
        addFile(samples, directory, file);
    }
    return samples;
}

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

} // namespace bench
