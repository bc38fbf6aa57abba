#ifndef BREVANTIS_ASN1DATA_FAMILY_VALUE_ACCESS_H
#define BREVANTIS_ASN1DATA_FAMILY_VALUE_ACCESS_H

#include <cstring>

#include <brevantis/asn1/asn1data/describe.h>
#include <brevantis/asn1/runtime/context.h>
#include <brevantis/asn1/runtime/header.h>
#include <brevantis/asn1/runtime/list.h>

// How the engine reaches the members of a record that it knows by description alone, and the few
// rules that every direction of it shares.

namespace asn1data::family {

/// The member of type T at an offset of a record. The compiler of the schema has asserted that the
/// member there is a T.
template <class T>
T& at(void* record, unsigned offset) {
    return *reinterpret_cast<T*>(static_cast<unsigned char*>(record) + offset);
}
template <class T>
const T& at(const void* record, unsigned offset) {
    return *reinterpret_cast<const T*>(static_cast<const unsigned char*>(record) + offset);
}

inline void* address(void* record, unsigned offset) {
    return static_cast<unsigned char*>(record) + offset;
}
inline const void* address(const void* record, unsigned offset) {
    return static_cast<const unsigned char*>(record) + offset;
}

/// The elements of a record, or the alternatives of a CHOICE, for a loop that need not look at the
/// type again after each of them.
struct Elements {
    const ElementDescription* first;
    const ElementDescription* last;

    const ElementDescription* begin() const { return first; }
    const ElementDescription* end() const { return last; }
};
inline Elements elementsOf(const TypeDescription& type) {
    return {type.elements, type.elements + type.elementCount};
}

/// A word of the presence bits `m` of a record: 32 of them. They are declared as bit-fields, so
/// they are copied out and in rather than referred to.
/// @param bit any of the word
inline unsigned presenceWord(const void* record, unsigned offset, unsigned bit) {
    unsigned bits = 0;
    std::memcpy(&bits, address(record, offset + bit / 32 * unsigned{sizeof bits}), sizeof bits);
    return bits;
}
inline void setPresenceWord(void* record, unsigned offset, unsigned bit, unsigned bits) {
    std::memcpy(address(record, offset + bit / 32 * unsigned{sizeof bits}), &bits, sizeof bits);
}
inline bool presenceBit(const void* record, unsigned offset, unsigned bit) {
    return (presenceWord(record, offset, bit) >> bit % 32 & 1u) != 0;
}

/// Bits of `m` that a record has, rounded up to words.
inline unsigned presenceBitCount(const TypeDescription& type) {
    unsigned last = 0;
    for (unsigned i = 32; i < type.elementCount; ++i) { // fewer elements have one word at most
        const ElementDescription& element = type.elements[i];
        last = element.presence == Presence::Optional ? element.presenceBit : last;
    }
    return last / 32 * 32 + 32;
}

/// Whether an element of a record is there to be copied or released (an element with DEFAULT always
/// is).
inline bool isPresent(const TypeDescription& type, const ElementDescription& element,
                      const void* record) {
    return element.presence != Presence::Optional ||
           presenceBit(record, type.presenceOffset, element.presenceBit);
}

/// Whether a type is a string. The string coders step over the end-of-contents of an indefinite
/// form by themselves, also when its tag was read by the caller.
inline bool isString(const TypeDescription& type) {
    return asn1data::isString(type.shape);
}

/// Makes an OPTIONAL element present; every other one is.
inline void markPresent(const TypeDescription& type, const ElementDescription& element,
                        void* record) {
    if (element.presence == Presence::Optional) {
        const unsigned bit = element.presenceBit;
        setPresenceWord(record, type.presenceOffset, bit,
                        presenceWord(record, type.presenceOffset, bit) | 1u << bit % 32);
    }
}

/// Puts the DEFAULTs of a record in place.
void setDefaults(const TypeDescription& type, void* record);

/// What is left of a type's own tag inside an element's: all of it under an EXPLICIT one.
inline ASN1TagType innerTagging(const ElementDescription& element) {
    return element.tagging == Tagging::Explicit ? ASN1TagExplicit : ASN1TagImplicit;
}

/// The alternative that a CHOICE record selects, null when the selector names none.
inline const ElementDescription* selectedAlternative(const TypeDescription& type,
                                                     const void* record) {
    const unsigned selector = at<unsigned>(record, type.countOffset);
    return selector >= 1 && selector <= type.elementCount ? &type.elements[selector - 1] : nullptr;
}

/// Where the value of an alternative stands: in the union, or behind the pointer there.
inline void* alternativeValue(const ElementDescription& alternative, void* record) {
    return alternative.indirect ? at<void*>(record, alternative.offset)
                                : address(record, alternative.offset);
}

/// The array of an Array or FixedArray value; null when an Array has none.
inline void* arrayElements(const TypeDescription& type, void* value) {
    return type.shape == Shape::FixedArray ? address(value, type.dataOffset)
                                           : at<void*>(value, type.dataOffset);
}

/// Whether a table constraint's open value is there at all.
inline bool isOpenValuePresent(const TableConstraint& table, const void* record) {
    return table.presenceOffset == NoOffset ||
           presenceBit(record, table.presenceOffset, table.presenceBit);
}

/// The object that a record's identifier selects for its open value. Null where nothing is to be
/// resolved: the value is absent, its identifier unknown, or the object without a type.
const ObjectDescription* selectedObject(const TableConstraint& table, const void* record);

/// Records a failure in the context and hands its status back.
inline int fail(ASN1CTXT* ctxt, int status) {
    return rtErrSetData(&ctxt->errInfo, status, nullptr, 0);
}

/// Counts the open types and recursive types that are open inside each other, so that no message
/// and no value can drive the engine's recursion without limit.
class Nesting {
public:
    enum : unsigned { Limit = 64 };

    Nesting(ASN1CTXT* ctxt, bool counts) : ctxt_(counts ? ctxt : nullptr) {
        if (ctxt_ != nullptr) {
            ++ctxt_->nestingDepth;
        }
    }
    ~Nesting() {
        if (ctxt_ != nullptr) {
            --ctxt_->nestingDepth;
        }
    }
    Nesting(const Nesting&) = delete;
    Nesting& operator=(const Nesting&) = delete;

    bool tooDeep() const { return ctxt_ != nullptr && ctxt_->nestingDepth > Limit; }

private:
    ASN1CTXT* ctxt_;
};

/// Tests the number that a constraint of the type is about against permitted ranges.
/// @return 0; ASN1S_INVALID_ENUM for an ENUMERATED and ASN1S_CONSTRAINT_VIOLATION for anything else
///         outside them
int checkNumber(ASN1CTXT* ctxt, const TypeDescription& type, long long number,
                const Constraint& constraint, const char* parameter);

/// Tests a value against permitted ranges, of which there is at least one.
int checkRanges(ASN1CTXT* ctxt, const TypeDescription& type, const void* value,
                const Constraint& constraint, const char* parameter);

/// Tests a value against a constraint.
/// @return 0; ASN1S_INVALID_ENUM for an ENUMERATED and ASN1S_CONSTRAINT_VIOLATION for anything else
///         outside it; ASN1S_BAD_VALUE for text that is not there
inline int checkConstraint(ASN1CTXT* ctxt, const TypeDescription& type, const void* value,
                           const Constraint& constraint, const char* parameter) {
    return constraint.count == 0 ? ASN1S_SUCCESS
                                 : checkRanges(ctxt, type, value, constraint, parameter);
}

/// The form bit of an identifier octet does not count where a tag is matched.
enum : unsigned { FormMask = 0xDF };

/// Universal tag of UTF8String, the one type of 8-bit characters that is bounded in characters
/// rather than octets.
enum : ASN1TAG { Utf8StringTag = 12 };

} // namespace asn1data::family

#endif
