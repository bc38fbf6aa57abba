#include <type_traits>

#include <brevantis/asn1/asn1data/family.h>
#include <brevantis/asn1/asn1data/object.h>
#include <brevantis/asn1/asn1data/value_visit.h>
#include <brevantis/asn1/runtime/object_identifier.h>
#include <brevantis/asn1/runtime/open_type.h>

#include "value_access.h"

namespace asn1data::family {

namespace {

/// Frees a block and clears the pointer to it, so that a value released twice does no harm.
template <class Pointee>
void freeBlock(ASN1CTXT* ctxt, Pointee*& block) {
    // The heap takes back what it gave out, also where the value only lets it be read.
    void* owned = const_cast<std::remove_const_t<Pointee>*>(block);
    if (owned != nullptr) {
        rtMemHeapFreePtr(&ctxt->memHeap, owned);
        block = nullptr;
    }
}

/// Frees the octets of a string or an open type. Under ASN1F_NO_COPY they may be the message's own,
/// of this buffer or of one bound before, so all of them are left to the heap's end.
void freeOctets(ASN1CTXT* ctxt, const unsigned char*& octets) {
    if ((ctxt->flags & ASN1F_NO_COPY) != 0) {
        octets = nullptr;
        return;
    }
    freeBlock(ctxt, octets);
}

void releasePrimitive(ASN1CTXT* ctxt, const TypeDescription& type, void* value);
void releaseChoice(ASN1CTXT* ctxt, const TypeDescription& type, void* record);
void releaseConstructed(ASN1CTXT* ctxt, const TypeDescription& type, void* value);

/// A value that is there, of a type that holds memory.
[[gnu::always_inline]] inline void releaseValue(ASN1CTXT* ctxt, const TypeDescription& type,
                                                void* value) {
    switch (type.road) {
    case Road::Primitive:
        releasePrimitive(ctxt, type, value);
        break;
    case Road::Choice:
        releaseChoice(ctxt, type, value);
        break;
    case Road::Constructed:
        releaseConstructed(ctxt, type, value);
        break;
    case Road::Tagged:
        release(ctxt, type, value);
        break;
    }
}

void releaseTyped(ASN1CTXT* ctxt, const ObjectDescription* object, Asn1TObject& slot) {
    if (object != nullptr) {
        releaseSlot(ctxt, *object->type, slot);
    }
    slot.decoded = nullptr;
}

/// The typed form of an open value; the raw octets are released as the element that they are.
void releaseOpenValue(ASN1CTXT* ctxt, const TableConstraint& table, void* record) {
    if (!isOpenValuePresent(table, record)) {
        return;
    }
    const ObjectDescription* object = selectedObject(table, record);
    if (table.value == OpenValue::OpenTypes) {
        for (Asn1RTDListNode* node = at<Asn1RTDList>(record, table.valueOffset).head;
             node != nullptr; node = node->next) {
            releaseTyped(ctxt, object, *static_cast<Asn1TObject*>(node->data));
        }
        return;
    }
    auto& slot = at<Asn1TObject>(record, table.slotOffset);
    releaseTyped(ctxt, object, slot);
    if (table.value == OpenValue::OctetString) {
        // The slot shares the octets of the OCTET STRING beside it.
        slot.data = nullptr;
        slot.numocts = 0;
    }
}

void releaseRecord(ASN1CTXT* ctxt, const TypeDescription& type, void* record) {
    if (type.table != nullptr) {
        releaseOpenValue(ctxt, *type.table, record);
    }
    for (const ElementDescription& element : elementsOf(type)) {
        if (element.type->holdsMemory && isPresent(type, element, record)) {
            releaseValue(ctxt, *element.type, address(record, element.offset));
        }
    }
    if (type.extensionOffset != NoOffset) {
        rtMemFreeOpenSeqExt(ctxt, &at<Asn1RTDList>(record, type.extensionOffset));
    }
}

void releaseChoice(ASN1CTXT* ctxt, const TypeDescription& type, void* record) {
    const ElementDescription* alternative = selectedAlternative(type, record);
    if (alternative == nullptr) {
        return;
    }
    void* const value = alternativeValue(*alternative, record);
    if (value != nullptr && alternative->type->holdsMemory) {
        releaseValue(ctxt, *alternative->type, value);
    }
    if (alternative->indirect) {
        freeBlock(ctxt, at<void*>(record, alternative->offset));
    }
}

void releaseList(ASN1CTXT* ctxt, const TypeDescription& type, Asn1RTDList& list) {
    if (type.element->holdsMemory) {
        for (Asn1RTDListNode* node = list.head; node != nullptr; node = node->next) {
            if (node->data != nullptr) {
                releaseValue(ctxt, *type.element, node->data);
            }
        }
    }
    rtDListFreeAll(ctxt, &list);
}

void releaseArray(ASN1CTXT* ctxt, const TypeDescription& type, void* value) {
    auto* places = static_cast<unsigned char*>(arrayElements(type, value));
    const unsigned count = at<unsigned>(value, type.countOffset);
    if (type.element->holdsMemory && places != nullptr) {
        for (unsigned i = 0; i < count; ++i) {
            releaseValue(ctxt, *type.element, places + std::size_t{i} * type.element->valueSize);
        }
    }
    if (type.shape == Shape::Array) {
        freeBlock(ctxt, at<void*>(value, type.dataOffset));
    }
}

/// Releases what is not made of other values.
struct PrimitiveReleaser {
    ASN1CTXT* ctxt;

    void operator()(Is<Shape::OctetString>, ASN1TDynOctStr& value) const {
        freeOctets(ctxt, value.data);
    }
    void operator()(Is<Shape::BitString>, ASN1TDynBitStr& value) const {
        freeOctets(ctxt, value.data);
    }
    void operator()(Is<Shape::Text>, const char*& value) const { freeBlock(ctxt, value); }
    void operator()(Is<Shape::Text16>, Asn116BitCharString& value) const {
        freeBlock(ctxt, value.data);
    }
    void operator()(Is<Shape::Text32>, Asn132BitCharString& value) const {
        freeBlock(ctxt, value.data);
    }
    void operator()(Is<Shape::OpenType>, ASN1OpenType& value) const {
        freeOctets(ctxt, value.data);
    }
    /// Numbers hold nothing, and the text of an INTEGER stays with the heap: it may be a DEFAULT
    /// that never came from there.
    template <Shape S, class Value,
              class = std::enable_if_t<!isPrimitive(S) || !traitsOf(S).holdsMemory>>
    void operator()(Is<S>, Value&& /*value*/) const {}
};

void releasePrimitive(ASN1CTXT* ctxt, const TypeDescription& type, void* value) {
    withValue(type, value, PrimitiveReleaser{ctxt});
}

/// Releases any value.
struct Releaser : PrimitiveReleaser {
    using PrimitiveReleaser::operator();

    void operator()(Is<Shape::Sequence>, void* value) const { releaseRecord(ctxt, type, value); }
    void operator()(Is<Shape::Set>, void* value) const { releaseRecord(ctxt, type, value); }
    void operator()(Is<Shape::Choice>, void* value) const { releaseChoice(ctxt, type, value); }
    void operator()(Is<Shape::List>, Asn1RTDList& value) const { releaseList(ctxt, type, value); }
    void operator()(Is<Shape::Array>, void* value) const { releaseArray(ctxt, type, value); }
    void operator()(Is<Shape::FixedArray>, void* value) const { releaseArray(ctxt, type, value); }

    const TypeDescription& type;
};

void releaseConstructed(ASN1CTXT* ctxt, const TypeDescription& type, void* value) {
    withValue(type, value, Releaser{{ctxt}, type});
}

} // namespace

void release(ASN1CTXT* ctxt, const TypeDescription& type, void* value) {
    if (value == nullptr || !type.holdsMemory) {
        return;
    }
    const Nesting nesting(ctxt, type.closesRecursion);
    if (!nesting.tooDeep()) {
        releaseConstructed(ctxt, type, value);
    }
}

} // namespace asn1data::family
