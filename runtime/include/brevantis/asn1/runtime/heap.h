#ifndef BREVANTIS_ASN1_RUNTIME_HEAP_H
#define BREVANTIS_ASN1_RUNTIME_HEAP_H

#include <cstddef>

#include <brevantis/asn1/export.h>

/// @file
/// The memory heap of a coding context: single blocks on one list, released together.
///
/// The heap is not an arena: it keeps its live blocks on a doubly linked list, so that one can be
/// freed early and the rest all at once. Each allocation is one call of the allocator hook, once a
/// program has set hooks. While both are the defaults, which nobody can count, blocks are cut from
/// chunks of `malloc`, and from memory of the system where there are megabytes of them. A chunk
/// goes back with its last block, all go with the heap. With an address sanitizer every block is
/// one of `malloc`; for valgrind a program sets hooks that call it.
///
/// A `heapRef` is the address of a heap pointer, as `&ctxt->memHeap`.

struct ASN1MemHeap;

/// Header in front of every block, 48 octets; the caller's pointer is the first octet behind it.
struct ASN1MemBlock {
    ASN1MemBlock* next; ///< the next older block
    ASN1MemBlock* prev; ///< the next newer block, null for the newest
    ASN1MemHeap* heap;  ///< the heap that the block is on
    void* reserved[2];  ///< where the block goes back to, and what counts it
    unsigned long size; ///< octets of the user area, as last requested
};

/// A counted heap.
struct ASN1MemHeap {
    ASN1MemBlock* blockList; ///< the newest block
    unsigned int defBlkSize; ///< `g_defBlkSize` at creation, for information
    unsigned int refCount;   ///< references held; rtMemHeapRelease drops one
    unsigned int heapFlags;  ///< 0x10000000: the record itself came from the allocator
    void* userData;          ///< first argument of every allocator call
};

/// Default block size that a new heap notes; no allocation depends on it.
extern BREVANTIS_ASN1_API unsigned int g_defBlkSize;

/// Allocator of every heap. Set these before the first context exists and leave them alone while
/// any heap lives; they are read without synchronisation. They report failure by null and must not
/// throw; blocks must be aligned as `malloc` aligns them. `g_realloc_func` is never called.
extern BREVANTIS_ASN1_API void* (*g_malloc_func)(void* userData, std::size_t size);
extern BREVANTIS_ASN1_API void* (*g_realloc_func)(void* userData, void* ptr, std::size_t size);
extern BREVANTIS_ASN1_API void (*g_free_func)(void* userData, void* ptr);

/// The platform's `malloc` in the shape of the hook, which a new program has.
BREVANTIS_ASN1_API void* rtDefaultMalloc(void* userData, std::size_t size);
/// The platform's `realloc`, likewise.
BREVANTIS_ASN1_API void* rtDefaultRealloc(void* userData, void* ptr, std::size_t size);
/// The platform's `free`, likewise.
BREVANTIS_ASN1_API void rtDefaultFree(void* userData, void* ptr);

/// Creates a heap with one reference, to be dropped by rtMemHeapRelease.
/// @param heap receives the heap
/// @param userData handed to every allocator call of this heap
/// @return 0; ASN1S_INVALID_PARAMETER when @p heap is null; ASN1S_NO_MEMORY when memory is out
BREVANTIS_ASN1_API int rtMemHeapCreate(void** heap, void* userData) noexcept;

/// Allocates a block, creating the heap when the pointer behind @p heapRef is null.
/// @param size octets; 0 yields a valid unique pointer
/// @return the block, which lives until it is freed or the heap is released; null when memory is
///         out, @p heapRef is null, or @p size is negative or above 0x7FFFFFCF
BREVANTIS_ASN1_API void* rtMemHeapAlloc(void* heapRef, int size) noexcept;

/// The same as rtMemHeapAlloc, zero-filled.
BREVANTIS_ASN1_API void* rtMemHeapAllocZ(void* heapRef, int size) noexcept;

/// Resizes a block. Growth moves it to a new block with the old contents; a smaller size is only
/// noted, so that growing back moves it too.
/// @param ptr a block that is live, or null to allocate
/// @param size the new size in octets
/// @return the block, or null with the old one still valid, for the reasons of rtMemHeapAlloc
BREVANTIS_ASN1_API void* rtMemHeapRealloc(void* heapRef, void* ptr, int size) noexcept;

/// Frees one block; the heap may use its room again for others. Nothing happens when @p heapRef,
/// the heap or @p ptr is null.
/// @param ptr a live block; it goes back to the heap that it came from, which is another one than
///        that of @p heapRef when a context has joined another heap in between
BREVANTIS_ASN1_API void rtMemHeapFreePtr(void* heapRef, void* ptr) noexcept;

/// Adds a reference; null arguments are ignored.
BREVANTIS_ASN1_API void rtMemHeapAddRef(void* heapRef) noexcept;

/// Drops a reference. With the last one every block and the heap itself go back to the allocator
/// and the caller's pointer becomes null.
BREVANTIS_ASN1_API void rtMemHeapRelease(void* heapRef) noexcept;

/// Limits the octets that blocks of a heap may take at a time, their headers of 48 octets included.
/// A block that would take more is refused as if memory were out, so that coders end with
/// ASN1S_NO_MEMORY; what is there stays valid and can be given back. Blocks that are there already
/// count. All contexts on the heap share the limit, which goes with the heap.
/// @param heapRef a heap is created when the pointer behind it is null
/// @param octets 0 for no limit, as from the start
/// @return 0; ASN1S_INVALID_PARAMETER when @p heapRef is null; ASN1S_NO_MEMORY when there is no
///         memory to note the limit
BREVANTIS_ASN1_API int rtMemHeapSetLimit(void* heapRef, std::size_t octets) noexcept;

/// Whether a block was refused for the limit since that was set.
BREVANTIS_ASN1_API bool rtMemHeapLimitReached(void* heapRef) noexcept;

/// Octets that the blocks of a heap take, their headers of 48 octets included. Goes through them.
BREVANTIS_ASN1_API std::size_t rtMemHeapTaken(void* heapRef) noexcept;

/// Stands where a check of a block would; nothing is looked at.
/// @return 1
BREVANTIS_ASN1_API int rtMemHeapCheckPtr(void* heapRef, void* ptr) noexcept;

/// Stands where a mark would keep a block over a release; does nothing.
/// @return 0
BREVANTIS_ASN1_API int rtMemHeapMarkSaved(void* heapRef, void* ptr) noexcept;

#endif
