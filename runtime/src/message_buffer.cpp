#include <brevantis/asn1/runtime/message_buffer.h>

#include <cstring>
#include <new>

#include <brevantis/asn1/runtime/control.h>
#include <brevantis/asn1/runtime/element_walk.h>
#include <brevantis/asn1/runtime/memory_buffer.h>
#include <brevantis/asn1/runtime/tag_length.h>

#include "shared_context.h"

namespace {

/// Flags that tell of the message that a context is bound to.
constexpr unsigned short messageFlags = ASN1F_INDEF_MESSAGE | ASN1F_LAST_EOC;

} // namespace

ASN1RTLException::~ASN1RTLException() = default;

const char* ASN1RTLException::what() const noexcept {
    return rtStatusName(status_);
}

ASN1MessageBufferIF::~ASN1MessageBufferIF() = default;

unsigned char* ASN1MessageBufferIF::getMsgCopy() {
    return nullptr;
}

unsigned char* ASN1MessageBufferIF::getMsgPtr() {
    return nullptr;
}

int ASN1MessageBufferIF::init() {
    return ASN1S_SUCCESS;
}

int ASN1MessageBufferIF::initBuffer(ASN1MemBuf& /*memBuf*/) {
    return ASN1S_NOT_SUPPORTED;
}

int ASN1MessageBufferIF::initBuffer(unsigned short* /*text*/) {
    return ASN1S_NOT_SUPPORTED;
}

int ASN1MessageBufferIF::initBuffer(char* /*text*/) {
    return ASN1S_NOT_SUPPORTED;
}

ASN1MessageBuffer::RTLError::~RTLError() = default;

ASN1MessageBuffer::ASN1MessageBuffer(ASN1MessageBufferIF::Type type)
    : context(runtime_detail::makeContext()), bufferType(type) {}

ASN1MessageBuffer::~ASN1MessageBuffer() = default;

ASN1ContextRef ASN1MessageBuffer::getContext() {
    return context;
}

ASN1CTXT* ASN1MessageBuffer::getCtxtPtr() {
    return context.get();
}

unsigned char* ASN1MessageBuffer::getMsgCopy() {
    return nullptr;
}

unsigned char* ASN1MessageBuffer::getMsgPtr() {
    return getCtxtPtr()->buffer.data;
}

int ASN1MessageBuffer::initBuffer(ASN1MemBuf& memBuf) {
    unsigned int length = 0;
    unsigned char* data = rtMemBufGetData(&memBuf, &length);
    if (data == nullptr && bufferType == DecodeBuffer) {
        // Without data the context would take a block of its own and decode what happens to be in
        // that memory.
        return ASN1S_NOT_SUPPORTED;
    }
    return rtInitContextBuffer(getCtxtPtr(), data, length);
}

int ASN1MessageBuffer::initBuffer(unsigned short* /*text*/) {
    return ASN1S_NOT_SUPPORTED;
}

int ASN1MessageBuffer::initBuffer(char* /*text*/) {
    return ASN1S_NOT_SUPPORTED;
}

ASN1BERMessageBuffer::ASN1BERMessageBuffer(ASN1MessageBufferIF::Type type)
    : ASN1MessageBuffer(type) {}

ASN1BERMessageBuffer::~ASN1BERMessageBuffer() = default;

ASN1BEREncodeBuffer::ASN1BEREncodeBuffer() : ASN1BEREncodeBuffer(nullptr, 0) {}

ASN1BEREncodeBuffer::ASN1BEREncodeBuffer(unsigned char* buffer, int size)
    : ASN1BERMessageBuffer(EncodeBuffer) {
    if (int status = setBuffer(buffer, size); status != ASN1S_SUCCESS) {
        throw RTLError(status);
    }
}

ASN1BEREncodeBuffer::~ASN1BEREncodeBuffer() = default;

int ASN1BEREncodeBuffer::setBuffer(unsigned char* buffer, int size) {
    if (size < 0) {
        return ASN1S_INVALID_PARAMETER;
    }
    return xe_setp(getCtxtPtr(), buffer, static_cast<unsigned int>(size));
}

unsigned char* ASN1BEREncodeBuffer::getMsgCopy() {
    const ASN1Buffer& bound = getCtxtPtr()->buffer;
    if (bound.byteIndex >= bound.size) {
        return nullptr;
    }
    // Kept: with the unused last octet. Programs depend on it.
    const std::size_t octets = bound.size - bound.byteIndex;
    auto* copy = new (std::nothrow) unsigned char[octets];
    if (copy != nullptr) {
        std::memcpy(copy, xe_getp(getCtxtPtr()), octets);
    }
    return copy;
}

unsigned char* ASN1BEREncodeBuffer::getMsgPtr() {
    return xe_getp(getCtxtPtr());
}

int ASN1BEREncodeBuffer::init() {
    ASN1Buffer& bound = getCtxtPtr()->buffer;
    bound.byteIndex = bound.size == 0 ? 0 : bound.size - 1;
    return ASN1S_SUCCESS;
}

bool ASN1BEREncodeBuffer::isA(Type type) {
    return type == EncodeBuffer;
}

ASN1BEREncodeBuffer& ASN1BEREncodeBuffer::operator<<(ASN1CType& object) {
    // Kept: an encoding that worked throws too, with its count of octets. Programs depend on it.
    if (int result = object.EncodeTo(*this); result != 0) {
        throw ASN1RTLException(result);
    }
    return *this;
}

ASN1BERDecodeBuffer::ASN1BERDecodeBuffer() : ASN1BERMessageBuffer(DecodeBuffer) {}

ASN1BERDecodeBuffer::ASN1BERDecodeBuffer(const unsigned char* msg, int size)
    : ASN1BERMessageBuffer(DecodeBuffer), msgPtr(msg), msgSize(size) {}

ASN1BERDecodeBuffer::~ASN1BERDecodeBuffer() = default;

int ASN1BERDecodeBuffer::init() {
    return setBuffer(msgPtr, msgSize, 1);
}

int ASN1BERDecodeBuffer::initBuffer(ASN1MemBuf& memBuf) {
    const int status = ASN1BERMessageBuffer::initBuffer(memBuf);
    if (status == ASN1S_SUCCESS) {
        rememberBinding();
    }
    return status;
}

bool ASN1BERDecodeBuffer::isA(Type type) {
    return type == DecodeBuffer;
}

int ASN1BERDecodeBuffer::setBuffer(const unsigned char* msg, int size, unsigned char keepIfSame) {
    if (keepIfSame != 0) {
        leaveOpenValue();
        // Kept: no rewind. Programs decode one value after another from a message.
        if (setupDone && msg == msgPtr && size == msgSize) {
            return ASN1S_SUCCESS;
        }
    }
    msgPtr = msg;
    msgSize = size;
    if (msg == nullptr || size < 1) {
        return ASN1S_NOT_SUPPORTED;
    }
    setupDone = true;
    const int status = xd_setp(getCtxtPtr(), msg, size, nullptr, nullptr);
    rememberBinding();
    return status;
}

void ASN1BERDecodeBuffer::rememberBinding() noexcept {
    const ASN1CTXT* ctxt = getCtxtPtr();
    // A block of the context's own may go at any time.
    binding = ctxt->buffer.dynamic == 0 ? ctxt->buffer : ASN1Buffer{};
    bindingFlags = ctxt->flags & messageFlags;
}

/// Turns the context away from an open value that a decoder failed in; otherwise notes what it is
/// bound to, for programs bind it behind the buffer's back.
void ASN1BERDecodeBuffer::leaveOpenValue() noexcept {
    ASN1CTXT* ctxt = getCtxtPtr();
    if (ctxt->buffer.insideOpenValue == 0) {
        rememberBinding();
    } else if (binding.data != nullptr) {
        ctxt->buffer = binding;
        ctxt->buffer.byteIndex = 0;
        ctxt->flags = static_cast<unsigned short>((ctxt->flags & ~messageFlags) | bindingFlags);
    }
}

const unsigned char* ASN1BERDecodeBuffer::findElement(unsigned int tag, int& elemLen,
                                                      int firstFlag) {
    ASN1CTXT* ctxt = getCtxtPtr();
    int matchFlags = ASN1MatchSeek;
    if (firstFlag != 0) {
        setupDone = true;
        if (setBuffer(msgPtr, msgSize) != ASN1S_SUCCESS) {
            return nullptr;
        }
    } else {
        matchFlags |= ASN1MatchSkipFirst;
    }
    if (xd_match(ctxt, tag, &elemLen, matchFlags) != ASN1S_SUCCESS) {
        return nullptr;
    }
    return ctxt->buffer.data + ctxt->buffer.byteIndex;
}

ASN1BERDecodeBuffer& ASN1BERDecodeBuffer::operator>>(ASN1CType& object) {
    if (int status = object.DecodeFrom(*this); status != ASN1S_SUCCESS) {
        throw ASN1RTLException(status);
    }
    return *this;
}
