#ifndef BENCH_OPERATION_H
#define BENCH_OPERATION_H

#include <cstddef>
#include <string>
#include <vector>

/// @file
/// What a library can do with a message, in one form for all of them, so that everything that is
/// measured is measured in the same way.

namespace bench {

/// Octets of a message. They stand where they are as long as the program runs.
struct Octets {
    const unsigned char* data;
    std::size_t size;
};

/// What a message is.
enum class Kind {
    Certificate,
    RevocationList,
    SignedData, ///< CMS ContentInfo with SignedData
    OcspRequest,
    OcspResponse, ///< with the basic response inside
    TimeStampResponse,
    KeyContainer, ///< PKCS #12 PFX
    CertificationRequest
};

constexpr Kind allKinds[] = {Kind::Certificate,  Kind::RevocationList,      Kind::SignedData,
                             Kind::OcspRequest,  Kind::OcspResponse,        Kind::TimeStampResponse,
                             Kind::KeyContainer, Kind::CertificationRequest};

/// What an operation does, from the least to the most.
enum class Task {
    Scan,      ///< goes through the octets and makes no values
    Decode,    ///< as far as the library's own function for the message goes
    DecodeAll, ///< the same, and the value of each extension that the library has a type for
    Recode,    ///< decodes, then encodes from what was decoded
    RecodeAll  ///< decodes all, and encodes the values of extensions as well
};

/// "scan", "decode", "decode all", "encode" or "encode all".
const char* taskName(Task task);

/// One thing that a library does with messages of a kind.
struct Operation {
    Kind kind;
    Task task;
    const char* calls; ///< the functions that do the work, as a reader would look them up
    /// Does it once, from memory, and gives everything back.
    /// @return false when the library refuses the message
    bool (*run)(Octets message);
};

/// A library with its operations. A source file of `libraries/` defines one as a static object,
/// which enters itself in the list of all; so a library that is not installed is a file that is not
/// compiled.
class Library {
public:
    Library(std::string name, std::string version, std::vector<Operation> operations);
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;

    const std::string& name() const { return name_; }
    const std::string& version() const { return version_; }
    const std::vector<Operation>& operations() const { return operations_; }

private:
    std::string name_;
    std::string version_;
    std::vector<Operation> operations_;
};

/// This library, in the list of all.
constexpr const char* ourName = "brevantis-asn1";

/// Whether a task ends with octets.
constexpr bool encodes(Task task) {
    return task >= Task::Recode;
}

/// All libraries that were compiled in, sorted by name.
std::vector<const Library*> libraries();

} // namespace bench

#endif
