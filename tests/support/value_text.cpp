#include "support/value_text.h"

#include <algorithm>

#include <brevantis/asn1/asn1data/family.h>
#include <brevantis/asn1/runtime/list.h>
#include <brevantis/asn1/runtime/object_identifier.h>

namespace tests {

using namespace asn1data;

namespace {

template <class T>
const T& at(const void* record, unsigned offset) {
    return *reinterpret_cast<const T*>(static_cast<const unsigned char*>(record) + offset);
}
const void* place(const void* record, std::size_t offset) {
    return static_cast<const unsigned char*>(record) + offset;
}

template <class Text>
std::vector<std::string> textsOf(const Asn1RTDList& list, Text text) {
    std::vector<std::string> texts;
    for (const Asn1RTDListNode* node = list.head; node != nullptr; node = node->next) {
        texts.push_back(text(node->data));
    }
    return texts;
}

/// Writes values with one detail.
class Writing {
public:
    explicit Writing(ValueDetail detail) : detail_(detail) {}

    std::string value(const TypeDescription& type, const void* value) const {
        switch (type.shape) {
        case Shape::Boolean:
            return at<unsigned char>(value, 0) != 0 ? "TRUE" : "FALSE";
        case Shape::Integer:
            return std::to_string(at<int>(value, 0));
        case Shape::Unsigned:
        case Shape::Enumerated:
            return std::to_string(at<unsigned>(value, 0));
        case Shape::Unsigned16:
            return std::to_string(at<unsigned short>(value, 0));
        case Shape::BigInteger:
        case Shape::BigUnsigned:
        case Shape::Text: {
            const char* text = at<const char*>(value, 0);
            return text != nullptr ? "'" + std::string(text) + "'" : "no text";
        }
        case Shape::Null:
            return "NULL";
        case Shape::ObjectIdentifier:
            return numbersText(at<ASN1TObjId>(value, 0).subid, at<ASN1TObjId>(value, 0).numids);
        case Shape::OctetString:
        case Shape::OpenType: { // begins as an OCTET STRING does
            const auto& string = at<ASN1TDynOctStr>(value, 0);
            return octetsText(string.numocts, string.data, string.numocts);
        }
        case Shape::BitString: {
            const auto& string = at<ASN1TDynBitStr>(value, 0);
            return bits(string.numbits, string.data);
        }
        case Shape::FixedOctetString: {
            const unsigned count = at<unsigned>(value, type.countOffset);
            return octetsText(count, &at<unsigned char>(value, type.dataOffset), count);
        }
        case Shape::FixedBitString:
            return bits(at<unsigned>(value, type.countOffset),
                        &at<unsigned char>(value, type.dataOffset));
        case Shape::Text16:
            return numbersText(at<Asn116BitCharString>(value, 0).data,
                               at<Asn116BitCharString>(value, 0).nchars);
        case Shape::Text32:
            return numbersText(at<Asn132BitCharString>(value, 0).data,
                               at<Asn132BitCharString>(value, 0).nchars);
        case Shape::Sequence:
        case Shape::Set:
            return record(type, value);
        case Shape::Choice:
            return choice(type, value);
        case Shape::List:
            return members(type, textsOf(at<Asn1RTDList>(value, 0), [&](const void* member) {
                               return this->value(*type.element, member);
                           }));
        case Shape::Array:
        case Shape::FixedArray:
            return array(type, value);
        }
        return "";
    }

private:
    static std::string bits(unsigned count, const unsigned char* octets) {
        return octetsText(count, octets, (count + 7) / 8);
    }

    std::string members(const TypeDescription& type, std::vector<std::string> texts) const {
        if (type.setOf && detail_ == ValueDetail::Meaning) {
            std::sort(texts.begin(), texts.end());
        }
        return membersText(texts);
    }

    /// A value that was never decoded has its typed form alone.
    std::string slot(const ObjectDescription* object, const Asn1TObject& slot) const {
        const bool typed = object != nullptr && object->type != nullptr && slot.decoded != nullptr;
        std::string text;
        if (!typed || detail_ == ValueDetail::Everything) {
            text = octetsText(slot.numocts, slot.data, slot.numocts);
        }
        return typed ? text + " typed " + value(*object->type, slot.decoded) : text;
    }

    std::string element(const TypeDescription& type, const ElementDescription& element,
                        const void* record) const {
        const TableConstraint* table = type.table;
        if (table == nullptr || element.offset != table->valueOffset) {
            return value(*element.type, place(record, element.offset));
        }
        const ObjectDescription* object =
            family::findObject(*table->objects, at<ASN1TObjId>(record, table->identifierOffset));
        if (table->value == OpenValue::OpenTypes) {
            return members(
                *element.type,
                textsOf(at<Asn1RTDList>(record, element.offset), [&](const void* member) {
                    return slot(object, at<Asn1TObject>(member, 0));
                }));
        }
        const auto& slotOfValue = at<Asn1TObject>(record, table->slotOffset);
        return table->value == OpenValue::OpenType || slotOfValue.decoded != nullptr
                   ? slot(object, slotOfValue)
                   : value(*element.type, place(record, element.offset));
    }

    std::string record(const TypeDescription& type, const void* record) const {
        std::string text = "{";
        for (unsigned i = 0; i < type.elementCount; ++i) {
            const ElementDescription& described = type.elements[i];
            if (described.presence != Presence::Optional ||
                (at<unsigned>(record, type.presenceOffset + described.presenceBit / 32 * 4) >>
                     described.presenceBit % 32 &
                 1u) != 0) {
                text += std::string(described.name) + " " + element(type, described, record) + ", ";
            }
        }
        if (type.extensionOffset != NoOffset) {
            const auto unknown = [this](const void* element) {
                return value(builtin::openType, element);
            };
            for (const std::string& addition :
                 textsOf(at<Asn1RTDList>(record, type.extensionOffset), unknown)) {
                text += addition + ", ";
            }
        }
        return text + "}";
    }

    std::string array(const TypeDescription& type, const void* value) const {
        std::vector<std::string> texts;
        const void* places = type.shape == Shape::FixedArray ? place(value, type.dataOffset)
                                                             : at<void*>(value, type.dataOffset);
        for (unsigned i = 0; i < at<unsigned>(value, type.countOffset); ++i) {
            texts.push_back(this->value(*type.element,
                                        place(places, std::size_t{i} * type.element->valueSize)));
        }
        return members(type, std::move(texts));
    }

    std::string choice(const TypeDescription& type, const void* value) const {
        const unsigned selector = at<unsigned>(value, type.countOffset);
        if (selector == 0) {
            return "no alternative";
        }
        const ElementDescription& alternative = type.elements[selector - 1];
        return std::string(alternative.name) + " " +
               this->value(*alternative.type, alternative.indirect
                                                  ? at<void*>(value, alternative.offset)
                                                  : place(value, alternative.offset));
    }

    ValueDetail detail_;
};

} // namespace

std::string valueText(const TypeDescription& type, const void* value, ValueDetail detail) {
    return Writing(detail).value(type, value);
}

bool equalValues(const TypeDescription& type, const void* a, const void* b) {
    return valueText(type, a, ValueDetail::Meaning) == valueText(type, b, ValueDetail::Meaning);
}

} // namespace tests
