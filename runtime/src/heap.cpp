#include <brevantis/asn1/runtime/heap.h>

#include <cstdlib>
#include <cstring>

#include <brevantis/asn1/runtime/status.h>

#include "block_header.h"

using runtime_detail::blockOf;

unsigned int g_defBlkSize = 4096;
void* (*g_malloc_func)(void* userData, std::size_t size) = rtDefaultMalloc;
void* (*g_realloc_func)(void* userData, void* ptr, std::size_t size) = rtDefaultRealloc;
void (*g_free_func)(void* userData, void* ptr) = rtDefaultFree;

void* rtDefaultMalloc(void* /*userData*/, std::size_t size) {
    return std::malloc(size);
}

void* rtDefaultRealloc(void* /*userData*/, void* ptr, std::size_t size) {
    return std::realloc(ptr, size);
}

void rtDefaultFree(void* /*userData*/, void* ptr) {
    std::free(ptr);
}

namespace {

constexpr unsigned int recordFromAllocator = 0x10000000u;

// A request plus its header has to stay a positive number of 31 bits.
constexpr int blockSizeLimit = 0x7FFFFFD0;
static_assert(sizeof(ASN1MemBlock) == 48, "the block size limit counts on a header of 48 octets");
static_assert(sizeof(ASN1MemBlock) % alignof(std::max_align_t) == 0,
              "the octets behind the header must be aligned like the block");

ASN1MemHeap* heapAt(void* heapRef) noexcept {
    return heapRef != nullptr ? static_cast<ASN1MemHeap*>(*static_cast<void**>(heapRef)) : nullptr;
}

} // namespace

int rtMemHeapCreate(void** heap, void* userData) noexcept {
    if (heap == nullptr) {
        return ASN1S_INVALID_PARAMETER;
    }
    auto* created = static_cast<ASN1MemHeap*>(g_malloc_func(userData, sizeof(ASN1MemHeap)));
    if (created == nullptr) {
        return ASN1S_NO_MEMORY;
    }
    *created = ASN1MemHeap{nullptr, g_defBlkSize, 1, recordFromAllocator, userData};
    *heap = created;
    return ASN1S_SUCCESS;
}

void* rtMemHeapAlloc(void* heapRef, int size) noexcept {
    if (heapRef == nullptr || size < 0 || size >= blockSizeLimit) {
        return nullptr;
    }
    ASN1MemHeap* heap = heapAt(heapRef);
    if (heap == nullptr) {
        if (rtMemHeapCreate(static_cast<void**>(heapRef), nullptr) != ASN1S_SUCCESS) {
            return nullptr;
        }
        heap = heapAt(heapRef);
    }
    const auto octets = static_cast<std::size_t>(size);
    auto* block =
        static_cast<ASN1MemBlock*>(g_malloc_func(heap->userData, sizeof(ASN1MemBlock) + octets));
    if (block == nullptr) {
        return nullptr;
    }
    block->next = heap->blockList;
    block->prev = nullptr;
    block->heap = heap;
    block->size = octets;
    if (block->next != nullptr) {
        block->next->prev = block;
    }
    heap->blockList = block;
    return block + 1;
}

void* rtMemHeapAllocZ(void* heapRef, int size) noexcept {
    void* ptr = rtMemHeapAlloc(heapRef, size);
    if (ptr != nullptr) {
        std::memset(ptr, 0, static_cast<std::size_t>(size));
    }
    return ptr;
}

void* rtMemHeapRealloc(void* heapRef, void* ptr, int size) noexcept {
    if (heapAt(heapRef) == nullptr) {
        return nullptr;
    }
    if (ptr == nullptr) {
        return rtMemHeapAlloc(heapRef, size);
    }
    ASN1MemBlock* block = blockOf(ptr);
    // A negative size is a large one here, and rtMemHeapAlloc refuses it.
    if (block->size >= static_cast<unsigned int>(size)) {
        block->size = static_cast<unsigned int>(size);
        return ptr;
    }
    void* grown = rtMemHeapAlloc(heapRef, size);
    if (grown != nullptr) {
        std::memcpy(grown, ptr, block->size);
        rtMemHeapFreePtr(heapRef, ptr);
    }
    return grown;
}

void rtMemHeapFreePtr(void* heapRef, void* ptr) noexcept {
    if (heapAt(heapRef) == nullptr || ptr == nullptr) {
        return;
    }
    // A context that has joined another's heap still frees blocks of its first one: unlinking them
    // from the list of the heap at hand would lose that list and free the block twice.
    ASN1MemBlock* block = blockOf(ptr);
    ASN1MemHeap* heap = block->heap;
    if (block->next != nullptr) {
        block->next->prev = block->prev;
    }
    if (block->prev != nullptr) {
        block->prev->next = block->next;
    } else {
        heap->blockList = block->next;
    }
    g_free_func(heap->userData, block);
}

void rtMemHeapAddRef(void* heapRef) noexcept {
    if (ASN1MemHeap* heap = heapAt(heapRef)) {
        ++heap->refCount;
    }
}

void rtMemHeapRelease(void* heapRef) noexcept {
    ASN1MemHeap* heap = heapAt(heapRef);
    if (heap == nullptr || --heap->refCount != 0) {
        return;
    }
    for (ASN1MemBlock* block = heap->blockList; block != nullptr;) {
        ASN1MemBlock* next = block->next;
        __builtin_prefetch(next); // comes while the allocator is busy with this one
        g_free_func(heap->userData, block);
        block = next;
    }
    heap->blockList = nullptr;
    if ((heap->heapFlags & recordFromAllocator) != 0) {
        g_free_func(heap->userData, heap);
    }
    *static_cast<void**>(heapRef) = nullptr;
}

int rtMemHeapCheckPtr(void* /*heapRef*/, void* /*ptr*/) noexcept {
    return 1;
}

int rtMemHeapMarkSaved(void* /*heapRef*/, void* /*ptr*/) noexcept {
    return 0;
}
