#include <algorithm>
#include <cstring>
#include <iterator>
#include <list>
#include <random>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include <brevantis/asn1/runtime/list.h>

#include "support/coding.h"
#include "support/counting_allocator.h"

namespace {

static_assert(!std::is_same_v<ASN1TSeqOfList, ASN1TPDUSeqOfList>);
static_assert(sizeof(ASN1TSeqOfList) == sizeof(_Asn1RTDList));

using Model = std::list<void*>;

int elements[64];

/// The list's links, both ways, agree with the model.
void expectSame(const _Asn1RTDList& list, const Model& model) {
    ASSERT_EQ(list.count, model.size());
    const _Asn1RTDListNode* before = nullptr;
    const _Asn1RTDListNode* node = list.head;
    for (const void* data : model) {
        ASSERT_NE(node, nullptr);
        ASSERT_EQ(node->data, data);
        ASSERT_EQ(node->prev, before);
        before = node;
        node = node->next;
    }
    ASSERT_EQ(node, nullptr);
    ASSERT_EQ(list.tail, before);
}

/// A block with a node and an int behind it, as a decoder makes it; returns the element.
void* inlineElement(ASN1CTXT* ctxt) {
    void* block = rtMemHeapAlloc(&ctxt->memHeap, sizeof(_Asn1RTDListNode) + sizeof(int));
    return static_cast<_Asn1RTDListNode*>(block) + 1;
}

TEST(List, behavesLikeTheModelUnderRandomOperations) {
    tests::Context context;
    std::mt19937 random(20231);
    const auto below = [&](std::size_t limit) { return static_cast<int>(random() % limit); };
    ASN1TSeqOfList list;
    Model model;
    for (int step = 0; step < 5000; ++step) {
        void* data = &elements[below(64)];
        const int size = static_cast<int>(model.size());
        const int index = below(model.size() + 3) - 1;
        // A negative index stands for 1 on insertion and for 0 in a search.
        const int insertAt = index < 0 ? 1 : index;
        const auto at = std::next(model.begin(), std::min(std::max(index, 0), size));
        _Asn1RTDListNode* node = rtDListFindByIndex(&list, index);
        ASSERT_EQ(node != nullptr ? node->data : nullptr, at != model.end() ? *at : nullptr);
        const _Asn1RTDListNode* made = nullptr;
        // More removals than insertions in every other stretch, so that the list runs empty often.
        switch (below(size > 12 || step / 50 % 2 != 0 ? 16 : 6)) {
        case 0:
            made = rtDListAppend(context, &list, data);
            model.push_back(data);
            break;
        case 1:
            data = inlineElement(context);
            made = rtDListAppendNode(context, &list, data);
            ASSERT_EQ(made + 1, data);
            model.push_back(data);
            break;
        case 2:
            made =
                rtDListInsert(context, &list, insertAt == 1 && size > 0 ? index : insertAt, data);
            ASSERT_EQ(made != nullptr, insertAt <= size);
            if (insertAt <= size) {
                model.insert(std::next(model.begin(), insertAt), data);
            }
            break;
        case 3:
            made = rtDListInsertBefore(context, &list, node, data);
            model.insert(at, data);
            break;
        case 4:
            made = rtDListInsertAfter(context, &list, node, data);
            model.insert(node != nullptr ? std::next(at) : model.begin(), data);
            break;
        case 5: {
            const auto found = std::find(model.begin(), model.end(), data);
            const bool there = found != model.end();
            ASSERT_EQ(rtDListFindIndexByData(&list, data),
                      there ? static_cast<int>(std::distance(model.begin(), found)) : -1);
            made = rtDListFindByData(&list, data);
            ASSERT_EQ(made != nullptr, there);
            break;
        }
        default:
            rtDListRemove(&list, node);
            if (node != nullptr) {
                model.erase(at);
            }
            break;
        }
        ASSERT_TRUE(made == nullptr || made->data == data);
        expectSame(list, model);
        if (HasFatalFailure()) {
            FAIL() << "at step " << step;
        }
    }
}

TEST(List, emptyLists) {
    tests::Context context;
    ASN1TPDUSeqOfList list;
    EXPECT_EQ(rtDListFindIndexByData(&list, nullptr), -1);
    EXPECT_EQ(rtDListFindByData(&list, nullptr), nullptr);
    EXPECT_EQ(rtDListFindByIndex(&list, -1), nullptr);
    EXPECT_EQ(rtDListInsert(context, &list, -1, elements), nullptr);
    EXPECT_EQ(rtDListInsert(context, &list, 1, elements), nullptr);
    EXPECT_EQ(rtDListAppendNode(context, &list, nullptr), nullptr);
    expectSame(list, {});
    EXPECT_NE(rtDListInsert(context, &list, 0, elements), nullptr);
    expectSame(list, {elements});
    rtDListInit(&list);
    expectSame(list, {});
    rtDListInit(nullptr);
}

TEST(List, freesEachBlockOnce) {
    tests::CountingAllocator allocator;
    tests::Context context;
    const long live = allocator.live();
    ASN1TSeqOfList list;
    for (int i = 0; i < 6; ++i) {
        if (i % 2 == 0) {
            rtDListAppendNode(context, &list, inlineElement(context));
        } else {
            rtDListAppend(context, &list, rtMemHeapAlloc(&context->memHeap, 1));
        }
    }
    EXPECT_EQ(allocator.live(), live + 9);
    rtDListFreeAll(context, &list);
    EXPECT_EQ(allocator.live(), live);
    expectSame(list, {});

    void* element = rtMemHeapAlloc(&context->memHeap, 1);
    rtDListAppend(context, &list, element);
    rtDListRemove(&list, list.head);
    EXPECT_EQ(allocator.live(), live + 2) << "the node stays on the heap";
    rtDListAppend(context, &list, element);
    rtDListFreeNodes(context, &list);
    EXPECT_EQ(allocator.live(), live + 2) << "the element stays on the heap";
    expectSame(list, {});
}

TEST(List, arrays) {
    tests::Context context;
    const int numbers[] = {10, 20, 30, 40, 50};
    ASN1TSeqOfList list;
    EXPECT_EQ(rtDListAppendArray(context, &list, numbers, 5, sizeof(int)), 0);
    ASSERT_EQ(list.count, 5u);
    EXPECT_EQ(list.tail->data, numbers + 4);

    struct Row {
        int octetCount;
        unsigned int copied;
    };
    for (const Row& row : {Row{0, 0}, Row{-1, 0}, Row{1, 1}, Row{5, 2}, Row{8, 2}, Row{20, 5}}) {
        ASN1TSeqOfList copies;
        EXPECT_EQ(rtDListAppendArrayCopy(context, &copies, numbers, row.octetCount, sizeof(int)),
                  0);
        EXPECT_EQ(copies.count, row.copied) << row.octetCount;
        for (unsigned int i = 0; i < row.copied; ++i) {
            const void* copy = rtDListFindByIndex(&copies, static_cast<int>(i))->data;
            EXPECT_NE(copy, numbers + i);
            EXPECT_EQ(std::memcmp(copy, numbers + i, sizeof(int)), 0);
        }
    }

    int target[5] = {};
    void* array = target;
    unsigned int capacity = 5;
    EXPECT_EQ(rtDListToArray(context, &list, &array, &capacity, sizeof(int)), 5u);
    EXPECT_EQ(array, target);
    EXPECT_EQ(rtDListToArray(context, &list, &array, nullptr, sizeof(int)), 5u);
    EXPECT_EQ(std::memcmp(target, numbers, sizeof numbers), 0);
    capacity = 4;
    EXPECT_EQ(rtDListToArray(context, &list, &array, &capacity, sizeof(int)), 5u);
    EXPECT_NE(array, target);
    EXPECT_EQ(capacity, 5u);
    EXPECT_EQ(std::memcmp(array, numbers, sizeof numbers), 0);
}

TEST(List, refusesSizesThatCannotBe) {
    tests::Context context;
    int number = 1;
    ASN1TSeqOfList list;
    EXPECT_EQ(rtDListAppendArray(context, &list, &number, 1, -1), ASN1S_INVALID_PARAMETER);
    EXPECT_EQ(rtDListAppendArray(context, &list, nullptr, 1, 4), ASN1S_INVALID_PARAMETER);
    EXPECT_EQ(rtDListAppendArrayCopy(context, &list, &number, 4, 0), ASN1S_INVALID_PARAMETER);
    EXPECT_EQ(rtDListAppendArrayCopy(context, &list, &number, 4, -4), ASN1S_INVALID_PARAMETER);
    EXPECT_EQ(list.count, 0u);
    rtDListAppend(context, &list, &number);
    rtDListAppend(context, &list, &number);
    // Two slots of 2^30 octets and more do not fit a block, whatever their product wraps to.
    for (int elementSize : {-1, 0x40000000, 0x7FFFFFFF}) {
        void* array = &number;
        unsigned int capacity = 0;
        EXPECT_EQ(rtDListToArray(context, &list, &array, &capacity, elementSize), 0u);
        EXPECT_EQ(array, &number);
        EXPECT_EQ(capacity, 0u);
    }
}

TEST(List, staysWholeWhenMemoryIsOut) {
    tests::CountingAllocator allocator;
    tests::Context context;
    const int numbers[] = {1, 2, 3};
    ASN1TSeqOfList list;
    rtDListAppend(context, &list, elements);
    allocator.failAfter(0);
    EXPECT_EQ(rtDListAppend(context, &list, elements), nullptr);
    EXPECT_EQ(rtDListInsert(context, &list, 0, elements), nullptr);
    EXPECT_EQ(rtDListInsertBefore(context, &list, list.head, elements), nullptr);
    EXPECT_EQ(rtDListInsertAfter(context, &list, list.head, elements), nullptr);
    void* array = nullptr;
    unsigned int capacity = 0;
    EXPECT_EQ(rtDListToArray(context, &list, &array, &capacity, sizeof(int)), 0u);
    EXPECT_EQ(array, nullptr);
    expectSame(list, {elements});
    for (long calls = 0; calls <= 6; ++calls) {
        ASN1TSeqOfList pointers;
        ASN1TSeqOfList copies;
        allocator.failAfter(calls);
        const int status = rtDListAppendArrayCopy(context, &copies, numbers, 12, sizeof(int));
        EXPECT_EQ(status, calls < 6 ? static_cast<int>(ASN1S_NO_MEMORY) : 0);
        EXPECT_EQ(copies.count, calls / 2);
        allocator.failAfter(calls);
        EXPECT_EQ(rtDListAppendArray(context, &pointers, numbers, 3, sizeof(int)),
                  calls < 3 ? static_cast<int>(ASN1S_NO_MEMORY) : 0);
        EXPECT_EQ(pointers.count, std::min(calls, 3L));
        const long live = allocator.live();
        const long blocks = 2L * copies.count + pointers.count;
        rtDListFreeAll(context, &copies);
        rtDListFreeNodes(context, &pointers);
        EXPECT_EQ(allocator.live(), live - blocks);
    }
}

} // namespace
