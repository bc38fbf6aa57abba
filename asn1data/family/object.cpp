#include <brevantis/asn1/asn1data/object.h>

#include <brevantis/asn1/runtime/heap.h>
#include <brevantis/asn1/runtime/status.h>

#include "open_value.h"
#include "value_access.h"

namespace asn1data {

DescribedControl::DescribedControl(ASN1MessageBufferIF& buffer, void* value,
                                   const TypeDescription& describedType)
    : ASN1CType(buffer), type(describedType), msgData(value) {}

int DescribedControl::EncodeTo(ASN1MessageBufferIF& buffer) {
    return family::encodeTo(*this, buffer, type, msgData);
}

int DescribedControl::DecodeFrom(ASN1MessageBufferIF& buffer) {
    return family::decodeFrom(*this, buffer, type, msgData);
}

namespace family {

namespace {

// In front of a control object: the heap that its room came from. The object's own context may
// have been turned to another heap by the time it ends.
union RoomHeader {
    void* heap;
    std::max_align_t alignment;
};

} // namespace

int encodeSlot(ASN1CTXT* ctxt, const TypeDescription& type, Asn1TObject& slot) {
    if (slot.decoded == nullptr && type.shape != Shape::Null) {
        return fail(ctxt, ASN1S_INVALID_PARAMETER);
    }
    const Nesting nesting(ctxt, true);
    return nesting.tooDeep() ? fail(ctxt, ASN1S_NO_MEMORY)
                             : encode(ctxt, type, slot.decoded, ASN1TagExplicit);
}

int decodeSlot(ASN1CTXT* ctxt, const TypeDescription& type, Asn1TObject& slot) {
    return decodeSlot(ctxt, type, slot, ContentDecoder());
}

int decodeSlot(ASN1CTXT* ctxt, const TypeDescription& type, Asn1TObject& slot,
               const ContentDecoder& decoder) {
    slot.decoded = nullptr;
    const Nesting nesting(ctxt, true);
    if (!nesting.tooDeep()) {
        slot.decoded = newRecord(ctxt, type);
    }
    if (slot.decoded == nullptr) {
        return fail(ctxt, ASN1S_NO_MEMORY);
    }
    return decoder(ctxt, type, slot.decoded);
}

void copySlot(ASN1CTXT* ctxt, const TypeDescription& type, const Asn1TObject& source,
              Asn1TObject& target) {
    target.decoded = nullptr;
    if (source.decoded == nullptr) {
        return;
    }
    const Nesting nesting(ctxt, true);
    void* const record = nesting.tooDeep() ? nullptr : newRecord(ctxt, type);
    if (record == nullptr) {
        fail(ctxt, ASN1S_NO_MEMORY);
        return;
    }
    copy(ctxt, type, source.decoded, record);
    target.decoded = record;
}

void releaseSlot(ASN1CTXT* ctxt, const TypeDescription& type, Asn1TObject& slot) {
    const Nesting nesting(ctxt, true);
    if (slot.decoded != nullptr && !nesting.tooDeep()) {
        release(ctxt, type, slot.decoded);
    }
    slot.decoded = nullptr;
}

void* controlRoom(ASN1MessageBufferIF& buffer, std::size_t size) noexcept {
    ASN1CTXT* const ctxt = buffer.getCtxtPtr();
    void* const room = rtMemHeapAllocZ(&ctxt->memHeap, static_cast<int>(sizeof(RoomHeader) + size));
    if (room == nullptr) {
        return nullptr;
    }
    auto* const header = new (room) RoomHeader;
    header->heap = ctxt->memHeap;
    rtMemHeapAddRef(&header->heap);
    return header + 1;
}

void endControl(ASN1CType* control) {
    if (control == nullptr) {
        return;
    }
    auto* const header = static_cast<RoomHeader*>(dynamic_cast<void*>(control)) - 1;
    void* heap = header->heap;
    control->~ASN1CType();
    rtMemHeapFreePtr(&heap, header);
    rtMemHeapRelease(&heap);
}

ASN1CType* newControl(ASN1MessageBufferIF& buffer, void* value, const TypeDescription& type) {
    if (value == nullptr && type.shape != Shape::Null) {
        return nullptr;
    }
    void* const room = controlRoom(buffer, sizeof(DescribedControl));
    return room != nullptr ? new (room) DescribedControl(buffer, value, type) : nullptr;
}

} // namespace family

} // namespace asn1data
