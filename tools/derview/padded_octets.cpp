#include "padded_octets.h"

#include <cstring>

#include <sys/mman.h>

namespace derview {

PaddedOctets::PaddedOctets(Octets octets, std::size_t size)
    : mapping_(mmap(nullptr, size, PROT_READ | PROT_WRITE,
                    MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0)) {
    if (mapping_ != MAP_FAILED) {
        std::memcpy(mapping_, octets.data(), octets.size());
        octets_ = {static_cast<const unsigned char*>(mapping_), size};
    }
}

PaddedOctets::~PaddedOctets() {
    if (mapping_ != MAP_FAILED) {
        munmap(mapping_, octets_.size());
    }
}

} // namespace derview
