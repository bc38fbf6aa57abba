#ifndef BREVANTIS_ASN1_RUNTIME_ELEMENT_WALK_H
#define BREVANTIS_ASN1_RUNTIME_ELEMENT_WALK_H

#include <brevantis/asn1/export.h>
#include <brevantis/asn1/runtime/context.h>
#include <brevantis/asn1/runtime/tag_length.h>
#include <brevantis/asn1/runtime/value_types.h>

/// @file
/// Finding, stepping over and measuring elements of a message.
///
/// None of these moves the position past `size`: contents that end beyond it are
/// ASN1S_END_OF_BUFFER.

/// Steps over a one-octet tag that the caller has looked at, and reads the length.
/// @param len receives the length, ASN1IndefiniteLength on a primitive form too
/// @return 0; ASN1S_END_OF_BUFFER at the end of the buffer, or when ASN1F_INDEF_MESSAGE and
///         ASN1F_LAST_EOC are both set; the failures of xd_len
BREVANTIS_ASN1_API int xd_Tag1AndLen(ASN1CTXT* ctxt, int* len) noexcept;

/// Finds an element by its tag; class and number decide, the form does not.
///
/// A seek runs depth first: it enters constructed elements and steps over primitive contents. On a
/// mismatch the position and flags are what they were at the start of the search.
/// @param len receives the length of the element found; may be null
/// @param matchFlags ASN1MatchFlags. Without ASN1MatchAdvance the position ends at the first octet
///        of the element found
/// @return 0; ASN1S_TAG_NOT_FOUND when it is not there or the buffer ends first; the failures of
///         xd_tag_len. Nothing beyond what xd_len records is recorded
BREVANTIS_ASN1_API int xd_match(ASN1CTXT* ctxt, ASN1TAG tag, int* len, int matchFlags) noexcept;

/// Checks a one-octet tag at the position and reads the length; the form is not compared.
/// @param identifierOctet the expected octet
/// @param len receives the length. Null leaves even an indefinite length on a primitive form alone
/// @return 0; ASN1S_TAG_NOT_FOUND recorded, position unchanged, when another octet or none is
///         there; ASN1S_END_OF_BUFFER when the buffer ends behind the tag; the failures of xd_len;
///         ASN1S_INVALID_LENGTH recorded for an indefinite length on a primitive form
///         (X.690, 8.1.3.2)
BREVANTIS_ASN1_API int xd_match1(ASN1CTXT* ctxt, unsigned char identifierOctet, int* len) noexcept;

/// What xd_match1 does for a length of one octet, without a call.
/// @return false, with nothing changed, where anything else stands at the position
inline bool rtMatchShort(ASN1CTXT* ctxt, unsigned char identifierOctet, int* len) noexcept {
    ASN1Buffer& buffer = ctxt->buffer;
    if (buffer.size < 2 || buffer.byteIndex > buffer.size - 2) {
        return false;
    }
    // Kept: a tag in the other form matches. Programs depend on it.
    constexpr unsigned int formIgnored = 0xDF;
    const unsigned char* const header = buffer.data + buffer.byteIndex;
    if (((header[0] ^ identifierOctet) & formIgnored) != 0 || header[1] >= 0x80) {
        return false;
    }
    constexpr unsigned int form = 0x20; // X.690, 8.1.2.5
    ctxt->flags =
        static_cast<unsigned short>((header[0] & form) != 0 ? ctxt->flags | ASN1F_CONSTRUCTED
                                                            : ctxt->flags & ~ASN1F_CONSTRUCTED);
    buffer.byteIndex += 2;
    *len = header[1];
    return true;
}

/// Steps over the element at the position, whatever it holds.
/// @return 0; the failures of xd_tag_len; ASN1S_END_OF_BUFFER when its contents end beyond the
///         buffer
BREVANTIS_ASN1_API int xd_NextElement(ASN1CTXT* ctxt) noexcept;

/// Moves behind the end-of-contents octets (X.690, 8.1.5) of the element that the position is in.
/// @return 0; the failures of xd_NextElement
BREVANTIS_ASN1_API int xd_MovePastEOC(ASN1CTXT* ctxt) noexcept;

/// Counts the elements from the position on, which stays where it is on success.
/// @param length octets to walk, or ASN1IndefiniteLength for a walk to end-of-contents octets
/// @param count receives the number of elements; a buffer that ends early ends the count
/// @return 0; the failures of xd_NextElement, with the position where that one left it
BREVANTIS_ASN1_API int xd_count(ASN1CTXT* ctxt, int length, int* count) noexcept;

/// Size of a whole message whose first length is indefinite, its last end-of-contents included.
/// @param msg the message
/// @param bufSize octets in @p msg; nothing behind them is read
/// @return the size; 0 when @p bufSize is below 5; ASN1S_INVALID_LENGTH when the first length is
///         not indefinite; ASN1S_END_OF_BUFFER when the message is not closed within @p bufSize;
///         the failures of xd_tag_len. No memory is needed
BREVANTIS_ASN1_API int xd_indeflen_ex(const unsigned char* msg, int bufSize) noexcept;

/// Measures a constructed string of indefinite length from its first content octet on; the position
/// is restored on success.
/// @param segmentTag whole tag of the segments, 3 for BIT STRING and 4 for every other string
/// @param dataLen receives the sum of the segments' lengths
/// @param contentLen receives the octets in front of the end-of-contents, segment headers included
/// @return 0; ASN1S_BAD_TAG for another tag, which a constructed segment has too; the failures of
///         xd_NextElement
BREVANTIS_ASN1_API int xd_consStrIndefLenAndSize(ASN1CTXT* ctxt, ASN1TAG segmentTag, int* dataLen,
                                                 int* contentLen) noexcept;

/// Copies octets out of the message and moves behind them.
/// @param target room for @p count octets
/// @return 0; ASN1S_END_OF_BUFFER when fewer are left, or @p count is negative
BREVANTIS_ASN1_API int xd_memcpy(ASN1CTXT* ctxt, unsigned char* target, int count) noexcept;

/// Saves position and flags.
/// @param saved receives them; null stands for `ctxt->savedInfo`
/// @return 0
BREVANTIS_ASN1_API int xu_SaveBufferState(ASN1CTXT* ctxt, ASN1SavedState* saved) noexcept;

/// Restores position and flags, ASN1F_LAST_EOC cleared.
/// @param saved filled by xu_SaveBufferState; null stands for `ctxt->savedInfo`
/// @return 0
BREVANTIS_ASN1_API int xu_RestoreBufferState(ASN1CTXT* ctxt, ASN1SavedState* saved) noexcept;

/// Whether end-of-contents octets (X.690, 8.1.5) stand at the position.
inline bool rtEndOfContentsAhead(const ASN1CTXT* ctxt) noexcept {
    const ASN1Buffer& buffer = ctxt->buffer;
    return buffer.byteIndex < buffer.size && buffer.size - buffer.byteIndex >= 2 &&
           buffer.data[buffer.byteIndex] == 0 && buffer.data[buffer.byteIndex + 1] == 0;
}

/// Whether the contents of a constructed value are used up: a definite form after its length, an
/// indefinite one (X.690, 8.1.3.6) at its end-of-contents octets, which are not consumed, or where
/// no two octets are left. The end of the buffer ends every form.
inline bool rtScopeEnded(const ASN1CTXT* ctxt, const ASN1ElementScope& scope) noexcept {
    // Kept: a message that is cut off ends what is open in it. Programs depend on it.
    const ASN1Buffer& buffer = ctxt->buffer;
    if (buffer.byteIndex >= buffer.size) {
        return true;
    }
    if (scope.length == ASN1IndefiniteLength) {
        return buffer.size - buffer.byteIndex < 2 || rtEndOfContentsAhead(ctxt);
    }
    return buffer.data + buffer.byteIndex - scope.start >= scope.length;
}

#endif
