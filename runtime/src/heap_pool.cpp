#include "heap_pool.h"

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <new>

#include <sys/mman.h>

namespace runtime_detail {

namespace {

constexpr std::size_t roundUp(std::size_t octets, std::size_t unit) noexcept {
    return (octets + unit - 1) / unit * unit;
}

void* map(std::size_t octets) noexcept {
    void* const start =
        mmap(nullptr, octets, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return start != MAP_FAILED ? start : nullptr;
}

/// glibc gives memory back to the system whenever its newest 128 KiB are free, so that the next
/// message has to ask for it again, page by page, which takes longer than to decode it. A block as
/// large as we ever ask it for that came and went teaches it to keep twice as much (mallopt(3), on
/// M_MMAP_THRESHOLD). No page of it is touched.
void keepFreedMemory() noexcept {
    [[maybe_unused]] static const bool taught = [] {
        void* volatile const block = std::malloc(HeapPool::LargePageBlock);
        std::free(block);
        return true;
    }();
}

/// Memory that begins where a large page may; null when there is none.
void* mapAligned(std::size_t octets) noexcept {
    constexpr std::size_t page = HeapPool::LargePage;
    // Recent kernels align what is this large by themselves.
    void* start = map(octets);
    std::size_t room = octets;
    if (start != nullptr && std::align(page, octets, start, room) == nullptr) {
        munmap(start, octets);
        start = map(octets + page);
        if (start == nullptr) {
            return nullptr;
        }
        auto* const mapped = static_cast<unsigned char*>(start);
        room = octets + page;
        std::align(page, octets, start, room);
        auto* const aligned = static_cast<unsigned char*>(start);
        if (aligned != mapped) {
            munmap(mapped, static_cast<std::size_t>(aligned - mapped));
        }
        munmap(aligned + octets, room - octets);
    }
    return start;
}

/// Time that this thread has used, in nanoseconds.
long long threadTime() noexcept {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return time.tv_sec * 1'000'000'000LL + time.tv_nsec;
}

/// Has the kernel fill large pages, each in one go, where it is quick at it: ten times as quick as
/// with small ones as a rule, but as much slower in a virtual machine whose host took the large
/// pages back that were free, and gives them again piece by piece.
/// @return whether it was quick to the end; what is behind a page that it was not quick with is to
///         be filled in small pages, as it is used
bool fillLargePages(void* start, std::size_t octets) noexcept {
    constexpr long long quick = 1'000'000;
    auto* const pages = static_cast<unsigned char*>(start);
    if (madvise(pages, octets, MADV_HUGEPAGE) != 0) {
        return false;
    }
    for (std::size_t done = 0; done < octets;) {
        const long long before = threadTime();
        static_cast<volatile unsigned char&>(pages[done]) = 0;
        done += HeapPool::LargePage;
        if (threadTime() - before > quick) {
            if (done < octets) {
                static_cast<void>(madvise(pages + done, octets - done, MADV_NOHUGEPAGE));
            }
            return false;
        }
    }
    return true;
}

} // namespace

/// What the first chunk begins with.
struct HeapPool::FirstChunk {
    Chunk chunk;
    alignas(std::max_align_t) HeapPool pool;
};

ASN1MemBlock* HeapPool::begin(std::size_t octets) noexcept {
    void* const room = std::malloc(SmallestChunk);
    if (room == nullptr) {
        return nullptr;
    }
    auto* const first = ::new (room) FirstChunk;
    HeapPool& pool = first->pool;
    pool.first_ = &first->chunk;
    pool.enter(pool.first_, SmallestChunk, false);
    pool.cutFrom(pool.first_, octetsOf(first + 1));
    ASN1MemBlock* const block = pool.take(octets);
    if (block == nullptr) {
        pool.end();
    }
    return block;
}

void HeapPool::end() noexcept {
    // The newest first, as memory is taken from the end of what there is; the pool goes last.
    for (Chunk* chunk = newest_; chunk != nullptr;) {
        Chunk* const older = chunk->older;
        release(chunk);
        chunk = older;
    }
}

ASN1MemBlock* HeapPool::take(std::size_t octets) noexcept {
    if (octets > LargestCut) {
        return takeLarge(octets);
    }
    if (ASN1MemBlock* const block = cutSmall(octets)) {
        return block;
    }
    if (const unsigned sizeClass = classOf(roomFor(octets)); isFree(sizeClass)) {
        ASN1MemBlock* const block = free_[sizeClass];
        removeFree(block);
        show(block, octets);
        ++chunkOf(block)->live;
        return block;
    }
    // A block may still fit where a chunk does not.
    return cutFromNew() ? cutSmall(octets) : takeLarge(octets);
}

/// A block that is a chunk of its own.
ASN1MemBlock* HeapPool::takeLarge(std::size_t octets) noexcept {
    const std::size_t size = sizeof(Chunk) + octets;
    const bool mapped = size >= LargePageBlock;
    Chunk* const chunk = addChunk(mapped ? roundUp(size, SmallestChunk) : size, mapped);
    if (chunk == nullptr) {
        return nullptr;
    }
    chunk->live = 1;
    void* const start = chunk + 1;
    auto* const block = static_cast<ASN1MemBlock*>(start);
    block->reserved[0] = chunk;
    block->reserved[1] = nullptr;
    return block;
}

/// Makes a new chunk the one that is cut: of a quarter of what is there, so that small heaps stay
/// small and large ones take few calls.
bool HeapPool::cutFromNew() noexcept {
    const std::size_t quarter = octets_ / 4;
    const bool mapped = octets_ >= LargePagesFrom;
    Chunk* const chunk = addChunk(
        mapped ? std::min<std::size_t>(roundUp(quarter, LargePage), LargestChunk)
               : std::clamp<std::size_t>(roundUp(quarter, 1024), SmallestChunk, LargestSmallChunk),
        mapped);
    if (chunk == nullptr) {
        return false;
    }
    current_->end = at_;
    cutFrom(chunk, octetsOf(chunk + 1));
    return true;
}

void HeapPool::cutFrom(Chunk* chunk, unsigned char* start) noexcept {
    octets_ += chunk->size;
    current_ = chunk;
    at_ = start;
    end_ = octetsOf(chunk) + chunk->size;
    hide(at_, 0, end_);
}

HeapPool::Chunk* HeapPool::addChunk(std::size_t octets, bool mapped) noexcept {
    if (octets_ + octets >= KeptFrom) {
        keepFreedMemory();
    }
    void* const room = mapped ? mapAligned(octets) : std::malloc(octets);
    if (room == nullptr) {
        return nullptr;
    }
    if (mapped && largePages_) {
        largePages_ = fillLargePages(room, octets);
    }
    auto* const chunk = ::new (room) Chunk;
    enter(chunk, octets, mapped);
    return chunk;
}

void HeapPool::enter(Chunk* chunk, std::size_t octets, bool mapped) noexcept {
    *chunk = {this, nullptr, newest_, nullptr, octets, 0, mapped};
    if (newest_ != nullptr) {
        newest_->newer = chunk;
    }
    newest_ = chunk;
    ++chunks_;
}

void HeapPool::release(Chunk* chunk) noexcept {
    if (chunk->mapped) {
        const std::size_t size = chunk->size;
        show(chunk, size);
        munmap(chunk, size);
    } else {
        std::free(chunk);
    }
}

/// What becomes of a chunk whose last block was given back.
void HeapPool::drop(Chunk* chunk) noexcept {
    if (chunk == current_) {
        removeFree(startOf(chunk), at_);
        at_ = startOf(chunk);
        hide(at_, 0, end_);
    } else if (chunk != first_) {
        if (chunk->end != nullptr) {
            removeFree(startOf(chunk), chunk->end);
            octets_ -= chunk->size;
        }
        chunk->older->newer = chunk->newer; // the first one is the oldest
        (chunk->newer != nullptr ? chunk->newer->older : newest_) = chunk->older;
        --chunks_;
        release(chunk);
    }
    if (chunks_ == (current_ == first_ ? 1 : 2) && current_->live == 0 && first_->live == 0) {
        end();
    }
}

unsigned char* HeapPool::startOf(Chunk* chunk) const noexcept {
    return octetsOf(chunk) + (chunk == first_ ? sizeof(FirstChunk) : sizeof(Chunk));
}

void HeapPool::removeFree(ASN1MemBlock* block) noexcept {
    if (block->next != nullptr) {
        block->next->prev = block->prev;
    }
    if (block->prev != nullptr) {
        block->prev->next = block->next;
        return;
    }
    const unsigned sizeClass = classOf(roomOf(block));
    free_[sizeClass] = block->next;
    if (block->next == nullptr) {
        classesFree_ &= ~(std::uint64_t{1} << sizeClass);
    }
}

/// Forgets blocks that lie one behind the other and are all free.
void HeapPool::removeFree(unsigned char* start, const unsigned char* end) noexcept {
    for (void* at = start; at != end;) {
        auto* const block = static_cast<ASN1MemBlock*>(at);
        removeFree(block);
        at = block->reserved[1];
    }
}

} // namespace runtime_detail
