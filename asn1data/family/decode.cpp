#include <brevantis/asn1/asn1data/family.h>
#include <brevantis/asn1/runtime/big_integer.h>
#include <brevantis/asn1/runtime/bit_string.h>
#include <brevantis/asn1/runtime/character_string.h>
#include <brevantis/asn1/runtime/element_walk.h>
#include <brevantis/asn1/runtime/object_identifier_coding.h>
#include <brevantis/asn1/runtime/octet_string.h>
#include <brevantis/asn1/runtime/open_type.h>
#include <brevantis/asn1/runtime/scalar.h>
#include <brevantis/asn1/runtime/tag_length.h>

#include "value_access.h"

namespace asn1data::family {

namespace {

enum : ASN1TAG { ClassMask = 0xC0000000u };
enum : unsigned { MaximumListCount = 0x7FFFFFFEu };

/// The contents octets of a constructed value, from where the position stands now.
ASN1ElementScope scopeAt(const ASN1CTXT* ctxt, int length) {
    return {ctxt->buffer.data + ctxt->buffer.byteIndex, length};
}

/// Steps over the end-of-contents octets that close an indefinite form (X.690, 8.1.5).
int stepOverEndOfContents(ASN1CTXT* ctxt) {
    if (!rtEndOfContentsAhead(ctxt)) {
        return fail(ctxt, ASN1S_INVALID_LENGTH);
    }
    ctxt->buffer.byteIndex += 2;
    return ASN1S_SUCCESS;
}

/// Whether the coder of a type steps over the end-of-contents of an indefinite form by itself, also
/// when its tag was read by the caller: the string coders do.
bool closesItself(const TypeDescription& type) {
    switch (type.shape) {
    case Shape::OctetString:
    case Shape::FixedOctetString:
    case Shape::BitString:
    case Shape::FixedBitString:
    case Shape::Text:
    case Shape::Text16:
    case Shape::Text32:
        return true;
    default:
        return false;
    }
}

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

/// Decodes the value of an element whose tag, if it has one, was read with the given length.
/// Whoever reads a tag in indefinite form steps over its end-of-contents, where the element belongs
/// to the structures that streaming producers write so (RFC 5652, section 5.1 and the like).
int decodeTagged(ASN1CTXT* ctxt, const TypeDescription& container,
                 const ElementDescription& element, void* value, ASN1TagType inner, int length) {
    const int status = decode(ctxt, *element.type, value, inner, length);
    if (status != ASN1S_SUCCESS || length != ASN1IndefiniteLength) {
        return status;
    }
    if (!container.stepsOverEndOfContents && !element.type->stepsOverEndOfContents) {
        return ASN1S_SUCCESS;
    }
    if (inner == ASN1TagImplicit && closesItself(*element.type)) {
        return ASN1S_SUCCESS;
    }
    return stepOverEndOfContents(ctxt);
}

int decodeElement(ASN1CTXT* ctxt, const TypeDescription& container,
                  const ElementDescription& element, void* value) {
    int status = ASN1S_SUCCESS;
    if (element.tagging == Tagging::Untagged) {
        status = decode(ctxt, *element.type, value, ASN1TagExplicit, 0);
    } else {
        int length = 0;
        status = xd_Tag1AndLen(ctxt, &length);
        if (status != ASN1S_SUCCESS) {
            return fail(ctxt, status);
        }
        status = decodeTagged(ctxt, container, element, value, innerTagging(element), length);
    }
    if (status != ASN1S_SUCCESS) {
        return fail(ctxt, status);
    }
    return checkConstraint(ctxt, *element.type, value, element.constraint, element.parameter);
}

/// Whether the octet at the position can begin the element. A context tag counts in either form.
bool beginsHere(const ASN1CTXT* ctxt, const ElementDescription& element) {
    const unsigned char octet = ctxt->buffer.data[ctxt->buffer.byteIndex];
    return element.tagging == Tagging::Untagged
               ? element.type->identifiers.contains(octet)
               : (octet & FormMask) == (identifierOctet(element.tag) & FormMask);
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

/// Elements in the order of declaration (X.690, 8.9.2); the place in the declaration only moves on.
int decodeSequence(ASN1CTXT* ctxt, const TypeDescription& type, void* record, int length) {
    prepareRecord(type, record);
    const ASN1ElementScope scope = scopeAt(ctxt, length);
    if (type.extensionOffset != NoOffset) {
        rtDListInit(&at<Asn1RTDList>(record, type.extensionOffset));
    }
    unsigned place = 0;
    unsigned found = 0;
    while (!rtScopeEnded(ctxt, scope)) {
        if (place >= type.elementCount) {
            if (type.extensionOffset == NoOffset) {
                return fail(ctxt, ASN1S_EXTRA_ELEMENT);
            }
            ASN1ElementScope rest = scope;
            const int status = xd_OpenTypeExt(ctxt, &rest, ASN1TagNone,
                                              &at<Asn1RTDList>(record, type.extensionOffset));
            if (status != ASN1S_SUCCESS) {
                return fail(ctxt, status);
            }
            break;
        }
        const ElementDescription& element = type.elements[place++];
        const bool mandatory = element.presence == Presence::Mandatory;
        if (!mandatory || element.tagging != Tagging::Untagged) {
            if (!beginsHere(ctxt, element)) {
                if (mandatory) {
                    return fail(ctxt, ASN1S_TAG_NOT_FOUND);
                }
                continue;
            }
        }
        const int status = decodeElement(ctxt, type, element, address(record, element.offset));
        if (status != ASN1S_SUCCESS) {
            return status;
        }
        markPresent(type, element, record);
        found += mandatory ? 1 : 0;
    }
    return found < type.mandatoryCount ? fail(ctxt, ASN1S_MISSING_ELEMENT) : ASN1S_SUCCESS;
}

/// Elements in any order (X.690, 8.11.2), each by its whole tag.
int decodeSet(ASN1CTXT* ctxt, const TypeDescription& type, void* record, int length) {
    prepareRecord(type, record);
    const ASN1ElementScope scope = scopeAt(ctxt, length);
    unsigned long long seen = 0;
    unsigned found = 0;
    while (!rtScopeEnded(ctxt, scope)) {
        ASN1TAG tag = 0;
        int elementLength = 0;
        int status = xd_tag_len(ctxt, &tag, &elementLength, ASN1MatchAdvance);
        if (status != ASN1S_SUCCESS) {
            return fail(ctxt, status);
        }
        unsigned i = 0;
        while (i < type.elementCount &&
               tag != (type.elements[i].tagging == Tagging::Untagged ? type.elements[i].type->tag
                                                                     : type.elements[i].tag)) {
            ++i;
        }
        if (i == type.elementCount) {
            return fail(ctxt, ASN1S_UNKNOWN_SET_MEMBER);
        }
        const ElementDescription& element = type.elements[i];
        void* value = address(record, element.offset);
        status = decodeTagged(ctxt, type, element, value, innerTagging(element), elementLength);
        if (status != ASN1S_SUCCESS) {
            return fail(ctxt, status);
        }
        status = checkConstraint(ctxt, *element.type, value, element.constraint, element.parameter);
        if (status != ASN1S_SUCCESS) {
            return status;
        }
        if ((seen >> i & 1u) != 0) {
            return fail(ctxt, ASN1S_DUPLICATE_SET_MEMBER);
        }
        seen |= 1ULL << i;
        markPresent(type, element, record);
        found += element.presence == Presence::Mandatory ? 1 : 0;
    }
    return found < type.mandatoryCount ? fail(ctxt, ASN1S_MISSING_ELEMENT) : ASN1S_SUCCESS;
}

int decodeChoice(ASN1CTXT* ctxt, const TypeDescription& type, void* record) {
    // Until an alternative has been read whole the selector names none, so that a value left over
    // from a failure can be released.
    at<unsigned>(record, type.countOffset) = 0;
    const unsigned start = ctxt->buffer.byteIndex;
    ASN1TAG tag = 0;
    int length = 0;
    int status = xd_tag_len(ctxt, &tag, &length, ASN1MatchAdvance);
    if (status != ASN1S_SUCCESS) {
        return fail(ctxt, status);
    }
    const unsigned char octet = ctxt->buffer.data[start];
    for (unsigned i = 0; i < type.elementCount; ++i) {
        const ElementDescription& alternative = type.elements[i];
        // An alternative that is itself a CHOICE or an open type has no tag to compare; it reads
        // its own from the start.
        const bool untagged = alternative.tagging == Tagging::Untagged &&
                              (alternative.type->tag == 0 || alternative.type->outerTag != 0);
        const ASN1TAG expected =
            alternative.tagging == Tagging::Untagged ? alternative.type->tag : alternative.tag;
        if (untagged ? !alternative.type->identifiers.contains(octet) : tag != expected) {
            continue;
        }
        void* value = address(record, alternative.offset);
        if (alternative.indirect) {
            void* allocated = newRecord(ctxt, *alternative.type);
            if (allocated == nullptr) {
                return fail(ctxt, ASN1S_NO_MEMORY);
            }
            at<void*>(record, alternative.offset) = allocated;
            value = allocated;
        }
        if (untagged) {
            ctxt->buffer.byteIndex = start;
            status = decode(ctxt, *alternative.type, value, ASN1TagExplicit, 0);
        } else {
            status =
                decodeTagged(ctxt, type, alternative, value, innerTagging(alternative), length);
        }
        if (status != ASN1S_SUCCESS) {
            return fail(ctxt, status);
        }
        status = checkConstraint(ctxt, *alternative.type, value, alternative.constraint,
                                 alternative.parameter);
        if (status != ASN1S_SUCCESS) {
            return status;
        }
        at<unsigned>(record, type.countOffset) = i + 1;
        return ASN1S_SUCCESS;
    }
    return fail(ctxt, ASN1S_INVALID_CHOICE);
}

int decodeList(ASN1CTXT* ctxt, const TypeDescription& type, void* value, int length) {
    auto& list = at<Asn1RTDList>(value, 0);
    rtDListInit(&list);
    const TypeDescription& elementType = *type.element;
    const int blockSize = static_cast<int>(sizeof(Asn1RTDListNode) + elementType.valueSize);
    const ASN1ElementScope scope = scopeAt(ctxt, length);
    while (!rtScopeEnded(ctxt, scope)) {
        if (list.count >= MaximumListCount) {
            return fail(ctxt, ASN1S_EXTRA_ELEMENT);
        }
        // Node and element share one block, the element behind the node.
        auto* block = static_cast<unsigned char*>(rtMemHeapAllocZ(&ctxt->memHeap, blockSize));
        if (block == nullptr) {
            return fail(ctxt, ASN1S_NO_MEMORY);
        }
        void* element = block + sizeof(Asn1RTDListNode);
        const int status = decode(ctxt, elementType, element, ASN1TagExplicit, 0);
        if (status != ASN1S_SUCCESS) {
            return status;
        }
        rtDListAppendNode(ctxt, &list, element);
    }
    return ASN1S_SUCCESS;
}

/// Decodes elements into consecutive places and leaves the count of those read whole.
int decodePlaces(ASN1CTXT* ctxt, const TypeDescription& type, void* value, int length,
                 unsigned capacity) {
    auto& count = at<unsigned>(value, type.countOffset);
    count = 0;
    const ASN1ElementScope scope = scopeAt(ctxt, length);
    auto* places = static_cast<unsigned char*>(arrayElements(type, value));
    while (!rtScopeEnded(ctxt, scope)) {
        if (count >= capacity) {
            return fail(ctxt, ASN1S_EXTRA_ELEMENT);
        }
        void* place = places + std::size_t{count} * type.element->valueSize;
        // One at a time: elements that turn out to be none must not cost the memory of all.
        std::memset(place, 0, type.element->valueSize);
        const int status = decode(ctxt, *type.element, place, ASN1TagExplicit, 0);
        if (status != ASN1S_SUCCESS) {
            return status;
        }
        ++count;
    }
    return ASN1S_SUCCESS;
}

int decodeArray(ASN1CTXT* ctxt, const TypeDescription& type, void* value, int length) {
    at<unsigned>(value, type.countOffset) = 0;
    at<void*>(value, type.dataOffset) = nullptr;
    int count = 0;
    const int status = xd_count(ctxt, length, &count);
    if (status != ASN1S_SUCCESS) {
        return fail(ctxt, status);
    }
    const unsigned long long size =
        static_cast<unsigned long long>(count) * type.element->valueSize;
    if (size > 0x7FFFFFCFu) {
        return fail(ctxt, ASN1S_NO_MEMORY);
    }
    void* places = rtMemHeapAlloc(&ctxt->memHeap, static_cast<int>(size));
    if (places == nullptr) {
        return fail(ctxt, ASN1S_NO_MEMORY);
    }
    at<void*>(value, type.dataOffset) = places;
    return decodePlaces(ctxt, type, value, length, static_cast<unsigned>(count));
}

int decodeConstructed(ASN1CTXT* ctxt, const TypeDescription& type, void* value, int length) {
    switch (type.shape) {
    case Shape::Sequence:
        return decodeSequence(ctxt, type, value, length);
    case Shape::Set:
        return decodeSet(ctxt, type, value, length);
    case Shape::List:
        return decodeList(ctxt, type, value, length);
    case Shape::Array:
        return decodeArray(ctxt, type, value, length);
    case Shape::FixedArray:
        return decodePlaces(ctxt, type, value, length, type.capacity);
    default:
        return fail(ctxt, ASN1S_NOT_SUPPORTED);
    }
}

/// Reads the type's own tags as far as they are the callee's to read.
/// @param tagging comes back as the tagging that is left for the contents
int readOwnTags(ASN1CTXT* ctxt, const TypeDescription& type, ASN1TagType& tagging, int& length,
                int& outerLength) {
    if (type.outerTag != 0) {
        if (tagging == ASN1TagExplicit) {
            const int status = xd_match1(ctxt, identifierOctet(type.outerTag), &outerLength);
            if (status != ASN1S_SUCCESS) {
                return fail(ctxt, status);
            }
        }
        tagging = ASN1TagExplicit;
    }
    const bool constructed = (type.tag & ASN1TagConstructed) != 0;
    if (tagging == ASN1TagExplicit && (constructed || (type.tag & ClassMask) != 0)) {
        const int status = xd_match1(ctxt, identifierOctet(type.tag), &length);
        if (status != ASN1S_SUCCESS) {
            return fail(ctxt, status);
        }
        tagging = ASN1TagImplicit;
    }
    return ASN1S_SUCCESS;
}

/// Everything of a value but its constraint and its open value.
int decodeTagsAndContents(ASN1CTXT* ctxt, const TypeDescription& type, void* value,
                          ASN1TagType tagging, int length) {
    const Nesting nesting(ctxt, type.closesRecursion);
    if (nesting.tooDeep()) {
        return ASN1S_NO_MEMORY;
    }
    const ASN1TagType callersTagging = tagging;
    int outerLength = 0;
    int status = readOwnTags(ctxt, type, tagging, length, outerLength);
    if (status != ASN1S_SUCCESS) {
        return status;
    }
    if (type.shape == Shape::Choice) {
        status = decodeChoice(ctxt, type, value);
    } else if ((type.tag & ASN1TagConstructed) != 0) {
        status = decodeConstructed(ctxt, type, value, length);
        if (status == ASN1S_SUCCESS && type.stepsOverEndOfContents &&
            length == ASN1IndefiniteLength &&
            (callersTagging == ASN1TagExplicit || type.outerTag != 0)) {
            status = stepOverEndOfContents(ctxt);
        }
    } else {
        status = decodePrimitive(ctxt, type, value, tagging, length);
    }
    if (status == ASN1S_SUCCESS && outerLength == ASN1IndefiniteLength &&
        type.stepsOverEndOfContents) {
        status = stepOverEndOfContents(ctxt);
    }
    return status;
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

} // namespace

int decode(ASN1CTXT* ctxt, const TypeDescription& type, void* value, ASN1TagType tagging,
           int length) {
    if (value == nullptr && type.shape != Shape::Null) {
        return fail(ctxt, ASN1S_INVALID_PARAMETER);
    }
    // Most values are primitives with no tag but their universal one, which their coder reads.
    const int status =
        type.shape < Shape::Sequence && type.outerTag == 0 && (type.tag & ClassMask) == 0
            ? decodePrimitive(ctxt, type, value, tagging, length)
            : decodeTagsAndContents(ctxt, type, value, tagging, length);
    if (status != ASN1S_SUCCESS) {
        return fail(ctxt, status);
    }
    const int within = checkConstraint(ctxt, type, value, type.constraint, type.parameter);
    return within != ASN1S_SUCCESS || type.table == nullptr
               ? within
               : decodeOpenValueInside(ctxt, type, value);
}

} // namespace asn1data::family
