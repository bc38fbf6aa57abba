#include <brevantis/asn1/runtime/element_walk.h>

#include <cstring>

#include <brevantis/asn1/runtime/header.h>

#include "octet_reader.h"

namespace {

using runtime_detail::record;
using runtime_detail::remaining;
using runtime_detail::skipContents;

/// Steps over the contents of a primitive element; a constructed one is entered.
int skipPrimitive(ASN1CTXT* ctxt, int length) noexcept {
    return (ctxt->flags & ASN1F_CONSTRUCTED) != 0 ? ASN1S_SUCCESS : skipContents(ctxt, length);
}

/// For a matcher an element behind the end of the buffer is simply not there.
int notFoundAtEnd(int status) noexcept {
    return status == ASN1S_END_OF_BUFFER ? ASN1S_TAG_NOT_FOUND : status;
}

void returnToSavedInfo(ASN1CTXT* ctxt) noexcept {
    ctxt->buffer.byteIndex = ctxt->savedInfo.byteIndex;
    ctxt->flags = ctxt->savedInfo.flags;
}

/// What a header means for the levels that are open in a walk.
///
/// Steps over definite contents and counts @p depth up at an indefinite length, down at
/// end-of-contents octets (X.690, 8.1.5).
int walkHeader(ASN1CTXT* ctxt, ASN1TAG tag, int length, int* depth) noexcept {
    if (length == ASN1IndefiniteLength) {
        ++*depth;
    } else if (length != 0) {
        return skipContents(ctxt, length);
    } else if (tag == 0) {
        --*depth;
    }
    return ASN1S_SUCCESS;
}

/// Walks elements from the position on until @p depth open levels are closed.
int walkLevels(ASN1CTXT* ctxt, int depth) noexcept {
    do {
        ASN1TAG tag = 0;
        int length = 0;
        int status = xd_tag_len(ctxt, &tag, &length, ASN1MatchAdvance);
        if (status == ASN1S_SUCCESS) {
            status = walkHeader(ctxt, tag, length, &depth);
        }
        if (status != ASN1S_SUCCESS) {
            return status;
        }
    } while (depth > 0);
    return ASN1S_SUCCESS;
}

/// Measures the message of @p msg within a private context.
int measureIndefinite(ASN1CTXT* ctxt, const unsigned char* msg, int bufSize) noexcept {
    ASN1TAG tag = 0;
    int length = 0;
    // Bound to the octets that exist: the header itself may be cut off.
    int status = xd_setp(ctxt, msg, bufSize, &tag, &length);
    if (status == ASN1S_SUCCESS && length != ASN1IndefiniteLength) {
        status = ASN1S_INVALID_LENGTH;
    }
    if (status == ASN1S_SUCCESS) {
        status = walkLevels(ctxt, 0);
    }
    return status != ASN1S_SUCCESS ? status : static_cast<int>(ctxt->buffer.byteIndex);
}

} // namespace

int xd_Tag1AndLen(ASN1CTXT* ctxt, int* len) noexcept {
    constexpr unsigned short closed = ASN1F_INDEF_MESSAGE | ASN1F_LAST_EOC;
    if ((ctxt->flags & closed) == closed || remaining(ctxt) == 0) {
        return ASN1S_END_OF_BUFFER;
    }
    ctxt->flags = runtime_detail::withFormOf(ctxt->flags, runtime_detail::takeOctet(ctxt));
    return runtime_detail::readLength(ctxt, len);
}

int xd_match(ASN1CTXT* ctxt, ASN1TAG tag, int* len, int matchFlags) noexcept {
    ASN1TAG found = 0;
    int length = 0;
    if ((matchFlags & ASN1MatchSkipFirst) != 0) {
        int status = xd_tag_len(ctxt, &found, &length, ASN1MatchAdvance);
        if (status == ASN1S_SUCCESS) {
            status = skipPrimitive(ctxt, length);
        }
        if (status != ASN1S_SUCCESS) {
            // At the end of the buffer no header was saved; the record may even belong to an
            // earlier, longer message.
            if (ctxt->savedInfo.byteIndex <= ctxt->buffer.size) {
                returnToSavedInfo(ctxt);
            }
            return notFoundAtEnd(status);
        }
    }
    ASN1SavedState start;
    xu_SaveBufferState(ctxt, &start);
    for (;;) {
        int status = xd_tag_len(ctxt, &found, &length, ASN1MatchAdvance);
        if (status == ASN1S_SUCCESS) {
            if (((found ^ tag) & ~ASN1TagConstructed) == 0) {
                break;
            }
            status = (matchFlags & ASN1MatchSeek) != 0 ? skipPrimitive(ctxt, length)
                                                       : ASN1S_TAG_NOT_FOUND;
        }
        if (status != ASN1S_SUCCESS) {
            xu_RestoreBufferState(ctxt, &start);
            return notFoundAtEnd(status);
        }
    }
    if (len != nullptr) {
        *len = length;
    }
    if ((matchFlags & ASN1MatchAdvance) == 0) {
        returnToSavedInfo(ctxt);
    }
    return ASN1S_SUCCESS;
}

int xd_match1(ASN1CTXT* ctxt, unsigned char identifierOctet, int* len) noexcept {
    constexpr unsigned int formIgnored = 0xDF;
    if (remaining(ctxt) == 0 ||
        ((runtime_detail::octetAt(ctxt) ^ identifierOctet) & formIgnored) != 0) {
        return record(ctxt, ASN1S_TAG_NOT_FOUND);
    }
    ctxt->flags = runtime_detail::withFormOf(ctxt->flags, runtime_detail::takeOctet(ctxt));
    int length = 0;
    const int status = runtime_detail::readLength(ctxt, &length);
    if (status != ASN1S_SUCCESS || len == nullptr) {
        return status;
    }
    if (length == ASN1IndefiniteLength && (ctxt->flags & ASN1F_CONSTRUCTED) == 0) {
        return record(ctxt, ASN1S_INVALID_LENGTH); // X.690, 8.1.3.2: constructed encodings only
    }
    *len = length;
    return ASN1S_SUCCESS;
}

int xd_NextElement(ASN1CTXT* ctxt) noexcept {
    ASN1TAG tag = 0;
    int length = 0;
    const int status = xd_tag_len(ctxt, &tag, &length, ASN1MatchAdvance);
    if (status != ASN1S_SUCCESS) {
        return status;
    }
    return length == ASN1IndefiniteLength ? xd_MovePastEOC(ctxt) : skipContents(ctxt, length);
}

int xd_MovePastEOC(ASN1CTXT* ctxt) noexcept {
    return walkLevels(ctxt, 1);
}

int xd_count(ASN1CTXT* ctxt, int length, int* count) noexcept {
    // Of what describes the buffer only the position changes in a walk.
    const unsigned int start = ctxt->buffer.byteIndex;
    const ASN1ElementScope scope{ctxt->buffer.data + start, length};
    *count = 0;
    while (!rtScopeEnded(ctxt, scope)) {
        const int status = xd_NextElement(ctxt);
        if (status != ASN1S_SUCCESS) {
            return status;
        }
        ++*count;
    }
    ctxt->buffer.byteIndex = start;
    return ASN1S_SUCCESS;
}

int xd_indeflen_ex(const unsigned char* msg, int bufSize) noexcept {
    constexpr int smallestMessage = 5;
    if (bufSize < smallestMessage) {
        return 0;
    }
    ASN1CTXT reader;
    rtInitReader(&reader, msg, 0);
    return measureIndefinite(&reader, msg, bufSize);
}

int xd_consStrIndefLenAndSize(ASN1CTXT* ctxt, ASN1TAG segmentTag, int* dataLen,
                              int* contentLen) noexcept {
    ASN1SavedState saved;
    xu_SaveBufferState(ctxt, &saved);
    int sum = 0;
    for (;;) {
        ASN1TAG tag = 0;
        int length = 0;
        int status = xd_tag_len(ctxt, &tag, &length, ASN1MatchAdvance);
        if (status != ASN1S_SUCCESS) {
            return status;
        }
        if (tag != segmentTag && tag != 0) {
            return ASN1S_BAD_TAG; // X.690, 8.7.3.2, without segments in segments
        }
        if (tag == 0 && length == 0) {
            break;
        }
        status = skipContents(ctxt, length);
        if (status != ASN1S_SUCCESS) {
            return status;
        }
        sum += length;
    }
    constexpr unsigned int endOfContents = 2;
    *contentLen = static_cast<int>(ctxt->buffer.byteIndex - endOfContents - saved.byteIndex);
    *dataLen = sum;
    return xu_RestoreBufferState(ctxt, &saved);
}

int xd_memcpy(ASN1CTXT* ctxt, unsigned char* target, int count) noexcept {
    if (!runtime_detail::fits(ctxt, count)) {
        return ASN1S_END_OF_BUFFER;
    }
    if (count != 0) {
        ASN1Buffer& buffer = ctxt->buffer;
        std::memcpy(target, buffer.data + buffer.byteIndex, static_cast<unsigned int>(count));
        buffer.byteIndex += static_cast<unsigned int>(count);
    }
    return ASN1S_SUCCESS;
}

int xu_SaveBufferState(ASN1CTXT* ctxt, ASN1SavedState* saved) noexcept {
    ASN1SavedState& target = saved != nullptr ? *saved : ctxt->savedInfo;
    target = {ctxt->buffer.byteIndex, ctxt->buffer.bitOffset, ctxt->flags};
    return ASN1S_SUCCESS;
}

int xu_RestoreBufferState(ASN1CTXT* ctxt, ASN1SavedState* saved) noexcept {
    const ASN1SavedState& source = saved != nullptr ? *saved : ctxt->savedInfo;
    ctxt->buffer.byteIndex = source.byteIndex;
    ctxt->buffer.bitOffset = source.bitOffset;
    ctxt->flags = static_cast<unsigned short>(source.flags & ~ASN1F_LAST_EOC);
    return ASN1S_SUCCESS;
}
