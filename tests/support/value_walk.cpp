#include "support/value_walk.h"

#include <brevantis/asn1/asn1data/family.h>
#include <brevantis/asn1/runtime/list.h>

namespace tests {

using namespace asn1data;

namespace {

template <class T>
const T& at(const void* record, std::size_t offset) {
    return *reinterpret_cast<const T*>(static_cast<const unsigned char*>(record) + offset);
}
const void* place(const void* record, std::size_t offset) {
    return static_cast<const unsigned char*>(record) + offset;
}

bool isPresent(const void* record, unsigned presenceOffset, unsigned bit) {
    return presenceOffset == NoOffset ||
           (at<unsigned>(record, presenceOffset + bit / 32 * 4) >> bit % 32 & 1u) != 0;
}

void walkSlot(const TableConstraint& table, const void* record, const Asn1TObject& slot,
              ValueVisitor& visitor) {
    const auto& identifier = at<ASN1TObjId>(record, table.identifierOffset);
    const ObjectDescription* object = family::findObject(*table.objects, identifier);
    visitor.openValue(identifier, object, slot);
    if (object != nullptr && object->type != nullptr && slot.decoded != nullptr) {
        walkValue(*object->type, slot.decoded, visitor);
    }
}

void walkOpenValue(const TableConstraint& table, const void* record, ValueVisitor& visitor) {
    if (!isPresent(record, table.presenceOffset, table.presenceBit)) {
        return;
    }
    if (table.value != OpenValue::OpenTypes) {
        walkSlot(table, record, at<Asn1TObject>(record, table.slotOffset), visitor);
        return;
    }
    for (const Asn1RTDListNode* node = at<Asn1RTDList>(record, table.valueOffset).head;
         node != nullptr; node = node->next) {
        walkSlot(table, record, *static_cast<const Asn1TObject*>(node->data), visitor);
    }
}

void walkRecord(const TypeDescription& type, const void* record, ValueVisitor& visitor) {
    for (unsigned i = 0; i < type.elementCount; ++i) {
        const ElementDescription& element = type.elements[i];
        if (element.presence == Presence::Optional &&
            !isPresent(record, type.presenceOffset, element.presenceBit)) {
            continue;
        }
        if (type.table != nullptr && element.offset == type.table->valueOffset) {
            walkOpenValue(*type.table, record, visitor);
        } else {
            walkValue(*element.type, place(record, element.offset), visitor);
        }
    }
}

} // namespace

void walkValue(const TypeDescription& type, const void* value, ValueVisitor& visitor) {
    visitor.value(type, value);
    switch (type.shape) {
    case Shape::Sequence:
    case Shape::Set:
        walkRecord(type, value, visitor);
        break;
    case Shape::Choice:
        if (const unsigned selector = at<unsigned>(value, type.countOffset); selector != 0) {
            const ElementDescription& alternative = type.elements[selector - 1];
            walkValue(*alternative.type,
                      alternative.indirect ? at<void*>(value, alternative.offset)
                                           : place(value, alternative.offset),
                      visitor);
        }
        break;
    case Shape::List:
        for (const Asn1RTDListNode* node = at<Asn1RTDList>(value, 0).head; node != nullptr;
             node = node->next) {
            walkValue(*type.element, node->data, visitor);
        }
        break;
    case Shape::Array:
    case Shape::FixedArray: {
        const void* elements = type.shape == Shape::FixedArray ? place(value, type.dataOffset)
                                                               : at<void*>(value, type.dataOffset);
        for (unsigned i = 0; i < at<unsigned>(value, type.countOffset); ++i) {
            walkValue(*type.element, place(elements, std::size_t{i} * type.element->valueSize),
                      visitor);
        }
        break;
    }
    default:
        break;
    }
}

} // namespace tests
