#ifndef BENCH_OPERATION_H
#define BENCH_OPERATION_H

#include <cstddef>
#include <memory>
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
    CertificationRequest,
    ManagementMessage, ///< CMP PKIMessage
    Name,
    Extensions,
    GeneralNames
};

constexpr Kind allKinds[] = {
    Kind::Certificate,  Kind::RevocationList,       Kind::SignedData,        Kind::OcspRequest,
    Kind::OcspResponse, Kind::TimeStampResponse,    Kind::KeyContainer,      Kind::Name,
    Kind::Extensions,   Kind::CertificationRequest, Kind::ManagementMessage, Kind::GeneralNames};

/// What an operation does.
enum class Task {
    Scan,          ///< goes through the octets and makes no values
    Fields,        ///< gets at some fields of a message, whose values are the octets that it finds
    DecodeInPlace, ///< decodes, and leaves strings where they stand in the message
    Decode,        ///< as far as the library's own function for the message goes
    DecodeAll,     ///< the same, and the value of each extension that the library has a type for
    DecodeText,    ///< decodes, and makes text for people of what was decoded
    Recode,        ///< decodes, then encodes from what was decoded
    RecodeAll,     ///< decodes all, and encodes the values of extensions as well
    Encode,        ///< encodes a value that is there
    Copy,          ///< copies a value that is there
    Release        ///< gives a value back part by part, while what it lies on stays
};

/// "scan", "fields", "decode in place" and so on; "encode" for Recode, "encode alone" for Encode.
const char* taskName(Task task);

/// One run of something that works on a value. The value is there before, and what is left of it is
/// given back after, which is not measured.
class Trial {
public:
    Trial() = default;
    virtual ~Trial() = default;
    Trial(const Trial&) = delete;
    Trial& operator=(const Trial&) = delete;

    /// Called once.
    /// @return false when the library fails
    virtual bool run() = 0;
};

/// One thing that a library does with messages of a kind.
struct Operation {
    Kind kind;
    Task task;
    const char* calls; ///< the functions that do the work, as a reader would look them up
    /// Does it once, from memory, and gives everything back. Null when there is something to
    /// prepare.
    /// @return false when the library refuses the message
    bool (*run)(Octets message);
    /// Null when there is nothing to prepare. Returns null when the library refuses the message.
    std::unique_ptr<Trial> (*prepare)(Octets message) = nullptr;
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
/// The same with an allocator of its own.
constexpr const char* arenaName = "brevantis-asn1 with an arena";

/// Whether a task begins with the octets of a message and ends with those of another.
constexpr bool recodes(Task task) {
    return task == Task::Recode || task == Task::RecodeAll;
}

/// Whether a task makes values, and nothing else.
constexpr bool decodes(Task task) {
    return task == Task::Decode || task == Task::DecodeAll;
}

/// All libraries that were compiled in, sorted by name.
std::vector<const Library*> libraries();

} // namespace bench

#endif
