// What no decoder can be faster than: touching the octets, and finding the elements.

#include <cstring>
#include <memory>

#include "operation.h"

namespace {

using bench::Octets;

/// Keeps the compiler from leaving out work whose result nobody reads.
volatile unsigned sink;

bool copyOctets(Octets message) {
    // Not zeroed first: one pass over the octets is the floor, not two.
    const std::unique_ptr<unsigned char[]> copy(new unsigned char[message.size]);
    std::memcpy(copy.get(), message.data, message.size);
    sink = copy[message.size / 2];
    return true;
}

/// Counts elements down to the primitive ones. Definite lengths only; a length is not trusted.
bool countElements(const unsigned char* octets, const unsigned char* end, unsigned& count) {
    while (octets != end) {
        const bool constructed = (*octets++ & 0x20) != 0;
        if (octets == end) {
            return false;
        }
        std::size_t length = *octets++;
        if (length == 0x80) {
            return false;
        }
        if (length > 0x80) {
            std::size_t left = length & 0x7F;
            for (length = 0; left > 0 && octets != end; --left) {
                length = length << 8 | *octets++;
            }
        }
        if (length > static_cast<std::size_t>(end - octets)) {
            return false;
        }
        ++count;
        if (constructed && !countElements(octets, octets + length, count)) {
            return false;
        }
        octets += length;
    }
    return true;
}

bool walkElements(Octets message) {
    unsigned count = 0;
    const bool whole = countElements(message.data, message.data + message.size, count);
    sink = count;
    return whole;
}

std::vector<bench::Operation> forEveryKind() {
    std::vector<bench::Operation> operations;
    for (const bench::Kind kind : bench::allKinds) {
        operations.push_back({kind, bench::Task::Scan, "memcpy", copyOctets});
        operations.push_back({kind, bench::Task::Scan, "tags and lengths", walkElements});
    }
    return operations;
}

const bench::Library floorLibrary("(floor)", "", forEveryKind());

} // namespace
