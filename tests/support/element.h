#ifndef TESTS_SUPPORT_ELEMENT_H
#define TESTS_SUPPORT_ELEMENT_H

#include <brevantis/asn1/runtime/header.h>

#include "support/hex.h"

namespace tests {

/// An element of definite length.
inline Octets withHeader(ASN1TAG tag, const Octets& contents) {
    unsigned char header[ASN1LongestHeader];
    const unsigned size = rtWriteHeader(tag, static_cast<int>(contents.size()), header);
    Octets element(header, header + size);
    append(element, contents);
    return element;
}

} // namespace tests

#endif
