#include "file_octets.h"

#include <cerrno>
#include <climits>
#include <stdexcept>
#include <system_error>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <brevantis/asn1/text/message.h>

namespace derview {

namespace {

constexpr std::size_t LargeFile = std::size_t{16} << 20;

/// A descriptor that is closed at the end, unless it is standard input.
struct Descriptor {
    int number;

    ~Descriptor() {
        if (number > STDIN_FILENO) {
            close(number);
        }
    }
};

[[noreturn]] void fail() {
    throw std::system_error(errno, std::generic_category());
}

} // namespace

FileOctets::FileOctets(const std::string& path) {
    const Descriptor file{path == "-" ? STDIN_FILENO : open(path.c_str(), O_RDONLY | O_CLOEXEC)};
    struct stat status {};
    if (file.number < 0 || fstat(file.number, &status) != 0) {
        fail();
    }
    const auto size = static_cast<std::size_t>(status.st_size);
    // What is read already of a shared standard input belongs to somebody else.
    const bool atStart = path != "-" || lseek(file.number, 0, SEEK_CUR) == 0;
    if (S_ISREG(status.st_mode) && size >= LargeFile && atStart) {
        void* const mapping = mmap(nullptr, size, PROT_READ, MAP_PRIVATE, file.number, 0);
        if (mapping != MAP_FAILED) {
            mapping_ = mapping;
            octets_ = {static_cast<const unsigned char*>(mapping), size};
            return;
        }
    }
    readAll(file.number, !S_ISREG(status.st_mode));
    octets_ = store_;
}

FileOctets::~FileOctets() {
    if (mapping_ != nullptr) {
        munmap(mapping_, octets_.size());
    }
}

void FileOctets::readAll(int descriptor, bool isStream) {
    constexpr std::size_t pieceSize = 1 << 16;
    constexpr std::size_t longest = INT_MAX;
    bool tested = false;
    for (std::size_t size = 0;;) {
        store_.resize(size + pieceSize);
        const ssize_t count = read(descriptor, store_.data() + size, pieceSize);
        if (count < 0 && errno != EINTR) {
            fail();
        }
        size += count > 0 ? static_cast<std::size_t>(count) : 0;
        store_.resize(size);
        if (count == 0) {
            return;
        }
        if (isStream && !tested && size >= pieceSize) {
            tested = true;
            if (!canBeginMessage(Octets(store_).first(pieceSize))) {
                throw std::runtime_error("no message begins as this input does");
            }
        }
        if (isStream && size > longest) {
            throw std::runtime_error("the input is longer than " + std::to_string(longest) +
                                     " octets");
        }
    }
}

} // namespace derview
