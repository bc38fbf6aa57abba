#include <brevantis/asn1/runtime/der_order.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <utility>

#include <brevantis/asn1/runtime/heap.h>

namespace {

Asn1BufLocDescr* descriptorOf(const Asn1RTSListNode* node) noexcept {
    return static_cast<Asn1BufLocDescr*>(node->data);
}

/// The encoded members behind the nodes, with their order.
class Members {
public:
    explicit Members(const ASN1Buffer& buffer) noexcept
        : anchor_(buffer.data + (buffer.size - 1)) {}

    const unsigned char* octetsOf(const Asn1RTSListNode* node) const noexcept {
        return anchor_ - descriptorOf(node)->offset;
    }

    /// Whether the encoding of @p left is the greater octet string. A prefix is the lesser one,
    /// which is what padding with zero octets (X.690 11.6) comes to for whole elements.
    bool isGreater(const Asn1RTSListNode* left, const Asn1RTSListNode* right) const noexcept {
        const int leftCount = descriptorOf(left)->numocts;
        const int rightCount = descriptorOf(right)->numocts;
        const int order = std::memcmp(octetsOf(left), octetsOf(right),
                                      static_cast<std::size_t>(std::min(leftCount, rightCount)));
        return order != 0 ? order > 0 : leftCount > rightCount;
    }

private:
    const unsigned char* anchor_; ///< the unused last octet, from which offsets count
};

/// Merges two runs that descend from their heads; of equal members those of @p earlier come first.
Asn1RTSListNode* mergeRuns(const Members& members, Asn1RTSListNode* earlier,
                           Asn1RTSListNode* later) noexcept {
    Asn1RTSListNode* merged = nullptr;
    Asn1RTSListNode** end = &merged;
    while (earlier != nullptr && later != nullptr) {
        Asn1RTSListNode*& source = members.isGreater(later, earlier) ? later : earlier;
        *end = source;
        end = &source->next;
        source = source->next;
    }
    *end = earlier != nullptr ? earlier : later;
    return merged;
}

/// Sorts nodes from the greatest member to the least, the order in which a buffer that fills
/// backwards takes them. A merge of runs of doubling length needs no memory and cannot be driven
/// into quadratic time.
Asn1RTSListNode* sortDescending(const Members& members, Asn1RTSListNode* head) noexcept {
    std::array<Asn1RTSListNode*, 32> runs{}; // runs[i] holds 2^i nodes, or none
    while (head != nullptr) {
        Asn1RTSListNode* carry = std::exchange(head, head->next);
        carry->next = nullptr;
        std::size_t level = 0;
        while (runs[level] != nullptr) {
            carry = mergeRuns(members, std::exchange(runs[level], nullptr), carry);
            ++level;
        }
        runs[level] = carry;
    }
    Asn1RTSListNode* sorted = nullptr;
    for (Asn1RTSListNode* run : runs) {
        sorted = mergeRuns(members, run, sorted); // longer runs hold earlier nodes
    }
    return sorted;
}

bool isDescending(const Members& members, const Asn1RTSListNode* head) noexcept {
    for (; head->next != nullptr; head = head->next) {
        if (members.isGreater(head->next, head)) {
            return false;
        }
    }
    return true;
}

/// Frees nodes and descriptors and leaves the list empty, so that nothing dangles.
void freeMembers(ASN1CTXT* ctxt, Asn1RTSList* list, Asn1RTSListNode* head) noexcept {
    while (head != nullptr) {
        Asn1RTSListNode* node = std::exchange(head, head->next);
        rtMemHeapFreePtr(&ctxt->memHeap, node->data);
        rtMemHeapFreePtr(&ctxt->memHeap, node);
    }
    list->count = 0;
    list->head = nullptr;
    list->tail = nullptr;
}

} // namespace

void xe_free(ASN1CTXT* ctxt) noexcept {
    ASN1Buffer& buffer = ctxt->buffer;
    if (buffer.dynamic != 0 && buffer.data != nullptr) {
        rtMemHeapFreePtr(&ctxt->memHeap, buffer.data);
        buffer.data = nullptr;
        buffer.dynamic = 0;
        buffer.size = 0; // no room either, or a later write would use the null pointer
        buffer.byteIndex = 0;
    }
}

void xe_getBufLocDescr(ASN1CTXT* ctxt, unsigned int length, Asn1BufLocDescr* descr) noexcept {
    descr->numocts = static_cast<int>(length);
    descr->offset = static_cast<int>(ctxt->buffer.size - 1 - ctxt->buffer.byteIndex);
}

int xe_derCanonicalSort(ASN1CTXT* ctxt, Asn1RTSList* list) noexcept {
    if (list->head == nullptr) {
        return 0;
    }
    const Members members(ctxt->buffer);
    std::size_t total = 0;
    for (const Asn1RTSListNode* node = list->head; node != nullptr; node = node->next) {
        total += static_cast<std::size_t>(descriptorOf(node)->numocts);
    }
    Asn1RTSListNode* head = list->head;
    if (!isDescending(members, head)) {
        auto* sorted =
            static_cast<unsigned char*>(rtMemHeapAlloc(&ctxt->memHeap, static_cast<int>(total)));
        if (sorted == nullptr) {
            return ASN1S_NO_MEMORY;
        }
        head = sortDescending(members, head);
        unsigned char* end = sorted + total;
        for (const Asn1RTSListNode* node = head; node != nullptr; node = node->next) {
            const auto count = static_cast<std::size_t>(descriptorOf(node)->numocts);
            end -= count;
            std::memcpy(end, members.octetsOf(node), count);
        }
        std::memcpy(ctxt->buffer.data + ctxt->buffer.byteIndex, sorted, total);
        rtMemHeapFreePtr(&ctxt->memHeap, sorted);
    }
    freeMembers(ctxt, list, head);
    return static_cast<int>(total);
}
