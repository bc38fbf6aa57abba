#include <brevantis/asn1/runtime/stream.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>

namespace {

constexpr unsigned int leastGrowth = 16384;

int fail(ASN1CTXT* ctxt, int status) noexcept {
    return rtErrSetData(&ctxt->errInfo, status, nullptr, 0);
}

// Not so where a program or an encoder has moved the position past a block: what waits there is not
// this context's to write.
bool positionIsInside(const ASN1Buffer& buffer) noexcept {
    return buffer.byteIndex <= buffer.size && (buffer.data != nullptr || buffer.byteIndex == 0);
}

bool fits(const ASN1Buffer& buffer, unsigned int count) noexcept {
    return std::uint64_t{buffer.byteIndex} + count <= buffer.size;
}

void append(ASN1Buffer& buffer, const unsigned char* data, unsigned int count) noexcept {
    std::memcpy(buffer.data + buffer.byteIndex, data, count);
    buffer.byteIndex += count;
}

} // namespace

int rtStreamFlush(ASN1CTXT* ctxt) {
    ASN1Stream* stream = ctxt->stream;
    if (stream == nullptr || (stream->streamFlags & ASN1StreamOutput) == 0) {
        return ASN1S_INVALID_PARAMETER;
    }
    return stream->flush != nullptr ? stream->flush(stream) : ASN1S_SUCCESS;
}

int rtStreamWrite(ASN1CTXT* ctxt, const unsigned char* data, unsigned int count) {
    ASN1Stream* stream = ctxt->stream;
    if (stream == nullptr || stream->write == nullptr ||
        (stream->streamFlags & ASN1StreamOutput) == 0) {
        return ASN1S_NOT_INITIALISED;
    }
    if (data == nullptr && count != 0) {
        return ASN1S_INVALID_PARAMETER;
    }
    const int result = stream->write(stream, data, count);
    if (result >= 0) {
        stream->byteCount += count;
    }
    return result;
}

int rtStreamBufFlush(ASN1CTXT* ctxt) {
    ASN1Stream* stream = ctxt->stream;
    ASN1Buffer& buffer = ctxt->buffer;
    if (stream == nullptr ||
        (stream->streamFlags & (ASN1StreamOutput | ASN1StreamBufferedOutput)) == 0) {
        return ASN1S_INVALID_PARAMETER;
    }
    if (buffer.byteIndex > 0) {
        if (stream->write == nullptr) {
            return ASN1S_NOT_INITIALISED;
        }
        if (!positionIsInside(buffer)) {
            return ASN1S_INVALID_PARAMETER;
        }
        if (int result = stream->write(stream, buffer.data, buffer.byteIndex); result != 0) {
            return fail(ctxt, result);
        }
        stream->byteCount += buffer.byteIndex;
        buffer.byteIndex = 0;
    }
    return rtStreamFlush(ctxt);
}

int rtStreamBufWrite(ASN1CTXT* ctxt, const unsigned char* data, unsigned int count) {
    ASN1Buffer& buffer = ctxt->buffer;
    if (count == 0) {
        return ASN1S_SUCCESS;
    }
    if (data == nullptr || !positionIsInside(buffer)) {
        return fail(ctxt, ASN1S_INVALID_PARAMETER);
    }
    if (!fits(buffer, count) && buffer.byteIndex > 0) {
        if (int result = rtStreamWrite(ctxt, buffer.data, buffer.byteIndex); result < 0) {
            return fail(ctxt, result);
        }
        buffer.byteIndex = 0;
    }
    if (count < buffer.size) {
        append(buffer, data, count);
        return ASN1S_SUCCESS;
    }
    const int result = rtStreamWrite(ctxt, data, count);
    return result < 0 ? fail(ctxt, result) : ASN1S_SUCCESS;
}

int rtStreamRelease(ASN1CTXT* ctxt) noexcept {
    if (ctxt->stream != nullptr) {
        rtMemHeapFreePtr(&ctxt->memHeap, ctxt->stream);
        ctxt->stream = nullptr;
    }
    return ASN1S_SUCCESS;
}

int rtCheckBuffer(ASN1CTXT* ctxt, unsigned int count) {
    ASN1Buffer& buffer = ctxt->buffer;
    if (!positionIsInside(buffer)) {
        return fail(ctxt, ASN1S_INVALID_PARAMETER);
    }
    if (fits(buffer, count)) {
        return ASN1S_SUCCESS;
    }
    if (ctxt->stream != nullptr) {
        if (int status = rtStreamBufFlush(ctxt); status != ASN1S_SUCCESS) {
            return fail(ctxt, status);
        }
        if (fits(buffer, count)) {
            return ASN1S_SUCCESS;
        }
    }
    if (buffer.dynamic == 0) {
        return fail(ctxt, ASN1S_BUFFER_OVERFLOW);
    }
    const std::uint64_t newSize = std::uint64_t{buffer.size} + std::max(count, leastGrowth);
    void* block = newSize <= static_cast<std::uint64_t>(std::numeric_limits<int>::max())
                      ? rtMemHeapRealloc(&ctxt->memHeap, buffer.data, static_cast<int>(newSize))
                      : nullptr;
    if (block == nullptr) {
        return fail(ctxt, ASN1S_NO_MEMORY);
    }
    buffer.data = static_cast<unsigned char*>(block);
    buffer.size = static_cast<unsigned int>(newSize);
    return ASN1S_SUCCESS;
}

int rtWriteBytes(ASN1CTXT* ctxt, const unsigned char* data, unsigned int count) {
    if (count == 0) {
        return ASN1S_SUCCESS;
    }
    if (ctxt->stream != nullptr) {
        return rtStreamBufWrite(ctxt, data, count);
    }
    if (data == nullptr) {
        return fail(ctxt, ASN1S_INVALID_PARAMETER);
    }
    if (int status = rtCheckBuffer(ctxt, count); status != ASN1S_SUCCESS) {
        return status;
    }
    append(ctxt->buffer, data, count);
    return ASN1S_SUCCESS;
}
