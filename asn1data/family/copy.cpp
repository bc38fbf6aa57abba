#include <brevantis/asn1/asn1data/family.h>
#include <brevantis/asn1/asn1data/object.h>
#include <brevantis/asn1/asn1data/value_visit.h>
#include <brevantis/asn1/runtime/open_type.h>
#include <brevantis/asn1/runtime/value_copy.h>

#include "value_access.h"

namespace asn1data::family {

namespace {

/// Takes the result of a copying call: a failed one leaves an empty target, so that the copy can
/// still be released, and is recorded.
template <class Value>
void settle(ASN1CTXT* ctxt, bool copied, Value& target) {
    if (!copied) {
        target = Value{};
        fail(ctxt, ASN1S_NO_MEMORY);
    }
}

/// Copies a primitive.
struct PrimitiveCopier {
    ASN1CTXT* ctxt;
    const TypeDescription& type;

    void operator()(Is<Shape::Null>, const void* /*source*/, void* /*target*/) const {}
    void operator()(Is<Shape::ObjectIdentifier>, const ASN1TObjId& source,
                    ASN1TObjId& target) const {
        rtCopyOID(ctxt, &source, &target);
    }
    void operator()(Is<Shape::OctetString>, const ASN1TDynOctStr& source,
                    ASN1TDynOctStr& target) const {
        settle(ctxt, rtCopyDynOctStr(ctxt, &source, &target) != 0, target);
    }
    void operator()(Is<Shape::BitString>, const ASN1TDynBitStr& source,
                    ASN1TDynBitStr& target) const {
        settle(ctxt, rtCopyDynBitStr(ctxt, &source, &target) != 0, target);
    }
    void operator()(Is<Shape::Text16>, const Asn116BitCharString& source,
                    Asn116BitCharString& target) const {
        settle(ctxt, rtCopy16BitCharStr(ctxt, &source, &target) != 0, target);
    }
    void operator()(Is<Shape::Text32>, const Asn132BitCharString& source,
                    Asn132BitCharString& target) const {
        settle(ctxt, rtCopy32BitCharStr(ctxt, &source, &target) != 0, target);
    }
    /// The raw octets of an open value; its typed form is the business of the record around it,
    /// which knows the identifier.
    void operator()(Is<Shape::OpenType>, const ASN1OpenType& source, ASN1OpenType& target) const {
        settle(ctxt, rtCopyOpenType(ctxt, &source, &target) != 0, target);
        if (type.valueSize == sizeof(Asn1TObject)) {
            static_cast<Asn1TObject&>(target).decoded = nullptr;
        }
    }
    template <Shape S, class Value, class = std::enable_if_t<isPrimitive(S)>>
    void operator()(Is<S>, const Value& source, Value& target) const {
        if constexpr (std::is_same_v<Value, const char*>) {
            if (source == nullptr) {
                target = nullptr;
            } else {
                settle(ctxt, rtCopyCharStr(ctxt, source, &target) != 0, target);
            }
        } else {
            static_assert(std::is_arithmetic_v<Value>, "numbers hold everything themselves");
            target = source;
        }
    }
    /// A string in the record.
    template <Shape S>
    void operator()(Is<S>, FixedString<const unsigned char> source,
                    FixedString<unsigned char> target) const {
        target.count = source.count;
        std::memcpy(target.data, source.data, octetsOf(S, source.capacity));
    }
    /// What is made of other values is none.
    template <Shape S, class Source, class Target, class = std::enable_if_t<!isPrimitive(S)>>
    void operator()(Is<S>, Source&& /*source*/, Target&& /*target*/) const {}

private:
    static std::size_t octetsOf(Shape shape, unsigned capacity) {
        return shape == Shape::FixedBitString ? (capacity + 7) / 8 : capacity;
    }
};

void copyPrimitive(ASN1CTXT* ctxt, const TypeDescription& type, const void* source, void* target) {
    withValues(type, source, target, PrimitiveCopier{ctxt, type});
}

void copyChoice(ASN1CTXT* ctxt, const TypeDescription& type, const void* source, void* target);
void copyConstructed(ASN1CTXT* ctxt, const TypeDescription& type, const void* source, void* target);

/// A value that is there, to a place of its own.
[[gnu::always_inline]] inline void copyValue(ASN1CTXT* ctxt, const TypeDescription& type,
                                             const void* source, void* target) {
    switch (type.road) {
    case Road::Primitive:
        copyPrimitive(ctxt, type, source, target);
        break;
    case Road::Choice:
        copyChoice(ctxt, type, source, target);
        break;
    case Road::Constructed:
        copyConstructed(ctxt, type, source, target);
        break;
    case Road::Tagged:
        copy(ctxt, type, source, target);
        break;
    }
}

/// An unknown identifier has no typed form.
void copyTyped(ASN1CTXT* ctxt, const ObjectDescription* object, const Asn1TObject& source,
               Asn1TObject& target) {
    target.decoded = nullptr;
    if (object != nullptr) {
        copySlot(ctxt, *object->type, source, target);
    }
}

/// The typed form of an open value, whose raw octets have been copied already.
void copyOpenValue(ASN1CTXT* ctxt, const TableConstraint& table, const void* source, void* target) {
    if (!isOpenValuePresent(table, source)) {
        return;
    }
    const ObjectDescription* object = selectedObject(table, source);
    if (table.value == OpenValue::OpenTypes) {
        const auto* from = at<Asn1RTDList>(source, table.valueOffset).head;
        auto* to = at<Asn1RTDList>(target, table.valueOffset).head;
        for (; from != nullptr && to != nullptr; from = from->next, to = to->next) {
            copyTyped(ctxt, object, *static_cast<const Asn1TObject*>(from->data),
                      *static_cast<Asn1TObject*>(to->data));
        }
        return;
    }
    auto& slot = at<Asn1TObject>(target, table.slotOffset);
    copyTyped(ctxt, object, at<Asn1TObject>(source, table.slotOffset), slot);
    if (table.value == OpenValue::OctetString) {
        const auto& octets = at<ASN1TDynOctStr>(target, table.valueOffset);
        slot.numocts = octets.numocts;
        slot.data = octets.data;
    }
}

void copyRecord(ASN1CTXT* ctxt, const TypeDescription& type, const void* source, void* target) {
    if (type.presenceOffset != NoOffset) {
        for (unsigned bit = presenceBitCount(type); bit > 0; bit -= 32) {
            setPresenceWord(target, type.presenceOffset, bit - 32,
                            presenceWord(source, type.presenceOffset, bit - 32));
        }
    }
    for (const ElementDescription& element : elementsOf(type)) {
        if (isPresent(type, element, source)) {
            copyValue(ctxt, *element.type, address(source, element.offset),
                      address(target, element.offset));
        }
    }
    if (type.extensionOffset != NoOffset) {
        auto& list = at<Asn1RTDList>(target, type.extensionOffset);
        if (rtCopyOpenTypeExt(ctxt, &at<Asn1RTDList>(source, type.extensionOffset), &list) == 0) {
            fail(ctxt, ASN1S_NO_MEMORY);
        }
    }
    if (type.table != nullptr) {
        copyOpenValue(ctxt, *type.table, source, target);
    }
}

void copyChoice(ASN1CTXT* ctxt, const TypeDescription& type, const void* source, void* target) {
    at<unsigned>(target, type.countOffset) = 0;
    const ElementDescription* alternative = selectedAlternative(type, source);
    if (alternative == nullptr) {
        return;
    }
    const void* value = address(source, alternative->offset);
    void* copied = address(target, alternative->offset);
    if (alternative->indirect) {
        value = at<void*>(source, alternative->offset);
        void* record = value != nullptr ? newRecord(ctxt, *alternative->type) : nullptr;
        if (record == nullptr) {
            if (value != nullptr) {
                fail(ctxt, ASN1S_NO_MEMORY);
            }
            return;
        }
        at<void*>(target, alternative->offset) = record;
        copied = record;
    }
    copyValue(ctxt, *alternative->type, value, copied);
    at<unsigned>(target, type.countOffset) = at<unsigned>(source, type.countOffset);
}

void copyList(ASN1CTXT* ctxt, const TypeDescription& type, const Asn1RTDList& source,
              Asn1RTDList& list) {
    rtDListInit(&list);
    const int blockSize = static_cast<int>(sizeof(Asn1RTDListNode) + type.element->valueSize);
    for (const Asn1RTDListNode* node = source.head; node != nullptr; node = node->next) {
        auto* block = static_cast<unsigned char*>(rtMemHeapAllocZ(&ctxt->memHeap, blockSize));
        if (block == nullptr) {
            fail(ctxt, ASN1S_NO_MEMORY);
            return;
        }
        void* element = block + sizeof(Asn1RTDListNode);
        if (node->data != nullptr) {
            copyValue(ctxt, *type.element, node->data, element);
        }
        rtDListAppendNode(ctxt, &list, element);
    }
}

void copyArray(ASN1CTXT* ctxt, const TypeDescription& type, const void* source, void* target) {
    const std::size_t elementSize = type.element->valueSize;
    unsigned count = at<unsigned>(source, type.countOffset);
    const auto* from = static_cast<const unsigned char*>(type.shape == Shape::FixedArray
                                                             ? address(source, type.dataOffset)
                                                             : at<void*>(source, type.dataOffset));
    auto& copied = at<unsigned>(target, type.countOffset);
    copied = 0;
    if (type.shape == Shape::FixedArray) {
        count = count < type.capacity ? count : type.capacity;
    } else {
        at<void*>(target, type.dataOffset) = nullptr;
        if (count == 0 || from == nullptr) {
            return;
        }
        const unsigned long long size = static_cast<unsigned long long>(count) * elementSize;
        void* places =
            size <= 0x7FFFFFCFu ? rtMemHeapAllocZ(&ctxt->memHeap, static_cast<int>(size)) : nullptr;
        if (places == nullptr) {
            fail(ctxt, ASN1S_NO_MEMORY);
            return;
        }
        at<void*>(target, type.dataOffset) = places;
    }
    auto* to = static_cast<unsigned char*>(arrayElements(type, target));
    for (; copied < count; ++copied) {
        copyValue(ctxt, *type.element, from + copied * elementSize, to + copied * elementSize);
    }
}

/// Copies any value.
struct Copier : PrimitiveCopier {
    using PrimitiveCopier::operator();

    void operator()(Is<Shape::Sequence>, const void* source, void* target) const {
        copyRecord(ctxt, type, source, target);
    }
    void operator()(Is<Shape::Set>, const void* source, void* target) const {
        copyRecord(ctxt, type, source, target);
    }
    void operator()(Is<Shape::Choice>, const void* source, void* target) const {
        copyChoice(ctxt, type, source, target);
    }
    void operator()(Is<Shape::List>, const Asn1RTDList& source, Asn1RTDList& target) const {
        copyList(ctxt, type, source, target);
    }
    void operator()(Is<Shape::Array>, const void* source, void* target) const {
        copyArray(ctxt, type, source, target);
    }
    void operator()(Is<Shape::FixedArray>, const void* source, void* target) const {
        copyArray(ctxt, type, source, target);
    }
};

void copyConstructed(ASN1CTXT* ctxt, const TypeDescription& type, const void* source,
                     void* target) {
    withValues(type, source, target, Copier{{ctxt, type}});
}

} // namespace

void copy(ASN1CTXT* ctxt, const TypeDescription& type, const void* source, void* target) {
    if (source == target || source == nullptr || target == nullptr) {
        return;
    }
    const Nesting nesting(ctxt, type.closesRecursion);
    if (nesting.tooDeep()) {
        fail(ctxt, ASN1S_NO_MEMORY);
        return;
    }
    copyConstructed(ctxt, type, source, target);
}

} // namespace asn1data::family
