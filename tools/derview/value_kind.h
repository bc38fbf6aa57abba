#ifndef DERVIEW_VALUE_KIND_H
#define DERVIEW_VALUE_KIND_H

#include <brevantis/asn1/asn1data/walk.h>

#include "escape.h"

namespace derview {

/// What a primitive holds, as far as it matters for showing it.
enum class ValueKind : unsigned char {
    Null,
    Boolean,
    Number,     ///< WalkValue::number
    BigNumber,  ///< an INTEGER in contents octets
    Identifier, ///< WalkValue::identifier
    Text,
    Time,
    Bits,
    OctetString,
    Raw ///< a whole element of an unknown type
};

ValueKind valueKind(const asn1data::WalkElement& element);

/// How the characters of a Text are coded.
CharacterCoding codingOf(const asn1data::WalkElement& element);

} // namespace derview

#endif
