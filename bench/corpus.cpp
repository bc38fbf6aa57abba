#include "corpus.h"

#include <fstream>
#include <iostream>
#include <iterator>
#include <stdexcept>
#include <utility>

#include "generated_messages.h"
#include <brevantis/asn1/text/pem.h>

namespace bench {

namespace {

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

/// Messages that nothing is tuned to.
constexpr MessageFile otherFiles[] = {
    {"certificate, EC", Kind::Certificate, "certificate-ec.der"},
    {"certificate, GOST", Kind::Certificate, "certificate-gost.der"},
    {"certificate, long names", Kind::Certificate, "certificate-long.der"},
    {"CMP", Kind::ManagementMessage, "certification-response.der"},
    {"PKCS #12, EC", Kind::KeyContainer, "key-container-ec.der"}};

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

template <typename Make>
void addMade(std::vector<Sample>& samples, const char* name, Kind kind, Make make) {
    try {
        samples.push_back({name, kind, {make()}});
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
    for (asn1text::pem::Block& block : asn1text::pem::read(text)) {
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
    samples.push_back({"CRL, 10 entries", Kind::RevocationList, {makeRevocationList(10)}});
    samples.push_back({"CRL, 10,000 entries", Kind::RevocationList, {makeRevocationList(10'000)}});
    for (const MessageFile& file : furtherFiles) {
        addFile(samples, directory, file);
    }
    for (const MessageFile& file : otherFiles) {
        addFile(samples, directory, file);
    }
    addMade(samples, "CMS with a time-stamp", Kind::SignedData,
            [&] { return makeTimeStampedData(directory); });
    const std::string certificate = directory + "/" + certificateFile.name;
    addMade(samples, "name", Kind::Name,
            [&] { return certificatePart(certificate, CertificatePart::Subject); });
    addMade(samples, "extensions", Kind::Extensions,
            [&] { return certificatePart(certificate, CertificatePart::Extensions); });
    addMade(samples, "alternative names", Kind::GeneralNames,
            [&] { return certificatePart(certificate, CertificatePart::AlternativeNames); });
    return samples;
}

std::vector<unsigned char> readFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::vector<unsigned char> content{std::istreambuf_iterator<char>(file),
                                       std::istreambuf_iterator<char>()};
    if (content.empty()) {
        throw std::runtime_error(path + " cannot be read");
    }
    return content;
}

} // namespace bench
