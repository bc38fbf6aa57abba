#ifndef BREVANTIS_ASN1_RUNTIME_TAG_LENGTH_H
#define BREVANTIS_ASN1_RUNTIME_TAG_LENGTH_H

#include <brevantis/asn1/export.h>
#include <brevantis/asn1/runtime/context.h>
#include <brevantis/asn1/runtime/value_types.h>

/// @file
/// Identifier and length octets (X.690, 8.1.2 and 8.1.3) in both directions.
///
/// Decoding walks forward from `byteIndex` and never reads at or past `size`. Encoding fills the
/// buffer from its end: contents first, then length, then tag, so that no length is ever patched.
/// An encoder returns the number of octets that it added, or a negative status; after a failure
/// what was added stays in the buffer and the message is unusable until the next rewind.

/// Bits of the last argument of xd_tag_len and xd_match.
enum ASN1MatchFlags : int {
    ASN1MatchSeek = 1,     ///< xd_match: go on past elements that do not match
    ASN1MatchAdvance = 2,  ///< leave the position behind the header, not in front of it
    ASN1MatchSkipFirst = 8 ///< xd_match: step over the element at the position first
};

/// Binds a message and looks at its first element; the position ends up at 0.
///
/// Afterwards `size` is the end of that element, so that octets behind it are out of reach. With an
/// indefinite length there is no such end: ASN1F_INDEF_MESSAGE is set and `size` is @p msgLen.
/// ASN1F_LAST_EOC and an old ASN1F_INDEF_MESSAGE are cleared.
/// @param msg the message; must outlive its use through the context. Null holds no octet:
///        ASN1S_END_OF_BUFFER, or ASN1S_NO_MEMORY with a @p msgLen below 1
/// @param msgLen octets in @p msg; below 1 when unknown, which trusts the message's own lengths
/// @param tag receives the first tag; may be null
/// @param len receives the size of the first element with its header, or ASN1IndefiniteLength; may
///        be null
/// @return 0; ASN1S_NOT_INITIALISED when the context is not set up; ASN1S_INVALID_LENGTH when the
///         length is malformed (X.690, 8.1.3) or the element ends beyond @p msgLen (in the second
///         case @p tag and @p len are set); ASN1S_END_OF_BUFFER or ASN1S_BAD_TAG when the header is
///         cut off or its tag number too big
BREVANTIS_ASN1_API int xd_setp(ASN1CTXT* ctxt, const unsigned char* msg, int msgLen, ASN1TAG* tag,
                               int* len) noexcept;

/// Reads identifier octets (X.690, 8.1.2) and sets ASN1F_CONSTRUCTED from them.
///
/// Zero octets in front of a long-form number and long forms of small numbers are accepted, up to
/// nine number octets. Bits that leave the 32-bit number at its top are lost.
/// @param tag receives the tag, 0 on failure
/// @return 0; ASN1S_END_OF_BUFFER at the end of the buffer; ASN1S_BAD_TAG for a number above
///         0x1FFFFFFF or a tenth octet
BREVANTIS_ASN1_API int xd_tag(ASN1CTXT* ctxt, ASN1TAG* tag) noexcept;

/// Reads length octets (X.690, 8.1.3). Non-minimal forms are accepted.
/// @param len receives the length, or ASN1IndefiniteLength for the octet 0x80 (and for the four
///        octets FF FF D8 F1, whose value is the same number)
/// @return 0; ASN1S_END_OF_BUFFER recorded at the end of the buffer; ASN1S_INVALID_LENGTH recorded
///         for more than four octets, and, unless ASN1F_LENGTH_UNCHECKED is set, for a long form
///         whose value is negative or exceeds what is left of the buffer. A short form is not
///         compared: whoever steps over or reads the contents does that
BREVANTIS_ASN1_API int xd_len(ASN1CTXT* ctxt, int* len) noexcept;

/// Reads a tag and a length.
///
/// The position and flags in front of them go to `savedInfo`, and come back from there unless
/// ASN1MatchAdvance is given.
/// @param matchFlags ASN1MatchAdvance or 0
/// @return 0; ASN1S_END_OF_BUFFER at the end of the buffer, or when ASN1F_INDEF_MESSAGE and
///         ASN1F_LAST_EOC are both set; the failures of xd_tag and xd_len; ASN1S_INVALID_LENGTH for
///         an indefinite length on a primitive form (X.690, 8.1.3.2), with the position left behind
///         the header whatever @p matchFlags
BREVANTIS_ASN1_API int xd_tag_len(ASN1CTXT* ctxt, ASN1TAG* tag, int* len, int matchFlags) noexcept;

/// Binds a buffer for encoding; the last octet of it stays unused.
/// @param buffer caller-owned octets that are never replaced, or null for a block from the heap
///        that grows as needed
/// @param size octets; 0 with null @p buffer means 16384
/// @return 0; ASN1S_NOT_INITIALISED when the context is not set up; ASN1S_NO_MEMORY when memory is
///         out; ASN1S_BUFFER_OVERFLOW for a caller-owned buffer of no octets, into which every
///         later write fails too
BREVANTIS_ASN1_API int xe_setp(ASN1CTXT* ctxt, unsigned char* buffer, unsigned int size) noexcept;

/// First octet of the message so far. A growing buffer moves: take it when the message is complete.
BREVANTIS_ASN1_API unsigned char* xe_getp(ASN1CTXT* ctxt) noexcept;

/// Puts octets in front of what is written.
/// @param source @p count octets outside the buffer
/// @return @p count; ASN1S_BAD_VALUE when @p source is null; ASN1S_BUFFER_OVERFLOW when a
///         caller-owned buffer is full; ASN1S_NO_MEMORY when memory is out
BREVANTIS_ASN1_API int xe_memcpy(ASN1CTXT* ctxt, const void* source, unsigned int count) noexcept;

/// Moves the message to a block that is at least 16384 octets larger. Pointers into the buffer die,
/// distances from its end keep their meaning.
/// @param count octets that must fit in addition
/// @return 0; ASN1S_BUFFER_OVERFLOW when the buffer is the caller's; ASN1S_NO_MEMORY when memory is
///         out or the block would exceed what the heap hands out (0x7FFFFFCF octets)
BREVANTIS_ASN1_API int xe_expandBuffer(ASN1CTXT* ctxt, int count) noexcept;

/// Writes a base-128 number as in long-form tags and object identifiers (X.690, 8.1.2.4.2, 8.19.2).
/// @return octets written, 1 to 5; or a failure of xe_memcpy
BREVANTIS_ASN1_API int xe_identifier(ASN1CTXT* ctxt, unsigned int value) noexcept;

/// Writes identifier octets in the shortest form.
/// @return octets written; or a failure of xe_memcpy
BREVANTIS_ASN1_API int xe_tag(ASN1CTXT* ctxt, ASN1TAG tag) noexcept;

/// Writes length octets in the minimal definite form (X.690, 10.1), or 0x80 for
/// ASN1IndefiniteLength.
/// @return octets written, 0 for any other negative @p length; or a failure of xe_memcpy
BREVANTIS_ASN1_API int xe_len(ASN1CTXT* ctxt, int length) noexcept;

/// What xe_tag_len does for one identifier octet and one length octet where there is room for both,
/// without a call.
/// @param identifierOctet the identifier octet
/// @param length octets of contents
/// @return false, with nothing written, in every other case, a negative @p length included
inline bool rtPutShortHeader(ASN1CTXT* ctxt, unsigned char identifierOctet, int length) noexcept {
    ASN1Buffer& buffer = ctxt->buffer;
    constexpr unsigned char longTag = 0x1F;
    if (static_cast<unsigned int>(length) >= 0x80 || buffer.byteIndex < 2 ||
        (identifierOctet & longTag) == longTag) {
        return false;
    }
    unsigned char* const header = buffer.data + (buffer.byteIndex -= 2);
    header[0] = identifierOctet;
    header[1] = static_cast<unsigned char>(length);
    return true;
}

/// Completes an element whose contents have been written.
/// @param length what the contents' encoder returned: a count, ASN1IndefiniteLength, or a failure,
///        which is passed through so that calls can be nested
/// @return octets of header and contents; the failure in @p length; a failure of xe_memcpy;
///         ASN1S_BUFFER_OVERFLOW when the count of the element exceeds 0x7FFFFFFF
BREVANTIS_ASN1_API int xe_tag_len(ASN1CTXT* ctxt, ASN1TAG tag, int length) noexcept;

#endif
