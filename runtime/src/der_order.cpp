#include <brevantis/asn1/runtime/der_order.h>

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstring>
#include <utility>

#include <brevantis/asn1/runtime/heap.h>

namespace {

Asn1BufLocDescr* descriptorOf(const Asn1RTSListNode* node) noexcept {
    return static_cast<Asn1BufLocDescr*>(node->data);
}

/// An encoded member.
struct Member {
    const unsigned char* octets;
    std::size_t count;
};

/// The member behind a node, whose offset counts from the unused last octet of the buffer.
Member memberOf(const ASN1Buffer& buffer, const Asn1RTSListNode* node) noexcept {
    const Asn1BufLocDescr& descriptor = *descriptorOf(node);
    return {buffer.data + (buffer.size - 1) - descriptor.offset,
            static_cast<std::size_t>(descriptor.numocts)};
}

/// Whether the encoding of @p left is the greater octet string. A prefix is the lesser one, which
/// is what padding with zero octets (X.690, 11.6) comes to for whole elements.
bool isGreater(const Member& left, const Member& right) noexcept {
    const int order = std::memcmp(left.octets, right.octets, std::min(left.count, right.count));
    return order != 0 ? order > 0 : left.count > right.count;
}

bool isDescending(const ASN1Buffer& buffer, const Asn1RTSListNode* head) noexcept {
    for (; head->next != nullptr; head = head->next) {
        if (isGreater(memberOf(buffer, head->next), memberOf(buffer, head))) {
            return false;
        }
    }
    return true;
}

/// Merges neighbouring runs of @p width members, each of which descends, into runs of twice as
/// many.
void mergeRuns(const Member* from, Member* to, std::size_t count, std::size_t width) noexcept {
    for (std::size_t start = 0; start < count; start += 2 * width) {
        const std::size_t middle = std::min(start + width, count);
        const std::size_t end = std::min(middle + width, count);
        std::size_t left = start;
        std::size_t right = middle;
        for (std::size_t place = start; place < end; ++place) {
            const bool takesRight =
                left == middle || (right != end && isGreater(from[right], from[left]));
            to[place] = from[takesRight ? right++ : left++];
        }
    }
}

/// Sorts members from the greatest to the least, the order in which a buffer that fills backwards
/// takes them; equal ones stay as they are. Merging cannot be driven into quadratic time.
/// @param room for as many members
/// @return the array of the two that holds them in order
const Member* sortDescending(Member* members, Member* room, std::size_t count) noexcept {
    for (std::size_t width = 1; width < count; width *= 2) {
        mergeRuns(members, room, count, width);
        std::swap(members, room);
    }
    return members;
}

/// Frees nodes and descriptors and leaves the list empty, so that nothing dangles.
void freeMembers(ASN1CTXT* ctxt, Asn1RTSList* list) noexcept {
    for (Asn1RTSListNode* head = list->head; head != nullptr;) {
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
    ASN1Buffer& buffer = ctxt->buffer;
    std::size_t count = 0;
    std::size_t total = 0;
    for (const Asn1RTSListNode* node = list->head; node != nullptr; node = node->next) {
        ++count;
        total += static_cast<std::size_t>(descriptorOf(node)->numocts);
    }
    if (!isDescending(buffer, list->head)) {
        // Arrays in one piece are sorted many times as fast as nodes that lie about.
        const std::size_t size = 2 * count * sizeof(Member) + total;
        void* scratch =
            size <= INT_MAX ? rtMemHeapAlloc(&ctxt->memHeap, static_cast<int>(size)) : nullptr;
        if (scratch == nullptr) {
            return ASN1S_NO_MEMORY;
        }
        auto* const members = static_cast<Member*>(scratch);
        Member* next = members;
        for (const Asn1RTSListNode* node = list->head; node != nullptr; node = node->next) {
            *next++ = memberOf(buffer, node);
        }
        const Member* sorted = sortDescending(members, next, count);
        auto* const octets = static_cast<unsigned char*>(static_cast<void*>(members + 2 * count));
        unsigned char* end = octets + total;
        for (; end != octets; ++sorted) {
            end -= sorted->count;
            std::memcpy(end, sorted->octets, sorted->count);
        }
        std::memcpy(buffer.data + buffer.byteIndex, octets, total);
        rtMemHeapFreePtr(&ctxt->memHeap, scratch);
    }
    freeMembers(ctxt, list);
    return static_cast<int>(total);
}
