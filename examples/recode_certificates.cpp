// Decodes certificates, encodes the decoded records again and compares the octets.
//
// A decoder that loses or bends anything, or an encoder that writes anything but DER, shows here as
// a difference on real input.

#include <chrono>
#include <cstdio>
#include <exception>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <brevantis/asn1/asn1data.h>
#include <brevantis/asn1/runtime.h>

#include "name_text.h"
#include <brevantis/asn1/text/pem.h>

namespace {

using Octets = std::vector<unsigned char>;

constexpr const char* DefaultFile = "/etc/ssl/certs/ca-certificates.crt";
/// Keeps a device or a stray disk image from eating the memory.
constexpr std::size_t LargestFile = std::size_t{256} << 20;

/// What was read so far.
struct Run {
    ASN1BEREncodeBuffer output;
    std::vector<Octets> identical; ///< messages that came back octet for octet
    std::size_t certificates = 0;
    std::size_t complaints = 0; ///< certificates that did not, and damage around certificates
    bool unreadable = false;    ///< a file could not be read at all
};

bool readFile(const std::string& path, std::string& content) {
    // Streams need not tell the end of a file from a failure to read it.
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"),
                                                               std::fclose);
    char block[65536];
    std::size_t count = 0;
    while (file != nullptr && (count = std::fread(block, 1, sizeof block, file.get())) > 0) {
        content.append(block, count);
        if (content.size() > LargestFile) {
            std::fprintf(stderr, "%s: larger than %zu MB\n", path.c_str(), LargestFile >> 20);
            return false;
        }
    }
    if (file == nullptr || std::ferror(file.get()) != 0) {
        std::fprintf(stderr, "%s: cannot be read\n", path.c_str());
        return false;
    }
    return true;
}

std::string withStatus(const char* what, int status) {
    return std::string(what) + ": " + rtStatusName(status) + " (" + std::to_string(status) + ")";
}

/// Decodes and encodes one certificate.
/// @param line receives what is to be told about it
/// @return whether the same octets came out
bool recode(const Octets& message, ASN1BEREncodeBuffer& output, std::string& line) {
    ASN1BERDecodeBuffer input(message.data(), static_cast<int>(message.size()));
    asn1data::ASN1T_Certificate certificate;
    asn1data::ASN1C_Certificate control(input, certificate);
    if (const int status = control.Decode(); status != 0) {
        line = withStatus("does not decode", status);
        return false;
    }
    const asn1data::ASN1T_TBSCertificate& content = certificate.tbsCertificate;
    const unsigned extensions = content.m.extensionsPresent ? content.extensions.count : 0;
    line = std::string(content.serialNumber) + "  " + displayName(content.subject) + "  " +
           std::to_string(extensions) + " extensions  " + std::to_string(message.size()) +
           " octets  ";

    const int size = control.EncodeTo(output);
    if (size < 0) {
        line += withStatus("does not encode", size);
        return false;
    }
    const unsigned char* encoded = output.getMsgPtr();
    const std::size_t count = static_cast<std::size_t>(size);
    std::size_t same = 0;
    while (same < count && same < message.size() && encoded[same] == message[same]) {
        ++same;
    }
    if (same == count && same == message.size()) {
        line += "identical";
        return true;
    }
    line += "differs from octet " + std::to_string(same) + " on";
    return false;
}

void recodeAndTell(const std::string& place, const Octets& message, Run& run) {
    std::string line;
    ++run.certificates;
    if (recode(message, run.output, line)) {
        run.identical.push_back(message);
    } else {
        ++run.complaints;
        line.insert(0, place + ": ");
    }
    std::printf("%s\n", line.c_str());
}

void complain(const std::string& place, const std::string& what, Run& run) {
    ++run.complaints;
    std::printf("%s: %s\n", place.c_str(), what.c_str());
}

/// Size of the element that @p octets begin with, header included, or a negative status.
int elementSize(const unsigned char* octets, std::size_t count) {
    ASN1BERDecodeBuffer buffer;
    int size = 0;
    const int status =
        xd_setp(buffer.getCtxtPtr(), octets, static_cast<int>(count), nullptr, &size);
    if (status != 0) {
        return status;
    }
    if (size == ASN1IndefiniteLength) {
        size = xd_indeflen_ex(octets, static_cast<int>(count));
        return size == 0 ? static_cast<int>(ASN1S_END_OF_BUFFER) : size;
    }
    return size;
}

/// Takes the certificate at the start of @p octets.
/// @return its size, 0 when there is none
std::size_t recodeFirst(const std::string& place, const unsigned char* octets, std::size_t count,
                        Run& run) {
    const int size = count == 0 ? ASN1S_END_OF_BUFFER : elementSize(octets, count);
    if (size < 0) {
        complain(place, withStatus("not a whole certificate, it may be cut short", size), run);
        return 0;
    }
    recodeAndTell(place, Octets(octets, octets + size), run);
    return static_cast<std::size_t>(size);
}

void complainOfRest(const std::string& place, std::size_t count, Run& run) {
    complain(place, std::to_string(count) + " octets after the last certificate", run);
}

/// Goes through certificates that stand one behind the other.
void recodeDer(const std::string& path, const Octets& file, Run& run) {
    constexpr unsigned char Sequence = 0x30;
    std::size_t position = 0;
    do {
        const std::string place = path + ", octet " + std::to_string(position);
        const std::size_t left = file.size() - position;
        if (position != 0 && file[position] != Sequence) {
            return complainOfRest(place, left, run);
        }
        const std::size_t size = recodeFirst(place, file.data() + position, left, run);
        if (size == 0) {
            return;
        }
        position += size;
    } while (position < file.size());
}

void recodePem(const std::string& path, std::string_view file, Run& run) {
    for (const asn1text::pem::Block& block : asn1text::pem::read(file)) {
        const std::string place = path + ", line " + std::to_string(block.line);
        const std::size_t count = block.octets.size();
        if (block.problem != nullptr) {
            complain(place, block.problem, run);
        } else if (block.label == "CERTIFICATE" || block.label == "X509 CERTIFICATE") {
            const std::size_t size = recodeFirst(place, block.octets.data(), count, run);
            if (size != 0 && size < count) {
                complainOfRest(place, count - size, run);
            }
        }
    }
}

/// Decodes and encodes the messages again and again for a moment, without looking at the results.
void measure(const std::vector<Octets>& messages) {
    using Clock = std::chrono::steady_clock;
    constexpr std::chrono::duration<double> Enough{0.25};
    ASN1BEREncodeBuffer output;
    std::size_t certificates = 0;
    std::size_t octets = 0;
    const auto start = Clock::now();
    std::chrono::duration<double> passed{};
    do {
        for (const Octets& message : messages) {
            ASN1BERDecodeBuffer input(message.data(), static_cast<int>(message.size()));
            asn1data::ASN1T_Certificate certificate;
            asn1data::ASN1C_Certificate control(input, certificate);
            if (control.Decode() == 0 && control.EncodeTo(output) > 0) {
                ++certificates;
                octets += message.size();
            }
        }
        passed = Clock::now() - start;
    } while (passed < Enough);
    std::printf("decoding and encoding: %.0f certificates/s, %.1f MB/s\n",
                static_cast<double>(certificates) / passed.count(),
                static_cast<double>(octets) / passed.count() / 1e6);
}

int recodeFiles(const std::vector<std::string>& paths) {
    Run run;
    for (const std::string& path : paths) {
        std::string file;
        if (!readFile(path, file)) {
            run.unreadable = true;
        } else if (asn1text::pem::isPem(file)) {
            recodePem(path, file, run);
        } else {
            recodeDer(path, Octets(file.begin(), file.end()), run);
        }
    }
    std::printf("%zu certificates, %zu identical, %zu complaints\n", run.certificates,
                run.identical.size(), run.complaints);
    if (!run.identical.empty()) {
        measure(run.identical);
    }
    if (run.unreadable) {
        return 2;
    }
    return run.complaints == 0 && run.certificates != 0 ? 0 : 1;
}

} // namespace

int main(int argc, char** argv) {
    std::vector<std::string> paths(argv + 1, argv + argc);
    if (!paths.empty() && paths.front().size() > 1 && paths.front().front() == '-') {
        const bool asked = paths.front() == "--help" || paths.front() == "-h";
        std::fprintf(asked ? stdout : stderr,
                     "usage: recode_certificates [FILE...]\n"
                     "Decodes the certificates in PEM or DER files (default: %s),\n"
                     "encodes them again and compares. Ends with 0 when all came back identical,\n"
                     "1 when not or when there was none, 2 when a file cannot be read.\n",
                     DefaultFile);
        return asked ? 0 : 2;
    }
    if (paths.empty()) {
        paths.emplace_back(DefaultFile);
    }
    try {
        return recodeFiles(paths);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "recode_certificates: %s\n", failure.what());
        return 1;
    }
}
