#include <brevantis/asn1/runtime/memory_buffer.h>

#include <cstdint>
#include <cstring>
#include <functional>
#include <limits>

namespace {

int reserve(ASN1MemBuf& buf, std::uint64_t count) noexcept {
    const std::uint64_t required = buf.usedLength + count;
    if (count == 0 || required <= buf.bufferSize) {
        return ASN1S_SUCCESS;
    }
    if (buf.segmentSize == 0) {
        return ASN1S_INVALID_PARAMETER;
    }
    const std::uint64_t newSize = ((required - 1) / buf.segmentSize + 1) * buf.segmentSize;
    if (newSize > static_cast<std::uint64_t>(std::numeric_limits<int>::max())) {
        return ASN1S_NO_MEMORY;
    }
    const bool resize = buf.ownsBuffer != 0 && buf.buffer != nullptr;
    void** heapRef = &buf.ownerCtxt->memHeap;
    void* block = resize ? rtMemHeapRealloc(heapRef, buf.buffer, static_cast<int>(newSize))
                         : rtMemHeapAlloc(heapRef, static_cast<int>(newSize));
    if (block == nullptr) {
        return ASN1S_NO_MEMORY;
    }
    if (!resize && buf.usedLength != 0) {
        // These octets count as contents, so they must not show what the memory held before.
        std::memset(block, 0, buf.usedLength);
    }
    buf.buffer = static_cast<unsigned char*>(block);
    buf.ownsBuffer = 1;
    buf.bufferSize = static_cast<unsigned int>(newSize);
    return ASN1S_SUCCESS;
}

// The octets may be some of the buffer's own, which then move with it.
bool liesInside(const ASN1MemBuf& buf, const unsigned char* data) noexcept {
    const std::less<> before;
    return buf.buffer != nullptr && !before(data, buf.buffer) &&
           before(data, buf.buffer + buf.bufferSize);
}

} // namespace

void rtMemBufInit(ASN1CTXT* ctxt, ASN1MemBuf* buf, unsigned int segmentSize) noexcept {
    *buf = ASN1MemBuf{ctxt, segmentSize, 0, 0, 0, 0, 0, nullptr, 1};
}

void rtMemBufFree(ASN1MemBuf* buf) noexcept {
    if (buf->ownsBuffer != 0) {
        rtMemHeapFreePtr(&buf->ownerCtxt->memHeap, buf->buffer);
    }
}

void rtMemBufReset(ASN1MemBuf* buf) noexcept {
    buf->usedLength = 0;
    buf->startOffset = 0;
    buf->readBitOffset = 0;
    buf->writeBitOffset = 0;
}

int rtMemBufPreAllocate(ASN1MemBuf* buf, int count) noexcept {
    return count >= 0 ? reserve(*buf, static_cast<std::uint64_t>(count)) : ASN1S_INVALID_PARAMETER;
}

int rtMemBufAppend(ASN1MemBuf* buf, const unsigned char* data, unsigned int count) noexcept {
    const bool inside = liesInside(*buf, data);
    const std::ptrdiff_t offset = inside ? data - buf->buffer : 0;
    if (int status = reserve(*buf, count); status != ASN1S_SUCCESS) {
        return status;
    }
    if (data != nullptr && count != 0) {
        std::memmove(buf->buffer + buf->usedLength, inside ? buf->buffer + offset : data, count);
        buf->usedLength += count;
    }
    return ASN1S_SUCCESS;
}

int rtMemBufSet(ASN1MemBuf* buf, unsigned int value, unsigned int count) noexcept {
    if (int status = reserve(*buf, count); status != ASN1S_SUCCESS) {
        return status;
    }
    if (count != 0) {
        std::memset(buf->buffer + buf->usedLength, static_cast<int>(value & 0xFFu), count);
        buf->usedLength += count;
    }
    return ASN1S_SUCCESS;
}

unsigned char* rtMemBufGetData(ASN1MemBuf* buf, unsigned int* length) noexcept {
    if (length != nullptr) {
        *length = buf->usedLength - buf->startOffset;
    }
    return buf->buffer != nullptr ? buf->buffer + buf->startOffset : nullptr;
}
