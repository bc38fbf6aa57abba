#ifndef RUNTIME_SRC_HEAP_BLOCK_H
#define RUNTIME_SRC_HEAP_BLOCK_H

#include <cstddef>
#include <cstring>

#include <brevantis/asn1/runtime/context.h>

/// @file
/// Heap blocks whose size is computed: the heap takes an `int`, and products and sums of counts
/// exceed that easily.

namespace runtime_detail {

/// @param octets any size
/// @return a block of the heap of @p ctxt; null when memory is out or the heap has no such sizes
inline void* allocateBlock(ASN1CTXT* ctxt, std::size_t octets) noexcept {
    if (octets > 0x7FFFFFCF) {
        return nullptr;
    }
    return rtMemHeapAlloc(&ctxt->memHeap, static_cast<int>(octets));
}

/// @param octets above 0
/// @return a block with a copy of @p source; null for a null @p source and as allocateBlock
template <class Unit>
Unit* copyBlock(ASN1CTXT* ctxt, const Unit* source, std::size_t octets) noexcept {
    if (source == nullptr) {
        return nullptr;
    }
    void* block = allocateBlock(ctxt, octets);
    if (block != nullptr) {
        std::memcpy(block, source, octets);
    }
    return static_cast<Unit*>(block);
}

/// Octets that hold @p bits bits.
constexpr unsigned int octetsOfBits(unsigned int bits) noexcept {
    return bits / 8 + (bits % 8 != 0 ? 1 : 0);
}

} // namespace runtime_detail

#endif
