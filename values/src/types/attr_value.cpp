#include <brevantis/asn1/values/types/attr_value.h>

#include "util/block_for_ever.h"

namespace Brevantis::ASN1 {

bool operator==(const CAttrValue& a, const CAttrValue& b) {
    return CStringProxy(a.get_oid()) == b.get_oid() && a.get_value() == b.get_value();
}

bool operator!=(const CAttrValue& a, const CAttrValue& b) {
    return !(a == b);
}

// Kept: these two never return.
bool operator==(const CAttrValueList& /*a*/, const CAttrValueList& /*b*/) {
    blockForEver();
}

bool operator!=(const CAttrValueList& /*a*/, const CAttrValueList& /*b*/) {
    blockForEver();
}

} // namespace Brevantis::ASN1
