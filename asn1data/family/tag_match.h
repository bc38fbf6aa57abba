#ifndef BREVANTIS_ASN1DATA_FAMILY_TAG_MATCH_H
#define BREVANTIS_ASN1DATA_FAMILY_TAG_MATCH_H

#include <brevantis/asn1/asn1data/generated.h>
#include <brevantis/asn1/runtime/tag_length.h>

#include "value_access.h"

// Which element of a description a tag in a message can be that of, whoever reads it.

namespace asn1data::family {

/// Tags above 30 share their first octet (X.690, 8.1.2.4).
constexpr bool isLong(unsigned char octet) {
    return (octet & ASN1LongTagNumber) == ASN1LongTagNumber;
}

/// Whether tags are the same, in either form.
inline bool isSameTag(ASN1TAG first, ASN1TAG second) {
    return ((first ^ second) & ~ASN1TAG{ASN1TagConstructed}) == 0;
}

inline bool beginsWith(const TypeDescription& type, ASN1TAG tag);

/// Whether a tag can be the first of an element.
inline bool beginsWith(const ElementDescription& element, ASN1TAG tag) {
    return element.tagging == Tagging::Untagged ? beginsWith(*element.type, tag)
                                                : isSameTag(element.tag, tag);
}

inline bool beginsWith(const TypeDescription& type, ASN1TAG tag) {
    const ASN1TAG own = type.outerTag != 0 ? type.outerTag : type.tag;
    if (own != 0 || type.shape != Shape::Choice) {
        return own == 0 || isSameTag(own, tag);
    }
    for (unsigned i = 0; i < type.elementCount; ++i) {
        if (beginsWith(type.elements[i], tag)) {
            return true;
        }
    }
    return false;
}

/// Whether an element begins with the tag at the position, by the whole of it. One that cannot be
/// read is left to whoever reads the element.
[[gnu::noinline]] inline bool longTagBeginsHere(const ASN1CTXT* ctxt,
                                                const ElementDescription& element) {
    const ASN1Buffer& buffer = ctxt->buffer;
    ASN1TAG tag = 0;
    for (unsigned i = buffer.byteIndex + 1; i < buffer.size; ++i) {
        const unsigned char octet = buffer.data[i];
        tag = tag << 7 | (octet & 0x7Fu);
        if (octet < 0x80) {
            const ASN1TAG first = buffer.data[buffer.byteIndex] & 0xE0u;
            return beginsWith(element, first << 24 | (tag & 0x1FFFFFFFu));
        }
    }
    return true;
}
/// Whether the octet at the position can begin the element. A context tag counts in either
/// form.
inline bool beginsHere(const ASN1CTXT* ctxt, const ElementDescription& element) {
    // Kept: a tag in the other form matches here, and in a SET or a CHOICE it does not.
    const unsigned char octet = ctxt->buffer.data[ctxt->buffer.byteIndex];
    const bool begins = element.tagging == Tagging::Untagged
                            ? element.type->identifiers.contains(octet)
                            : ((octet ^ element.identifier) & FormMask) == 0;
    return begins && (!isLong(octet) || longTagBeginsHere(ctxt, element));
}

/// Reads a tag above 30 and the length behind it.
[[gnu::noinline]] inline int readLongTag(ASN1CTXT* ctxt, ASN1TAG tag, int& length) {
    ASN1TAG found = 0;
    const int status = xd_tag_len(ctxt, &found, &length, ASN1MatchAdvance);
    return status == ASN1S_SUCCESS && !isSameTag(found, tag) ? int{ASN1S_TAG_NOT_FOUND} : status;
}

/// The member of a SET or the alternative of a CHOICE that has no tag to compare and can begin
/// with this one.
inline bool mayBegin(const ElementDescription& element, unsigned char octet, ASN1TAG tag) {
    return element.type->identifiers.contains(octet) &&
           (!isLong(octet) || beginsWith(*element.type, tag));
}

/// The member that has this tag, or none to compare and may begin with it.
/// @return the number of elements when there is none
inline unsigned memberWith(const TypeDescription& type, unsigned char octet, ASN1TAG tag) {
    unsigned i = 0;
    while (i < type.elementCount &&
           (tag != type.elements[i].matchTag || type.elements[i].matchTag == 0)) {
        ++i;
    }
    if (i == type.elementCount) {
        i = 0;
        while (i < type.elementCount &&
               (type.elements[i].matchTag != 0 || !mayBegin(type.elements[i], octet, tag))) {
            ++i;
        }
    }
    return i;
}

} // namespace asn1data::family

#endif
