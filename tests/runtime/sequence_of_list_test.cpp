#include <memory>
#include <vector>

#include <gtest/gtest.h>

#include <brevantis/asn1/runtime/sequence_of_list.h>

#include "support/counting_allocator.h"
#include "support/leak_check.h"

namespace {

int elements[8];
void* const A = &elements[0];
void* const B = &elements[1];
void* const C = &elements[2];
void* const X = &elements[7];

/// As a generated class derives: the protected context can be given up.
class List : public ASN1CSeqOfList {
public:
    using ASN1CSeqOfList::ASN1CSeqOfList;
    void dropContext() { context.reset(); }
};

class SequenceOfList : public testing::Test {
protected:
    SequenceOfList() : list(record) {
        for (void* data : {A, B, C}) {
            list.append(data);
        }
    }
    std::vector<void*> contents() {
        std::vector<void*> all;
        for (const _Asn1RTDListNode* node = record.head; node != nullptr; node = node->next) {
            all.push_back(node->data);
        }
        return all;
    }

    ASN1TSeqOfList record;
    List list;
};

using Contents = std::vector<void*>;

TEST_F(SequenceOfList, countsItsChanges) {
    struct Row {
        const char* name;
        void (*change)(ASN1CSeqOfList& list);
        unsigned int raised;
        Contents contents;
    };
    const Row rows[] = {
        {"append", [](ASN1CSeqOfList& l) { l.append(X); }, 1, {A, B, C, X}},
        {"insert", [](ASN1CSeqOfList& l) { l.insert(1, X); }, 1, {A, X, B, C}},
        {"refused insert", [](ASN1CSeqOfList& l) { l.insert(4, X); }, 1, {A, B, C}},
        {"before", [](ASN1CSeqOfList& l) { l.insertBefore(X, l.pList->tail); }, 1, {A, B, X, C}},
        {"after", [](ASN1CSeqOfList& l) { l.insertAfter(X, nullptr); }, 1, {X, A, B, C}},
        {"remove at", [](ASN1CSeqOfList& l) { l.remove(2); }, 1, {A, B}},
        {"remove past", [](ASN1CSeqOfList& l) { l.remove(3); }, 0, {A, B, C}},
        {"remove data", [](ASN1CSeqOfList& l) { l.remove(B); }, 1, {A, C}},
        {"remove no data", [](ASN1CSeqOfList& l) { l.remove(X); }, 0, {A, B, C}},
        {"remove node", [](ASN1CSeqOfList& l) { l.remove(l.pList->head); }, 1, {B, C}},
        {"set", [](ASN1CSeqOfList& l) { EXPECT_EQ(l.set(1, X), B); }, 1, {A, X, C}},
        {"set past", [](ASN1CSeqOfList& l) { EXPECT_EQ(l.set(3, X), nullptr); }, 0, {A, B, C}},
        {"array",
         [](ASN1CSeqOfList& l) { l.appendArray(elements + 3, 2, sizeof(int)); },
         1,
         {A, B, C, elements + 3, elements + 4}},
        {"empty copy", [](ASN1CSeqOfList& l) { l.appendArrayCopy(A, 0, 4); }, 1, {A, B, C}},
        {"clear", [](ASN1CSeqOfList& l) { l.clear(); }, 1, {}},
    };
    for (const Row& row : rows) {
        list.clear();
        for (void* data : {A, B, C}) {
            list.append(data);
        }
        const unsigned int before = list.modCount;
        ASN1CSeqOfListIterator* iterator = list.iterator();
        row.change(list);
        EXPECT_EQ(list.modCount - before, row.raised) << row.name;
        EXPECT_EQ(contents(), row.contents) << row.name;
        // An iterator minds exactly the changes that count, in each of its operations.
        const int expected = row.raised != 0 ? ASN1S_CONCURRENT_MODIFICATION : 0;
        EXPECT_EQ(iterator->next() == nullptr, row.raised != 0) << row.name;
        EXPECT_EQ(iterator->prev() == nullptr, row.raised != 0) << row.name;
        EXPECT_EQ(iterator->set(A), expected) << row.name;
        EXPECT_EQ(iterator->remove(), expected) << row.name;
        EXPECT_EQ(iterator->insert(A), expected) << row.name;
        EXPECT_EQ(iterator->stat, expected) << row.name;
    }
}

TEST_F(SequenceOfList, reads) {
    EXPECT_EQ(list.size(), 3);
    EXPECT_FALSE(list.isEmpty());
    EXPECT_EQ(list.get(2), C);
    EXPECT_EQ(list.get(3), nullptr);
    EXPECT_EQ(list.getFirst(), A);
    EXPECT_EQ(list.getLast(), C);
    EXPECT_EQ(list.indexOf(C), 2);
    EXPECT_EQ(list.indexOf(X), -1);
    elements[1] = 42;
    const int* copy = static_cast<int*>(list.toArray(sizeof(int)));
    EXPECT_EQ(copy[1], 42);
    int array[3] = {};
    EXPECT_EQ(list.toArray(array, sizeof(int), 3), array);
    EXPECT_EQ(array[1], 42);
    EXPECT_NE(list.toArray(array, sizeof(int), 2), array);
    EXPECT_NE(list.toArray(array, sizeof(int), -1), array);
    list.clear();
    EXPECT_TRUE(list.isEmpty());
    EXPECT_EQ(list.getFirst(), nullptr);
    EXPECT_EQ(list.getLast(), nullptr);
    EXPECT_EQ(list.toArray(sizeof(int)), nullptr);
}

TEST_F(SequenceOfList, iteratorWalksAndChanges) {
    ASN1CSeqOfListIterator* it = list.iterator();
    EXPECT_EQ(it->set(X), ASN1S_ILLEGAL_STATE);
    EXPECT_EQ(it->remove(), ASN1S_ILLEGAL_STATE);
    EXPECT_EQ(it->prev(), A) << "the first step gives the element ahead";
    EXPECT_EQ(it->prev(), nullptr) << "in front of the first element";
    EXPECT_EQ(it->stat, ASN1S_MISSING_ELEMENT);
    EXPECT_EQ(it->next(), A);
    EXPECT_EQ(it->next(), B);
    EXPECT_EQ(it->prev(), B);
    EXPECT_EQ(it->set(X), 0);
    EXPECT_EQ(contents(), (Contents{A, X, C}));
    EXPECT_EQ(it->remove(), 0) << "also moves the iterator off the node";
    EXPECT_EQ(it->remove(), ASN1S_ILLEGAL_STATE);
    EXPECT_EQ(it->insert(B), 0);
    EXPECT_EQ(it->set(X), ASN1S_ILLEGAL_STATE);
    EXPECT_EQ(contents(), (Contents{A, B, C}));
    EXPECT_EQ(it->next(), C);
    EXPECT_EQ(it->next(), nullptr);
    EXPECT_EQ(it->prev(), nullptr) << "nothing is ahead any more";
    EXPECT_EQ(it->remove(), 0) << "the last element given is still the current one";
    EXPECT_EQ(it->insert(X), 0) << "at the end";
    EXPECT_EQ(contents(), (Contents{A, B, X}));

    ASN1CSeqOfListIterator* back = list.iteratorFromLast();
    EXPECT_EQ(back->prev(), X);
    EXPECT_EQ(back->prev(), B);
    EXPECT_EQ(back->prev(), A);
    EXPECT_EQ(list.iteratorFrom(B)->next(), B);
    ASN1CSeqOfListIterator* none = list.iteratorFrom(C);
    EXPECT_EQ(none->next(), nullptr);
    EXPECT_EQ(none->stat, ASN1S_MISSING_ELEMENT);
}

TEST(SequenceOfListMemory, constructorsShareOrOwn) {
    const tests::LeakCheck allocator;
    ASN1BERDecodeBuffer buffer;
    const ASN1ContextRef context = buffer.getContext();
    const unsigned int references = context->getRefCount();
    const long live = allocator.live();
    _Asn1RTDList plain = {7, nullptr, nullptr};
    ASN1TSeqOfList sequence;
    ASN1TPDUSeqOfList message;
    {
        std::vector<std::unique_ptr<List>> lists;
        lists.push_back(std::make_unique<List>(buffer, sequence));
        lists.push_back(std::make_unique<List>(buffer, message));
        lists.push_back(std::make_unique<List>(*context, sequence));
        lists.push_back(std::make_unique<List>(*context, message));
        lists.push_back(std::make_unique<List>(*context, plain, static_cast<unsigned char>(0)));
        EXPECT_EQ(plain.count, 7u);
        lists.push_back(std::make_unique<List>(buffer, plain, static_cast<unsigned char>(1)));
        EXPECT_EQ(plain.count, 0u);
        EXPECT_EQ(allocator.live(), live) << "a caller's list needs no memory";
        for (const auto& list : lists) {
            EXPECT_EQ(list->wasAssigned, 1);
            EXPECT_EQ(list->getCtxtPtr(), context.get());
        }
        EXPECT_EQ(lists[0]->getMsgBuf(), &buffer);
        EXPECT_EQ(context->getRefCount(), references + 6);
        lists[0]->append(A);
    }
    EXPECT_EQ(context->getRefCount(), references);
    EXPECT_EQ(sequence.count, 1u) << "a caller's list outlives the object";
    const long withNode = allocator.live();
    {
        List own(buffer);
        List alsoOwn(*context);
        EXPECT_EQ(own.wasAssigned, 0);
        own.append(A);
        alsoOwn.append(B);
        EXPECT_EQ(allocator.live(), withNode + 4);
    }
    EXPECT_EQ(allocator.live(), withNode) << "an own list goes with its nodes";
    List own(buffer);
    own.append(rtMemHeapAlloc(&context->memHeap, 1));
    own.freeAll();
    EXPECT_EQ(allocator.live(), withNode + 1);
    EXPECT_NE(List(sequence).getCtxtPtr(), context.get());
    EXPECT_NE(List(message).getCtxtPtr(), context.get());
}

TEST(SequenceOfListMemory, doesNothingWithoutAContext) {
    ASN1TSeqOfList record;
    List list(record);
    list.append(A);
    ASN1CSeqOfListIterator* const iterator = nullptr;
    const ASN1ContextRef keepsNodes = list.getContext();
    list.dropContext();
    list.append(B);
    list.appendArray(elements, 1, 4);
    list.appendArrayCopy(elements, 4, 4);
    list.insert(0, B);
    list.insertBefore(B, nullptr);
    list.insertAfter(B, nullptr);
    list.clear();
    list.freeAll();
    EXPECT_EQ(list.toArray(4), nullptr);
    EXPECT_EQ(list.iterator(), iterator);
    EXPECT_EQ(list.iteratorFromLast(), iterator);
    EXPECT_EQ(list.iteratorFrom(A), iterator);
    EXPECT_EQ(list.size(), 1);
    EXPECT_EQ(list.modCount, 1u);
    list.remove(0);
    EXPECT_EQ(list.size(), 0);
    EXPECT_EQ(list.modCount, 2u);
}

TEST(SequenceOfListMemory, survivesAnExhaustedHeap) {
    tests::CountingAllocator allocator;
    ASN1BERDecodeBuffer buffer;
    List list(buffer);
    list.append(A);
    ASN1CSeqOfListIterator* iterator = list.iterator();
    allocator.failAfter(0);
    EXPECT_EQ(iterator->insert(B), ASN1S_NO_MEMORY);
    EXPECT_EQ(iterator->next(), A) << "still in step with the list";
    EXPECT_EQ(list.iterator(), nullptr);
    EXPECT_EQ(list.toArray(sizeof(int)), nullptr);
    const unsigned int before = list.modCount;
    list.append(B);
    EXPECT_EQ(list.modCount, before + 1);
    EXPECT_EQ(list.size(), 1);

    List unfounded(buffer);
    unfounded.append(A);
    EXPECT_TRUE(unfounded.isEmpty());
    allocator.neverFail();
    unfounded.append(A);
    EXPECT_EQ(unfounded.getFirst(), A);
}

} // namespace
