#include <algorithm>

#include <brevantis/asn1/asn1data/family.h>

#include "strict_reading.h"
#include "value_access.h"

namespace asn1data::family {

int encodeTo(ASN1CType& control, ASN1MessageBufferIF& buffer, const TypeDescription& type,
             void* value) {
    control.setMsgBuf(buffer);
    buffer.init();
    return encode(buffer.getCtxtPtr(), type, value, ASN1TagExplicit);
}

int decodeFrom(ASN1CType& control, ASN1MessageBufferIF& buffer, const TypeDescription& type,
               void* value) {
    control.setMsgBuf(buffer);
    // A message that cannot be bound is met by the decoder itself, with the status that fits.
    const int bound = buffer.init();
    if (isRefusedUnread(buffer.getCtxtPtr()->flags, bound)) {
        return fail(buffer.getCtxtPtr(), bound);
    }
    // Whoever releases the value through the control's context must know as well that strings may
    // lie in the message.
    if (control.getCtxtPtr() != nullptr && (buffer.getCtxtPtr()->flags & ASN1F_NO_COPY) != 0) {
        rtCtxtSetFlag(control.getCtxtPtr(), ASN1F_NO_COPY);
    }
    return decode(buffer.getCtxtPtr(), type, value, ASN1TagExplicit, 0);
}

void* newRecord(ASN1CTXT* ctxt, const TypeDescription& type) noexcept {
    // A NULL has no value, yet where it is selected something must stand for it.
    const int size = type.valueSize != 0 ? static_cast<int>(type.valueSize) : 1;
    return rtMemHeapAllocZ(&ctxt->memHeap, size);
}

void exchange(const TypeDescription& type, void* left, void* right) noexcept {
    auto* const octets = static_cast<unsigned char*>(left);
    std::swap_ranges(octets, octets + type.valueSize, static_cast<unsigned char*>(right));
}

void leaveForeignElements(ASN1CTXT* ctxt, Asn1RTDList& list) noexcept {
    for (Asn1RTDListNode* node = list.head; node != nullptr;) {
        Asn1RTDListNode* const next = node->next;
        if (node->data != node + 1) {
            rtDListRemove(&list, node);
            rtMemHeapFreePtr(&ctxt->memHeap, node);
        }
        node = next;
    }
}

} // namespace asn1data::family
