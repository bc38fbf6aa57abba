#include <brevantis/asn1/runtime/list.h>

#include <cstdint>
#include <cstring>

#include "heap_block.h"

namespace {

/// Puts @p node between its neighbours, which are adjacent; null stands for the end of the list.
void link(_Asn1RTDList* list, _Asn1RTDListNode* node, _Asn1RTDListNode* before,
          _Asn1RTDListNode* behind) noexcept {
    node->prev = before;
    node->next = behind;
    (before != nullptr ? before->next : list->head) = node;
    (behind != nullptr ? behind->prev : list->tail) = node;
    ++list->count;
}

_Asn1RTDListNode* insertBetween(ASN1CTXT* ctxt, _Asn1RTDList* list, void* data,
                                _Asn1RTDListNode* before, _Asn1RTDListNode* behind) noexcept {
    auto* node = static_cast<_Asn1RTDListNode*>(
        runtime_detail::allocateBlock(ctxt, sizeof(_Asn1RTDListNode)));
    if (node != nullptr) {
        node->data = data;
        link(list, node, before, behind);
    }
    return node;
}

struct Place {
    _Asn1RTDListNode* node; ///< null when nothing was found
    unsigned int index;
};

Place findByData(const _Asn1RTDList* list, const void* data) noexcept {
    _Asn1RTDListNode* node = list->head;
    for (unsigned int i = 0; i < list->count && node != nullptr; ++i) {
        if (node->data == data) {
            return {node, i};
        }
        node = node->next;
    }
    return {nullptr, 0};
}

/// Frees all nodes; @p freeElement is called for each before its node goes.
template <class FreeElement>
void freeNodes(ASN1CTXT* ctxt, _Asn1RTDList* list, FreeElement freeElement) noexcept {
    for (_Asn1RTDListNode* node = list->head; node != nullptr;) {
        _Asn1RTDListNode* const next = node->next;
        freeElement(node);
        rtMemHeapFreePtr(&ctxt->memHeap, node);
        node = next;
    }
    rtDListInit(list);
}

} // namespace

void rtDListInit(_Asn1RTDList* list) noexcept {
    if (list != nullptr) {
        *list = {0, nullptr, nullptr};
    }
}

_Asn1RTDListNode* rtDListAppend(ASN1CTXT* ctxt, _Asn1RTDList* list, void* data) noexcept {
    return insertBetween(ctxt, list, data, list->tail, nullptr);
}

_Asn1RTDListNode* rtDListAppendNode(ASN1CTXT* /*ctxt*/, _Asn1RTDList* list,
                                    void* element) noexcept {
    // A caller that adds the node's size to a null block arrives here with a small address.
    if (reinterpret_cast<std::uintptr_t>(element) <= sizeof(_Asn1RTDListNode)) {
        return nullptr;
    }
    _Asn1RTDListNode* node = static_cast<_Asn1RTDListNode*>(element) - 1;
    node->data = element;
    link(list, node, list->tail, nullptr);
    return node;
}

_Asn1RTDListNode* rtDListInsert(ASN1CTXT* ctxt, _Asn1RTDList* list, int index,
                                void* data) noexcept {
    const unsigned int place = index < 0 ? 1 : static_cast<unsigned int>(index);
    if (place > list->count) {
        return nullptr;
    }
    if (place == 0) {
        return insertBetween(ctxt, list, data, nullptr, list->head);
    }
    if (place == list->count) {
        return insertBetween(ctxt, list, data, list->tail, nullptr);
    }
    _Asn1RTDListNode* before = list->head;
    for (unsigned int i = 1; i < place; ++i) {
        before = before->next;
    }
    return insertBetween(ctxt, list, data, before, before->next);
}

_Asn1RTDListNode* rtDListInsertBefore(ASN1CTXT* ctxt, _Asn1RTDList* list, _Asn1RTDListNode* node,
                                      void* data) noexcept {
    return insertBetween(ctxt, list, data, node != nullptr ? node->prev : list->tail, node);
}

_Asn1RTDListNode* rtDListInsertAfter(ASN1CTXT* ctxt, _Asn1RTDList* list, _Asn1RTDListNode* node,
                                     void* data) noexcept {
    return insertBetween(ctxt, list, data, node, node != nullptr ? node->next : list->head);
}

_Asn1RTDListNode* rtDListFindByIndex(const _Asn1RTDList* list, int index) noexcept {
    if (index <= 0) {
        return list->head;
    }
    if (static_cast<unsigned int>(index) >= list->count) {
        return nullptr;
    }
    _Asn1RTDListNode* node = list->head;
    for (int i = 0; i < index; ++i) {
        node = node->next;
    }
    return node;
}

_Asn1RTDListNode* rtDListFindByData(const _Asn1RTDList* list, const void* data) noexcept {
    return findByData(list, data).node;
}

int rtDListFindIndexByData(const _Asn1RTDList* list, const void* data) noexcept {
    const Place place = findByData(list, data);
    return place.node != nullptr ? static_cast<int>(place.index) : -1;
}

void rtDListRemove(_Asn1RTDList* list, _Asn1RTDListNode* node) noexcept {
    if (node == nullptr) {
        return;
    }
    (node->prev != nullptr ? node->prev->next : list->head) = node->next;
    (node->next != nullptr ? node->next->prev : list->tail) = node->prev;
    --list->count;
}

void rtDListFreeNodes(ASN1CTXT* ctxt, _Asn1RTDList* list) noexcept {
    freeNodes(ctxt, list, [](_Asn1RTDListNode* /*node*/) {});
}

void rtDListFreeAll(ASN1CTXT* ctxt, _Asn1RTDList* list) noexcept {
    freeNodes(ctxt, list, [ctxt](_Asn1RTDListNode* node) {
        // An element behind its node goes with the node's block.
        if (node->data != node + 1) {
            rtMemHeapFreePtr(&ctxt->memHeap, node->data);
        }
    });
}

unsigned int rtDListToArray(ASN1CTXT* ctxt, const _Asn1RTDList* list, void** array,
                            unsigned int* capacity, int elementSize) noexcept {
    if (elementSize < 0) {
        return 0;
    }
    const auto slot = static_cast<std::size_t>(elementSize);
    if (capacity != nullptr && *capacity < list->count) {
        void* block = runtime_detail::allocateBlock(ctxt, slot * list->count);
        if (block == nullptr) {
            return 0;
        }
        *capacity = list->count;
        *array = block;
    }
    if (slot != 0) {
        auto* target = static_cast<unsigned char*>(*array);
        for (const _Asn1RTDListNode* node = list->head; node != nullptr; node = node->next) {
            if (node->data != nullptr) {
                std::memcpy(target, node->data, slot);
            } else {
                std::memset(target, 0, slot);
            }
            target += slot;
        }
    }
    return list->count;
}

int rtDListAppendArray(ASN1CTXT* ctxt, _Asn1RTDList* list, const void* array, int elementCount,
                       int elementSize) noexcept {
    if (elementCount <= 0) {
        return 0;
    }
    if (array == nullptr || elementSize < 0) {
        return ASN1S_INVALID_PARAMETER;
    }
    // The list's elements are not const, what it is given may be: who changes them knows.
    auto* slot = static_cast<unsigned char*>(const_cast<void*>(array));
    for (int i = 0; i < elementCount; ++i) {
        if (rtDListAppend(ctxt, list, slot) == nullptr) {
            return ASN1S_NO_MEMORY;
        }
        slot += elementSize;
    }
    return 0;
}

int rtDListAppendArrayCopy(ASN1CTXT* ctxt, _Asn1RTDList* list, const void* array, int octetCount,
                           int elementSize) noexcept {
    if (octetCount <= 0) {
        return 0;
    }
    // A size of 0 would never get to the end.
    if (array == nullptr || elementSize <= 0) {
        return ASN1S_INVALID_PARAMETER;
    }
    const auto* octets = static_cast<const unsigned char*>(array);
    // Kept: the count is one of octets, unlike that of rtDListAppendArray. Programs depend on it.
    for (std::int64_t offset = 0; offset < octetCount; offset += elementSize) {
        unsigned char* copy =
            runtime_detail::copyBlock(ctxt, octets + offset, static_cast<std::size_t>(elementSize));
        if (copy == nullptr) {
            return ASN1S_NO_MEMORY;
        }
        if (rtDListAppend(ctxt, list, copy) == nullptr) {
            rtMemHeapFreePtr(&ctxt->memHeap, copy);
            return ASN1S_NO_MEMORY;
        }
    }
    return 0;
}
