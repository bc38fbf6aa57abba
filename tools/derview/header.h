#ifndef DERVIEW_HEADER_H
#define DERVIEW_HEADER_H

#include <cstddef>

#include "octets.h"

namespace derview {

/// Identifier and length octets (X.690, 8.1.2 and 8.1.3).
struct Header {
    std::size_t size = 0; ///< 0 when they are not whole, or no decoder takes them
    unsigned char identifier = 0;
    unsigned order = 0; ///< grows with the tags' canonical order (X.680, 8.6)
    bool constructed = false;
    bool longTag = false; ///< the tag number takes more octets than it needs
    bool indefinite = false;
    bool longLength = false; ///< the length takes more octets than it needs
    std::size_t length = 0;
};

/// Octets that close an indefinite length (X.690, 8.1.5).
constexpr std::size_t EndOfContentsSize = 2;

/// Reads the header that octets begin with.
Header readHeader(Octets octets);

} // namespace derview

#endif
