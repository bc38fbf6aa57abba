#ifndef BREVANTIS_ASN1_RUNTIME_SRC_OCTET_READER_H
#define BREVANTIS_ASN1_RUNTIME_SRC_OCTET_READER_H

#include <brevantis/asn1/runtime/context.h>
#include <brevantis/asn1/runtime/element_walk.h>
#include <brevantis/asn1/runtime/status.h>
#include <brevantis/asn1/runtime/tag_length.h>
#include <brevantis/asn1/runtime/value_types.h>

/// @file
/// What every decoder does with the octets at the position: the one place that compares it with the
/// buffer's end, and the header shapes that several coders share.
///
/// `size` is a bound in every message. Where none was stated it is 0x7FFFFFFF, so the tests hold
/// for messages of indefinite length without a case of their own.

namespace runtime_detail {

/// Records @p status and returns it.
inline int record(ASN1CTXT* ctxt, int status) noexcept {
    return rtErrSetData(&ctxt->errInfo, status, nullptr, 0);
}

/// Octets from the position to the end of the buffer, 0 when the position is past it.
inline unsigned int remaining(const ASN1CTXT* ctxt) noexcept {
    const ASN1Buffer& buffer = ctxt->buffer;
    return buffer.byteIndex < buffer.size ? buffer.size - buffer.byteIndex : 0;
}

/// Whether @p count octets can be read at the position; never so for a negative count.
inline bool fits(const ASN1CTXT* ctxt, long long count) noexcept {
    return count >= 0 && count <= remaining(ctxt) && ctxt->buffer.byteIndex <= ctxt->buffer.size;
}

/// The octet at the position, which must be in front of the end.
inline unsigned char octetAt(const ASN1CTXT* ctxt) noexcept {
    return ctxt->buffer.data[ctxt->buffer.byteIndex];
}

/// The octet at the position, which must be in front of the end; moves behind it.
inline unsigned char takeOctet(ASN1CTXT* ctxt) noexcept {
    return ctxt->buffer.data[ctxt->buffer.byteIndex++];
}

/// Moves behind @p length octets of contents.
/// @return 0, or ASN1S_END_OF_BUFFER with the position unchanged when they end beyond the buffer
inline int skipContents(ASN1CTXT* ctxt, int length) noexcept {
    if (!fits(ctxt, length)) {
        return ASN1S_END_OF_BUFFER;
    }
    ctxt->buffer.byteIndex += static_cast<unsigned int>(length);
    return ASN1S_SUCCESS;
}

/// ASN1F_CONSTRUCTED set or cleared after bit 6 of an identifier octet (X.690, 8.1.2.5).
inline unsigned short withFormOf(unsigned short flags, unsigned char identifierOctet) noexcept {
    return static_cast<unsigned short>((flags & ~ASN1F_CONSTRUCTED) |
                                       ((identifierOctet & 0x20) << 5));
}

inline void clearConstructed(ASN1CTXT* ctxt) noexcept {
    ctxt->flags = static_cast<unsigned short>(ctxt->flags & ~ASN1F_CONSTRUCTED);
}

/// Reads a length, the one-octet form (X.690, 8.1.3.4) without a call.
/// @return 0; ASN1S_END_OF_BUFFER when the buffer ends, not recorded; the failures of xd_len
inline int readLength(ASN1CTXT* ctxt, int* length) noexcept {
    if (remaining(ctxt) == 0) {
        return ASN1S_END_OF_BUFFER;
    }
    if (octetAt(ctxt) < 0x80) {
        *length = takeOctet(ctxt);
        return ASN1S_SUCCESS;
    }
    return xd_len(ctxt, length);
}

/// Reads the header of a value whose universal tag is known. The octet is compared whole, so a
/// constructed form is another tag here.
/// @param length receives the length, possibly ASN1IndefiniteLength, which the length tests of the
///        type refuse
/// @return 0, or recorded: ASN1S_TAG_NOT_FOUND with the position unchanged when another octet or
/// none is there;
///         ASN1S_END_OF_BUFFER when the buffer ends behind the tag; the failures of xd_len
inline int readExplicitHeader(ASN1CTXT* ctxt, unsigned char identifierOctet, int* length) noexcept {
    if (remaining(ctxt) == 0 || octetAt(ctxt) != identifierOctet) {
        return record(ctxt, ASN1S_TAG_NOT_FOUND);
    }
    clearConstructed(ctxt);
    ++ctxt->buffer.byteIndex;
    const int status = readLength(ctxt, length);
    return status == ASN1S_SUCCESS ? status : record(ctxt, status);
}

/// Reads that header where it is the coder's own, which ASN1TagExplicit says.
/// @param length in: the length that the caller read with its header; out: the length that counts
inline int readOwnHeader(ASN1CTXT* ctxt, unsigned char identifierOctet, ASN1TagType tagging,
                         int* length) noexcept {
    return tagging == ASN1TagExplicit ? readExplicitHeader(ctxt, identifierOctet, length)
                                      : int{ASN1S_SUCCESS};
}

/// Contents that stand in the message in one piece.
struct WholeContents {
    const unsigned char* octets;
    unsigned int count;
};

/// The usual form of a string, in few steps: primitive, of definite length up to 64 KiB, all there.
/// Moves behind the contents.
/// @param length with ASN1TagImplicit the length that the caller read
/// @return false, with nothing changed, for every other form, which is then read from its start
inline bool takeWhole(ASN1CTXT* ctxt, unsigned char identifierOctet, ASN1TagType tagging,
                      int length, WholeContents* contents) noexcept {
    ASN1Buffer& buffer = ctxt->buffer;
    const unsigned int left = remaining(ctxt);
    const unsigned char* const at = buffer.data + buffer.byteIndex;
    auto count = static_cast<unsigned int>(length);
    unsigned int header = 0;
    if (tagging == ASN1TagExplicit) {
        constexpr unsigned int longest = 4; // that is read here
        if (left < longest || at[0] != identifierOctet || (identifierOctet & 0x20) != 0) {
            return false;
        }
        count = at[1];
        header = 2;
        if (count >= 0x80) {
            if (count > 0x82 || count == 0x80) {
                return false;
            }
            header = count - 0x80 + 2;
            count = count == 0x81 ? at[2] : static_cast<unsigned int>(at[2] << 8 | at[3]);
        }
        if (count > left - header) {
            return false;
        }
        clearConstructed(ctxt);
    } else if ((ctxt->flags & ASN1F_CONSTRUCTED) != 0 || length < 0 || count > left) {
        return false;
    }
    *contents = {at + header, count};
    buffer.byteIndex += header + count;
    return true;
}

/// Records that there is no memory for contents that takeWhole has moved behind, and goes back to
/// their start.
inline int refuseWhole(ASN1CTXT* ctxt, const WholeContents& contents) noexcept {
    ctxt->buffer.byteIndex -= contents.count;
    return record(ctxt, ASN1S_NO_MEMORY);
}

} // namespace runtime_detail

#endif
