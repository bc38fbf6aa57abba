#ifndef TESTS_SUPPORT_BLOB_H
#define TESTS_SUPPORT_BLOB_H

#include <string>

#include <brevantis/support/blob.h>

namespace tests {

/// The octets of a hexadecimal text; blanks are ignored.
inline Brevantis::CBlob blob(const std::string& hex) {
    Brevantis::CBlob octets;
    octets.readFromHexString(hex.c_str());
    return octets;
}

} // namespace tests

#endif
