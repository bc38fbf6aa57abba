#ifndef RUNTIME_SRC_BLOCK_HEADER_H
#define RUNTIME_SRC_BLOCK_HEADER_H

#include <brevantis/asn1/runtime/heap.h>

namespace runtime_detail {

/// The header in front of a block that rtMemHeapAlloc returned.
inline ASN1MemBlock* blockOf(void* ptr) noexcept {
    return static_cast<ASN1MemBlock*>(ptr) - 1;
}

} // namespace runtime_detail

#endif
