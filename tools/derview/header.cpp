#include "header.h"

#include <algorithm>
#include <climits>

#include <brevantis/asn1/runtime/header.h>

namespace derview {

Header readHeader(Octets octets) {
    ASN1Header read;
    const auto count = static_cast<unsigned>(std::min<std::size_t>(octets.size(), INT_MAX));
    if (rtReadHeader(octets.data(), count, &read) != 0) {
        return {};
    }
    Header header;
    header.size = read.size;
    header.identifier = octets[0];
    header.order = read.tag & ~ASN1TagConstructed;
    header.constructed = (read.tag & ASN1TagConstructed) != 0;
    header.longTag = read.tagSize > rtTagSize(read.tag);
    header.indefinite = read.length == ASN1IndefiniteLength;
    header.length = header.indefinite ? 0 : static_cast<std::size_t>(read.length);
    header.longLength = read.size - read.tagSize > rtLengthSize(read.length);
    return header;
}

} // namespace derview
