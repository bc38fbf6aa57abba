#include <brevantis/asn1/asn1data/family.h>
#include <brevantis/asn1/asn1data/value_visit.h>
#include <brevantis/asn1/runtime/big_integer.h>
#include <brevantis/asn1/runtime/bit_string.h>
#include <brevantis/asn1/runtime/character_string.h>
#include <brevantis/asn1/runtime/object_identifier_coding.h>
#include <brevantis/asn1/runtime/octet_string.h>
#include <brevantis/asn1/runtime/open_type.h>
#include <brevantis/asn1/runtime/scalar.h>

#include "decode_flow.h"
#include "open_value.h"
#include "strict_reading.h"

// The sink that stores what is read in records.

namespace asn1data::family {

namespace {

/// Reads the value of a primitive.
struct PrimitiveDecoder {
    ASN1CTXT* ctxt;
    const TypeDescription& type;
    ASN1TagType tagging;
    int length;

    int operator()(Is<Shape::Boolean>, unsigned char& value) const {
        return xd_boolean(ctxt, &value, tagging, length);
    }
    int operator()(Is<Shape::Integer>, int& value) const {
        return xd_integer(ctxt, &value, tagging, length);
    }
    int operator()(Is<Shape::Unsigned>, unsigned& value) const {
        return xd_unsigned(ctxt, &value, tagging, length);
    }
    int operator()(Is<Shape::Unsigned16>, unsigned short& value) const {
        return xd_uint16(ctxt, &value, tagging, length);
    }
    int operator()(Is<Shape::Enumerated>, unsigned& value) const {
        int number = 0;
        const int status = xd_enum(ctxt, &number, tagging, length);
        value = static_cast<unsigned>(number);
        return status;
    }
    int operator()(Is<Shape::BigInteger>, const char*& value) const {
        return xd_bigint(ctxt, &value, tagging, length);
    }
    int operator()(Is<Shape::BigUnsigned>, const char*& value) const {
        return xd_bigint(ctxt, &value, tagging, length);
    }
    int operator()(Is<Shape::Null>, void* /*value*/) const { return xd_null(ctxt, tagging); }
    int operator()(Is<Shape::ObjectIdentifier>, ASN1TObjId& value) const {
        return xd_objid(ctxt, &value, tagging, length);
    }
    int operator()(Is<Shape::OctetString>, ASN1TDynOctStr& value) const {
        return xd_octstr(ctxt, &value.data, &value.numocts, tagging, length);
    }
    int operator()(Is<Shape::FixedOctetString>, FixedString<unsigned char> value) const {
        value.count = value.capacity;
        return settled(value, xd_octstr_s(ctxt, value.data, &value.count, tagging, length));
    }
    int operator()(Is<Shape::BitString>, ASN1TDynBitStr& value) const {
        return xd_bitstr(ctxt, &value.data, &value.numbits, tagging, length);
    }
    int operator()(Is<Shape::FixedBitString>, FixedString<unsigned char> value) const {
        value.count = value.capacity;
        return settled(value, xd_bitstr_s(ctxt, value.data, &value.count, tagging, length));
    }
    int operator()(Is<Shape::Text>, const char*& value) const {
        char* text = nullptr;
        const int status = xd_charstr(ctxt, &text, tagging, type.tag, length);
        value = text;
        return status;
    }
    int operator()(Is<Shape::Text16>, Asn116BitCharString& value) const {
        return xd_16BitCharStr(ctxt, &value, tagging, type.tag, length);
    }
    int operator()(Is<Shape::Text32>, Asn132BitCharString& value) const {
        return xd_32BitCharStr(ctxt, &value, tagging, type.tag, length);
    }
    int operator()(Is<Shape::OpenType>, ASN1OpenType& value) const {
        value = {0, nullptr};
        if (type.valueSize == sizeof(Asn1TObject)) {
            static_cast<Asn1TObject&>(value).decoded = nullptr;
        }
        return xd_OpenType(ctxt, &value.data, &value.numocts);
    }
    template <Shape S, class Value, class = std::enable_if_t<!isPrimitive(S)>>
    int operator()(Is<S>, Value&& /*value*/) const {
        return ASN1S_NOT_SUPPORTED; // no coder reads these as a whole
    }

private:
    /// Nothing is in use where the reading failed.
    static int settled(FixedString<unsigned char>& value, int status) {
        value.count = status == ASN1S_SUCCESS ? value.count : 0;
        return status;
    }
};

/// Gives an element its DEFAULT: a number, a BOOLEAN or the text of an INTEGER.
struct DefaultSetter {
    const ElementDescription& element;

    template <Shape S, class Value>
    void operator()(Is<S>, Value&& value) const {
        if constexpr (kindOf(S) == ShapeKind::Boolean || kindOf(S) == ShapeKind::Number) {
            value = static_cast<std::remove_reference_t<Value>>(element.defaultNumber);
        } else if constexpr (kindOf(S) == ShapeKind::BigNumber) {
            value = element.defaultText;
        }
    }
};

/// An open value left from an earlier decoding would be taken for one of the new identifier's type
/// if the decoding fails between the two.
void forgetOpenValue(const TableConstraint& table, void* record) {
    if (table.value == OpenValue::OpenTypes) {
        rtDListInit(&at<Asn1RTDList>(record, table.valueOffset));
    } else {
        at<Asn1TObject>(record, table.slotOffset) = Asn1TObject{};
    }
}

} // namespace

void setDefaults(const TypeDescription& type, void* record) {
    for (unsigned i = 0; i < type.elementCount; ++i) {
        const ElementDescription& element = type.elements[i];
        if (element.presence == Presence::Default) {
            withValue(*element.type, address(record, element.offset), DefaultSetter{element});
        }
    }
}

namespace {

/// Decodes a record's open value on a context turned to its octets, and turns the context back. A
/// failure leaves it on the inner octets, where it happened.
int decodeOpenValueInside(ASN1CTXT* ctxt, const TypeDescription& type, void* record,
                          const ContentDecoder& decoder) {
    ASN1CTXT saved;
    rtCopyContext(&saved, ctxt);
    const int status = decodeOpenValue(ctxt, type, record, decoder);
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
    static constexpr bool canGoOn = false;

    explicit Storing(ASN1CTXT* ctxt) : ctxt_(ctxt) {}

    ASN1CTXT* ctxt() const { return ctxt_; }
    int fail(int status, const Expected& /*expected*/) const { return family::fail(ctxt_, status); }
    void atElement() const {}
    void atHeader() const {}

    void* member(void* record, const ElementDescription& element) const {
        return address(record, element.offset);
    }
    void prepare(const TypeDescription& type, void* record) const {
        if (type.presenceOffset != NoOffset) {
            for (unsigned bit = presenceBitCount(type); bit > 0; bit -= 32) {
                setPresenceWord(record, type.presenceOffset, bit - 32, 0);
            }
        }
        if (type.table != nullptr) {
            forgetOpenValue(*type.table, record);
        }
        if (type.hasDefaults) {
            setDefaults(type, record);
        }
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
        return withValue(type, value, PrimitiveDecoder{ctxt_, type, tagging, length});
    }
    int withinConstraint(const TypeDescription& type, const void* value,
                         const Constraint& constraint, const char* parameter) const {
        return checkConstraint(ctxt_, type, value, constraint, parameter);
    }
    int resolve(const TypeDescription& type, void* record) const {
        return decodeOpenValueInside(ctxt_, type, record, ContentDecoder());
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

/// Stores as many elements as a context has a limit for.
class Counting : public Storing {
public:
    Counting(ASN1CTXT* ctxt, unsigned& left) : Storing(ctxt), left_(&left) {}

    int addition(const TypeDescription& type, void* record, unsigned place) const {
        return counted(Storing::addition(type, record, place));
    }
    int primitive(const TypeDescription& type, void* value, ASN1TagType tagging, int length) const {
        return counted(Storing::primitive(type, value, tagging, length));
    }
    int resolve(const TypeDescription& type, void* record) const {
        return decodeOpenValueInside(ctxt(), type, record, {&decodeInside, left_});
    }

    /// @param left elements that may still come
    static int decodeInside(ASN1CTXT* ctxt, const TypeDescription& type, void* value, void* left) {
        return DecodeFlow<Counting>::decode(Counting(ctxt, *static_cast<unsigned*>(left)), type,
                                            value, ASN1TagExplicit, 0);
    }

    class Constructed {
    public:
        Constructed(Counting sink, const TypeDescription& /*type*/, int /*length*/)
            : ctxt_(sink.ctxt()), entered_(sink.take()) {}
        bool isEntered() const { return entered_; }
        int stepOver() const { return family::fail(ctxt_, ASN1S_NO_MEMORY); }
        static constexpr int leave() { return ASN1S_SUCCESS; }

    private:
        ASN1CTXT* ctxt_;
        bool entered_;
    };

private:
    bool take() const {
        const bool fits = *left_ != 0;
        *left_ -= fits ? 1 : 0;
        return fits;
    }

    int counted(int status) const {
        return status != ASN1S_SUCCESS || take() ? status : int{ASN1S_NO_MEMORY};
    }

    unsigned* left_;
};

/// Where a policy or a limit of the context looks at more than the flow does.
[[gnu::noinline]] int decodeStrictly(ASN1CTXT* ctxt, const TypeDescription& type, void* value,
                                     ASN1TagType tagging, int length) {
    const int status = isStrict(*ctxt) ? checkStrictly(ctxt, type, tagging, length) : ASN1S_SUCCESS;
    if (status != ASN1S_SUCCESS) {
        return fail(ctxt, status);
    }
    unsigned left = ctxt->elementLimit != 0 ? ctxt->elementLimit : 0xFFFFFFFFu;
    return DecodeFlow<Counting>::decode(Counting(ctxt, left), type, value, tagging, length);
}

} // namespace

int decode(ASN1CTXT* ctxt, const TypeDescription& type, void* value, ASN1TagType tagging,
           int length) {
    if (value == nullptr && type.shape != Shape::Null) {
        return fail(ctxt, ASN1S_INVALID_PARAMETER);
    }
    if (isStrict(*ctxt) || ctxt->elementLimit != 0) {
        return decodeStrictly(ctxt, type, value, tagging, length);
    }
    return DecodeFlow<Storing>::decode(Storing(ctxt), type, value, tagging, length);
}

} // namespace asn1data::family
