#ifndef TESTS_SUPPORT_HEAP_COPY_H
#define TESTS_SUPPORT_HEAP_COPY_H

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string_view>

#include "support/hex.h"

namespace tests {

/// Octets in a heap block of exactly their size, so that a sanitizer sees every access outside.
class HeapCopy {
public:
    explicit HeapCopy(const Octets& octets)
        : octets_(new unsigned char[octets.size()]), count_(octets.size()) {
        std::copy(octets.begin(), octets.end(), octets_.get());
    }
    explicit HeapCopy(std::string_view hex) : HeapCopy(fromHex(hex)) {}

    unsigned char* data() const { return octets_.get(); }
    unsigned size() const { return static_cast<unsigned>(count_); }
    int length() const { return static_cast<int>(count_); }

private:
    std::unique_ptr<unsigned char[]> octets_;
    std::size_t count_;
};

} // namespace tests

#endif
