#include <brevantis/asn1/asn1data/family.h>
#include <brevantis/asn1/runtime/big_integer.h>
#include <brevantis/asn1/runtime/bit_string.h>
#include <brevantis/asn1/runtime/character_string.h>
#include <brevantis/asn1/runtime/object_identifier_coding.h>
#include <brevantis/asn1/runtime/octet_string.h>
#include <brevantis/asn1/runtime/open_type.h>
#include <brevantis/asn1/runtime/scalar.h>

#include "decode_flow.h"

// The sink that stores what is read in records.

namespace asn1data::family {

namespace {

int decodePrimitive(ASN1CTXT* ctxt, const TypeDescription& type, void* value, ASN1TagType tagging,
                    int length) {
    switch (type.shape) {
    case Shape::Boolean:
        return xd_boolean(ctxt, &at<unsigned char>(value, 0), tagging, length);
    case Shape::Integer:
        return xd_integer(ctxt, &at<int>(value, 0), tagging, length);
    case Shape::Unsigned:
        return xd_unsigned(ctxt, &at<unsigned>(value, 0), tagging, length);
    case Shape::Unsigned16:
        return xd_uint16(ctxt, &at<unsigned short>(value, 0), tagging, length);
    case Shape::Enumerated: {
        int number = 0;
        const int status = xd_enum(ctxt, &number, tagging, length);
        at<unsigned>(value, 0) = static_cast<unsigned>(number);
        return status;
    }
    case Shape::BigInteger:
    case Shape::BigUnsigned:
        return xd_bigint(ctxt, &at<const char*>(value, 0), tagging, length);
    case Shape::Null:
        return xd_null(ctxt, tagging);
    case Shape::ObjectIdentifier:
        return xd_objid(ctxt, &at<ASN1TObjId>(value, 0), tagging, length);
    case Shape::OctetString: {
        auto& octets = at<ASN1TDynOctStr>(value, 0);
        return xd_octstr(ctxt, &octets.data, &octets.numocts, tagging, length);
    }
    case Shape::FixedOctetString: {
        auto& count = at<unsigned>(value, type.countOffset);
        count = type.capacity;
        const int status =
            xd_octstr_s(ctxt, &at<unsigned char>(value, type.dataOffset), &count, tagging, length);
        count = status == ASN1S_SUCCESS ? count : 0;
        return status;
    }
    case Shape::BitString: {
        auto& bits = at<ASN1TDynBitStr>(value, 0);
        return xd_bitstr(ctxt, &bits.data, &bits.numbits, tagging, length);
    }
    case Shape::FixedBitString: {
        auto& count = at<unsigned>(value, type.countOffset);
        count = type.capacity;
        const int status =
            xd_bitstr_s(ctxt, &at<unsigned char>(value, type.dataOffset), &count, tagging, length);
        count = status == ASN1S_SUCCESS ? count : 0;
        return status;
    }
    case Shape::Text: {
        char* text = nullptr;
        const int status = xd_charstr(ctxt, &text, tagging, type.tag, length);
        at<const char*>(value, 0) = text;
        return status;
    }
    case Shape::Text16:
        return xd_16BitCharStr(ctxt, &at<Asn116BitCharString>(value, 0), tagging, type.tag, length);
    case Shape::Text32:
        return xd_32BitCharStr(ctxt, &at<Asn132BitCharString>(value, 0), tagging, type.tag, length);
    case Shape::OpenType: {
        auto& raw = at<ASN1OpenType>(value, 0);
        raw.numocts = 0;
        raw.data = nullptr;
        if (type.valueSize == sizeof(Asn1TObject)) {
            at<Asn1TObject>(value, 0).decoded = nullptr;
        }
        return xd_OpenType(ctxt, &raw.data, &raw.numocts);
    }
    default:
        return ASN1S_NOT_SUPPORTED;
    }
}

void setDefault(const ElementDescription& element, void* value) {
    switch (element.type->shape) {
    case Shape::Boolean:
        at<unsigned char>(value, 0) = static_cast<unsigned char>(element.defaultNumber);
        break;
    case Shape::Integer:
        at<int>(value, 0) = static_cast<int>(element.defaultNumber);
        break;
    case Shape::Unsigned:
    case Shape::Enumerated:
        at<unsigned>(value, 0) = static_cast<unsigned>(element.defaultNumber);
        break;
    case Shape::Unsigned16:
        at<unsigned short>(value, 0) = static_cast<unsigned short>(element.defaultNumber);
        break;
    case Shape::BigInteger:
    case Shape::BigUnsigned:
        at<const char*>(value, 0) = element.defaultText;
        break;
    default:
        break;
    }
}

/// An open value left from an earlier decoding would be taken for one of the new identifier's type
/// if the decoding fails between the two.
void forgetOpenValue(const TableConstraint& table, void* record) {
    if (table.value == OpenValue::OpenTypes) {
        rtDListInit(&at<Asn1RTDList>(record, table.valueOffset));
    } else {
        at<Asn1TObject>(record, table.slotOffset) = Asn1TObject{};
    }
}

/// Clears the presence bits and puts the DEFAULTs in place.
void prepareRecord(const TypeDescription& type, void* record) {
    if (type.presenceOffset != NoOffset) {
        setPresenceBits(record, type.presenceOffset, 0);
    }
    if (type.table != nullptr) {
        forgetOpenValue(*type.table, record);
    }
    if (type.mandatoryCount == type.elementCount) {
        return;
    }
    for (unsigned i = 0; i < type.elementCount; ++i) {
        if (type.elements[i].presence == Presence::Default) {
            setDefault(type.elements[i], address(record, type.elements[i].offset));
        }
    }
}

void markPresent(const TypeDescription& type, const ElementDescription& element, void* record) {
    if (element.presence == Presence::Optional) {
        setPresenceBits(record, type.presenceOffset,
                        presenceBits(record, type.presenceOffset) | 1u << element.presenceBit);
    }
}

/// Decodes a record's open value on a context turned to its octets, and turns the context back. A
/// failure leaves it on the inner octets, where it happened.
int decodeOpenValueInside(ASN1CTXT* ctxt, const TypeDescription& type, void* record) {
    ASN1CTXT saved;
    rtCopyContext(&saved, ctxt);
    const int status = decodeOpenValue(ctxt, type, record);
    if (status == ASN1S_SUCCESS) {
        rtCopyContext(ctxt, &saved);
    }
    return status;
}

/// Stores values where the description says.
class Storing {
public:
    using Value = void*;
    static constexpr bool watchesOpenValues = false;

    explicit Storing(ASN1CTXT* ctxt) : ctxt_(ctxt) {}

    ASN1CTXT* ctxt() const { return ctxt_; }
    int fail(int status, const Expected& /*expected*/) const { return family::fail(ctxt_, status); }
    void atElement() const {}
    void atHeader() const {}

    bool takes(const TypeDescription& type, const void* value) const {
        return value != nullptr || type.shape == Shape::Null;
    }
    void* member(void* record, const ElementDescription& element) const {
        return address(record, element.offset);
    }
    void prepare(const TypeDescription& type, void* record) const {
        prepareRecord(type, record);
        if (type.extensionOffset != NoOffset) {
            rtDListInit(&at<Asn1RTDList>(record, type.extensionOffset));
        }
    }
    void took(const TypeDescription& type, const ElementDescription& element, void* record) const {
        markPresent(type, element, record);
    }
    int addition(const TypeDescription& type, void* record, unsigned /*place*/) const {
        return xd_OpenTypeAppend(ctxt_, &at<Asn1RTDList>(record, type.extensionOffset));
    }
    int primitive(const TypeDescription& type, void* value, ASN1TagType tagging, int length) const {
        return decodePrimitive(ctxt_, type, value, tagging, length);
    }
    int withinConstraint(const TypeDescription& type, const void* value,
                         const Constraint& constraint, const char* parameter) const {
        return checkConstraint(ctxt_, type, value, constraint, parameter);
    }
    int resolve(const TypeDescription& type, void* record) const {
        return decodeOpenValueInside(ctxt_, type, record);
    }

    /// Until an alternative has been read whole the selector names none, so that a value left over
    /// from a failure can be released.
    void selects(const TypeDescription& type, void* record) const { selected(type, record, 0); }
    void selected(const TypeDescription& type, void* record, unsigned selector) const {
        at<unsigned>(record, type.countOffset) = selector;
    }
    bool alternative(void* record, const ElementDescription& alternative, void*& value) const {
        value = address(record, alternative.offset);
        if (alternative.indirect) {
            void* const allocated = newRecord(ctxt_, *alternative.type);
            if (allocated == nullptr) {
                return false;
            }
            at<void*>(record, alternative.offset) = allocated;
            value = allocated;
        }
        return true;
    }

    void clearArray(const TypeDescription& type, void* value) const {
        at<unsigned>(value, type.countOffset) = 0;
        at<void*>(value, type.dataOffset) = nullptr;
    }
    bool makeArray(const TypeDescription& type, void* value, int size) const {
        void* const places = rtMemHeapAlloc(&ctxt_->memHeap, size);
        at<void*>(value, type.dataOffset) = places;
        return places != nullptr;
    }

    struct Step {
        Step(Storing /*sink*/, const TypeDescription& /*container*/,
             const ElementDescription& /*element*/, unsigned /*next*/ = 0) {}
        Step(Storing /*sink*/, const TypeDescription& /*container*/, unsigned /*index*/) {}
    };

    struct Constructed {
        Constructed(Storing /*sink*/, const TypeDescription& /*type*/, int /*length*/) {}
        static constexpr bool isEntered() { return true; }
        static constexpr int stepOver() { return ASN1S_SUCCESS; }
        static constexpr int leave() { return ASN1S_SUCCESS; }
    };

    /// A linked list. Node and element share one block, the element behind the node.
    class List {
    public:
        List(Storing sink, const TypeDescription& type, void* value)
            : ctxt_(sink.ctxt_), list_(at<Asn1RTDList>(value, 0)),
              blockSize_(static_cast<int>(sizeof(Asn1RTDListNode) + type.element->valueSize)) {
            rtDListInit(&list_);
        }
        unsigned count() const { return list_.count; }
        bool place(void*& element) const {
            auto* block = static_cast<unsigned char*>(rtMemHeapAllocZ(&ctxt_->memHeap, blockSize_));
            if (block == nullptr) {
                return false;
            }
            element = block + sizeof(Asn1RTDListNode);
            return true;
        }
        void append(void* element) { rtDListAppendNode(ctxt_, &list_, element); }

    private:
        ASN1CTXT* ctxt_;
        Asn1RTDList& list_;
        int blockSize_;
    };

    /// Consecutive places, whose count is that of the elements read whole.
    class Places {
    public:
        Places(Storing /*sink*/, const TypeDescription& type, void* value)
            : count_(at<unsigned>(value, type.countOffset)),
              places_(static_cast<unsigned char*>(arrayElements(type, value))),
              elementSize_(type.element->valueSize) {
            count_ = 0;
        }
        unsigned count() const { return count_; }
        bool place(void*& element) const {
            element = places_ + std::size_t{count_} * elementSize_;
            // One at a time: elements that turn out to be none must not cost the memory of all.
            std::memset(element, 0, elementSize_);
            return true;
        }
        void append(void* /*element*/) { ++count_; }

    private:
        unsigned& count_;
        unsigned char* places_;
        unsigned elementSize_;
    };

private:
    ASN1CTXT* ctxt_;
};

} // namespace

int decode(ASN1CTXT* ctxt, const TypeDescription& type, void* value, ASN1TagType tagging,
           int length) {
    return DecodeFlow<Storing>::decode(Storing(ctxt), type, value, tagging, length);
}

} // namespace asn1data::family
