// The heap with its pool, which every other test of the heap keeps away by hooks of its own. This
// program has the sources of both compiled in, so that the pool also stands under the sanitizers,
// and so that what it asks of the allocator and of the system goes through the functions below.

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <map>
#include <random>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <sys/mman.h>

#include <brevantis/asn1/runtime/heap.h>
#include <brevantis/asn1/runtime/status.h>

#include "heap_pool.h"

namespace {

using runtime_detail::HeapPool;

constexpr int LargePage = static_cast<int>(HeapPool::LargePage);

/// What goes through the functions below while it is watched.
struct Memory {
    long calls = 0;                         ///< that asked for memory
    std::size_t octets = 0;                 ///< asked for
    long live = 0;                          ///< pieces that were not given back
    std::size_t failFrom = ~std::size_t{0}; ///< size from which on every call fails
    bool misaligned = false; ///< the system maps nothing at the start of a large page
    std::map<void*, std::size_t> mapped{};
};
Memory* watched = nullptr;

bool fails(std::size_t size) {
    if (watched == nullptr) {
        return false;
    }
    ++watched->calls;
    watched->octets += size;
    return size >= watched->failFrom;
}

} // namespace

// The linker replaces the functions of these names with those that begin with "__wrap_".
extern "C" {
void* __real_malloc(std::size_t size);                       // NOLINT(bugprone-reserved-identifier)
void __real_free(void* block);                               // NOLINT(bugprone-reserved-identifier)
void* __wrap_malloc(std::size_t size);                       // NOLINT(bugprone-reserved-identifier)
void __wrap_free(void* block);                               // NOLINT(bugprone-reserved-identifier)
void* __real_mmap(void*, std::size_t, int, int, int, off_t); // NOLINT(bugprone-reserved-identifier)
void* __wrap_mmap(void*, std::size_t, int, int, int, off_t); // NOLINT(bugprone-reserved-identifier)
int __real_munmap(void*, std::size_t);                       // NOLINT(bugprone-reserved-identifier)
int __wrap_munmap(void*, std::size_t);                       // NOLINT(bugprone-reserved-identifier)

void* __wrap_malloc(std::size_t size) {
    void* const block = fails(size) ? nullptr : __real_malloc(size);
    if (watched != nullptr && block != nullptr) {
        ++watched->live;
        std::memset(block, 0xA5, std::min<std::size_t>(size, 1 << 20));
    }
    return block;
}

void __wrap_free(void* block) {
    if (watched != nullptr && block != nullptr) {
        --watched->live;
    }
    __real_free(block);
}

void* __wrap_mmap(void* at, std::size_t size, int protection, int flags, int file, off_t offset) {
    if (fails(size)) {
        return MAP_FAILED;
    }
    if (watched == nullptr) {
        return __real_mmap(at, size, protection, flags, file, offset);
    }
    // A page more, whose place in front or behind decides where the rest stands.
    auto* start =
        static_cast<unsigned char*>(__real_mmap(at, size + 4096, protection, flags, file, offset));
    const bool aligned = reinterpret_cast<std::uintptr_t>(start) % HeapPool::LargePage == 0;
    const bool first = aligned != watched->misaligned;
    __real_munmap(first ? start + size : start, 4096);
    start += first ? 0 : 4096;
    watched->mapped[start] = size;
    return start;
}

int __wrap_munmap(void* at, std::size_t size) {
    if (watched != nullptr) {
        auto piece = watched->mapped.upper_bound(at);
        if (piece == watched->mapped.begin()) {
            ADD_FAILURE() << "was not mapped";
            return -1;
        }
        --piece;
        auto* const start = static_cast<unsigned char*>(piece->first);
        auto* const end = start + piece->second;
        auto* const hole = static_cast<unsigned char*>(at);
        EXPECT_LE(hole + size, end);
        watched->mapped.erase(piece);
        if (start != hole) {
            watched->mapped[start] = static_cast<std::size_t>(hole - start);
        }
        if (hole + size != end) {
            watched->mapped[hole + size] = static_cast<std::size_t>(end - hole) - size;
        }
    }
    return __real_munmap(at, size);
}

} // extern "C"

namespace {

class HeapPoolTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(HeapPool::serves());
        // Takes what is taken once a process.
        void* heap = nullptr;
        rtMemHeapAlloc(&heap, LargePage);
        rtMemHeapRelease(&heap);
        watched = &memory_;
    }
    void TearDown() override {
        watched = nullptr;
        EXPECT_EQ(memory_.live, 0) << "everything goes with the heap";
        EXPECT_TRUE(memory_.mapped.empty());
    }
    /// What the heap holds now.
    std::size_t pieces() const {
        return static_cast<std::size_t>(memory_.live) + memory_.mapped.size();
    }

    Memory memory_;
};

/// A heap, and what its list has to be.
class ModelHeap {
public:
    ~ModelHeap() { release(); }
    ModelHeap() = default;
    ModelHeap(const ModelHeap&) = delete;
    ModelHeap& operator=(const ModelHeap&) = delete;

    struct Block {
        unsigned char* data;
        std::size_t size;
        unsigned char fill;
    };

    void** ref() { return &heap_; }
    const ASN1MemHeap* record() const { return static_cast<const ASN1MemHeap*>(heap_); }
    std::vector<Block>& blocks() { return blocks_; }

    /// @return the block, or null where there is no memory
    unsigned char* allocate(int size) {
        return add(rtMemHeapAlloc(&heap_, size), static_cast<std::size_t>(size));
    }
    void free(std::size_t index, ModelHeap& through) {
        checkFill(blocks_[index]);
        rtMemHeapFreePtr(through.ref(), blocks_[index].data);
        blocks_.erase(blocks_.begin() + static_cast<std::ptrdiff_t>(index));
    }
    void free(std::size_t index) { free(index, *this); }
    void resize(std::size_t index, int size) {
        Block& block = blocks_[index];
        checkFill(block);
        const auto octets = static_cast<std::size_t>(size);
        auto* const resized =
            static_cast<unsigned char*>(rtMemHeapRealloc(&heap_, block.data, size));
        ASSERT_NE(resized, nullptr);
        if (octets <= block.size) {
            EXPECT_EQ(resized, block.data);
            block.size = octets;
            return;
        }
        EXPECT_NE(resized, block.data);
        block.data = resized;
        checkFill(block); // as far as there was something
        blocks_.erase(blocks_.begin() + static_cast<std::ptrdiff_t>(index));
        add(resized, octets);
    }

    /// Whether the list is that of the model, and nothing has overwritten anything.
    void check() const {
        const ASN1MemBlock* block = record() != nullptr ? record()->blockList : nullptr;
        const ASN1MemBlock* newer = nullptr;
        for (auto expected = blocks_.rbegin(); expected != blocks_.rend(); ++expected) {
            ASSERT_NE(block, nullptr);
            EXPECT_EQ(static_cast<const void*>(block + 1), expected->data);
            EXPECT_EQ(block->size, expected->size);
            EXPECT_EQ(block->prev, newer);
            EXPECT_EQ(block->heap, record());
            checkFill(*expected);
            newer = block;
            block = block->next;
        }
        EXPECT_EQ(block, nullptr);
    }
    void release() {
        rtMemHeapRelease(&heap_);
        blocks_.clear();
    }

private:
    static void checkFill(const Block& block) {
        EXPECT_TRUE(std::all_of(block.data, block.data + block.size,
                                [&](unsigned char octet) { return octet == block.fill; }));
    }
    unsigned char* add(void* data, std::size_t size) {
        if (data == nullptr) {
            return nullptr;
        }
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(data) % 16, 0u);
        const Block block{static_cast<unsigned char*>(data), size, ++fill_};
        std::memset(block.data, block.fill, block.size);
        blocks_.push_back(block);
        return block.data;
    }

    void* heap_ = nullptr;
    std::vector<Block> blocks_;
    unsigned char fill_ = 0;
};

int randomSize(std::mt19937& random) {
    constexpr std::pair<unsigned, unsigned> ranges[] = {
        {0, 40},    {0, 40},      {30, 120},     {30, 120},
        {400, 700}, {1900, 2100}, {2000, 20000}, {100000, 200000}};
    const auto& [least, most] = ranges[random() % std::size(ranges)];
    return static_cast<int>(least + random() % (most - least));
}

TEST_F(HeapPoolTest, BlocksStayWhatTheyAreInAnyOrder) {
    for (unsigned seed = 1; seed <= 6; ++seed) {
        std::mt19937 random(seed);
        ModelHeap heaps[3];
        for (int step = 0; step < 6000; ++step) {
            ModelHeap& heap = heaps[random() % std::size(heaps)];
            const std::size_t count = heap.blocks().size();
            // Grows for a while, then shrinks, and so on, down to nothing.
            const unsigned takes = step / 1000 % 2 == 0 ? 7 : 2;
            if (count == 0 || random() % 10 < takes) {
                ASSERT_NE(heap.allocate(randomSize(random)), nullptr);
            } else if (random() % 4 == 0) {
                heap.resize(random() % count, randomSize(random));
            } else {
                // Mostly the newest or the oldest, as scratch and as a list that is freed.
                const unsigned which = static_cast<unsigned>(random() % 4);
                heap.free(which < 2 ? count - 1 : which == 2 ? 0 : random() % count);
            }
            if (step % 500 == 0) {
                heap.check();
            }
        }
        for (ModelHeap& heap : heaps) {
            heap.check();
            if (seed % 2 == 0) {
                while (!heap.blocks().empty()) {
                    heap.free(random() % heap.blocks().size());
                }
                heap.check();
            }
            heap.release();
        }
        EXPECT_EQ(pieces(), 0u);
    }
}

TEST_F(HeapPoolTest, ABlockGoesBackToItsOwnHeap) {
    ModelHeap first;
    ModelHeap second;
    first.allocate(10);
    first.allocate(20);
    second.allocate(30);
    first.free(0, second);
    first.check();
    second.check();
    first.allocate(10);
    second.allocate(10);
    first.check();
    second.check();
}

TEST_F(HeapPoolTest, FewCallsAndLittleMoreThanIsThere) {
    // What a certificate decodes to, roughly.
    ModelHeap heap;
    std::size_t octets = 0;
    for (int i = 0; i < 150; ++i) {
        const int size = i % 6 == 0 ? 580 : i % 3 == 0 ? 10 : 40;
        heap.allocate(size);
        octets += sizeof(ASN1MemBlock) + static_cast<std::size_t>(size);
    }
    EXPECT_LE(memory_.calls, 10);
    EXPECT_LE(memory_.octets, octets * 5 / 4 + HeapPool::SmallestChunk);
}

TEST_F(HeapPoolTest, FreedRoomIsUsedAgain) {
    ModelHeap heap;
    for (int round = 0; round < 3; ++round) {
        for (int i = 0; i < 1000; ++i) {
            heap.allocate(i % 700);
        }
        const long calls = memory_.calls;
        for (int pass = 0; pass < 20; ++pass) {
            // From the front, so that nothing can just be taken back.
            for (int i = 0; i < 500; ++i) {
                const auto size = static_cast<int>(heap.blocks().front().size);
                heap.free(0);
                heap.allocate(size);
            }
        }
        EXPECT_EQ(memory_.calls, calls);
        heap.check();
        heap.release();
    }
}

TEST_F(HeapPoolTest, AChunkGoesBackWithItsLastBlock) {
    ModelHeap heap;
    for (int i = 0; i < 4000; ++i) {
        heap.allocate(100);
    }
    const std::size_t most = pieces();
    EXPECT_GT(most, 10u);
    while (heap.blocks().size() > 2000) {
        heap.free(0);
    }
    EXPECT_LE(pieces(), most * 3 / 4);
    while (heap.blocks().size() > 1) {
        heap.free(0);
    }
    EXPECT_LE(pieces(), 3u) << "the record, the first chunk and the one that is cut";
    heap.check();
    heap.free(0);
    EXPECT_EQ(pieces(), 1u) << "the record";
    heap.allocate(1);
    heap.check();
}

TEST_F(HeapPoolTest, ScratchAtTheStartOfAChunkTakesNoCalls) {
    ModelHeap heap;
    long most = 0;
    for (int i = 0; i < 300; ++i) {
        heap.allocate(100);
        const long calls = memory_.calls;
        for (int j = 0; j < 10; ++j) {
            heap.allocate(200);
            heap.allocate(200);
            heap.free(heap.blocks().size() - 1);
            heap.free(heap.blocks().size() - 1);
        }
        most = std::max(most, memory_.calls - calls);
    }
    EXPECT_LE(most, 1);
}

TEST_F(HeapPoolTest, LargeHeapsAndBlocksHaveLargePages) {
    for (const bool misaligned : {false, true}) {
        memory_.misaligned = misaligned;
        ModelHeap heap;
        heap.allocate(3 * LargePage); // one of its own
        for (int i = 0; i < 4 * LargePage / 2000; ++i) {
            heap.allocate(1900);
        }
        EXPECT_GE(memory_.mapped.size(), 3u);
        for (const auto& [start, size] : memory_.mapped) {
            EXPECT_EQ(reinterpret_cast<std::uintptr_t>(start) % HeapPool::LargePage, 0u) << size;
        }
        heap.check();
        heap.free(0);
        while (heap.blocks().size() > 1) {
            heap.free(0);
        }
        EXPECT_LE(memory_.mapped.size(), 1u) << "the one that is cut";
        heap.check();
        heap.release();
        EXPECT_TRUE(memory_.mapped.empty());
    }
}

TEST_F(HeapPoolTest, WithoutMemoryNothingIsLost) {
    ModelHeap heap;
    memory_.failFrom = 0;
    EXPECT_EQ(heap.allocate(1), nullptr) << "no record";
    memory_.failFrom = 64;
    EXPECT_EQ(heap.allocate(1), nullptr) << "no first chunk";
    memory_.failFrom = 5000;
    EXPECT_EQ(heap.allocate(10000), nullptr) << "a chunk, and no block";
    heap.check();
    EXPECT_EQ(pieces(), 1u) << "the chunk went back";

    memory_.failFrom = ~std::size_t{0};
    for (const std::size_t upTo : {std::size_t{0}, std::size_t{HeapPool::LargePagesFrom}}) {
        heap.allocate(1);
        for (std::size_t octets = 0; octets < upTo; octets += 2000) {
            heap.allocate(1900);
        }
        memory_.failFrom = HeapPool::SmallestChunk;
        for (int i = 0; i < 100; ++i) {
            ASSERT_NE(heap.allocate(1000), nullptr) << "it fits where a chunk does not";
        }
        memory_.failFrom = 0;
        while (heap.allocate(1000) != nullptr) {
        }
        heap.check();
        memory_.failFrom = ~std::size_t{0};
        ASSERT_NE(heap.allocate(1000), nullptr) << "there is memory again";
        EXPECT_EQ(rtMemHeapRealloc(heap.ref(), heap.blocks().front().data, 0x7FFFFFD0), nullptr);
        heap.check();
        while (!heap.blocks().empty()) {
            heap.free(heap.blocks().size() / 2);
        }
        EXPECT_EQ(pieces(), 1u);
    }
}

// ---- hooks of a program, and records that it made -----------------------------------------------

long taken = 0;
long givenBack = 0;

/// While it lives, every block is a call.
class Hooks {
public:
    Hooks() {
        g_malloc_func = [](void*, std::size_t size) {
            ++taken;
            return std::malloc(size);
        };
        g_free_func = [](void*, void* block) {
            ++givenBack;
            std::free(block);
        };
    }
    ~Hooks() {
        g_malloc_func = rtDefaultMalloc;
        g_free_func = rtDefaultFree;
    }
    Hooks(const Hooks&) = delete;
    Hooks& operator=(const Hooks&) = delete;
};

TEST_F(HeapPoolTest, EachBlockGoesBackTheWayItCame) {
    // Rounds with and without hooks, then all is freed with them: from the front, from the back, or
    // with the heap. Where a hook made the newest block, the next is a call, too.
    for (const bool calledFirst : {false, true}) {
        for (const int order : {0, 1, 2}) {
            ModelHeap heap;
            givenBack = 0;
            for (int round = 0; round < 4; ++round) {
                if ((round % 2 == 0) == calledFirst) {
                    const Hooks hooks;
                    heap.allocate(round);
                    heap.allocate(3000);
                } else {
                    heap.allocate(round);
                    heap.allocate(3000);
                }
            }
            heap.check();
            const Hooks hooks;
            while (order != 2 && !heap.blocks().empty()) {
                heap.free(order == 0 ? 0 : heap.blocks().size() - 1);
                heap.check();
            }
            heap.release();
            EXPECT_EQ(givenBack, calledFirst ? 9 : 7) << "with the record";
        }
    }
}

TEST_F(HeapPoolTest, WithAHookSetEveryBlockIsOneCall) {
    const Hooks hooks;
    ModelHeap heap;
    taken = 0;
    for (int i = 0; i < 10; ++i) {
        heap.allocate(8);
        EXPECT_EQ(taken, i + 2) << "and the record";
    }
}

TEST_F(HeapPoolTest, NothingIsReadBehindARecord) {
    // Of just its size, so that a sanitizer sees what is read behind it, and dirty where there is
    // nothing to be told.
    for (const unsigned flags : {0u, 0x10000000u, 0xEFFFFFFFu, 0xFFFFFFFFu}) {
        auto* const record = static_cast<ASN1MemHeap*>(std::malloc(sizeof(ASN1MemHeap)));
        std::memset(static_cast<void*>(record), 0xFF, sizeof(ASN1MemHeap));
        record->blockList = nullptr;
        record->refCount = 1;
        record->heapFlags = flags;
        void* heap = record;
        void* first = rtMemHeapAlloc(&heap, 10);
        for (int i = 0; i < 100; ++i) {
            ASSERT_NE(rtMemHeapAllocZ(&heap, 100), nullptr);
        }
        rtMemHeapFreePtr(&heap, first);
        EXPECT_LE(pieces(), 8u) << "it has a pool all the same";
        rtMemHeapRelease(&heap);
        EXPECT_EQ(heap, nullptr);
        if ((flags & 0x10000000u) == 0) {
            EXPECT_EQ(record->blockList, nullptr);
            std::free(record);
        }
        EXPECT_EQ(pieces(), 0u);
    }
}

#ifdef RUNTIME_SRC_ADDRESS_SANITIZER
TEST_F(HeapPoolTest, FreeRoomIsNoneForASanitizer) {
    ModelHeap heap;
    unsigned char* const oldest = heap.allocate(20);
    unsigned char* const middle = heap.allocate(20);
    unsigned char* const newest = heap.allocate(20);
    for (const unsigned char* block : {oldest, middle, newest}) {
        EXPECT_FALSE(__asan_address_is_poisoned(block));
        EXPECT_FALSE(__asan_address_is_poisoned(block + 19));
        EXPECT_TRUE(__asan_address_is_poisoned(block + 20)) << "the rest of its room";
    }
    heap.free(2);
    EXPECT_TRUE(__asan_address_is_poisoned(newest));
    heap.free(0);
    EXPECT_TRUE(__asan_address_is_poisoned(oldest));
    EXPECT_EQ(heap.allocate(18), oldest);
    EXPECT_FALSE(__asan_address_is_poisoned(oldest + 17));
    EXPECT_TRUE(__asan_address_is_poisoned(oldest + 18));
}
#endif

} // namespace
