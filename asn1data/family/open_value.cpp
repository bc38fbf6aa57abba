#include <brevantis/asn1/asn1data/family.h>
#include <brevantis/asn1/asn1data/object.h>
#include <brevantis/asn1/runtime/der_order.h>
#include <brevantis/asn1/runtime/tag_length.h>

#include "open_value.h"
#include "value_access.h"

namespace asn1data::family {

namespace {

/// Encodes a slot's typed value and makes a block of the result. It works on a buffer of its own,
/// since the context's may be a message that is being read.
int storeEncoded(ASN1CTXT* ctxt, const TypeDescription& type, Asn1TObject& slot) {
    if (slot.decoded == nullptr) {
        return ASN1S_SUCCESS;
    }
    ASN1CTXT saved;
    rtCopyContext(&saved, ctxt);
    int status = xe_setp(ctxt, nullptr, 0);
    if (status != ASN1S_SUCCESS) {
        return fail(ctxt, status);
    }
    status = encodeSlot(ctxt, type, slot);
    if (status >= 0) {
        const auto size = static_cast<unsigned>(status);
        auto* block = static_cast<unsigned char*>(rtMemHeapAlloc(&ctxt->memHeap, status));
        if (block != nullptr) {
            std::memcpy(block, xe_getp(ctxt), size);
            slot.data = block;
            slot.numocts = size;
        }
        status = block != nullptr ? ASN1S_SUCCESS : fail(ctxt, ASN1S_NO_MEMORY);
    }
    xe_free(ctxt);
    rtCopyContext(ctxt, &saved);
    return status;
}

/// Turns the context to a slot's raw octets and decodes them. The mark goes with the binding: it is
/// gone once the context is turned back, or to another message.
int decodeBound(ASN1CTXT* ctxt, const TypeDescription& type, Asn1TObject& slot,
                const ContentDecoder& decoder) {
    slot.decoded = nullptr;
    if (slot.numocts == 0) {
        return fail(ctxt, ASN1S_END_OF_BUFFER);
    }
    const int status = xd_setp(ctxt, slot.data, static_cast<int>(slot.numocts), nullptr, nullptr);
    ctxt->buffer.insideOpenValue = 1;
    return status == ASN1S_SUCCESS ? decodeSlot(ctxt, type, slot, decoder) : fail(ctxt, status);
}

/// The same, but where the context tolerates it a slot whose octets do not decode stays raw.
int decodeRaw(ASN1CTXT* ctxt, const TypeDescription& type, Asn1TObject& slot,
              const ContentDecoder& decoder) {
    const int recorded = ctxt->errInfo.status;
    const int status = decodeBound(ctxt, type, slot, decoder);
    if (status == ASN1S_SUCCESS || !staysRaw(*ctxt, status)) {
        return status;
    }
    void* const record = slot.decoded;
    releaseSlot(ctxt, type, slot);
    rtMemHeapFreePtr(&ctxt->memHeap, record);
    ctxt->errInfo.status = recorded;
    return ASN1S_SUCCESS;
}

/// Runs an operation on every slot of a list, from head to tail, until it fails.
template <class Operation>
int forEachSlot(Asn1RTDList& list, Operation operation) {
    for (Asn1RTDListNode* node = list.head; node != nullptr; node = node->next) {
        const int status = operation(*static_cast<Asn1TObject*>(node->data));
        if (status != ASN1S_SUCCESS) {
            return status;
        }
    }
    return ASN1S_SUCCESS;
}

/// Whether an object has the arcs of an identifier, which differ at the end if anywhere.
bool hasArcs(const ObjectDescription& object, const ASN1OBJID& id) {
    if (object.arcCount != id.numids) {
        return false;
    }
    unsigned rest = id.numids;
    while (rest != 0 && object.arcs[rest - 1] == id.subid[rest - 1]) {
        --rest;
    }
    return rest == 0;
}

} // namespace

const ObjectDescription* findObject(const ObjectSetDescription& set, const ASN1OBJID& id) noexcept {
    if (id.numids == 0 || id.numids > ASN1MaxSubIds) {
        return nullptr;
    }
    const bool indexed = set.index.placeCount != 0;
    unsigned number = 1;
    if (indexed) {
        number = set.index.first[ObjectIndex::place(id.subid, id.numids, set.index.placeCount)];
    }
    while (number != 0 && number <= set.count) {
        const ObjectDescription& object = set.objects[number - 1];
        if (hasArcs(object, id)) {
            return &object;
        }
        number = indexed ? set.index.next[number - 1] : number + 1;
    }
    return nullptr;
}

const ObjectDescription* selectedObject(const TableConstraint& table, const void* record) {
    if (!isOpenValuePresent(table, record)) {
        return nullptr;
    }
    const ObjectDescription* object =
        findObject(*table.objects, at<ASN1TObjId>(record, table.identifierOffset));
    return object != nullptr && object->type != nullptr ? object : nullptr;
}

int encodeOpenValue(ASN1CTXT* ctxt, const TypeDescription& type, void* value) {
    const TableConstraint& table = *type.table;
    const ObjectDescription* object = selectedObject(table, value);
    if (object == nullptr) {
        return ASN1S_SUCCESS;
    }
    switch (table.value) {
    case OpenValue::OpenType:
        return storeEncoded(ctxt, *object->type, at<Asn1TObject>(value, table.slotOffset));
    case OpenValue::OpenTypes:
        return forEachSlot(at<Asn1RTDList>(value, table.valueOffset), [&](Asn1TObject& slot) {
            return storeEncoded(ctxt, *object->type, slot);
        });
    case OpenValue::OctetString: {
        auto& slot = at<Asn1TObject>(value, table.slotOffset);
        if (slot.decoded == nullptr) {
            return ASN1S_SUCCESS;
        }
        const int status = storeEncoded(ctxt, *object->type, slot);
        if (status == ASN1S_SUCCESS) {
            at<ASN1TDynOctStr>(value, table.valueOffset) = {slot.numocts, slot.data};
        }
        return status;
    }
    }
    return ASN1S_SUCCESS;
}

int decodeOpenValue(ASN1CTXT* ctxt, const TypeDescription& type, void* value) {
    return decodeOpenValue(ctxt, type, value, ContentDecoder());
}

int decodeOpenValue(ASN1CTXT* ctxt, const TypeDescription& type, void* value,
                    const ContentDecoder& decoder) {
    const TableConstraint& table = *type.table;
    if (table.value == OpenValue::OctetString) {
        const auto& octets = at<ASN1TDynOctStr>(value, table.valueOffset);
        auto& slot = at<Asn1TObject>(value, table.slotOffset);
        const bool present = isOpenValuePresent(table, value);
        slot.numocts = present ? octets.numocts : 0;
        slot.data = present ? octets.data : nullptr;
        slot.decoded = nullptr;
        if (slot.numocts == 0) {
            return ASN1S_SUCCESS;
        }
    }
    const ObjectDescription* object = selectedObject(table, value);
    if (object == nullptr) {
        return ASN1S_SUCCESS;
    }
    if (table.value == OpenValue::OpenTypes) {
        return forEachSlot(at<Asn1RTDList>(value, table.valueOffset), [&](Asn1TObject& slot) {
            return decodeRaw(ctxt, *object->type, slot, decoder);
        });
    }
    return decodeRaw(ctxt, *object->type, at<Asn1TObject>(value, table.slotOffset), decoder);
}

} // namespace asn1data::family
