#include <brevantis/asn1/runtime/open_type.h>

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstring>

#include <brevantis/asn1/runtime/context.h>
#include <brevantis/asn1/runtime/element_walk.h>
#include <brevantis/asn1/runtime/header.h>
#include <brevantis/asn1/runtime/heap.h>
#include <brevantis/asn1/runtime/tag_length.h>

#include "octet_reader.h"

using namespace runtime_detail;

namespace {

/// Node and element in one block, as rtDListAppendNode expects them.
struct InlineNode {
    Asn1RTDListNode node;
    ASN1OpenType element;
};
static_assert(offsetof(InlineNode, element) == sizeof(Asn1RTDListNode),
              "the element stands directly behind its node");

/// A block of @p count octets filled from @p source; null when memory is out.
unsigned char* copyOctets(ASN1CTXT* ctxt, const unsigned char* source,
                          unsigned int count) noexcept {
    if (count > INT_MAX) {
        return nullptr;
    }
    auto* block =
        static_cast<unsigned char*>(rtMemHeapAlloc(&ctxt->memHeap, static_cast<int>(count)));
    if (block != nullptr && count != 0) {
        std::memcpy(block, source, count);
    }
    return block;
}

/// Moves behind the contents of an element whose header has been read.
/// @return 0, or the status that the open type ends with; ASN1S_END_OF_BUFFER stands for an element
/// of indefinite
///         length that is cut off
int passContents(ASN1CTXT* ctxt, ASN1TAG tag, int length) noexcept {
    if (length == ASN1IndefiniteLength) {
        return xd_MovePastEOC(ctxt);
    }
    if (tag == 0 && length == 0) { // X.690, 8.1.5: end-of-contents octets are no value
        return ASN1S_BAD_VALUE;
    }
    return skipContents(ctxt, length) == ASN1S_SUCCESS ? ASN1S_SUCCESS : ASN1S_BAD_VALUE;
}

/// Size of the first element in @p data, end-of-contents octets included. Only headers are looked
/// at.
/// @return the size, or the status of reading it
int measureElement(const unsigned char* data, unsigned int numocts) noexcept {
    const unsigned int end = std::min(numocts, static_cast<unsigned int>(INT_MAX));
    ASN1Header header;
    if (const int status = rtReadHeader(data, end, &header)) {
        return status;
    }
    if (header.length != ASN1IndefiniteLength) {
        return static_cast<unsigned int>(header.length) > end - header.size
                   ? int{ASN1S_INVALID_LENGTH}
                   : static_cast<int>(header.size) + header.length;
    }
    ASN1CTXT reader;
    rtInitReader(&reader, data, end);
    rtCtxtSetFlag(&reader, ASN1F_INDEF_MESSAGE);
    reader.buffer.byteIndex = header.size;
    const int status = xd_MovePastEOC(&reader);
    return status != ASN1S_SUCCESS ? status : static_cast<int>(reader.buffer.byteIndex);
}

} // namespace

int xd_OpenType(ASN1CTXT* ctxt, const unsigned char** data, unsigned int* numocts) noexcept {
    const unsigned int start = ctxt->buffer.byteIndex;
    ASN1TAG tag = 0;
    int length = 0;
    if (const int status = xd_tag_len(ctxt, &tag, &length, ASN1MatchAdvance)) {
        // Kept: no element left is a success, with the arguments untouched: so an optional open
        // type is absent.
        return status == ASN1S_END_OF_BUFFER ? ASN1S_SUCCESS : status;
    }
    const int status = passContents(ctxt, tag, length);
    if (status == ASN1S_BAD_VALUE) {
        return status;
    }
    *numocts = ctxt->buffer.byteIndex - start;
    const unsigned char* octets = ctxt->buffer.data + start;
    if ((ctxt->flags & ASN1F_NO_COPY) == 0) {
        octets = copyOctets(ctxt, octets, *numocts);
        if (octets == nullptr) {
            *numocts = 0;
            return ASN1S_NO_MEMORY;
        }
    }
    *data = octets;
    return status == ASN1S_END_OF_BUFFER ? ASN1S_SUCCESS : status;
}

int xd_OpenTypeAppend(ASN1CTXT* ctxt, Asn1RTDList* list) noexcept {
    if (list == nullptr) {
        const int status = xd_NextElement(ctxt);
        return status == ASN1S_SUCCESS ? status : record(ctxt, status);
    }
    auto* block = static_cast<InlineNode*>(
        rtMemHeapAllocZ(&ctxt->memHeap, static_cast<int>(sizeof(InlineNode))));
    if (block == nullptr) {
        return record(ctxt, ASN1S_NO_MEMORY);
    }
    ASN1OpenType& element = block->element;
    if (const int status = xd_OpenType(ctxt, &element.data, &element.numocts)) {
        return record(ctxt, status);
    }
    rtDListAppendNode(ctxt, list, &element);
    return ASN1S_SUCCESS;
}

int xd_OpenTypeExt(ASN1CTXT* ctxt, ASN1ElementScope* scope, ASN1TAG stopTag,
                   Asn1RTDList* list) noexcept {
    for (;;) {
        if (stopTag != ASN1TagNone) {
            const int status = xd_match(ctxt, stopTag, nullptr, 0);
            if (status != ASN1S_TAG_NOT_FOUND) {
                return status;
            }
        }
        if (rtScopeEnded(ctxt, *scope)) {
            return stopTag == ASN1TagNone ? ASN1S_SUCCESS : record(ctxt, ASN1S_END_OF_BUFFER);
        }
        const unsigned int start = ctxt->buffer.byteIndex;
        if (const int status = xd_OpenTypeAppend(ctxt, list)) {
            return record(ctxt, status);
        }
        // ASN1F_LAST_EOC makes every element absent, and absent elements have no end.
        if (ctxt->buffer.byteIndex == start) {
            return record(ctxt, ASN1S_END_OF_BUFFER);
        }
    }
}

int xe_OpenType(ASN1CTXT* ctxt, const unsigned char* data, unsigned int numocts) noexcept {
    if (numocts == 0) {
        return 0;
    }
    if (data == nullptr) {
        return ASN1S_BAD_VALUE;
    }
    // Kept: what stands behind the first element is dropped without a failure. Programs depend on
    // it.
    const int length = measureElement(data, numocts);
    if (length < 0) {
        return length;
    }
    // A typed value that was encoded into the buffer itself is in place already.
    if (data == ctxt->buffer.data + ctxt->buffer.byteIndex) {
        return length;
    }
    return xe_memcpy(ctxt, data, static_cast<unsigned int>(length));
}

int xe_OpenTypeExt(ASN1CTXT* ctxt, Asn1RTDList* list) noexcept {
    int total = 0;
    const Asn1RTDListNode* node = list != nullptr ? list->tail : nullptr;
    for (; node != nullptr; node = node->prev) {
        const auto* element = static_cast<const ASN1OpenType*>(node->data);
        if (element == nullptr) {
            continue;
        }
        const int count = xe_OpenType(ctxt, element->data, element->numocts);
        if (count < 0) {
            return record(ctxt, count);
        }
        if (count > INT_MAX - total) {
            return record(ctxt, ASN1S_BUFFER_OVERFLOW);
        }
        total += count;
    }
    return total;
}

int rtCopyOpenType(ASN1CTXT* ctxt, const ASN1OpenType* source, ASN1OpenType* target) noexcept {
    if (source == nullptr || target == nullptr) {
        return 0;
    }
    const ASN1OpenType from = *source; // source and target may be the same record
    *target = {0, nullptr};
    if (from.numocts == 0) {
        return 1;
    }
    if (from.data == nullptr) {
        return 0;
    }
    const unsigned char* block = copyOctets(ctxt, from.data, from.numocts);
    if (block == nullptr) {
        return 0;
    }
    *target = {from.numocts, block};
    return 1;
}

int rtCopyOpenTypeExt(ASN1CTXT* ctxt, const Asn1RTDList* source, Asn1RTDList* target) noexcept {
    if (source == nullptr || target == nullptr) {
        return 0;
    }
    const Asn1RTDListNode* node = source->head; // source and target may be the same list
    rtDListInit(target);
    for (; node != nullptr; node = node->next) {
        if (node->data == nullptr) {
            continue;
        }
        auto* element = static_cast<ASN1OpenType*>(
            rtMemHeapAlloc(&ctxt->memHeap, static_cast<int>(sizeof(ASN1OpenType))));
        if (element == nullptr ||
            rtCopyOpenType(ctxt, static_cast<const ASN1OpenType*>(node->data), element) == 0 ||
            rtDListAppend(ctxt, target, element) == nullptr) {
            return 0;
        }
    }
    return 1;
}

void rtMemFreeOpenSeqExt(ASN1CTXT* ctxt, Asn1RTDList* list) noexcept {
    if (list == nullptr) {
        return;
    }
    // Under ASN1F_NO_COPY the octets may be those of a message, bound now or before; they are left
    // to the heap's end.
    const bool owned = (ctxt->flags & ASN1F_NO_COPY) == 0;
    for (const Asn1RTDListNode* node = list->head; node != nullptr; node = node->next) {
        const auto* element = static_cast<const ASN1OpenType*>(node->data);
        if (owned && element != nullptr) {
            rtMemHeapFreePtr(&ctxt->memHeap, const_cast<unsigned char*>(element->data));
        }
    }
    rtDListFreeAll(ctxt, list);
}
