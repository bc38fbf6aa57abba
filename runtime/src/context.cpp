#include <brevantis/asn1/runtime/context.h>

#include <type_traits>

#include <brevantis/asn1/runtime/header.h>
#include <brevantis/asn1/runtime/message_buffer.h>
#include <brevantis/asn1/runtime/stream.h>

#include "block_header.h"
#include "context_state.h"

using runtime_detail::blockOf;
using runtime_detail::initialisedCode;
using runtime_detail::isSetUp;

namespace {

constexpr unsigned int defaultBufferSize = 16384;

// Coders take a shared context by the address of the plain one.
static_assert(!std::is_polymorphic_v<ASN1Context>, "a shared context begins with the plain one");

bool hasNodeOn(const Asn1RTSList& list, const ASN1MemHeap* heap) noexcept {
    if (list.pctxt == nullptr) {
        return false;
    }
    for (Asn1RTSListNode* node = list.head; node != nullptr; node = node->next) {
        if (blockOf(node)->heap == heap) {
            return true;
        }
    }
    return false;
}

// Lets go of everything that the context still has on a heap which is about to vanish.
void forgetWhatLiesOn(const ASN1MemHeap* heap, ASN1CTXT* ctxt) noexcept {
    ASN1Buffer& buffer = ctxt->buffer;
    if (buffer.dynamic != 0 && buffer.data != nullptr && blockOf(buffer.data)->heap == heap) {
        buffer = ASN1Buffer{nullptr, 0, 0, 8, 0, 0};
    }
    if (ctxt->stream != nullptr && blockOf(ctxt->stream)->heap == heap) {
        rtStreamRelease(ctxt);
    }
    for (Asn1RTSList* list : {&ctxt->headList, &ctxt->tailList}) {
        if (hasNodeOn(*list, heap)) {
            rtSListFree(list);
            rtSListInitEx(ctxt, list);
        }
    }
}

void joinHeap(ASN1CTXT* target, void*& ownReference, void* sourceHeap) noexcept {
    if (ownReference == sourceHeap) {
        return;
    }
    const auto* oldHeap = static_cast<const ASN1MemHeap*>(ownReference);
    if (oldHeap != nullptr && oldHeap->refCount == 1) {
        forgetWhatLiesOn(oldHeap, target);
    }
    rtMemHeapRelease(&ownReference);
    ownReference = sourceHeap;
    rtMemHeapAddRef(&ownReference);
}

} // namespace

int rtInitContext(ASN1CTXT* ctxt, void* userData) noexcept {
    *ctxt = ASN1CTXT{};
    ctxt->initCode = initialisedCode;
    if (int status = rtMemHeapCreate(&ctxt->memHeap, userData); status != ASN1S_SUCCESS) {
        return status;
    }
    ctxt->userData = userData;
    ctxt->msgMemHeap = ctxt->memHeap;
    rtMemHeapAddRef(&ctxt->msgMemHeap);
    rtSListInitEx(ctxt, &ctxt->headList);
    rtSListInitEx(ctxt, &ctxt->tailList);
    return ASN1S_SUCCESS;
}

void rtInitReader(ASN1CTXT* ctxt, const unsigned char* octets, unsigned int count) noexcept {
    *ctxt = ASN1CTXT{};
    ctxt->initCode = initialisedCode;
    // A reading context does not write.
    ctxt->buffer = ASN1Buffer{const_cast<unsigned char*>(octets), 0, count, 8, 0, 0};
}

int rtInitContextBuffer(ASN1CTXT* ctxt, unsigned char* data, unsigned int size) noexcept {
    if (!isSetUp(ctxt)) {
        return ASN1S_NOT_INITIALISED;
    }
    unsigned char dynamic = 0;
    if (data == nullptr) {
        size = size == 0 ? defaultBufferSize : size;
        // A size of more than 31 bits turns negative here, which the heap refuses.
        data = static_cast<unsigned char*>(rtMemHeapAlloc(&ctxt->memHeap, static_cast<int>(size)));
        if (data == nullptr) {
            return ASN1S_NO_MEMORY;
        }
        dynamic = 1;
    }
    ctxt->buffer = ASN1Buffer{data, 0, size, 8, dynamic, 0};
    return ASN1S_SUCCESS;
}

void rtFreeContext(ASN1CTXT* ctxt) noexcept {
    if (!isSetUp(ctxt)) {
        return;
    }
    if (ctxt->buffer.dynamic != 0 && ctxt->buffer.data != nullptr) {
        if ((ctxt->flags & ASN1F_KEEP_BUFFER) != 0) {
            rtMemHeapMarkSaved(&ctxt->memHeap, ctxt->buffer.data);
        } else {
            rtMemHeapFreePtr(&ctxt->memHeap, ctxt->buffer.data);
        }
    }
    rtStreamRelease(ctxt);
    rtSListFree(&ctxt->headList);
    rtSListFree(&ctxt->tailList);
    rtMemHeapRelease(&ctxt->memHeap);
    rtMemHeapRelease(&ctxt->msgMemHeap);
    ctxt->initCode = 0;
}

void rtCopyContext(ASN1CTXT* target, ASN1CTXT* source) noexcept {
    target->buffer = source->buffer;
    target->flags = source->flags;
}

void rtCtxtSetFlag(ASN1CTXT* ctxt, int mask) noexcept {
    ctxt->flags =
        static_cast<unsigned short>(ctxt->flags | (static_cast<unsigned>(mask) & 0xFFFFu));
}

void rtCtxtSetElementLimit(ASN1CTXT* ctxt, unsigned int elements) noexcept {
    ctxt->elementLimit = elements;
}

int rtCtxtSetDepthLimit(ASN1CTXT* ctxt, unsigned int depth) noexcept {
    if (depth > runtime_detail::deepestNesting) {
        return ASN1S_INVALID_PARAMETER;
    }
    // Levels that are always in use: so the engine has one limit to look at.
    ctxt->nestingDepth = static_cast<unsigned short>(runtime_detail::deepestNesting - depth);
    return ASN1S_SUCCESS;
}

void rtCtxtSetMemHeap(ASN1CTXT* target, ASN1CTXT* source) noexcept {
    if (target != nullptr && source != nullptr) {
        joinHeap(target, target->memHeap, source->memHeap);
    }
}

void rtCtxtSetMsgMemHeap(ASN1CTXT* target, ASN1CTXT* source) noexcept {
    if (target != nullptr && source != nullptr) {
        joinHeap(target, target->msgMemHeap, source->msgMemHeap);
    }
}

ASN1Context::ASN1Context() : refCount(0) {
    rtSListInitEx(nullptr, &heapsLeft);
    if (int status = rtInitContext(this, nullptr); status != ASN1S_SUCCESS) {
        throw ASN1MessageBuffer::RTLError(status);
    }
}

ASN1Context::~ASN1Context() {
    rtFreeContext(this);
    for (Asn1RTSListNode* node = heapsLeft.head; node != nullptr; node = node->next) {
        rtMemHeapRelease(&node->data);
    }
    rtSListFree(&heapsLeft);
}

void ASN1Context::joinMemHeap(ASN1CTXT* source) noexcept {
    if (source == nullptr || memHeap == source->memHeap) {
        return;
    }
    const auto* heap = static_cast<const ASN1MemHeap*>(memHeap);
    // The message heap keeps the first heap of all in any case.
    if (refCount > 1 && heap != nullptr && heap->blockList != nullptr && memHeap != msgMemHeap) {
        keepHeap();
    }
    rtCtxtSetMemHeap(this, source);
}

/// Takes one reference to the present heap, however often it is left. Without memory for the note
/// the reference stays all the same: better a heap that is never freed than values without one.
void ASN1Context::keepHeap() noexcept {
    for (const Asn1RTSListNode* node = heapsLeft.head; node != nullptr; node = node->next) {
        if (node->data == memHeap) {
            return;
        }
    }
    rtMemHeapAddRef(&memHeap);
    rtSListAppend(&heapsLeft, memHeap);
}

void ASN1Context::_ref() noexcept {
    ++refCount;
}

void ASN1Context::_unref() {
    if (refCount-- == 1) {
        delete this;
    }
}

unsigned int ASN1Context::getRefCount() const noexcept {
    return refCount;
}

void ASN1Context::PrintErrorInfo() noexcept {
    rtErrPrint(&errInfo);
}
