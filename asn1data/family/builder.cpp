#include <brevantis/asn1/asn1data/builder.h>

#include <algorithm>
#include <climits>

#include <brevantis/asn1/asn1data/family.h>
#include <brevantis/asn1/asn1data/value_visit.h>
#include <brevantis/asn1/runtime/heap.h>

#include "value_access.h"

namespace asn1data {

using family::address;
using family::at;

namespace {

/// Elements that an Array has room for before it has grown.
constexpr unsigned FirstCapacity = 4;

/// Whether an array that holds so many elements is full: capacities double.
bool isFull(unsigned count) {
    return count >= FirstCapacity ? (count & (count - 1)) == 0 : count == 0;
}

/// Makes a block of octets the value of a string.
struct OctetSetter {
    ASN1CTXT* ctxt;
    const unsigned char* octets;
    std::size_t size;
    unsigned bitCount;

    int operator()(Is<Shape::OctetString>, ASN1TDynOctStr& value) const {
        return setDynamic(value.numocts, value.data, static_cast<unsigned>(size));
    }
    int operator()(Is<Shape::OpenType>, ASN1OpenType& value) const {
        return setDynamic(value.numocts, value.data, static_cast<unsigned>(size));
    }
    int operator()(Is<Shape::BitString>, ASN1TDynBitStr& value) const {
        return setDynamic(value.numbits, value.data, bitCount);
    }
    int operator()(Is<Shape::FixedOctetString>, FixedString<unsigned char> value) const {
        return setFixed(value, static_cast<unsigned>(size), value.capacity);
    }
    int operator()(Is<Shape::FixedBitString>, FixedString<unsigned char> value) const {
        return setFixed(value, bitCount, (value.capacity + CHAR_BIT - 1) / CHAR_BIT);
    }
    int operator()(Is<Shape::Text>, const char*& value) const {
        if (std::find(octets, octets + size, 0) != octets + size) {
            return ASN1S_BAD_VALUE;
        }
        auto* const text = static_cast<char*>(allocate(size + 1));
        if (text == nullptr) {
            return ASN1S_NO_MEMORY;
        }
        std::copy(octets, octets + size, text);
        text[size] = '\0';
        value = text;
        return ASN1S_SUCCESS;
    }
    int operator()(Is<Shape::Text16>, Asn116BitCharString& value) const { return setWide(value); }
    int operator()(Is<Shape::Text32>, Asn132BitCharString& value) const { return setWide(value); }
    template <Shape S, class Value>
    int operator()(Is<S>, Value&& /*value*/) const {
        return ASN1S_NOT_SUPPORTED;
    }

private:
    void* allocate(std::size_t count) const {
        return count <= INT_MAX ? rtMemHeapAlloc(&ctxt->memHeap, static_cast<int>(count)) : nullptr;
    }
    template <class Data>
    int setDynamic(unsigned& count, Data& data, unsigned newCount) const {
        unsigned char* block = nullptr;
        if (size != 0) {
            block = static_cast<unsigned char*>(allocate(size));
            if (block == nullptr) {
                return ASN1S_NO_MEMORY;
            }
            std::copy(octets, octets + size, block);
        }
        count = newCount;
        data = block;
        return ASN1S_SUCCESS;
    }
    int setFixed(FixedString<unsigned char> value, unsigned count,
                 std::size_t octetCapacity) const {
        if (count > value.capacity || size > octetCapacity) {
            return ASN1S_STRING_OVERFLOW;
        }
        std::copy(octets, octets + size, value.data);
        value.count = count;
        return ASN1S_SUCCESS;
    }
    template <class Text>
    int setWide(Text& value) const {
        using Character = std::remove_pointer_t<decltype(value.data)>;
        constexpr std::size_t width = sizeof(Character);
        if (size % width != 0) {
            return ASN1S_BAD_VALUE;
        }
        Character* characters = nullptr;
        if (size != 0) {
            characters = static_cast<Character*>(allocate(size));
            if (characters == nullptr) {
                return ASN1S_NO_MEMORY;
            }
        }
        for (std::size_t i = 0; i < size / width; ++i) {
            unsigned code = 0;
            for (std::size_t k = 0; k < width; ++k) {
                code = code << CHAR_BIT | octets[i * width + k];
            }
            characters[i] = static_cast<Character>(code);
        }
        value.nchars = static_cast<unsigned>(size / width);
        value.data = characters;
        return ASN1S_SUCCESS;
    }
};

} // namespace

void* Builder::allocate(std::size_t size) noexcept {
    return size <= INT_MAX ? rtMemHeapAllocZ(&ctxt_->memHeap, static_cast<int>(size)) : nullptr;
}

void Builder::prepare(const TypeDescription& type, void* value) noexcept {
    switch (type.shape) {
    case Shape::Sequence:
    case Shape::Set:
        if (type.hasDefaults) {
            family::setDefaults(type, value);
        }
        if (type.extensionOffset != NoOffset) {
            rtDListInit(&at<Asn1RTDList>(value, type.extensionOffset));
        }
        break;
    case Shape::List:
        rtDListInit(&at<Asn1RTDList>(value, 0));
        break;
    default:
        break;
    }
}

void* Builder::create(const TypeDescription& type) noexcept {
    void* const value = family::newRecord(ctxt_, type);
    if (value != nullptr) {
        prepare(type, value);
    }
    return value;
}

void* Builder::element(const TypeDescription& type, void* record, unsigned index) noexcept {
    const ElementDescription& element = type.elements[index];
    family::markPresent(type, element, record);
    void* const value = address(record, element.offset);
    prepare(*element.type, value);
    return value;
}

void* Builder::select(const TypeDescription& type, void* choice, unsigned index) noexcept {
    const ElementDescription& alternative = type.elements[index];
    void* value = address(choice, alternative.offset);
    if (alternative.indirect) {
        void* const record = create(*alternative.type);
        if (record == nullptr) {
            return nullptr;
        }
        at<void*>(choice, alternative.offset) = record;
        value = record;
    } else {
        std::fill_n(static_cast<unsigned char*>(value), alternative.type->valueSize,
                    static_cast<unsigned char>(0));
        prepare(*alternative.type, value);
    }
    at<unsigned>(choice, type.countOffset) = index + 1;
    return value;
}

void* Builder::append(const TypeDescription& type, void* list) noexcept {
    const TypeDescription& member = *type.element;
    if (type.shape == Shape::List) {
        void* const value = create(member);
        return value != nullptr && rtDListAppend(ctxt_, &at<Asn1RTDList>(list, 0), value) != nullptr
                   ? value
                   : nullptr;
    }
    auto& count = at<unsigned>(list, type.countOffset);
    if (type.shape == Shape::FixedArray) {
        if (count >= type.capacity) {
            return nullptr;
        }
    } else if (isFull(count)) {
        const std::size_t capacity = std::max(count * std::size_t{2}, std::size_t{FirstCapacity});
        auto* const places = static_cast<unsigned char*>(allocate(capacity * member.valueSize));
        if (places == nullptr) {
            return nullptr;
        }
        const auto* const old = at<unsigned char*>(list, type.dataOffset);
        std::copy_n(old, std::size_t{count} * member.valueSize, places);
        at<unsigned char*>(list, type.dataOffset) = places;
    }
    void* const value = static_cast<unsigned char*>(family::arrayElements(type, list)) +
                        std::size_t{count} * member.valueSize;
    ++count;
    prepare(member, value);
    return value;
}

ASN1OpenType* Builder::appendAddition(const TypeDescription& type, void* record) noexcept {
    if (type.extensionOffset == NoOffset) {
        return nullptr;
    }
    auto* const addition = static_cast<ASN1OpenType*>(allocate(sizeof(ASN1OpenType)));
    const bool added =
        addition != nullptr &&
        rtDListAppend(ctxt_, &at<Asn1RTDList>(record, type.extensionOffset), addition) != nullptr;
    return added ? addition : nullptr;
}

void Builder::identify(const TypeDescription& type, void* record,
                       const ObjectDescription& object) noexcept {
    auto& identifier = at<ASN1TObjId>(record, type.table->identifierOffset);
    identifier.numids = object.arcCount;
    std::copy_n(object.arcs, object.arcCount, identifier.subid);
}

Asn1TObject* Builder::slot(const TypeDescription& type, void* record) noexcept {
    return type.table != nullptr && type.table->value != OpenValue::OpenTypes
               ? &at<Asn1TObject>(record, type.table->slotOffset)
               : nullptr;
}

void* Builder::bind(const ObjectDescription& object, Asn1TObject& slot) noexcept {
    void* const value = create(*object.type);
    if (value != nullptr) {
        slot.numocts = 0;
        slot.data = nullptr;
        slot.decoded = value;
    }
    return value;
}

int Builder::setOctets(const TypeDescription& type, void* value, const unsigned char* octets,
                       std::size_t size, unsigned bitCount) noexcept {
    if (size > INT_MAX) {
        return ASN1S_VALUE_TOO_BIG;
    }
    return withValue(type, value, OctetSetter{ctxt_, octets, size, bitCount});
}

int Builder::setInteger(const TypeDescription& type, void* value, const unsigned char* octets,
                        std::size_t size) noexcept {
    constexpr char digits[] = "0123456789abcdef";
    constexpr std::size_t around = 4; // "0x", a digit for the sign, the terminator
    const bool isSigned = type.shape == Shape::BigInteger;
    if (!isSigned && type.shape != Shape::BigUnsigned) {
        return ASN1S_NOT_SUPPORTED;
    }
    if (size > (INT_MAX - around) / 2) {
        return ASN1S_VALUE_TOO_BIG;
    }
    auto* const text = static_cast<char*>(allocate(size * 2 + around));
    if (text == nullptr) {
        return ASN1S_NO_MEMORY;
    }
    char* place = text;
    *place++ = '0';
    *place++ = 'x';
    // A zero octet in front of a number that looks negative is told by one digit alone.
    const bool shortened = isSigned && size > 1 && octets[0] == 0 && (octets[1] & 0x80u) != 0;
    for (std::size_t i = 0; i < size; ++i) {
        if (i != 0 || !shortened) {
            *place++ = digits[octets[i] >> 4];
        }
        *place++ = digits[octets[i] & 0xFu];
    }
    at<const char*>(value, 0) = text;
    return ASN1S_SUCCESS;
}

int Builder::check(const TypeDescription& type, const void* value,
                   const Constraint& constraint) noexcept {
    return family::checkConstraint(ctxt_, type, value, constraint, type.parameter);
}

} // namespace asn1data
