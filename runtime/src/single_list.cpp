#include <brevantis/asn1/runtime/single_list.h>

#include <cstdlib>

#include <brevantis/asn1/runtime/context.h>

void rtSListInitEx(ASN1CTXT* ctxt, Asn1RTSList* list) noexcept {
    if (list != nullptr) {
        *list = Asn1RTSList{0, nullptr, nullptr, ctxt};
    }
}

Asn1RTSListNode* rtSListAppend(Asn1RTSList* list, void* data) noexcept {
    if (list == nullptr) {
        return nullptr;
    }
    constexpr int nodeSize{sizeof(Asn1RTSListNode)};
    void* memory = list->pctxt != nullptr ? rtMemHeapAlloc(&list->pctxt->memHeap, nodeSize)
                                          : std::malloc(nodeSize);
    if (memory == nullptr) {
        return nullptr;
    }
    auto* node = static_cast<Asn1RTSListNode*>(memory);
    *node = Asn1RTSListNode{data, nullptr};
    if (list->tail != nullptr) {
        list->tail->next = node;
    } else {
        list->head = node;
    }
    list->tail = node;
    ++list->count;
    return node;
}

void rtSListFree(Asn1RTSList* list) noexcept {
    if (list == nullptr) {
        return;
    }
    for (Asn1RTSListNode* node = list->head; node != nullptr;) {
        Asn1RTSListNode* next = node->next;
        if (list->pctxt != nullptr) {
            rtMemHeapFreePtr(&list->pctxt->memHeap, node);
        } else {
            std::free(node);
        }
        node = next;
    }
    *list = Asn1RTSList{0, nullptr, nullptr, nullptr};
}
