#include <brevantis/asn1/runtime/heap.h>

#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>

#include <brevantis/asn1/runtime/status.h>

#include "block_header.h"
#include "heap_pool.h"

using runtime_detail::blockOf;
using runtime_detail::HeapLimit;
using runtime_detail::HeapPool;

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

/// Puts a block at the front of its heap's list.
inline void* enter(ASN1MemHeap* heap, ASN1MemBlock* block, std::size_t octets) noexcept {
    ASN1MemBlock* const newest = heap->blockList;
    block->next = newest;
    block->prev = nullptr;
    block->heap = heap;
    block->size = octets;
    if (newest != nullptr) {
        newest->prev = block;
    }
    heap->blockList = block;
    return block + 1;
}

/// A block whose header is still to be filled; null when memory is out.
///
/// Blocks are cut only in front of others that were, which lead to the pool. So when hooks change
/// while the heap lives, the blocks that calls made are newer than all that were cut.
/// @param octets header included
/// @param limit that the block is counted by, or null
ASN1MemBlock* takeUncounted(ASN1MemHeap* heap, std::size_t octets, HeapLimit* limit) noexcept {
    const ASN1MemBlock* const newest = heap->blockList;
    if (HeapPool::serves()) {
        if (newest == nullptr) {
            return HeapPool::begin(octets);
        }
        if (HeapPool* const pool = HeapPool::of(newest)) {
            return pool->take(octets);
        }
    }
    auto* const block = static_cast<ASN1MemBlock*>(g_malloc_func(heap->userData, octets));
    if (block != nullptr) {
        HeapPool::setMadeByCall(block, limit);
    }
    return block;
}

/// The limit of a heap; null without one.
HeapLimit* limitOf(const ASN1MemHeap* heap) noexcept {
    return heap->blockList != nullptr ? HeapPool::limitOf(heap->blockList) : nullptr;
}

/// The same within the limit of the heap.
ASN1MemBlock* takeBlock(ASN1MemHeap* heap, std::size_t octets) noexcept {
    HeapLimit* const limit = limitOf(heap);
    if (limit == nullptr) {
        return takeUncounted(heap, octets, nullptr);
    }
    if (!limit->take(octets)) {
        return nullptr;
    }
    ASN1MemBlock* const block = takeUncounted(heap, octets, limit);
    if (block == nullptr) {
        limit->giveBack(octets);
    }
    return block;
}

void releaseBlocks(ASN1MemHeap* heap) noexcept {
    for (ASN1MemBlock* block = heap->blockList; block != nullptr;) {
        if (HeapPool* const pool = HeapPool::of(block)) {
            pool->end();
            break;
        }
        ASN1MemBlock* next = block->next;
        __builtin_prefetch(next); // comes while the allocator is busy with this one
        g_free_func(heap->userData, block);
        block = next;
    }
    heap->blockList = nullptr;
}

[[gnu::noinline]] void* allocateAnyhow(void* heapRef, int size) noexcept {
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
    ASN1MemBlock* block = takeBlock(heap, sizeof(ASN1MemBlock) + octets);
    return block != nullptr ? enter(heap, block, octets) : nullptr;
}

/// The road of most blocks, without a call: cut from the chunk at hand.
inline void* allocate(void* heapRef, int size) noexcept {
    ASN1MemHeap* const heap = heapAt(heapRef);
    if (heap != nullptr && heap->blockList != nullptr && HeapPool::serves()) {
        if (HeapPool::hasCut(heap->blockList)) {
            HeapPool* const pool = HeapPool::of(heap->blockList);
            // A negative size is a large one here.
            const std::size_t octets = static_cast<unsigned int>(size);
            if (ASN1MemBlock* const block = pool->cut(sizeof(ASN1MemBlock) + octets)) {
                return enter(heap, block, octets);
            }
        }
    }
    return allocateAnyhow(heapRef, size);
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
    return allocate(heapRef, size);
}

void* rtMemHeapAllocZ(void* heapRef, int size) noexcept {
    void* ptr = allocate(heapRef, size);
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
        if (HeapLimit* const limit = HeapPool::limitOf(block)) {
            limit->giveBack(block->size - static_cast<unsigned int>(size));
        }
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
    if (HeapPool::hasCut(block)) {
        HeapPool::giveBack(block);
        return;
    }
    if (HeapLimit* const limit = HeapPool::limitOf(block)) {
        limit->giveBack(sizeof(ASN1MemBlock) + block->size);
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
    releaseBlocks(heap);
    if ((heap->heapFlags & recordFromAllocator) != 0) {
        g_free_func(heap->userData, heap);
    }
    *static_cast<void**>(heapRef) = nullptr;
}

int rtMemHeapSetLimit(void* heapRef, std::size_t octets) noexcept {
    if (heapRef == nullptr) {
        return ASN1S_INVALID_PARAMETER;
    }
    ASN1MemHeap* heap = heapAt(heapRef);
    HeapLimit* limit = heap != nullptr ? limitOf(heap) : nullptr;
    if (limit == nullptr) {
        if (octets == 0) {
            return ASN1S_SUCCESS;
        }
        void* const room = rtMemHeapAlloc(heapRef, static_cast<int>(sizeof(HeapLimit)));
        if (room == nullptr) {
            return ASN1S_NO_MEMORY;
        }
        heap = heapAt(heapRef);
        limit = ::new (room) HeapLimit{0, 0, false};
        for (ASN1MemBlock* block = heap->blockList; block != nullptr; block = block->next) {
            limit->taken += sizeof(ASN1MemBlock) + block->size;
            if (HeapPool* const pool = HeapPool::of(block)) {
                pool->setLimit(limit);
            } else {
                HeapPool::setMadeByCall(block, limit);
            }
        }
    }
    limit->limit = octets != 0 ? octets : std::numeric_limits<std::size_t>::max();
    limit->reached = false;
    return ASN1S_SUCCESS;
}

bool rtMemHeapLimitReached(void* heapRef) noexcept {
    const ASN1MemHeap* const heap = heapAt(heapRef);
    const HeapLimit* const limit = heap != nullptr ? limitOf(heap) : nullptr;
    return limit != nullptr && limit->reached;
}

std::size_t rtMemHeapTaken(void* heapRef) noexcept {
    const ASN1MemHeap* const heap = heapAt(heapRef);
    std::size_t octets = 0;
    for (const ASN1MemBlock* block = heap != nullptr ? heap->blockList : nullptr; block != nullptr;
         block = block->next) {
        octets += sizeof(ASN1MemBlock) + block->size;
    }
    return octets;
}

int rtMemHeapCheckPtr(void* /*heapRef*/, void* /*ptr*/) noexcept {
    return 1;
}

int rtMemHeapMarkSaved(void* /*heapRef*/, void* /*ptr*/) noexcept {
    return 0;
}
