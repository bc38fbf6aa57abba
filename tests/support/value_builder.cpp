#include "support/value_builder.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

#include <brevantis/asn1/asn1data/family.h>
#include <brevantis/asn1/asn1data/value_visit.h>
#include <brevantis/asn1/runtime/big_integer.h>
#include <brevantis/asn1/runtime/heap.h>
#include <brevantis/asn1/runtime/list.h>
#include <brevantis/asn1/runtime/object_identifier.h>

namespace tests {

using namespace asn1data;

namespace {

enum : unsigned { DeepEnough = 6, FarEnough = 64, Unreachable = 1000 };

template <class T>
T& at(void* record, unsigned offset) {
    return *reinterpret_cast<T*>(static_cast<unsigned char*>(record) + offset);
}

/// How deep the shallowest value of a type is: a CHOICE far down takes the way out.
unsigned shallowest(const TypeDescription& type, unsigned limit) {
    thread_local std::map<std::pair<const TypeDescription*, unsigned>, unsigned> known;
    if (limit == 0) {
        return Unreachable;
    }
    const auto key = std::make_pair(&type, limit);
    const auto found = known.find(key);
    if (found != known.end()) {
        return found->second;
    }
    unsigned depth = 0;
    if (type.shape == Shape::Choice) {
        depth = Unreachable;
        for (unsigned i = 0; i < type.elementCount; ++i) {
            depth = std::min(depth, shallowest(*type.elements[i].type, limit - 1) + 1);
        }
    } else if (type.shape == Shape::Sequence || type.shape == Shape::Set) {
        for (unsigned i = 0; i < type.elementCount; ++i) {
            if (type.elements[i].presence == Presence::Mandatory) {
                depth = std::max(depth, shallowest(*type.elements[i].type, limit - 1) + 1);
            }
        }
    } else if (type.element != nullptr && type.constraint.count != 0 &&
               type.constraint.ranges[0].lower > 0) {
        depth = shallowest(*type.element, limit - 1) + 1;
    }
    known[key] = depth;
    return depth;
}

bool overlap(const IdentifierSet& a, const IdentifierSet& b) {
    return ((a.bits[0] & b.bits[0]) | (a.bits[1] & b.bits[1]) | (a.bits[2] & b.bits[2]) |
            (a.bits[3] & b.bits[3])) != 0;
}

/// Whether an element would be read as one in front of it that is absent: only their order tells
/// such elements apart.
bool isTakenForAnother(const TypeDescription& type, unsigned index, void* record) {
    const ElementDescription& element = type.elements[index];
    for (unsigned i = index; element.tagging == Tagging::Untagged && i-- > 0;) {
        const ElementDescription& before = type.elements[i];
        if (before.presence == Presence::Mandatory) {
            return false;
        }
        const bool absent =
            before.presence == Presence::Optional &&
            (at<unsigned>(record, type.presenceOffset + before.presenceBit / 32 * 4) >>
                 before.presenceBit % 32 &
             1u) == 0;
        if (absent && before.tagging == Tagging::Untagged &&
            overlap(before.type->identifiers, element.type->identifiers)) {
            return true;
        }
    }
    return false;
}

/// What the library made, unless memory was out.
template <class T>
T* made(T* part) {
    if (part == nullptr) {
        throw std::bad_alloc();
    }
    return part;
}

} // namespace

template <class T>
T* ValueBuilder::allocate(std::size_t count) {
    void* block = rtMemHeapAllocZ(&ctxt_->memHeap, static_cast<int>(count * sizeof(T)));
    return static_cast<T*>(made(block));
}

bool ValueBuilder::canBuild(const TypeDescription& type) {
    return shallowest(type, FarEnough) < Unreachable;
}

void* ValueBuilder::build(const TypeDescription& type) {
    void* value = made(builder_.create(type));
    fill(type, type.constraint, value);
    return value;
}

long long ValueBuilder::number(const Constraint& constraint, long long lowest, long long highest) {
    if (constraint.count != 0) {
        const ValueRange& range = constraint.ranges[below(constraint.count)];
        lowest = std::max(lowest, range.lower);
        highest = std::min(highest, range.upper);
    }
    switch (below(4)) {
    case 0:
        return lowest;
    case 1:
        return highest;
    case 2:
        return std::clamp(static_cast<long long>(below(300)), lowest, highest);
    default:
        break;
    }
    // Without a sign, for the whole of 64 bits has more numbers than a long long can tell.
    const auto first = static_cast<unsigned long long>(lowest);
    const unsigned long long count = static_cast<unsigned long long>(highest) - first + 1;
    return static_cast<long long>(first + (count != 0 ? random_() % count : random_()));
}

unsigned ValueBuilder::size(const Constraint& constraint, unsigned usual, unsigned highest) {
    long long lower = 0;
    long long upper = highest;
    if (constraint.count != 0) {
        const ValueRange& range = constraint.ranges[below(constraint.count)];
        lower = range.lower;
        upper = std::min(upper, range.upper);
    }
    upper = std::min(upper, lower + usual);
    return static_cast<unsigned>(lower) + below(static_cast<unsigned>(upper - lower) + 1);
}

unsigned char* ValueBuilder::octets(unsigned count) {
    auto* data = allocate<unsigned char>(count);
    for (unsigned i = 0; i < count; ++i) {
        data[i] = static_cast<unsigned char>(random_());
    }
    return data;
}

/// The text form that the decoder gives to a random minimal INTEGER.
const char* ValueBuilder::integerText() {
    const unsigned count = 1 + below(chance(10) ? 300 : 20);
    const unsigned char* content = octets(count);
    std::string digits;
    for (unsigned i = 0; i < count; ++i) {
        digits += "0123456789abcdef"[content[i] >> 4];
        digits += "0123456789abcdef"[content[i] & 15];
    }
    // Nine leading bits alike would not be minimal; a positive value with its top bit set is told
    // by one digit 0 in front.
    const bool redundant =
        count > 1 && ((content[0] == 0xFF && content[1] >= 0x80) || content[0] == 0);
    if (redundant) {
        digits = "7f";
    } else if (count == 1 && content[0] == 0) {
        digits = "0";
    } else if (content[0] >= 0x80 && chance(50)) {
        digits.insert(0, "0");
    }
    digits.insert(0, "0x");
    auto* text = allocate<char>(digits.size() + 1);
    std::memcpy(text, digits.c_str(), digits.size() + 1);
    return text;
}

const char* ValueBuilder::text(const TypeDescription& type, unsigned length) {
    std::string characters;
    const bool utf8 = type.tag == builtin::utf8String.tag;
    for (unsigned i = 0; i < length; ++i) {
        if (utf8 && chance(20)) {
            characters += chance(50) ? "\xC3\xA9" : "\xE2\x82\xAC";
        } else if (type.tag == builtin::numericString.tag) {
            characters += static_cast<char>('0' + below(10));
        } else {
            characters += static_cast<char>(' ' + below(95));
        }
    }
    auto* copy = allocate<char>(characters.size() + 1);
    std::memcpy(copy, characters.c_str(), characters.size() + 1);
    return copy;
}

void ValueBuilder::fillOpenType(ASN1OpenType& value) {
    static const std::vector<std::vector<unsigned char>> elements = {
        {0x05, 0x00},
        {0x02, 0x01, 0x7F},
        {0x04, 0x03, 0x00, 0x00, 0x00},
        {0x30, 0x06, 0x0C, 0x01, 'a', 0x01, 0x01, 0xFF},
        {0x30, 0x80, 0x05, 0x00, 0x00, 0x00},
        {0x9F, 0x81, 0x01, 0x01, 0x55},
        {0xA0, 0x02, 0x30, 0x00},
    };
    const auto& element = elements[below(static_cast<unsigned>(elements.size()))];
    auto* data = allocate<unsigned char>(element.size());
    std::memcpy(data, element.data(), element.size());
    value.numocts = static_cast<unsigned>(element.size());
    value.data = data;
}

/// Gives a value content of its shape.
struct ValueBuilder::Filling {
    ValueBuilder& builder;
    const TypeDescription& type;
    const Constraint& constraint;

    void operator()(Is<Shape::Boolean>, unsigned char& value) const {
        value = static_cast<unsigned char>(builder.below(2) != 0 ? 0xFF : 0);
    }
    void operator()(Is<Shape::Integer>, int& value) const {
        setNumber(value, INT32_MIN, INT32_MAX);
    }
    void operator()(Is<Shape::Unsigned>, unsigned& value) const { setNumber(value, 0, UINT32_MAX); }
    void operator()(Is<Shape::Unsigned16>, unsigned short& value) const {
        setNumber(value, 0, UINT16_MAX);
    }
    void operator()(Is<Shape::Enumerated>, unsigned& value) const {
        setNumber(value, 0, INT32_MAX);
    }
    void operator()(Is<Shape::BigInteger>, const char*& value) const {
        value = builder.integerText();
    }
    void operator()(Is<Shape::BigUnsigned>, const char*& value) const {
        value = builder.integerText();
    }
    void operator()(Is<Shape::Null>, void* /*value*/) const {}
    void operator()(Is<Shape::ObjectIdentifier>, ASN1TObjId& value) const {
        value.numids = 2 + builder.below(builder.chance(3) ? 127 : 8);
        value.subid[0] = builder.below(3);
        value.subid[1] = builder.below(value.subid[0] == 2 ? 1000 : 40);
        for (unsigned i = 2; i < value.numids; ++i) {
            value.subid[i] = static_cast<unsigned>(builder.random_() >> builder.below(64));
        }
    }
    void operator()(Is<Shape::OctetString>, ASN1TDynOctStr& value) const {
        value.numocts = size(40);
        value.data = builder.octets(value.numocts);
    }
    void operator()(Is<Shape::FixedOctetString>, FixedString<unsigned char> value) const {
        value.count = builder.size(constraint, value.capacity, value.capacity);
        std::memcpy(value.data, builder.octets(value.count), value.count);
    }
    void operator()(Is<Shape::BitString>, ASN1TDynBitStr& value) const {
        value.numbits = size(70);
        value.data = value.numbits != 0 ? bits(value.numbits) : nullptr;
    }
    void operator()(Is<Shape::FixedBitString>, FixedString<unsigned char> value) const {
        value.count = builder.size(constraint, 70, value.capacity);
        std::memcpy(value.data, bits(value.count), (value.count + 7) / 8);
    }
    void operator()(Is<Shape::Text>, const char*& value) const {
        value = builder.text(type, size(30));
    }
    void operator()(Is<Shape::Text16>, Asn116BitCharString& value) const { setCharacters(value); }
    void operator()(Is<Shape::Text32>, Asn132BitCharString& value) const { setCharacters(value); }
    void operator()(Is<Shape::OpenType>, ASN1OpenType& value) const { builder.fillOpenType(value); }
    void operator()(Is<Shape::Sequence>, void* value) const { builder.fillRecord(type, value); }
    void operator()(Is<Shape::Set>, void* value) const { builder.fillRecord(type, value); }
    void operator()(Is<Shape::Choice>, void* value) const { builder.fillChoice(type, value); }
    void operator()(Is<Shape::List>, Asn1RTDList& value) const {
        builder.fillList(type, constraint, value);
    }
    void operator()(Is<Shape::Array>, void* value) const {
        builder.fillArray(type, constraint, value);
    }
    void operator()(Is<Shape::FixedArray>, void* value) const {
        builder.fillArray(type, constraint, value);
    }

private:
    template <class Number>
    void setNumber(Number& value, long long lowest, long long highest) const {
        value = static_cast<Number>(builder.number(constraint, lowest, highest));
    }
    /// Of a string without a capacity.
    unsigned size(unsigned usual) const { return builder.size(constraint, usual, 1u << 20); }
    unsigned char* bits(unsigned count) const {
        unsigned char* data = builder.octets(count / 8 + 1);
        if (count % 8 != 0) {
            data[count / 8] = static_cast<unsigned char>(data[count / 8] & (0xFF00u >> count % 8));
        }
        return data;
    }
    template <class Text>
    void setCharacters(Text& value) const {
        using Character = std::remove_pointer_t<decltype(value.data)>;
        value.nchars = size(30);
        value.data = value.nchars != 0 ? builder.allocate<Character>(value.nchars) : nullptr;
        std::generate_n(value.data, value.nchars,
                        [this] { return static_cast<Character>(builder.random_()); });
    }
};

void ValueBuilder::fill(const TypeDescription& type, const Constraint& constraint, void* value) {
    ++depth_;
    withValue(type, value, Filling{*this, type, constraint});
    --depth_;
}

void ValueBuilder::fillRecord(const TypeDescription& type, void* record) {
    for (unsigned i = 0; i < type.elementCount; ++i) {
        const ElementDescription& element = type.elements[i];
        if (element.presence == Presence::Optional) {
            const bool tooDeep = depth_ > DeepEnough && shallowest(*element.type, DeepEnough) > 1;
            if (tooDeep || !canBuild(*element.type) || isTakenForAnother(type, i, record) ||
                chance(40)) {
                continue;
            }
        }
        const Constraint& constraint =
            element.constraint.count != 0 ? element.constraint : element.type->constraint;
        void* const value = Builder::element(type, record, i);
        fill(*element.type, constraint, value);
        if (element.presence == Presence::Default && element.defaultText != nullptr) {
            // The DEFAULT is not encoded, and is read back in its own words.
            const char*& digits = at<const char*>(value, 0);
            if (rtBigIntStrCompare(ctxt_, digits, element.defaultText) == 0) {
                digits = element.defaultText;
            }
        }
    }
    if (type.extensionOffset != NoOffset) {
        for (unsigned count = below(4); count-- > 0;) {
            fillOpenType(*made(builder_.appendAddition(type, record)));
        }
    }
    if (type.table != nullptr) {
        resolve(type, record);
    }
}

/// Gives the record an identifier of its object set and a typed value to go with it, mostly.
void ValueBuilder::resolve(const TypeDescription& type, void* record) {
    const TableConstraint& table = *type.table;
    const bool present = table.presenceOffset == NoOffset ||
                         (at<unsigned>(record, table.presenceOffset + table.presenceBit / 32 * 4) >>
                              table.presenceBit % 32 &
                          1u) != 0;
    if (table.objects->count == 0 || chance(20)) {
        return;
    }
    const ObjectDescription* picked = &table.objects->objects[below(table.objects->count)];
    ASN1TObjId wanted;
    wanted.numids = picked->arcCount;
    std::copy_n(picked->arcs, picked->arcCount, wanted.subid);
    // Of objects with the same identifier the first is the one that is found.
    const ObjectDescription& object = *family::findObject(*table.objects, wanted);
    if (object.type != nullptr && depth_ > DeepEnough && shallowest(*object.type, DeepEnough) > 3) {
        return;
    }
    Builder::identify(type, record, object);
    if (object.type == nullptr || !present) {
        return;
    }
    if (table.value == OpenValue::OpenTypes) {
        auto& list = at<Asn1RTDList>(record, table.valueOffset);
        for (Asn1RTDListNode* node = list.head; node != nullptr; node = node->next) {
            resolveSlot(object, *static_cast<Asn1TObject*>(node->data));
        }
        return;
    }
    if (table.value == OpenValue::OctetString) {
        at<ASN1TDynOctStr>(record, table.valueOffset) = {0, nullptr};
    }
    resolveSlot(object, *Builder::slot(type, record));
}

void ValueBuilder::resolveSlot(const ObjectDescription& object, Asn1TObject& slot) {
    fill(*object.type, object.type->constraint, made(builder_.bind(object, slot)));
}

void ValueBuilder::fillChoice(const TypeDescription& type, void* record) {
    unsigned selector = below(type.elementCount);
    if (depth_ > DeepEnough || !canBuild(*type.elements[selector].type)) {
        for (unsigned i = 0; i < type.elementCount; ++i) {
            if (shallowest(*type.elements[i].type, DeepEnough) <
                shallowest(*type.elements[selector].type, DeepEnough)) {
                selector = i;
            }
        }
    }
    // The first of two alternatives that begin alike is the one that is read back.
    for (unsigned i = 0; i < selector; ++i) {
        if (type.elements[i].tagging == Tagging::Untagged &&
            type.elements[selector].tagging == Tagging::Untagged &&
            overlap(type.elements[i].type->identifiers,
                    type.elements[selector].type->identifiers)) {
            selector = i;
        }
    }
    const ElementDescription& alternative = type.elements[selector];
    void* const value = made(builder_.select(type, record, selector));
    fill(*alternative.type,
         alternative.constraint.count != 0 ? alternative.constraint : alternative.type->constraint,
         value);
}

void ValueBuilder::fillList(const TypeDescription& type, const Constraint& constraint,
                            Asn1RTDList& list) {
    const bool few = depth_ > DeepEnough || !canBuild(*type.element);
    for (unsigned count = size(constraint, few ? 0 : 3, 1000); count-- > 0;) {
        fill(*type.element, type.element->constraint, made(builder_.append(type, &list)));
    }
}

void ValueBuilder::fillArray(const TypeDescription& type, const Constraint& constraint,
                             void* value) {
    const bool fixed = type.shape == Shape::FixedArray;
    const bool few = depth_ > DeepEnough || !canBuild(*type.element);
    for (unsigned count = size(constraint, few ? 0 : 4, fixed ? type.capacity : 1000);
         count-- > 0;) {
        fill(*type.element, type.element->constraint, made(builder_.append(type, value)));
    }
}

} // namespace tests
