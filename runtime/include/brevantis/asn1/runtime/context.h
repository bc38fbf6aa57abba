#ifndef BREVANTIS_ASN1_RUNTIME_CONTEXT_H
#define BREVANTIS_ASN1_RUNTIME_CONTEXT_H

#include <utility>

#include <brevantis/asn1/export.h>
#include <brevantis/asn1/runtime/heap.h>
#include <brevantis/asn1/runtime/single_list.h>
#include <brevantis/asn1/runtime/status.h>

/// @file
/// The coding context: first argument of every plain coder.

/// Flag bits of `ASN1CTXT::flags`.
enum ASN1ContextFlag : unsigned short {
    // How messages are read, off unless set; see <brevantis/asn1/asn1data/reading_policy.h>.
    ASN1F_TOLERATE_OPEN_VALUES = 0x0001, ///< an open value that does not decode stays raw
    ASN1F_TOLERATE_SIZES = 0x0002,       ///< SIZE and value ranges are not enforced
    ASN1F_EXACT = 0x0004,                ///< what records cannot hold unchanged is refused
    ASN1F_DER = 0x0008,                  ///< what is not DER is refused
    ASN1F_LENGTH_UNCHECKED = 0x0040,     ///< lengths are not compared with the buffer
    ASN1F_KEEP_BUFFER = 0x0100,          ///< a dynamic buffer outlives rtFreeContext on the heap
    ASN1F_CONSTRUCTED = 0x0400,          ///< the tag read last was constructed
    ASN1F_NO_COPY = 0x0800,      ///< decoded octets, bits and open types point into the message
    ASN1F_LAST_EOC = 0x1000,     ///< with 0x4000: no header can be read any more
    ASN1F_INDEF_MESSAGE = 0x4000 ///< the first element has an indefinite length
};

/// Descriptor of the message buffer.
struct ASN1Buffer {
    /// The octets; null while nothing is bound.
    unsigned char* data;
    /// Decoding: the next octet to read. Encoding: the first octet written so far.
    unsigned int byteIndex;
    /// Decoding: one past the last octet that may be read. Encoding: the size of `data`.
    unsigned int size;
    unsigned short bitOffset; ///< 8, carried along with the position
    unsigned char dynamic;    ///< non-zero: `data` came from `memHeap` and belongs to the context
    /// Non-zero: a decoder turned the context to the octets of an open value.
    unsigned char insideOpenValue;
};

/// A saved position of the buffer.
struct ASN1SavedState {
    unsigned int byteIndex;   ///< where `ASN1Buffer::byteIndex` was, in octets
    unsigned short bitOffset; ///< where `ASN1Buffer::bitOffset` was
    unsigned short flags;     ///< the ASN1ContextFlag bits that were set
};

struct ASN1Stream;

/// State of one coding run: heap, buffer, position, first error, flags. Set up by rtInitContext,
/// torn down by rtFreeContext; one thread at a time.
struct ASN1CTXT {
    void* msgMemHeap;   ///< reference to a heap (ASN1MemHeap) for message data
    void* memHeap;      ///< reference to the heap that every decoded or copied value comes from
    ASN1Buffer buffer;  ///< the message that is read or written
    ASN1Stream* stream; ///< null unless a stream is attached
    /// The position in front of the header that was read last, for whoever has to go back there.
    ASN1SavedState savedInfo;
    ASN1ErrInfo errInfo;       ///< the first failure since the record was cleared
    unsigned int elementLimit; ///< rtCtxtSetElementLimit; 0 without a limit
    /// Lists for a program's own entries, freed with the context. No coder uses them.
    Asn1RTSList headList;
    Asn1RTSList tailList;
    unsigned int initCode; ///< 0x1AA2A34A while the context is set up
    unsigned short flags;  ///< ASN1ContextFlag bits
    /// Open types and recursive types that are being worked on inside each other, on top of the
    /// levels of 64 that rtCtxtSetDepthLimit has taken away.
    unsigned short nestingDepth;
    void* userData; ///< handed to the heap's allocator calls
};

/// Sets up a context: zeroes it, creates its heap, takes both heap references.
/// @param ctxt any storage; what it held is overwritten
/// @param userData handed to every allocator call
/// @return 0, or the status of the heap's creation (ASN1S_NO_MEMORY)
BREVANTIS_ASN1_API int rtInitContext(ASN1CTXT* ctxt, void* userData) noexcept;

/// Binds a buffer.
/// @param data caller-owned octets, or null for a dynamic block from the heap
/// @param size octets; 0 with null @p data means 16384
/// @return 0; ASN1S_NOT_INITIALISED when @p ctxt is not set up; ASN1S_NO_MEMORY when memory is out
BREVANTIS_ASN1_API int rtInitContextBuffer(ASN1CTXT* ctxt, unsigned char* data,
                                           unsigned int size) noexcept;

/// Tears a context down: its dynamic buffer (kept on the heap with ASN1F_KEEP_BUFFER), stream and
/// lists go, and both heap references are dropped. Does nothing on one that is not set up.
BREVANTIS_ASN1_API void rtFreeContext(ASN1CTXT* ctxt) noexcept;

/// Copies the buffer descriptor and the flags, nothing else: a snapshot around a trial. It must not
/// be restored once a dynamic buffer has grown, for the block that it points to is gone then.
/// @param target need not be set up
BREVANTIS_ASN1_API void rtCopyContext(ASN1CTXT* target, ASN1CTXT* source) noexcept;

/// Sets the flags in the low 16 bits of @p mask.
BREVANTIS_ASN1_API void rtCtxtSetFlag(ASN1CTXT* ctxt, int mask) noexcept;

/// Limits how many elements a message may have that a decoder of the catalogue reads, open values
/// included: each counts that has octets of its own, an open value once more when it is read typed.
/// A message that goes on behind them is refused with ASN1S_NO_MEMORY. What was decoded of it can
/// be released.
/// @param elements 0 for no limit, as from the start
BREVANTIS_ASN1_API void rtCtxtSetElementLimit(ASN1CTXT* ctxt, unsigned int elements) noexcept;

/// Limits how deep open types and recursive types may lie inside each other, for everything that is
/// done on the context. Deeper ones are refused with ASN1S_NO_MEMORY.
/// @param depth at most 64, as from the start
/// @return 0; ASN1S_INVALID_PARAMETER for more than 64
BREVANTIS_ASN1_API int rtCtxtSetDepthLimit(ASN1CTXT* ctxt, unsigned int depth) noexcept;

/// Makes @p target allocate from the heap of @p source. Nothing happens when either is null or they
/// share the heap already. What @p target has on its old heap stays there, and stays valid while
/// another reference holds that heap; with the last one gone @p target is without a buffer, a
/// stream and list entries that lay on it.
BREVANTIS_ASN1_API void rtCtxtSetMemHeap(ASN1CTXT* target, ASN1CTXT* source) noexcept;

/// The same as rtCtxtSetMemHeap for the reference `msgMemHeap`.
BREVANTIS_ASN1_API void rtCtxtSetMsgMemHeap(ASN1CTXT* target, ASN1CTXT* source) noexcept;

/// A context with a reference count, shared by a message buffer and the control objects on it. Made
/// with `new` and held through ASN1ContextRef, it deletes itself with the last reference. A new one
/// has the count 0. Where it lives elsewhere than in memory from `new`, its owner calls `_ref`
/// first and never `_unref`, so that no other holder drops the last reference.
class BREVANTIS_ASN1_API ASN1Context : public ASN1CTXT {
public:
    /// @throws ASN1MessageBuffer::RTLError with the status when the heap cannot be made
    ASN1Context();
    ~ASN1Context();
    ASN1Context(const ASN1Context&) = delete;
    ASN1Context& operator=(const ASN1Context&) = delete;

    void _ref() noexcept; ///< adds a reference
    void _unref();        ///< drops a reference; the last one deletes the object
    /// References held; 0 for an object without a holder.
    unsigned int getRefCount() const noexcept;
    void PrintErrorInfo() noexcept; ///< rtErrPrint on the error record

    /// Allocates from the heap of @p source from now on. A heap that is left with blocks on it
    /// stays as long as this object does if others hold the object: their values may lie there.
    void joinMemHeap(ASN1CTXT* source) noexcept;

private:
    void keepHeap() noexcept;

    unsigned int refCount;
    Asn1RTSList heapsLeft;
};

/// Counted reference to an ASN1Context; empty when default-made.
class ASN1ContextRef {
public:
    /// An empty reference.
    ASN1ContextRef() noexcept = default;
    /// Takes a reference.
    /// @param context may be null, for an empty reference
    explicit ASN1ContextRef(ASN1Context* context) noexcept : context_(context) {
        if (context_ != nullptr) {
            context_->_ref();
        }
    }
    /// Takes a further reference.
    ASN1ContextRef(const ASN1ContextRef& other) noexcept : ASN1ContextRef(other.context_) {}
    /// Takes over the reference of @p other, which is empty then.
    ASN1ContextRef(ASN1ContextRef&& other) noexcept
        : context_(std::exchange(other.context_, nullptr)) {}
    ~ASN1ContextRef() { reset(); }
    ASN1ContextRef& operator=(const ASN1ContextRef& other) noexcept {
        ASN1ContextRef(other).swap(*this);
        return *this;
    }
    ASN1ContextRef& operator=(ASN1ContextRef&& other) noexcept {
        ASN1ContextRef(std::move(other)).swap(*this);
        return *this;
    }

    /// Drops the reference; with the last one the context goes.
    void reset() noexcept {
        if (ASN1Context* old = std::exchange(context_, nullptr)) {
            old->_unref();
        }
    }
    void swap(ASN1ContextRef& other) noexcept { std::swap(context_, other.context_); }
    /// The context, null for an empty reference. Valid while some reference is held.
    ASN1Context* get() const noexcept { return context_; }
    /// The same; of an empty reference neither may be asked.
    ASN1Context* operator->() const noexcept { return context_; }
    ASN1Context& operator*() const noexcept { return *context_; }
    /// Whether there is a context.
    explicit operator bool() const noexcept { return context_ != nullptr; }

private:
    ASN1Context* context_ = nullptr;
};

#endif
