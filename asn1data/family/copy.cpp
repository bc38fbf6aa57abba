#include <brevantis/asn1/asn1data/family.h>
#include <brevantis/asn1/asn1data/object.h>
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

void copyText(ASN1CTXT* ctxt, const void* source, void* target) {
    const char* text = at<const char*>(source, 0);
    auto& copied = at<const char*>(target, 0);
    if (text == nullptr) {
        copied = nullptr;
        return;
    }
    settle(ctxt, rtCopyCharStr(ctxt, text, &copied) != 0, copied);
}

/// The raw octets of an open value; its typed form is the business of the record around it, which
/// knows the identifier.
void copyOpenType(ASN1CTXT* ctxt, const TypeDescription& type, const void* source, void* target) {
    auto& raw = at<ASN1OpenType>(target, 0);
    settle(ctxt, rtCopyOpenType(ctxt, &at<ASN1OpenType>(source, 0), &raw) != 0, raw);
    if (type.valueSize == sizeof(Asn1TObject)) {
        at<Asn1TObject>(target, 0).decoded = nullptr;
    }
}

void copyPrimitive(ASN1CTXT* ctxt, const TypeDescription& type, const void* source, void* target) {
    switch (type.shape) {
    case Shape::ObjectIdentifier:
        rtCopyOID(ctxt, &at<ASN1TObjId>(source, 0), &at<ASN1TObjId>(target, 0));
        break;
    case Shape::OctetString: {
        auto& octets = at<ASN1TDynOctStr>(target, 0);
        settle(ctxt, rtCopyDynOctStr(ctxt, &at<ASN1TDynOctStr>(source, 0), &octets) != 0, octets);
        break;
    }
    case Shape::BitString: {
        auto& bits = at<ASN1TDynBitStr>(target, 0);
        settle(ctxt, rtCopyDynBitStr(ctxt, &at<ASN1TDynBitStr>(source, 0), &bits) != 0, bits);
        break;
    }
    case Shape::BigInteger:
    case Shape::BigUnsigned:
    case Shape::Text:
        copyText(ctxt, source, target);
        break;
    case Shape::Text16: {
        auto& text = at<Asn116BitCharString>(target, 0);
        settle(ctxt, rtCopy16BitCharStr(ctxt, &at<Asn116BitCharString>(source, 0), &text) != 0,
               text);
        break;
    }
    case Shape::Text32: {
        auto& text = at<Asn132BitCharString>(target, 0);
        settle(ctxt, rtCopy32BitCharStr(ctxt, &at<Asn132BitCharString>(source, 0), &text) != 0,
               text);
        break;
    }
    case Shape::OpenType:
        copyOpenType(ctxt, type, source, target);
        break;
    default:
        // Numbers and strings of a capacity hold everything themselves.
        std::memcpy(target, source, type.valueSize);
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
        setPresenceBits(target, type.presenceOffset, presenceBits(source, type.presenceOffset));
    }
    for (unsigned i = 0; i < type.elementCount; ++i) {
        const ElementDescription& element = type.elements[i];
        if (isPresent(type, element, source)) {
            copy(ctxt, *element.type, address(source, element.offset),
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
    copy(ctxt, *alternative->type, value, copied);
    at<unsigned>(target, type.countOffset) = at<unsigned>(source, type.countOffset);
}

void copyList(ASN1CTXT* ctxt, const TypeDescription& type, const void* source, void* target) {
    auto& list = at<Asn1RTDList>(target, 0);
    rtDListInit(&list);
    const int blockSize = static_cast<int>(sizeof(Asn1RTDListNode) + type.element->valueSize);
    for (const Asn1RTDListNode* node = at<Asn1RTDList>(source, 0).head; node != nullptr;
         node = node->next) {
        auto* block = static_cast<unsigned char*>(rtMemHeapAllocZ(&ctxt->memHeap, blockSize));
        if (block == nullptr) {
            fail(ctxt, ASN1S_NO_MEMORY);
            return;
        }
        void* element = block + sizeof(Asn1RTDListNode);
        copy(ctxt, *type.element, node->data, element);
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
        copy(ctxt, *type.element, from + copied * elementSize, to + copied * elementSize);
    }
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
    switch (type.shape) {
    case Shape::Sequence:
    case Shape::Set:
        copyRecord(ctxt, type, source, target);
        break;
    case Shape::Choice:
        copyChoice(ctxt, type, source, target);
        break;
    case Shape::List:
        copyList(ctxt, type, source, target);
        break;
    case Shape::Array:
    case Shape::FixedArray:
        copyArray(ctxt, type, source, target);
        break;
    default:
        copyPrimitive(ctxt, type, source, target);
        break;
    }
}

} // namespace asn1data::family
