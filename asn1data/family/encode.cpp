#include <brevantis/asn1/asn1data/family.h>
#include <brevantis/asn1/asn1data/object.h>
#include <brevantis/asn1/asn1data/value_visit.h>
#include <brevantis/asn1/runtime/big_integer.h>
#include <brevantis/asn1/runtime/bit_string.h>
#include <brevantis/asn1/runtime/character_string.h>
#include <brevantis/asn1/runtime/der_order.h>
#include <brevantis/asn1/runtime/object_identifier_coding.h>
#include <brevantis/asn1/runtime/octet_string.h>
#include <brevantis/asn1/runtime/open_type.h>
#include <brevantis/asn1/runtime/scalar.h>
#include <brevantis/asn1/runtime/tag_length.h>

#include "value_access.h"

namespace asn1data::family {

namespace {

/// The typed form of an open value, where an object set resolves it.
struct Resolved {
    const TypeDescription* type = nullptr; ///< null: raw octets go out
    Asn1TObject* slot = nullptr;           ///< null in front of a list, whose members are the slots

    bool isTyped() const { return type != nullptr && slot != nullptr && slot->decoded != nullptr; }
};

int encodeResolved(ASN1CTXT* ctxt, const TypeDescription& type, void* value, ASN1TagType tagging,
                   const Resolved& resolved);

/// The typed form goes out in place of the raw octets. The value keeps those as it has them: they
/// may lie on another heap than the context's, and so must not be replaced by octets of this one.
int encodeTyped(ASN1CTXT* ctxt, const Resolved& resolved) {
    return encodeSlot(ctxt, *resolved.type, *resolved.slot);
}

/// Writes the contents octets of a primitive.
struct PrimitiveEncoder {
    ASN1CTXT* ctxt;
    const TypeDescription& type;

    int operator()(Is<Shape::Boolean>, unsigned char& value) const {
        return xe_boolean(ctxt, &value, ASN1TagImplicit);
    }
    int operator()(Is<Shape::Integer>, int& value) const {
        return xe_integer(ctxt, &value, ASN1TagImplicit);
    }
    int operator()(Is<Shape::Unsigned>, unsigned& value) const {
        return xe_unsigned(ctxt, &value, ASN1TagImplicit);
    }
    int operator()(Is<Shape::Unsigned16>, unsigned short& value) const {
        return xe_uint16(ctxt, &value, ASN1TagImplicit);
    }
    int operator()(Is<Shape::Enumerated>, unsigned& value) const {
        int number = static_cast<int>(value);
        return xe_enum(ctxt, &number, ASN1TagImplicit);
    }
    int operator()(Is<Shape::BigInteger>, const char* value) const {
        return xe_bigint(ctxt, value, ASN1TagImplicit);
    }
    int operator()(Is<Shape::BigUnsigned>, const char* value) const {
        return xe_biguint(ctxt, value, ASN1TagImplicit);
    }
    int operator()(Is<Shape::Null>, void* /*value*/) const {
        return xe_null(ctxt, ASN1TagImplicit);
    }
    int operator()(Is<Shape::ObjectIdentifier>, ASN1TObjId& value) const {
        return xe_objid(ctxt, &value, ASN1TagImplicit);
    }
    int operator()(Is<Shape::OctetString>, const ASN1TDynOctStr& value) const {
        return xe_octstr(ctxt, value.data, value.numocts, ASN1TagImplicit);
    }
    int operator()(Is<Shape::FixedOctetString>, FixedString<unsigned char> value) const {
        return value.count > value.capacity
                   ? int{ASN1S_STRING_OVERFLOW}
                   : xe_octstr(ctxt, value.data, value.count, ASN1TagImplicit);
    }
    int operator()(Is<Shape::BitString>, const ASN1TDynBitStr& value) const {
        return xe_bitstr(ctxt, value.data, value.numbits, ASN1TagImplicit);
    }
    int operator()(Is<Shape::FixedBitString>, FixedString<unsigned char> value) const {
        // Kept: the array holds whole octets, so bits beyond the capacity that share its last octet
        // go out. Programs depend on it.
        return value.count > (value.capacity + 7) / 8 * 8
                   ? int{ASN1S_STRING_OVERFLOW}
                   : xe_bitstr(ctxt, value.data, value.count, ASN1TagImplicit);
    }
    int operator()(Is<Shape::Text>, const char* value) const {
        return xe_charstr(ctxt, value, ASN1TagImplicit, type.tag);
    }
    int operator()(Is<Shape::Text16>, Asn116BitCharString& value) const {
        return xe_16BitCharStr(ctxt, &value, ASN1TagImplicit, type.tag);
    }
    int operator()(Is<Shape::Text32>, Asn132BitCharString& value) const {
        return xe_32BitCharStr(ctxt, &value, ASN1TagImplicit, type.tag);
    }
    int operator()(Is<Shape::OpenType>, const ASN1OpenType& value) const {
        return xe_OpenType(ctxt, value.data, value.numocts);
    }
    template <Shape S, class Value, class = std::enable_if_t<!isPrimitive(S)>>
    int operator()(Is<S>, Value&& /*value*/) const {
        return ASN1S_NOT_SUPPORTED; // no coder writes these as a whole
    }
};

int encodeRecord(ASN1CTXT* ctxt, const TypeDescription& type, void* record);
int encodeChoice(ASN1CTXT* ctxt, const TypeDescription& type, void* record);
int encodeList(ASN1CTXT* ctxt, const TypeDescription& type, const Asn1RTDList& list,
               const TypeDescription* openType);
int encodeArray(ASN1CTXT* ctxt, const TypeDescription& type, void* value);

/// Writes the contents octets of any value.
struct ContentsEncoder : PrimitiveEncoder {
    using PrimitiveEncoder::operator();

    int operator()(Is<Shape::Sequence>, void* value) const {
        return encodeRecord(ctxt, type, value);
    }
    int operator()(Is<Shape::Set>, void* value) const { return encodeRecord(ctxt, type, value); }
    int operator()(Is<Shape::Choice>, void* value) const { return encodeChoice(ctxt, type, value); }
    int operator()(Is<Shape::List>, Asn1RTDList& value) const {
        return encodeList(ctxt, type, value, openType);
    }
    int operator()(Is<Shape::Array>, void* value) const { return encodeArray(ctxt, type, value); }
    int operator()(Is<Shape::FixedArray>, void* value) const {
        return encodeArray(ctxt, type, value);
    }

    const TypeDescription* openType; ///< of a list's members that are typed open values
};

/// A bit string that claims bits but has none is treated as absent: nothing is written for it, not
/// even a tag.
bool isAbsentBitString(const TypeDescription& type, const void* value) {
    return type.shape == Shape::BitString && at<ASN1TDynBitStr>(value, 0).data == nullptr &&
           at<ASN1TDynBitStr>(value, 0).numbits != 0;
}

/// Puts a tag and a length in front of contents that have been written.
/// @param count octets of contents, or a negative status, which is handed on
[[gnu::always_inline]] inline int putHeader(ASN1CTXT* ctxt, ASN1TAG tag, unsigned char identifier,
                                            int count) {
    return rtPutShortHeader(ctxt, identifier, count) ? count + 2 : xe_tag_len(ctxt, tag, count);
}

/// A primitive with nothing but its universal tag.
int encodePrimitive(ASN1CTXT* ctxt, const TypeDescription& type, void* value, ASN1TagType tagging) {
    const int status = checkConstraint(ctxt, type, value, type.constraint, type.parameter);
    if (status != ASN1S_SUCCESS) {
        return status;
    }
    // Kept: mandatory ones too. Programs depend on it.
    if (isAbsentBitString(type, value)) {
        return 0;
    }
    int count = withValue(type, value, PrimitiveEncoder{ctxt, type});
    if (count >= 0 && tagging == ASN1TagExplicit && type.tag != 0) {
        count = putHeader(ctxt, type.tag, type.identifier, count);
    }
    return count < 0 ? fail(ctxt, count) : count;
}

int encodeConstructed(ASN1CTXT* ctxt, const TypeDescription& type, void* value, ASN1TagType tagging,
                      const TypeDescription* openType);

/// A value without a typed form of its own, by the road of its type.
/// @param value not null
/// @param openType of a list's members that are typed open values
[[gnu::always_inline]] inline int encodeValue(ASN1CTXT* ctxt, const TypeDescription& type,
                                              void* value, ASN1TagType tagging,
                                              const TypeDescription* openType = nullptr) {
    switch (type.road) {
    case Road::Primitive:
        return encodePrimitive(ctxt, type, value, tagging);
    case Road::Choice:
        return encodeChoice(ctxt, type, value);
    case Road::Constructed:
        return encodeConstructed(ctxt, type, value, tagging, openType);
    case Road::Tagged:
        break;
    }
    return encodeResolved(ctxt, type, value, tagging, {openType, nullptr});
}

/// Puts the tag of the element around its value.
int tagElement(ASN1CTXT* ctxt, const ElementDescription& element, int count) {
    return element.tagging == Tagging::Untagged
               ? count
               : putHeader(ctxt, element.tag, element.identifier, count);
}

ASN1TagType ownTagging(const ElementDescription& element) {
    return element.tagging == Tagging::Untagged ? ASN1TagExplicit : innerTagging(element);
}

/// @param value not null
[[gnu::always_inline]] inline int encodeElement(ASN1CTXT* ctxt, const ElementDescription& element,
                                                void* value) {
    const int status =
        checkConstraint(ctxt, *element.type, value, element.constraint, element.parameter);
    if (status != ASN1S_SUCCESS) {
        return status;
    }
    return tagElement(ctxt, element, encodeValue(ctxt, *element.type, value, ownTagging(element)));
}

/// An element whose open value an object set resolves.
int encodeOpenElement(ASN1CTXT* ctxt, const ElementDescription& element, void* record,
                      const TableConstraint& table, const ObjectDescription& object) {
    void* const value = address(record, element.offset);
    const int status =
        checkConstraint(ctxt, *element.type, value, element.constraint, element.parameter);
    if (status != ASN1S_SUCCESS) {
        return status;
    }
    const ASN1TagType tagging = ownTagging(element);
    const int count =
        table.value == OpenValue::OpenTypes
            ? encodeValue(ctxt, *element.type, value, tagging, object.type)
            : encodeResolved(ctxt, *element.type, value, tagging,
                             {object.type, &at<Asn1TObject>(record, table.slotOffset)});
    return tagElement(ctxt, element, count);
}

/// X.690, 11.5: an element that has its DEFAULT value is not written.
struct DefaultTest {
    ASN1CTXT* ctxt;
    const ElementDescription& element;

    template <Shape S, class Value>
    bool operator()(Is<S>, const Value& value) const {
        if constexpr (kindOf(S) == ShapeKind::Boolean || kindOf(S) == ShapeKind::Number) {
            // Kept: any octet but 0 is true, yet a default of true is met by 1 alone. What was read
            // as another octet is written again, which signatures depend on.
            return static_cast<long long>(value) == element.defaultNumber;
        } else if constexpr (kindOf(S) == ShapeKind::BigNumber) {
            return value != nullptr && rtBigIntStrCompare(ctxt, value, element.defaultText) == 0;
        } else {
            return false;
        }
    }
};

bool isWritten(ASN1CTXT* ctxt, const TypeDescription& type, const ElementDescription& element,
               const void* record) {
    if (element.presence == Presence::Default) {
        return !withValue(*element.type, address(record, element.offset),
                          DefaultTest{ctxt, element});
    }
    return isPresent(type, element, record);
}

/// Elements of a SEQUENCE or SET, the last one first, since the buffer fills from its end.
int encodeRecord(ASN1CTXT* ctxt, const TypeDescription& type, void* record) {
    const TableConstraint* table = type.table;
    const ObjectDescription* object = table != nullptr ? selectedObject(*table, record) : nullptr;
    int total = 0;
    if (type.extensionOffset != NoOffset) {
        total = xe_OpenTypeExt(ctxt, &at<Asn1RTDList>(record, type.extensionOffset));
    }
    for (unsigned i = type.elementCount; total >= 0 && i-- > 0;) {
        const ElementDescription& element = type.elements[i];
        if (!isWritten(ctxt, type, element, record)) {
            continue;
        }
        const int count = object != nullptr && element.offset == table->valueOffset
                              ? encodeOpenElement(ctxt, element, record, *table, *object)
                              : encodeElement(ctxt, element, address(record, element.offset));
        total = count < 0 ? count : total + count;
    }
    return total;
}

/// The alternative that is selected, whose tag is all that a CHOICE has.
int encodeChoice(ASN1CTXT* ctxt, const TypeDescription& type, void* record) {
    const int status = checkConstraint(ctxt, type, record, type.constraint, type.parameter);
    if (status != ASN1S_SUCCESS) {
        return status;
    }
    const ElementDescription* alternative = selectedAlternative(type, record);
    if (alternative == nullptr) {
        return fail(ctxt, ASN1S_INVALID_CHOICE);
    }
    void* const value = alternativeValue(*alternative, record);
    const int count =
        value != nullptr ? encodeElement(ctxt, *alternative, value) : int{ASN1S_BAD_VALUE};
    return count < 0 ? fail(ctxt, count) : count;
}

/// Encodes the members of a SEQUENCE OF or SET OF from the last to the first and, for a SET OF,
/// puts them into the order of X.690, 11.6.
class MemberEncoder {
public:
    MemberEncoder(ASN1CTXT* ctxt, const TypeDescription& type, unsigned count,
                  const TypeDescription* openType = nullptr)
        : ctxt_(ctxt), type_(*type.element), openType_(openType), sorts_(type.setOf && count > 1) {
        if (sorts_) {
            rtSListInitEx(ctxt, &locations_);
        }
    }

    /// @return false when the member could not be encoded; finish() then tells the status
    [[gnu::always_inline]] bool add(void* member) {
        int count = encodeMember(member);
        if (count >= 0 && sorts_) {
            count = noteLocation(count);
        }
        total_ = count < 0 ? count : total_ + count;
        return count >= 0;
    }

    /// @return octets of all members, or the status of the first failure
    int finish() {
        return total_ < 0 || !sorts_ ? total_ : xe_derCanonicalSort(ctxt_, &locations_);
    }

private:
    [[gnu::always_inline]] int encodeMember(void* member) {
        if (member == nullptr && type_.shape != Shape::Null) {
            return fail(ctxt_, ASN1S_BAD_VALUE);
        }
        return openType_ == nullptr
                   ? encodeValue(ctxt_, type_, member, ASN1TagExplicit)
                   : encodeResolved(ctxt_, type_, member, ASN1TagExplicit,
                                    {openType_, static_cast<Asn1TObject*>(member)});
    }

    /// @return @p count, or a failure
    int noteLocation(int count) {
        auto* location = static_cast<Asn1BufLocDescr*>(
            rtMemHeapAlloc(&ctxt_->memHeap, static_cast<int>(sizeof(Asn1BufLocDescr))));
        if (location == nullptr || rtSListAppend(&locations_, location) == nullptr) {
            return ASN1S_NO_MEMORY;
        }
        xe_getBufLocDescr(ctxt_, static_cast<unsigned>(count), location);
        return count;
    }

    ASN1CTXT* ctxt_;
    const TypeDescription& type_;
    const TypeDescription* openType_; ///< type of the members' typed form, null without one
    // Kept: every SET OF goes out in order, DER asked for or not.
    bool sorts_; ///< a single member is in order as it is
    Asn1RTSList locations_;
    int total_ = 0;
};

int encodeList(ASN1CTXT* ctxt, const TypeDescription& type, const Asn1RTDList& list,
               const TypeDescription* openType) {
    MemberEncoder members(ctxt, type, list.count, openType);
    for (const Asn1RTDListNode* node = list.tail; node != nullptr; node = node->prev) {
        // In a long list each node is a wait for memory, which encoding this one can fill.
        __builtin_prefetch(node->prev);
        if (!members.add(node->data)) {
            break;
        }
    }
    return members.finish();
}

int encodeArray(ASN1CTXT* ctxt, const TypeDescription& type, void* value) {
    const unsigned count = at<unsigned>(value, type.countOffset);
    auto* places = static_cast<unsigned char*>(arrayElements(type, value));
    if (type.shape == Shape::FixedArray && count > type.capacity) {
        return ASN1S_EXTRA_ELEMENT;
    }
    if (count != 0 && places == nullptr) {
        return ASN1S_BAD_VALUE;
    }
    MemberEncoder members(ctxt, type, count);
    for (unsigned i = count; i-- > 0;) {
        if (!members.add(places + std::size_t{i} * type.element->valueSize)) {
            break;
        }
    }
    return members.finish();
}

/// Elements behind one tag.
int encodeConstructed(ASN1CTXT* ctxt, const TypeDescription& type, void* value, ASN1TagType tagging,
                      const TypeDescription* openType) {
    const int status = checkConstraint(ctxt, type, value, type.constraint, type.parameter);
    if (status != ASN1S_SUCCESS) {
        return status;
    }
    int count = withValue(type, value, ContentsEncoder{{ctxt, type}, openType});
    if (count >= 0 && tagging == ASN1TagExplicit) {
        count = putHeader(ctxt, type.tag, type.identifier, count);
    }
    return count < 0 ? fail(ctxt, count) : count;
}

/// A value with whatever tags and typed form it has.
int encodeResolved(ASN1CTXT* ctxt, const TypeDescription& type, void* value, ASN1TagType tagging,
                   const Resolved& resolved) {
    if (value == nullptr && type.shape != Shape::Null) {
        return fail(ctxt, ASN1S_BAD_VALUE);
    }
    const Nesting nesting(ctxt, type.closesRecursion);
    if (nesting.tooDeep()) {
        return fail(ctxt, ASN1S_NO_MEMORY);
    }
    const int status = checkConstraint(ctxt, type, value, type.constraint, type.parameter);
    if (status != ASN1S_SUCCESS) {
        return status;
    }
    if (isAbsentBitString(type, value)) {
        return 0;
    }
    int count = resolved.isTyped()
                    ? encodeTyped(ctxt, resolved)
                    : withValue(type, value, ContentsEncoder{{ctxt, type}, resolved.type});
    // An own EXPLICIT tag is the outermost: without it the universal tag inside is still written.
    if (count >= 0 && type.tag != 0 && (tagging == ASN1TagExplicit || type.outerTag != 0)) {
        count = putHeader(ctxt, type.tag, type.identifier, count);
    }
    if (count >= 0 && type.outerTag != 0 && tagging == ASN1TagExplicit) {
        count = xe_tag_len(ctxt, type.outerTag, count);
    }
    return count < 0 ? fail(ctxt, count) : count;
}

} // namespace

int encode(ASN1CTXT* ctxt, const TypeDescription& type, void* value, ASN1TagType tagging) {
    return value == nullptr && type.shape != Shape::Null ? fail(ctxt, ASN1S_BAD_VALUE)
                                                         : encodeValue(ctxt, type, value, tagging);
}

} // namespace asn1data::family
