#include <brevantis/asn1/runtime/tag_length.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>

#include <brevantis/asn1/runtime/header.h>
#include <brevantis/asn1/runtime/heap.h>

#include "context_state.h"
#include "header_octets.h"
#include "octet_reader.h"
#include "octet_writer.h"

namespace {

using runtime_detail::growBuffer;
using runtime_detail::OctetReader;
using runtime_detail::putOctet;
using runtime_detail::record;
using runtime_detail::remaining;

using runtime_detail::longestMessage;

/// The largest block that the heap hands out.
constexpr std::uint32_t largestBlock = 0x7FFFFFCF;

constexpr std::uint32_t growthStep = 16384;

constexpr unsigned short closedMessage = ASN1F_INDEF_MESSAGE | ASN1F_LAST_EOC;

/// xd_tag_len for long forms and cut-off headers. Kept out of line, so that the common case needs
/// no register beyond the caller's.
[[gnu::noinline]] int readAnyHeader(ASN1CTXT* ctxt, ASN1TAG* tag, int* len,
                                    int matchFlags) noexcept {
    ASN1Buffer& buffer = ctxt->buffer;
    const ASN1SavedState start{buffer.byteIndex, ctxt->savedInfo.bitOffset, ctxt->flags};
    if ((start.flags & closedMessage) == closedMessage) {
        return ASN1S_END_OF_BUFFER;
    }
    if (remaining(ctxt) == 0) {
        if ((start.flags & ASN1F_INDEF_MESSAGE) != 0) {
            ctxt->savedInfo = start;
        }
        return ASN1S_END_OF_BUFFER;
    }
    ctxt->savedInfo = start;

    int status = xd_tag(ctxt, tag);
    if (status == ASN1S_SUCCESS) {
        status = runtime_detail::readLength(ctxt, len);
        if (status == ASN1S_SUCCESS && *len == ASN1IndefiniteLength &&
            (ctxt->flags & ASN1F_CONSTRUCTED) == 0) {
            return ASN1S_INVALID_LENGTH; // X.690, 8.1.3.2: constructed encodings only
        }
    }
    if ((matchFlags & ASN1MatchAdvance) == 0) {
        buffer.byteIndex = start.byteIndex;
        ctxt->flags = start.flags;
    }
    return status;
}

/// Binds a message that begins with a whole element of at most 129 octets, as most open values do.
/// @return false, with nothing changed, for any other
bool bindShort(ASN1CTXT* ctxt, const unsigned char* msg, std::uint32_t stated) noexcept {
    const std::uint32_t end = 2U + msg[1];
    if (msg[1] >= 0x80 || (msg[0] & 0x1F) == ASN1LongTagNumber || end > stated ||
        !runtime_detail::isSetUp(ctxt)) {
        return false;
    }
    ctxt->buffer = ASN1Buffer{const_cast<unsigned char*>(msg), 0, end, 8, 0, 0}; // only read
    const auto flags = static_cast<unsigned short>(ctxt->flags & ~closedMessage);
    ctxt->savedInfo.byteIndex = 0;
    ctxt->savedInfo.flags = flags;
    ctxt->flags = runtime_detail::withFormOf(flags, msg[0]);
    return true;
}

/// Octets of a header and of the contents behind it.
int added(std::uint32_t headerSize, int length) noexcept {
    const int header = static_cast<int>(headerSize);
    if (length == ASN1IndefiniteLength) {
        return header;
    }
    const bool countable = header <= std::numeric_limits<int>::max() - length;
    return countable ? header + length : ASN1S_BUFFER_OVERFLOW;
}

/// Puts one identifier octet and a length in front of what is written, with room for the longest.
/// @return octets of header and contents; ASN1S_BUFFER_OVERFLOW when they are too many for that
int putShortTag(ASN1Buffer& buffer, unsigned char identifierOctet, int length) noexcept {
    unsigned char* next = buffer.data + buffer.byteIndex;
    auto rest = static_cast<std::uint32_t>(length);
    *--next = static_cast<unsigned char>(rest);
    if (length >= 0x80) {
        unsigned char count = 1;
        for (; (rest >>= 8) != 0; ++count) {
            *--next = static_cast<unsigned char>(rest);
        }
        *--next = static_cast<unsigned char>(0x80U | count);
    }
    *--next = identifierOctet;
    const auto size = static_cast<std::uint32_t>(buffer.data + buffer.byteIndex - next);
    buffer.byteIndex -= size;
    return added(size, length);
}

} // namespace

int xd_setp(ASN1CTXT* ctxt, const unsigned char* msg, int msgLen, ASN1TAG* tag, int* len) noexcept {
    const std::uint32_t stated = msgLen < 1 ? longestMessage : static_cast<std::uint32_t>(msgLen);
    if (msg != nullptr && stated >= 2 && bindShort(ctxt, msg, stated)) {
        if (tag != nullptr) {
            *tag = rtTagOfOctet(msg[0]);
        }
        if (len != nullptr) {
            *len = static_cast<int>(ctxt->buffer.size);
        }
        return ASN1S_SUCCESS;
    }
    // Decoders only ever read through the descriptor, whose pointer serves encoders as well.
    int status = rtInitContextBuffer(ctxt, const_cast<unsigned char*>(msg), stated);
    if (status != ASN1S_SUCCESS) {
        return status;
    }
    ASN1Buffer& buffer = ctxt->buffer;
    if (msg == nullptr) {
        buffer.size = 0; // the block that was bound in its place has never been written
    }
    ctxt->flags =
        static_cast<unsigned short>(ctxt->flags & ~(ASN1F_INDEF_MESSAGE | ASN1F_LAST_EOC));

    ASN1TAG firstTag = 0;
    int length = 0;
    status = xd_tag_len(ctxt, &firstTag, &length, ASN1MatchAdvance);
    if (status != ASN1S_SUCCESS) {
        if (status == ASN1S_INVALID_LENGTH) {
            buffer.byteIndex = 0;
        }
        return status;
    }
    if (length == ASN1IndefiniteLength) {
        ctxt->flags = static_cast<unsigned short>(ctxt->flags | ASN1F_INDEF_MESSAGE);
    } else {
        // With lengths unchecked a negative one stands for 2 GB and more.
        const std::uint64_t end =
            std::uint64_t{static_cast<std::uint32_t>(length)} + buffer.byteIndex;
        if (end <= buffer.size) {
            buffer.size = static_cast<std::uint32_t>(end);
        } else if ((ctxt->flags & ASN1F_LENGTH_UNCHECKED) == 0) {
            // X.690, 8.1.3: the element is cut off. `size` keeps to the octets that exist, for
            // callers that go on all the same.
            status = ASN1S_INVALID_LENGTH;
        }
        length = static_cast<int>(static_cast<std::uint32_t>(end));
    }
    buffer.byteIndex = 0;
    if (tag != nullptr) {
        *tag = firstTag;
    }
    if (len != nullptr) {
        *len = length;
    }
    return status;
}

int xd_tag(ASN1CTXT* ctxt, ASN1TAG* tag) noexcept {
    ASN1Buffer& buffer = ctxt->buffer;
    const std::uint32_t start = buffer.byteIndex;
    OctetReader reader{buffer.data, start, buffer.size};
    const int status = runtime_detail::readTagOctets(reader, tag);
    buffer.byteIndex = reader.place;
    if (status == ASN1S_SUCCESS) {
        ctxt->flags = runtime_detail::withFormOf(ctxt->flags, buffer.data[start]);
    }
    return status;
}

int xd_len(ASN1CTXT* ctxt, int* len) noexcept {
    const std::uint32_t start = ctxt->buffer.byteIndex;
    OctetReader reader{ctxt->buffer.data, start, ctxt->buffer.size};
    const int status = runtime_detail::readLengthOctets(reader, len);
    ctxt->buffer.byteIndex = reader.place;
    if (status != ASN1S_SUCCESS) {
        return record(ctxt, status);
    }
    // Kept: a length of one octet is left to whoever reads the contents. Programs go on from such a
    // header.
    const bool longForm = ctxt->buffer.data[start] >= 0x80;
    if (!longForm || *len == ASN1IndefiniteLength || (ctxt->flags & ASN1F_LENGTH_UNCHECKED) != 0) {
        return ASN1S_SUCCESS;
    }
    if (*len < 0 || *len > static_cast<int>(remaining(ctxt))) {
        return record(ctxt, ASN1S_INVALID_LENGTH);
    }
    return ASN1S_SUCCESS;
}

int xd_tag_len(ASN1CTXT* ctxt, ASN1TAG* tag, int* len, int matchFlags) noexcept {
    ASN1Buffer& buffer = ctxt->buffer;
    const unsigned short flags = ctxt->flags;
    if ((flags & closedMessage) != closedMessage && remaining(ctxt) >= 2) {
        const unsigned char* header = buffer.data + buffer.byteIndex;
        if ((header[0] & 0x1F) != ASN1LongTagNumber && header[1] < 0x80) {
            ctxt->savedInfo.byteIndex = buffer.byteIndex;
            ctxt->savedInfo.flags = flags;
            *tag = rtTagOfOctet(header[0]);
            *len = header[1];
            if ((matchFlags & ASN1MatchAdvance) != 0) {
                ctxt->flags = runtime_detail::withFormOf(flags, header[0]);
                buffer.byteIndex += 2;
            }
            return ASN1S_SUCCESS;
        }
    }
    return readAnyHeader(ctxt, tag, len, matchFlags);
}

int xe_setp(ASN1CTXT* ctxt, unsigned char* buffer, unsigned int size) noexcept {
    const int status = rtInitContextBuffer(ctxt, buffer, size);
    if (status != ASN1S_SUCCESS) {
        return status;
    }
    if (ctxt->buffer.size == 0) {
        return ASN1S_BUFFER_OVERFLOW; // stays bound and full, so a caller that goes on gets this
    }
    // Kept: the last octet stays free. Programs copy the message with it.
    ctxt->buffer.byteIndex = ctxt->buffer.size - 1;
    return ASN1S_SUCCESS;
}

unsigned char* xe_getp(ASN1CTXT* ctxt) noexcept {
    return ctxt->buffer.data + ctxt->buffer.byteIndex;
}

int runtime_detail::growBuffer(ASN1CTXT* ctxt, std::uint32_t count) noexcept {
    ASN1Buffer& buffer = ctxt->buffer;
    if (buffer.dynamic == 0) {
        return ASN1S_BUFFER_OVERFLOW;
    }
    // By half of what there is once that is more: with equal steps alone, each of which copies
    // everything, a message would take time in the square of its size.
    const std::uint32_t room = largestBlock - std::min(largestBlock, buffer.size);
    const std::uint32_t growth = std::max({count, growthStep, std::min(buffer.size / 2, room)});
    if (buffer.size > largestBlock || growth > largestBlock - buffer.size) {
        return ASN1S_NO_MEMORY;
    }
    const std::uint32_t newSize = buffer.size + growth;
    auto* block =
        static_cast<unsigned char*>(rtMemHeapAlloc(&ctxt->memHeap, static_cast<int>(newSize)));
    if (block == nullptr) {
        return ASN1S_NO_MEMORY;
    }
    // The unused last octet moves along, so that distances from the end stay valid.
    const std::uint32_t used = buffer.size - buffer.byteIndex;
    if (used != 0) {
        std::memcpy(block + (newSize - used), buffer.data + buffer.byteIndex, used);
    }
    rtMemHeapFreePtr(&ctxt->memHeap, buffer.data);
    buffer.data = block;
    buffer.size = newSize;
    buffer.byteIndex += growth;
    return ASN1S_SUCCESS;
}

int xe_memcpy(ASN1CTXT* ctxt, const void* source, unsigned int count) noexcept {
    if (source == nullptr) {
        return ASN1S_BAD_VALUE;
    }
    return runtime_detail::putOctets(ctxt, static_cast<const unsigned char*>(source), count);
}

int xe_expandBuffer(ASN1CTXT* ctxt, int count) noexcept {
    return growBuffer(ctxt, static_cast<std::uint32_t>(std::max(count, 0)));
}

int xe_identifier(ASN1CTXT* ctxt, unsigned int value) noexcept {
    int count = putOctet(ctxt, value & 0x7FU);
    while (value >= 0x80 && count > 0) {
        value >>= 7;
        const int status = putOctet(ctxt, (value & 0x7FU) | 0x80U);
        count = status < 0 ? status : count + status;
    }
    return count;
}

int xe_tag(ASN1CTXT* ctxt, ASN1TAG tag) noexcept {
    const std::uint32_t number = tag & ASN1TagNumberMask;
    int count = 0;
    if (number >= ASN1LongTagNumber) {
        count = xe_identifier(ctxt, number);
        if (count < 0) {
            return count;
        }
    }
    const int status = putOctet(ctxt, rtIdentifierOctet(tag));
    return status < 0 ? status : count + status;
}

int xe_len(ASN1CTXT* ctxt, int length) noexcept {
    if (length == ASN1IndefiniteLength) {
        return putOctet(ctxt, 0x80);
    }
    if (length < 0) {
        return 0;
    }
    auto rest = static_cast<std::uint32_t>(length);
    int count = putOctet(ctxt, rest & 0xFFU);
    if (rest < 0x80 || count < 0) {
        return count;
    }
    while ((rest >>= 8) != 0) {
        const int status = putOctet(ctxt, rest & 0xFFU);
        if (status < 0) {
            return status;
        }
        count += status;
    }
    const int status = putOctet(ctxt, 0x80U | static_cast<std::uint32_t>(count));
    return status < 0 ? status : count + status;
}

int xe_tag_len(ASN1CTXT* ctxt, ASN1TAG tag, int length) noexcept {
    if (length < 0 && length != ASN1IndefiniteLength) {
        return length;
    }
    ASN1Buffer& buffer = ctxt->buffer;
    if (buffer.byteIndex >= ASN1LongestHeader) {
        if (length >= 0 && (tag & ASN1TagNumberMask) < ASN1LongTagNumber) {
            return putShortTag(buffer, rtIdentifierOctet(tag), length);
        }
        const std::uint32_t size = rtTagSize(tag) + rtLengthSize(length);
        buffer.byteIndex -= size;
        rtWriteHeader(tag, length, buffer.data + buffer.byteIndex);
        return added(size, length);
    }
    const int lengthCount = xe_len(ctxt, length);
    if (lengthCount < 0) {
        return lengthCount;
    }
    const int tagCount = xe_tag(ctxt, tag);
    if (tagCount < 0) {
        return tagCount;
    }
    return added(static_cast<std::uint32_t>(lengthCount + tagCount), length);
}
