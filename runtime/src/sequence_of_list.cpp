#include <brevantis/asn1/runtime/sequence_of_list.h>

#include <new>

#include "heap_block.h"

bool ASN1CSeqOfListIterator::isCurrent() noexcept {
    if (pSeqList->modCount == expectedModCount) {
        return true;
    }
    stat = ASN1S_CONCURRENT_MODIFICATION;
    return false;
}

void* ASN1CSeqOfListIterator::next() noexcept {
    if (!isCurrent()) {
        return nullptr;
    }
    if (nextNode == nullptr) {
        stat = ASN1S_MISSING_ELEMENT;
        return nullptr;
    }
    lastNode = nextNode;
    nextNode = nextNode->next;
    return lastNode->data;
}

void* ASN1CSeqOfListIterator::prev() noexcept {
    if (!isCurrent()) {
        return nullptr;
    }
    _Asn1RTDListNode* node = nextNode;
    if (node != nullptr && lastNode != nullptr) {
        node = node->prev;
    }
    if (node == nullptr) {
        stat = ASN1S_MISSING_ELEMENT;
        return nullptr;
    }
    nextNode = node;
    lastNode = node;
    return node->data;
}

int ASN1CSeqOfListIterator::set(void* data) noexcept {
    if (!isCurrent()) {
        return stat;
    }
    if (lastNode == nullptr) {
        return stat = ASN1S_ILLEGAL_STATE;
    }
    lastNode->data = data;
    return 0;
}

int ASN1CSeqOfListIterator::insert(void* data) noexcept {
    if (!isCurrent()) {
        return stat;
    }
    const int before = pSeqList->size();
    pSeqList->insertBefore(data, nextNode);
    lastNode = nullptr;
    expectedModCount = pSeqList->modCount;
    return pSeqList->size() != before ? 0 : stat = ASN1S_NO_MEMORY;
}

int ASN1CSeqOfListIterator::remove() noexcept {
    if (!isCurrent()) {
        return stat;
    }
    if (lastNode == nullptr) {
        return stat = ASN1S_ILLEGAL_STATE;
    }
    if (nextNode == lastNode) {
        nextNode = lastNode->next;
    }
    pSeqList->remove(lastNode);
    lastNode = nullptr;
    expectedModCount = pSeqList->modCount;
    return 0;
}

ASN1CSeqOfList::ASN1CSeqOfList(_Asn1RTDList& list) : pList(&list), wasAssigned(1) {}

ASN1CSeqOfList::ASN1CSeqOfList(ASN1TSeqOfList& list)
    : ASN1CSeqOfList(static_cast<_Asn1RTDList&>(list)) {}

ASN1CSeqOfList::ASN1CSeqOfList(ASN1TPDUSeqOfList& list)
    : ASN1CSeqOfList(static_cast<_Asn1RTDList&>(list)) {}

ASN1CSeqOfList::ASN1CSeqOfList(ASN1MessageBufferIF& buffer, _Asn1RTDList& list,
                               unsigned char initialise)
    : ASN1CType(buffer), pList(&list), wasAssigned(1) {
    if (initialise != 0) {
        rtDListInit(pList);
    }
}

ASN1CSeqOfList::ASN1CSeqOfList(ASN1MessageBufferIF& buffer, ASN1TSeqOfList& list)
    : ASN1CSeqOfList(buffer, list, 0) {}

ASN1CSeqOfList::ASN1CSeqOfList(ASN1MessageBufferIF& buffer, ASN1TPDUSeqOfList& list)
    : ASN1CSeqOfList(buffer, list, 0) {}

ASN1CSeqOfList::ASN1CSeqOfList(ASN1Context& sharedContext, _Asn1RTDList& list,
                               unsigned char initialise)
    : ASN1CType(sharedContext), pList(&list), wasAssigned(1) {
    if (initialise != 0) {
        rtDListInit(pList);
    }
}

ASN1CSeqOfList::ASN1CSeqOfList(ASN1Context& sharedContext, ASN1TSeqOfList& list)
    : ASN1CSeqOfList(sharedContext, list, 0) {}

ASN1CSeqOfList::ASN1CSeqOfList(ASN1Context& sharedContext, ASN1TPDUSeqOfList& list)
    : ASN1CSeqOfList(sharedContext, list, 0) {}

ASN1CSeqOfList::ASN1CSeqOfList(ASN1MessageBufferIF& buffer) : ASN1CType(buffer) {
    allocateList();
}

ASN1CSeqOfList::ASN1CSeqOfList(ASN1Context& sharedContext) : ASN1CType(sharedContext) {
    allocateList();
}

void ASN1CSeqOfList::allocateList() {
    pList = static_cast<_Asn1RTDList*>(
        runtime_detail::allocateBlock(context.get(), sizeof(_Asn1RTDList)));
    wasAssigned = pList != nullptr ? 0 : 1;
    if (pList == nullptr) {
        // Nothing here throws, and every operation counts on a list.
        pList = &fallbackList;
    }
    rtDListInit(pList);
}

ASN1CSeqOfList::~ASN1CSeqOfList() {
    if (wasAssigned == 0 && context) {
        rtDListFreeNodes(context.get(), pList);
        rtMemHeapFreePtr(&context->memHeap, pList);
    }
}

void ASN1CSeqOfList::append(void* data) {
    if (context) {
        rtDListAppend(context.get(), pList, data);
        ++modCount;
    }
}

void ASN1CSeqOfList::appendArray(const void* array, int elementCount, int elementSize) {
    if (context) {
        rtDListAppendArray(context.get(), pList, array, elementCount, elementSize);
        ++modCount;
    }
}

void ASN1CSeqOfList::appendArrayCopy(const void* array, int octetCount, int elementSize) {
    if (context) {
        rtDListAppendArrayCopy(context.get(), pList, array, octetCount, elementSize);
        ++modCount;
    }
}

void ASN1CSeqOfList::insert(int index, void* data) {
    if (context) {
        rtDListInsert(context.get(), pList, index, data);
        ++modCount;
    }
}

void ASN1CSeqOfList::insertBefore(void* data, _Asn1RTDListNode* node) {
    if (context) {
        rtDListInsertBefore(context.get(), pList, node, data);
        ++modCount;
    }
}

void ASN1CSeqOfList::insertAfter(void* data, _Asn1RTDListNode* node) {
    if (context) {
        rtDListInsertAfter(context.get(), pList, node, data);
        ++modCount;
    }
}

void ASN1CSeqOfList::remove(int index) {
    remove(rtDListFindByIndex(pList, index));
}

void ASN1CSeqOfList::remove(void* data) {
    remove(rtDListFindByData(pList, data));
}

void ASN1CSeqOfList::remove(_Asn1RTDListNode* node) {
    if (node != nullptr) {
        rtDListRemove(pList, node);
        ++modCount;
    }
}

void ASN1CSeqOfList::clear() {
    if (context) {
        rtDListFreeNodes(context.get(), pList);
        ++modCount;
    }
}

void ASN1CSeqOfList::freeAll() {
    if (context) {
        rtDListFreeAll(context.get(), pList);
        ++modCount;
    }
}

void* ASN1CSeqOfList::set(int index, void* data) {
    _Asn1RTDListNode* const node = rtDListFindByIndex(pList, index);
    if (node == nullptr) {
        return nullptr;
    }
    void* const before = node->data;
    node->data = data;
    ++modCount;
    return before;
}

void* ASN1CSeqOfList::get(int index) const {
    const _Asn1RTDListNode* const node = rtDListFindByIndex(pList, index);
    return node != nullptr ? node->data : nullptr;
}

void* ASN1CSeqOfList::getFirst() const {
    return pList->head != nullptr ? pList->head->data : nullptr;
}

void* ASN1CSeqOfList::getLast() const {
    return pList->tail != nullptr ? pList->tail->data : nullptr;
}

int ASN1CSeqOfList::indexOf(void* data) const {
    return rtDListFindIndexByData(pList, data);
}

int ASN1CSeqOfList::size() const {
    return static_cast<int>(pList->count);
}

bool ASN1CSeqOfList::isEmpty() const {
    return pList->count == 0;
}

void* ASN1CSeqOfList::toArray(int elementSize) {
    return toArray(nullptr, elementSize, 0);
}

void* ASN1CSeqOfList::toArray(void* array, int elementSize, int capacity) {
    if (!context) {
        return nullptr;
    }
    unsigned int slots = capacity > 0 ? static_cast<unsigned int>(capacity) : 0;
    const unsigned int copied = rtDListToArray(context.get(), pList, &array, &slots, elementSize);
    return copied == pList->count ? array : nullptr;
}

ASN1CSeqOfListIterator* ASN1CSeqOfList::iterator() {
    return iteratorAt(pList->head);
}

ASN1CSeqOfListIterator* ASN1CSeqOfList::iteratorFromLast() {
    return iteratorAt(pList->tail);
}

ASN1CSeqOfListIterator* ASN1CSeqOfList::iteratorFrom(void* data) {
    return iteratorAt(rtDListFindByData(pList, data));
}

ASN1CSeqOfListIterator* ASN1CSeqOfList::iteratorAt(_Asn1RTDListNode* node) {
    if (!context) {
        return nullptr;
    }
    void* const block =
        runtime_detail::allocateBlock(context.get(), sizeof(ASN1CSeqOfListIterator));
    if (block == nullptr) {
        return nullptr;
    }
    return new (block) ASN1CSeqOfListIterator{this, node, nullptr, modCount, 0};
}
