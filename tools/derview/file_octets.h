#ifndef DERVIEW_FILE_OCTETS_H
#define DERVIEW_FILE_OCTETS_H

#include <string>

#include "octets.h"

namespace derview {

/// The octets of a file. Large ones are mapped rather than read, so that they need no memory; such
/// a file must not be cut short meanwhile.
class FileOctets {
public:
    /// @param path "-" stands for standard input
    /// @throws std::system_error when the file cannot be opened or read
    /// @throws std::runtime_error when what is no regular file can begin no message, or goes on
    /// behind the longest one
    explicit FileOctets(const std::string& path);
    ~FileOctets();
    FileOctets(const FileOctets&) = delete;
    FileOctets& operator=(const FileOctets&) = delete;

    Octets octets() const { return octets_; }

private:
    void readAll(int descriptor, bool isStream);

    OctetStore store_;
    void* mapping_ = nullptr;
    Octets octets_;
};

} // namespace derview

#endif
