#include <brevantis/asn1/values/util/one_element.h>

#include <brevantis/asn1/runtime/element_walk.h>
#include <brevantis/asn1/runtime/tag_length.h>
#include <brevantis/asn1/values/util/context_handle.h>

namespace Brevantis::ASN1 {

bool isOneElement(const CBlob& octets) {
    // The decoder counts in 32 bits, and takes a size below 1 for an unknown one.
    if (octets.cbData() == 0 || octets.cbData() > 0x7FFFFFFFul) {
        return false;
    }
    const int size = static_cast<int>(octets.cbData());
    ScopedContext context;
    ASN1CTXT* ctxt = context.get();
    ASN1TAG tag = 0;
    int length = 0;
    if (xd_setp(ctxt, octets.pbData(), size, &tag, &length) != 0 ||
        (tag & ~ASN1TagConstructed) == 0) { // X.690, 8.1.5: end-of-contents octets are no value
        return false;
    }
    if (length != ASN1IndefiniteLength) {
        return length == size;
    }
    return xd_NextElement(ctxt) == 0 && static_cast<int>(ctxt->buffer.byteIndex) == size;
}

} // namespace Brevantis::ASN1
