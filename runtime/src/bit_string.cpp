#include <brevantis/asn1/runtime/bit_string.h>

#include <climits>
#include <cstring>

#include <brevantis/asn1/runtime/context.h>
#include <brevantis/asn1/runtime/element_walk.h>
#include <brevantis/asn1/runtime/tag_length.h>

#include "heap_block.h"
#include "octet_reader.h"
#include "octet_writer.h"
#include "string_contents.h"

using namespace runtime_detail;

namespace {

constexpr unsigned char bitStringTag = 3;

/// Count of bits in @p octets octets less @p unused.
/// @return 0; -17 when 32 bits cannot hold it
int countBits(unsigned int octets, unsigned int unused, unsigned int* numbits) noexcept {
    const unsigned long long bits = octets * 8ULL - unused;
    if (bits > UINT_MAX) {
        return ASN1S_STRING_OVERFLOW;
    }
    *numbits = static_cast<unsigned int>(bits);
    return ASN1S_SUCCESS;
}

/// Contents of the primitive form (X.690, 8.6.2): a count of unused bits, then the bits.
int readPrimitive(ASN1CTXT* ctxt, const OctetTarget& target, unsigned int capacity, int length,
                  unsigned int* numbits) noexcept {
    if (length < 0) {
        return ASN1S_INVALID_LENGTH;
    }
    // Kept: programs depend on taking messages without the count.
    if (length == 0) { // X.690, 8.6.2.1 wants the count; encoders that copy an empty buffer omit it
        *numbits = 0;
        return ASN1S_SUCCESS;
    }
    if (remaining(ctxt) == 0) {
        return ASN1S_END_OF_BUFFER;
    }
    const unsigned int unused = takeOctet(ctxt);
    const unsigned int count = static_cast<unsigned int>(length) - 1;
    if (count == 0) {
        *numbits = 0;
        return unused == 0 ? ASN1S_SUCCESS : ASN1S_INVALID_LENGTH; // X.690, 8.6.2.3
    }
    if (unused > 7) { // X.690, 8.6.2.2
        return ASN1S_BAD_VALUE;
    }
    if (count > capacity) {
        return ASN1S_STRING_OVERFLOW;
    }
    if (const int status = target.take(ctxt, length - 1)) {
        return status;
    }
    return countBits(count, unused, numbits);
}

/// Contents of the constructed form (X.690, 8.6.4). Only the count of unused bits of the last
/// segment is taken out; which one that is shows when the data fill the capacity, or at the end.
int readSegments(ASN1CTXT* ctxt, const OctetTarget& target, unsigned int capacity, int length,
                 unsigned int* numbits) noexcept {
    const unsigned int start = ctxt->buffer.byteIndex;
    const ASN1ElementScope scope{ctxt->buffer.data + start, length};
    unsigned int total = 0;
    unsigned int lastStart = 0;
    unsigned int unused = 0;
    unsigned int firstOctet = 0; // of the last segment that has octets
    bool unusedTaken = true;     // nothing to take while there is no segment
    bool unusedInWalk = false;
    while (!rtScopeEnded(ctxt, scope)) {
        int segmentLength = 0;
        if (const int status = xd_match1(ctxt, bitStringTag, &segmentLength)) {
            return record(ctxt, status);
        }
        if (segmentLength < 0) { // a segment of indefinite length has no extent to copy
            return record(ctxt, ASN1S_INVALID_LENGTH);
        }
        if (total + static_cast<unsigned long long>(segmentLength) == capacity + 1ULL) {
            if (remaining(ctxt) == 0) {
                return record(ctxt, ASN1S_END_OF_BUFFER);
            }
            unused = takeOctet(ctxt);
            unusedInWalk = true;
            --segmentLength;
        }
        const unsigned int count = static_cast<unsigned int>(segmentLength);
        if (count > capacity - total) {
            return record(ctxt, ASN1S_STRING_OVERFLOW);
        }
        if (count != 0) {
            const unsigned int segment = ctxt->buffer.byteIndex;
            if (const int status = target.behind(total).take(ctxt, segmentLength)) {
                return record(ctxt, status);
            }
            firstOctet = ctxt->buffer.data[segment];
        }
        unusedTaken = unusedInWalk;
        lastStart = total;
        total += count;
    }
    // Kept: the count of the last segment alone is taken out; the first octet of any other one is
    // data. Programs depend on the octets that come of it.
    if (!unusedTaken) {
        if (total == lastStart) { // X.690, 8.6.2.2: the last segment has to bring the count
            return record(ctxt, ASN1S_INVALID_LENGTH);
        }
        unused = firstOctet;
        --total;
        if (unsigned char* last = target.behind(lastStart).block()) {
            std::memmove(last, last + 1, total - lastStart);
        }
    }
    if (unused > 7) { // X.690, 8.6.2.2
        return ASN1S_BAD_VALUE;
    }
    if (total == 0 && unused != 0) { // X.690, 8.6.2.3
        return ASN1S_INVALID_LENGTH;
    }
    unsigned int bits = 0;
    if (const int status = countBits(total, unused, &bits)) {
        return status;
    }
    if (length != ASN1IndefiniteLength &&
        ctxt->buffer.byteIndex - start != static_cast<unsigned int>(length)) {
        return record(ctxt, ASN1S_INVALID_LENGTH);
    }
    *numbits = bits;
    return ASN1S_SUCCESS;
}

int readBits(ASN1CTXT* ctxt, const OctetTarget& target, unsigned int capacity, int length,
             unsigned int* numbits) noexcept {
    return (ctxt->flags & ASN1F_CONSTRUCTED) == 0
               ? readPrimitive(ctxt, target, capacity, length, numbits)
               : readSegments(ctxt, target, capacity, length, numbits);
}

/// A primitive form left where it stands in the message.
int pointIntoMessage(ASN1CTXT* ctxt, const StringContents& contents, const unsigned char** data,
                     unsigned int* numbits) noexcept {
    if (!fits(ctxt, contents.length)) {
        return ASN1S_END_OF_BUFFER;
    }
    const unsigned int unused = octetAt(ctxt);
    if (unused > 7) { // X.690, 8.6.2.2
        return ASN1S_BAD_VALUE;
    }
    const auto count = static_cast<unsigned int>(contents.dataLength) - 1;
    if (const int status = countBits(count, unused, numbits)) {
        return status;
    }
    *data = ctxt->buffer.data + ctxt->buffer.byteIndex + 1;
    return skipContents(ctxt, contents.length);
}

/// A value of at most one contents octet, which can only be the count of unused bits.
int readEmpty(ASN1CTXT* ctxt, int dataLength) noexcept {
    if (dataLength <= 0) {
        return dataLength == 0 ? ASN1S_SUCCESS : ASN1S_INVALID_LENGTH;
    }
    if (remaining(ctxt) == 0) {
        return ASN1S_END_OF_BUFFER;
    }
    if (octetAt(ctxt) != 0) { // X.690, 8.6.2.3
        return ASN1S_INVALID_LENGTH;
    }
    ++ctxt->buffer.byteIndex;
    return ASN1S_SUCCESS;
}

/// A value copied to the heap.
int copyToHeap(ASN1CTXT* ctxt, const StringContents& contents, const unsigned char** data,
               unsigned int* numbits) noexcept {
    const int capacity = contents.dataLength - 1;
    OctetTarget target;
    if (!target.reserve(ctxt, capacity)) {
        return record(ctxt, ASN1S_NO_MEMORY);
    }
    *data = target.block();
    return readBits(ctxt, target, static_cast<unsigned int>(capacity), contents.length, numbits);
}

/// A value of at most *numbits bits.
int readFixed(ASN1CTXT* ctxt, const OctetTarget& target, unsigned int* numbits, ASN1TagType tagging,
              int length) noexcept {
    // Kept: no bits stands for no limit, since the subtraction wraps to the largest capacity there
    // is. Programs depend on it.
    const unsigned int capacity = ((*numbits - 1) >> 3) + 1;
    if (const int status = readOwnHeader(ctxt, bitStringTag, tagging, &length)) {
        return status;
    }
    return readBits(ctxt, target, capacity, length, numbits);
}

} // namespace

int xe_bitstr(ASN1CTXT* ctxt, const unsigned char* data, unsigned int numbits,
              ASN1TagType tagging) noexcept {
    // Kept: neither tag nor contents. Programs depend on it.
    if (numbits != 0 && data == nullptr) {
        return 0;
    }
    const unsigned int partial = numbits % 8;
    int count = 0;
    if (numbits != 0) {
        count = xe_memcpy(ctxt, data, octetsOfBits(numbits));
        if (count < 0) {
            return count;
        }
    }
    const auto unused = static_cast<unsigned char>(partial != 0 ? 8 - partial : 0);
    const int written = putOctet(ctxt, unused);
    if (written < 0) {
        return written;
    }
    count += written;
    return tagging == ASN1TagExplicit ? xe_tag_len(ctxt, bitStringTag, count) : count;
}

int xd_bitstr(ASN1CTXT* ctxt, const unsigned char** data, unsigned int* numbits,
              ASN1TagType tagging, int length) noexcept {
    *data = nullptr;
    *numbits = 0;
    StringContents contents;
    if (const int status =
            openString(ctxt, bitStringTag, bitStringTag, tagging, length, &contents)) {
        return status;
    }
    int status = ASN1S_SUCCESS;
    if (contents.dataLength < 2) {
        status = readEmpty(ctxt, contents.dataLength);
    } else if (!contents.constructed && (ctxt->flags & ASN1F_NO_COPY) != 0) {
        status = pointIntoMessage(ctxt, contents, data, numbits);
    } else {
        status = copyToHeap(ctxt, contents, data, numbits);
    }
    return status == ASN1S_SUCCESS ? closeString(ctxt, contents) : status;
}

int xd_measureBits(ASN1CTXT* ctxt, ASN1Extent* extent, ASN1TagType tagging, int length) noexcept {
    *extent = {nullptr, 0};
    StringContents contents;
    if (const int status =
            openString(ctxt, bitStringTag, bitStringTag, tagging, length, &contents)) {
        return status;
    }
    const int status = contents.dataLength < 2
                           ? readEmpty(ctxt, contents.dataLength)
                           : readBits(ctxt, OctetTarget::measuring(nullptr),
                                      static_cast<unsigned int>(contents.dataLength - 1),
                                      contents.length, &extent->count);
    if (status != ASN1S_SUCCESS) {
        return status;
    }
    extent->data = extent->count != 0 && !contents.constructed ? contents.start + 1 : nullptr;
    return closeString(ctxt, contents);
}

int xd_bitstr_s(ASN1CTXT* ctxt, unsigned char* buffer, unsigned int* numbits, ASN1TagType tagging,
                int length) noexcept {
    return readFixed(ctxt, OctetTarget(buffer), numbits, tagging, length);
}

int xd_measureFixedBits(ASN1CTXT* ctxt, ASN1Extent* extent, unsigned int capacity,
                        ASN1TagType tagging, int length) noexcept {
    return measureFixed(ctxt, extent, capacity, tagging, length, readFixed, octetsOfBits);
}
