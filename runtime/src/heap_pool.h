#ifndef RUNTIME_SRC_HEAP_POOL_H
#define RUNTIME_SRC_HEAP_POOL_H

#include <array>
#include <cstddef>
#include <cstdint>

#include <brevantis/asn1/runtime/heap.h>

/// @file
/// Where the blocks of a heap come from while both allocator hooks are the defaults: they are cut
/// from chunks, since nobody sees how many calls are made.
///
/// A heap's record says nothing of its pool, for a program may have made the record itself. The
/// blocks do: each one that was cut points to its chunk, and the chunk to the pool. So a heap finds
/// its pool by its newest block, and a pool ends when no block of it is left.
///
/// Free blocks are used again by size. A chunk goes back with its last block, but for the one that
/// is being cut, which would otherwise come and go with each scratch block at its start, and the
/// first, which holds the pool's own record.

// With a sanitizer every block is one of its own, or it would not see what runs over its end.
// Tests of the pool keep it on all the same.
#if defined(__SANITIZE_ADDRESS__)
#define RUNTIME_SRC_ADDRESS_SANITIZER 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define RUNTIME_SRC_ADDRESS_SANITIZER 1
#endif
#endif
#ifdef RUNTIME_SRC_ADDRESS_SANITIZER
#include <sanitizer/asan_interface.h>
#endif

namespace runtime_detail {

/// What the blocks of a heap take and may take. It lies in a block of that heap, which nobody gives
/// back but the heap's end: as a heap's record says nothing of a limit either, the newest block
/// tells of it, and with this one there is always a block.
struct HeapLimit {
    std::size_t limit;
    std::size_t taken;
    bool reached;

    bool take(std::size_t octets) noexcept {
        if (octets > limit || taken > limit - octets) {
            reached = true;
            return false;
        }
        taken += octets;
        return true;
    }
    void giveBack(std::size_t octets) noexcept { taken -= octets; }
};

class HeapPool {
public:
    enum : std::size_t {
        SmallestChunk = 4096,
        /// Above it an allocator may map chunks one by one, and adapts what it keeps to them.
        LargestSmallChunk = 65536,
        /// What the kernel fills in one go, for a tenth of what it takes in small pages.
        LargePage = std::size_t{2} << 20,
        /// Chunks are large pages once as much is there in small ones.
        LargePagesFrom = std::size_t{2} << 20,
        LargestChunk = std::size_t{8} << 20,
        LargestCut = 2048, ///< larger blocks are chunks of their own
        /// Blocks this large have large pages of their own: more than an allocator should keep.
        LargePageBlock = std::size_t{4} << 20,
        /// Heaps and blocks this large are worth that the allocator keeps what they give back.
        KeptFrom = 65536
    };

    HeapPool(const HeapPool&) = delete;
    HeapPool& operator=(const HeapPool&) = delete;

    /// Whether new blocks may be cut.
    static bool serves() noexcept {
#if defined(RUNTIME_SRC_ADDRESS_SANITIZER) && !defined(BREVANTIS_POOL_UNDER_SANITIZER)
        return false;
#else
        return g_malloc_func == rtDefaultMalloc && g_free_func == rtDefaultFree;
#endif
    }

    /// Whether a block was cut, and not made by a call of the hook.
    static bool hasCut(const ASN1MemBlock* block) noexcept {
        return chunkOf(block) != nullptr;
    }

    /// The pool that a block comes from; null when a call of the hook made it.
    static HeapPool* of(const ASN1MemBlock* block) noexcept {
        return hasCut(block) ? chunkOf(block)->pool : nullptr;
    }

    /// To be noted of a block that comes from a call of the hook.
    /// @param limit of its heap, or null
    static void setMadeByCall(ASN1MemBlock* block, HeapLimit* limit) noexcept {
        block->reserved[0] = nullptr;
        block->reserved[1] = limit;
    }

    /// What counts a block; null without a limit.
    static HeapLimit* limitOf(const ASN1MemBlock* block) noexcept {
        const Chunk* const chunk = chunkOf(block);
        return chunk != nullptr ? chunk->pool->limit_ : static_cast<HeapLimit*>(block->reserved[1]);
    }

    /// From now on no block is cut but by `take`, whose caller counts it.
    void setLimit(HeapLimit* limit) noexcept {
        limit_ = limit;
        largestQuickCut_ = 0;
    }

    /// The first block of a new pool.
    /// @param octets as for take
    static ASN1MemBlock* begin(std::size_t octets) noexcept;

    /// A block from wherever there is one.
    /// @param octets of the whole block, with its header
    /// @return the block, nothing of it filled but what the pool needs; null when memory is out
    ASN1MemBlock* take(std::size_t octets) noexcept;

    /// The same from the chunk that is being cut, when no free block would do.
    /// @param octets at most 2 to the power of 32
    ASN1MemBlock* cut(std::size_t octets) noexcept {
        return octets <= largestQuickCut_ ? cutSmall(octets) : nullptr;
    }

    /// Takes back a block that is on the heap's list no more. The pool may end with it.
    static void giveBack(ASN1MemBlock* block) noexcept {
        Chunk* const chunk = chunkOf(block);
        HeapPool* const pool = chunk->pool;
        if (pool->limit_ != nullptr) {
            pool->limit_->giveBack(sizeof(ASN1MemBlock) + block->size);
        }
        if (block->reserved[1] == pool->at_) {
            hide(block, 0, pool->at_);
            pool->at_ = octetsOf(block);
        } else if (block->reserved[1] != nullptr) {
            pool->addFree(block);
        }
        if (--chunk->live == 0) {
            pool->drop(chunk);
        }
    }

    /// Gives back every block, and ends.
    void end() noexcept;

private:
    /// In front of the blocks that are cut from it.
    struct Chunk {
        HeapPool* pool;
        Chunk* newer;
        Chunk* older;
        unsigned char* end; ///< behind the last block; null for a block that is a chunk of its own
        std::size_t size;   ///< octets in all
        unsigned live;      ///< blocks in use
        bool mapped;        ///< from the system, not from the allocator
    };
    static_assert(sizeof(Chunk) % alignof(std::max_align_t) == 0);
    struct FirstChunk;

    HeapPool() = default;

    // A block that was cut has its chunk and its end where its header is reserved; a larger one has
    // its chunk alone.
    static Chunk* chunkOf(const ASN1MemBlock* block) noexcept {
        return static_cast<Chunk*>(block->reserved[0]);
    }
    static unsigned char* octetsOf(void* start) noexcept {
        return static_cast<unsigned char*>(start);
    }
    static std::size_t roomOf(ASN1MemBlock* block) noexcept {
        return static_cast<std::size_t>(octetsOf(block->reserved[1]) - octetsOf(block));
    }

    // Rooms are multiples of 16 octets up to 512, then of 64.
    static constexpr std::size_t roomFor(std::size_t octets) noexcept {
        const std::size_t step = octets <= 512 ? 16 : 64;
        return (octets + step - 1) & ~(step - 1);
    }
    static constexpr unsigned classOf(std::size_t room) noexcept {
        return static_cast<unsigned>(room <= 512 ? room / 16 : 24 + room / 64);
    }
    static constexpr unsigned classes = 24 + LargestCut / 64 + 1;
    static_assert(classes <= 64, "a bit each");

    /// A block of at most LargestCut octets from the chunk that is being cut.
    ASN1MemBlock* cutSmall(std::size_t octets) noexcept {
        const std::size_t room = roomFor(octets);
        if (isFree(classOf(room)) || room > left()) {
            return nullptr;
        }
        void* const start = at_;
        at_ += room;
        show(start, octets);
        auto* const block = static_cast<ASN1MemBlock*>(start);
        block->reserved[0] = current_;
        block->reserved[1] = at_;
        ++current_->live;
        return block;
    }

    bool isFree(unsigned sizeClass) const noexcept {
        return (classesFree_ >> sizeClass & 1) != 0;
    }
    std::size_t left() const noexcept {
        return static_cast<std::size_t>(end_ - at_);
    }

    void addFree(ASN1MemBlock* block) noexcept {
        const unsigned sizeClass = classOf(roomOf(block));
        hide(block, sizeof(ASN1MemBlock), block->reserved[1]);
        block->prev = nullptr;
        block->next = isFree(sizeClass) ? free_[sizeClass] : nullptr;
        if (block->next != nullptr) {
            block->next->prev = block;
        }
        free_[sizeClass] = block;
        classesFree_ |= std::uint64_t{1} << sizeClass;
    }
    void removeFree(ASN1MemBlock* block) noexcept;
    void removeFree(unsigned char* start, const unsigned char* end) noexcept;
    unsigned char* startOf(Chunk* chunk) const noexcept;

    ASN1MemBlock* takeLarge(std::size_t octets) noexcept;
    bool cutFromNew() noexcept;
    Chunk* addChunk(std::size_t octets, bool mapped) noexcept;
    void enter(Chunk* chunk, std::size_t octets, bool mapped) noexcept;
    static void release(Chunk* chunk) noexcept;
    void drop(Chunk* chunk) noexcept;
    void cutFrom(Chunk* chunk, unsigned char* start) noexcept;

    // For a sanitizer, free room is none. The headers of free blocks stay readable.
#ifdef RUNTIME_SRC_ADDRESS_SANITIZER
    static void show(void* start, std::size_t octets) noexcept {
        ASAN_UNPOISON_MEMORY_REGION(start, octets);
    }
    static void hide(void* start, std::size_t skipped, void* end) noexcept {
        unsigned char* const from = octetsOf(start) + skipped;
        ASAN_POISON_MEMORY_REGION(from, static_cast<std::size_t>(octetsOf(end) - from));
    }
#else
    static void show(void* /*start*/, std::size_t /*octets*/) noexcept {}
    static void hide(void* /*start*/, std::size_t /*skipped*/, void* /*end*/) noexcept {}
#endif

    unsigned char* at_ = nullptr; ///< where the next block is cut
    unsigned char* end_ = nullptr;
    Chunk* current_ = nullptr; ///< that is being cut
    std::size_t largestQuickCut_ = LargestCut;
    std::uint64_t classesFree_ = 0;
    HeapLimit* limit_ = nullptr;
    Chunk* newest_ = nullptr;
    Chunk* first_ = nullptr; ///< that the pool lies in
    std::size_t chunks_ = 0;
    std::size_t octets_ = 0;                  ///< of the chunks that are cut
    bool largePages_ = true;                  ///< as long as the kernel is quick with them
    std::array<ASN1MemBlock*, classes> free_; ///< the newest of a class, where there is one
};

} // namespace runtime_detail

#endif
