#include <climits>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <brevantis/asn1/runtime/context.h>
#include <brevantis/asn1/runtime/heap.h>
#include <brevantis/asn1/runtime/single_list.h>

#include "support/coding.h"
#include "support/counting_allocator.h"
#include "support/data_file.h"
#include "support/leak_check.h"

namespace {

using tests::CountingAllocator;
class Heap {
public:
    Heap() { EXPECT_EQ(rtMemHeapCreate(&heap_, nullptr), 0); }
    ~Heap() { rtMemHeapRelease(&heap_); }
    void** ref() { return &heap_; }
    ASN1MemHeap* record() { return static_cast<ASN1MemHeap*>(heap_); }
    char* allocate(int size) { return static_cast<char*>(rtMemHeapAlloc(&heap_, size)); }

    /// Sizes from the newest block to the oldest; checks the way back on the go.
    std::vector<unsigned long> sizes() {
        std::vector<unsigned long> found;
        const ASN1MemBlock* newer = nullptr;
        for (const ASN1MemBlock* block = record()->blockList; block != nullptr;
             block = block->next) {
            EXPECT_EQ(block->prev, newer);
            newer = block;
            found.push_back(block->size);
        }
        return found;
    }

private:
    void* heap_ = nullptr;
};

using Sizes = std::vector<unsigned long>;

TEST(Heap, SizeLimits) {

    tests::forEachRow("heap.txt", "sizes", [&](const tests::DataRow& row) {
        CountingAllocator allocator;
        Heap heap;
        char* block = heap.allocate(8);
        const long before = CountingAllocator::calls();
        CountingAllocator::failAfter(0);
        EXPECT_EQ(rtMemHeapAlloc(heap.ref(), row.number("size")), nullptr);
        EXPECT_EQ(rtMemHeapAllocZ(heap.ref(), row.number("size")), nullptr);
        EXPECT_EQ(CountingAllocator::calls() - before,
                  row.number<bool>("reachesAllocator") ? 2 : 0);
        if (row.number("size") != 0) {
            EXPECT_EQ(rtMemHeapRealloc(heap.ref(), block, row.number("size")), nullptr);
        }
        EXPECT_EQ(heap.sizes(), Sizes{8});
    });
}

TEST(Heap, FreeingAnyBlockKeepsTheRest) {
    const tests::LeakCheck allocator;
    Heap heap;
    char* blocks[] = {heap.allocate(0), heap.allocate(0), heap.allocate(2), heap.allocate(3)};
    EXPECT_EQ(heap.sizes(), (Sizes{3, 2, 0, 0})) << "blocks of no octets are blocks, too";
    EXPECT_NE(blocks[0], blocks[1]);
    // The newest, one in the middle, the oldest, the only one.
    const std::pair<int, Sizes> steps[] = {{3, {2, 0, 0}}, {1, {2, 0}}, {0, {2}}, {2, {}}};
    for (const auto& [freed, left] : steps) {
        rtMemHeapFreePtr(heap.ref(), blocks[freed]);
        EXPECT_EQ(heap.sizes(), left);
    }
    EXPECT_NE(heap.allocate(5), nullptr);
    EXPECT_EQ(CountingAllocator::live(), 2);
    rtMemHeapFreePtr(heap.ref(), nullptr);
    rtMemHeapFreePtr(nullptr, blocks[0]);
}

TEST(Heap, ResizeNotesTheSmallerSizeAndMovesOnGrowth) {
    CountingAllocator allocator;
    Heap heap;
    char* block = heap.allocate(8);
    std::string("12345678").copy(block, 8);
    EXPECT_EQ(rtMemHeapRealloc(heap.ref(), block, 4), block);
    EXPECT_EQ(heap.sizes(), Sizes{4});
    CountingAllocator::failAfter(0);
    EXPECT_EQ(rtMemHeapRealloc(heap.ref(), block, 8), nullptr);
    EXPECT_EQ(std::string(block, 4), "1234") << "growth that fails leaves the old block";
    EXPECT_EQ(heap.sizes(), Sizes{4});
    CountingAllocator::neverFail();
    auto* grown = static_cast<char*>(rtMemHeapRealloc(heap.ref(), block, 8));
    ASSERT_NE(grown, nullptr);
    EXPECT_NE(grown, block);
    EXPECT_EQ(std::string(grown, 4), "1234");
    EXPECT_EQ(heap.sizes(), Sizes{8});
    EXPECT_NE(rtMemHeapRealloc(heap.ref(), nullptr, 3), nullptr);
    EXPECT_EQ(heap.sizes(), (Sizes{3, 8}));
    void* none = nullptr;
    EXPECT_EQ(rtMemHeapRealloc(&none, nullptr, 3), nullptr);
    EXPECT_EQ(none, nullptr);
    EXPECT_EQ(rtMemHeapRealloc(nullptr, nullptr, 3), nullptr);
}

TEST(Heap, TheLastReferenceReleasesAll) {
    CountingAllocator allocator;
    void* heap = nullptr;
    ASSERT_EQ(rtMemHeapCreate(&heap, nullptr), 0);
    void* second = heap;
    rtMemHeapAddRef(&second);
    auto* block = static_cast<char*>(rtMemHeapAlloc(&heap, 3));
    std::string("abc").copy(block, 3);
    rtMemHeapRelease(&heap);
    EXPECT_EQ(heap, second) << "a pointer stays while others hold the heap";
    EXPECT_EQ(std::string(block, 3), "abc");
    EXPECT_EQ(CountingAllocator::live(), 2);
    rtMemHeapRelease(&second);
    EXPECT_EQ(second, nullptr);
    EXPECT_EQ(CountingAllocator::live(), 0);
    rtMemHeapRelease(&second);
    rtMemHeapRelease(nullptr);
    rtMemHeapAddRef(nullptr);
    rtMemHeapAddRef(&second);
}

TEST(Heap, ARecordOfTheProgramsIsNotFreed) {
    CountingAllocator allocator;
    ASN1MemHeap own{nullptr, 0, 1, 0, nullptr};
    void* heap = &own;
    ASSERT_NE(rtMemHeapAlloc(&heap, 1), nullptr);
    rtMemHeapRelease(&heap);
    EXPECT_EQ(heap, nullptr);
    EXPECT_EQ(own.blockList, nullptr);
    EXPECT_EQ(CountingAllocator::live(), 0);
}

TEST(Heap, IsMadeOnTheSpot) {
    CountingAllocator allocator;
    void* heap = nullptr;
    ASSERT_NE(rtMemHeapAlloc(&heap, 1), nullptr);
    ASSERT_NE(heap, nullptr);
    EXPECT_EQ(static_cast<ASN1MemHeap*>(heap)->refCount, 1u);
    rtMemHeapRelease(&heap);
    CountingAllocator::failAfter(0);
    EXPECT_EQ(rtMemHeapAlloc(&heap, 1), nullptr);
    EXPECT_EQ(heap, nullptr);
    EXPECT_EQ(rtMemHeapCreate(&heap, nullptr), ASN1S_NO_MEMORY);
    EXPECT_EQ(rtMemHeapCreate(nullptr, nullptr), ASN1S_INVALID_PARAMETER);
    EXPECT_EQ(rtMemHeapAlloc(nullptr, 1), nullptr);
}

TEST(Heap, ABlockReturnsToTheHeapThatItCameFrom) {
    const tests::LeakCheck allocator;
    Heap first;
    Heap second;
    char* strayed = first.allocate(1);
    first.allocate(2);
    char* moving = first.allocate(3);
    second.allocate(4);
    rtMemHeapFreePtr(second.ref(), strayed);
    EXPECT_EQ(first.sizes(), (Sizes{3, 2}));
    ASSERT_NE(rtMemHeapRealloc(second.ref(), moving, 30), nullptr);
    EXPECT_EQ(first.sizes(), Sizes{2});
    EXPECT_EQ(second.sizes(), (Sizes{30, 4}));
}

// The hooks see the program's pointer at every call; what they return is dirty memory.
int marker = 0;
int callsWithMarker = 0;

void* dirtyMalloc(void* userData, std::size_t size) {
    callsWithMarker += userData == &marker ? 1 : 0;
    void* block = std::malloc(size);
    std::memset(block, 0xA5, size);
    return block;
}

void countingFree(void* userData, void* block) {
    callsWithMarker += userData == &marker ? 1 : 0;
    std::free(block);
}

TEST(Heap, HooksGetTheUserDataAndNothingRelyOnCleanMemory) {
    g_malloc_func = dirtyMalloc;
    g_free_func = countingFree;
    callsWithMarker = 0;
    void* heap = nullptr;
    ASSERT_EQ(rtMemHeapCreate(&heap, &marker), 0);
    auto* zeroed = static_cast<unsigned char*>(rtMemHeapAllocZ(&heap, 64));
    for (int i = 0; i < 64; ++i) {
        ASSERT_EQ(zeroed[i], 0) << i;
    }
    const auto* record = static_cast<ASN1MemHeap*>(heap);
    EXPECT_EQ(record->defBlkSize, g_defBlkSize);
    EXPECT_EQ(record->heapFlags, 0x10000000u);
    rtMemHeapFreePtr(&heap, rtMemHeapAlloc(&heap, 1));
    rtMemHeapRelease(&heap);
    EXPECT_EQ(callsWithMarker, 6) << "three blocks, taken and given back";
    g_malloc_func = rtDefaultMalloc;
    g_free_func = rtDefaultFree;
}

TEST(Heap, TheDefaultHooksAreThePlatforms) {
    auto* block = static_cast<char*>(g_realloc_func(nullptr, g_malloc_func(nullptr, 1), 64));
    ASSERT_NE(block, nullptr);
    std::memset(block, 1, 64);
    g_free_func(nullptr, block);
    EXPECT_EQ(g_defBlkSize, 4096u);
}

TEST(SingleList, NodesOfAContextComeFromItsHeap) {
    CountingAllocator allocator;
    tests::Context context;
    int elements[3] = {1, 2, 3};
    Asn1RTSList list;
    rtSListInitEx(context, &list);
    const long before = CountingAllocator::live();
    for (int& element : elements) {
        ASSERT_NE(rtSListAppend(&list, &element), nullptr);
    }
    CountingAllocator::failAfter(0);
    EXPECT_EQ(rtSListAppend(&list, &elements[0]), nullptr);
    EXPECT_EQ(CountingAllocator::live() - before, 3);
    EXPECT_EQ(list.count, 3u);
    EXPECT_EQ(list.head->data, &elements[0]);
    EXPECT_EQ(list.head->next->data, &elements[1]);
    EXPECT_EQ(list.tail->data, &elements[2]);
    EXPECT_EQ(list.tail->next, nullptr);

    rtSListFree(&list);
    EXPECT_EQ(CountingAllocator::live(), before);
    EXPECT_EQ(list.count, 0u);
    EXPECT_EQ(list.head, nullptr);
    EXPECT_EQ(list.tail, nullptr);
    EXPECT_EQ(list.pctxt, nullptr);
    EXPECT_EQ(elements[2], 3);
}

TEST(SingleList, NodesWithoutAContextComeFromTheProcess) {
    CountingAllocator allocator;
    Asn1RTSList list;
    rtSListInitEx(nullptr, &list);
    ASSERT_NE(rtSListAppend(&list, &list), nullptr);
    ASSERT_NE(rtSListAppend(&list, nullptr), nullptr);
    EXPECT_EQ(list.count, 2u);
    EXPECT_EQ(CountingAllocator::calls(), 0);
    rtSListFree(&list);
    EXPECT_EQ(list.head, nullptr);
    rtSListInitEx(nullptr, nullptr);
    rtSListFree(nullptr);
    EXPECT_EQ(rtSListAppend(nullptr, nullptr), nullptr);
}

/// What a limit promises, whatever makes the blocks.
void expectLimited() {
    Heap heap;
    char* const early = heap.allocate(1000);
    EXPECT_EQ(rtMemHeapTaken(heap.ref()), 1048u);
    ASSERT_EQ(rtMemHeapSetLimit(heap.ref(), 4000), 0);
    const std::size_t noted = rtMemHeapTaken(heap.ref()) - 1048;
    std::vector<char*> blocks;
    while (char* const block = heap.allocate(100)) {
        blocks.push_back(block);
    }
    EXPECT_EQ(blocks.size(), (4000 - 1048 - noted) / 148);
    EXPECT_LE(rtMemHeapTaken(heap.ref()), 4000u);
    EXPECT_TRUE(rtMemHeapLimitReached(heap.ref()));
    EXPECT_EQ(rtMemHeapRealloc(heap.ref(), blocks[0], 500), nullptr) << "nor does a block grow";

    // What is given back can be taken again, of blocks from before the limit too.
    rtMemHeapFreePtr(heap.ref(), early);
    for (int i = 0; i < 7; ++i) {
        EXPECT_NE(heap.allocate(100), nullptr) << i;
    }
    EXPECT_EQ(heap.allocate(100), nullptr);
    for (char* block : blocks) {
        rtMemHeapFreePtr(heap.ref(), block);
    }
    EXPECT_NE(heap.allocate(2500), nullptr) << "larger than what is cut";
    EXPECT_EQ(heap.allocate(2500), nullptr);
    EXPECT_EQ(heap.allocate(-1), nullptr);

    ASSERT_EQ(rtMemHeapSetLimit(heap.ref(), 0), 0);
    EXPECT_FALSE(rtMemHeapLimitReached(heap.ref()));
    char* const large = heap.allocate(100000);
    EXPECT_NE(large, nullptr);
    ASSERT_EQ(rtMemHeapSetLimit(heap.ref(), 50000), 0);
    EXPECT_EQ(heap.allocate(1), nullptr) << "what was taken without a limit counts";
    EXPECT_EQ(rtMemHeapRealloc(heap.ref(), large, 1000), large);
    EXPECT_NE(heap.allocate(1), nullptr) << "and so does what it shrinks by";
}

TEST(Heap, LimitOfBlocksThatAreCut) {
    expectLimited();
}

TEST(Heap, LimitOfBlocksFromCalls) {
    const CountingAllocator allocator;
    expectLimited();
}

TEST(Heap, LimitOfAHeapThatIsYetToBeMade) {
    void* heap = nullptr;
    ASSERT_EQ(rtMemHeapSetLimit(&heap, 200), 0);
    EXPECT_EQ(rtMemHeapAlloc(&heap, 100), nullptr);
    rtMemHeapRelease(&heap);
    EXPECT_EQ(rtMemHeapSetLimit(nullptr, 1), ASN1S_INVALID_PARAMETER);
    EXPECT_EQ(rtMemHeapTaken(&heap), 0u);
}

} // namespace
