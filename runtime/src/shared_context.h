#ifndef RUNTIME_SRC_SHARED_CONTEXT_H
#define RUNTIME_SRC_SHARED_CONTEXT_H

#include <new>

#include <brevantis/asn1/runtime/message_buffer.h>

namespace runtime_detail {

/// A reference to a new context, the only one. Fails in one way whether it is the object or its
/// heap that finds no memory: ASN1MessageBuffer::RTLError with ASN1S_NO_MEMORY.
inline ASN1ContextRef makeContext() {
    auto* made = new (std::nothrow) ASN1Context;
    if (made == nullptr) {
        throw ASN1MessageBuffer::RTLError(ASN1S_NO_MEMORY);
    }
    return ASN1ContextRef(made);
}

} // namespace runtime_detail

#endif
