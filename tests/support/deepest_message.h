#ifndef TESTS_SUPPORT_DEEPEST_MESSAGE_H
#define TESTS_SUPPORT_DEEPEST_MESSAGE_H

#include <brevantis/asn1/asn1data/describe.h>

#include "support/hex.h"

namespace tests {

/// The message of a type whose elements lie inside each other as deep as the limit on nesting
/// allows: the way down is the longest that the descriptions have.
Octets deepestMessage(const asn1data::TypeDescription& type);

/// The elements, CHOICEs and open values that lie inside each other in it.
unsigned deepestNesting(const asn1data::TypeDescription& type);

} // namespace tests

#endif
