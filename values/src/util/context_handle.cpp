#include <brevantis/asn1/values/util/context_handle.h>

namespace Brevantis::ASN1 {

bool ctxt_handle::init() {
    return rtInitContext(this, nullptr) == 0;
}

void ctxt_handle::release() {
    rtFreeContext(this);
}

} // namespace Brevantis::ASN1
