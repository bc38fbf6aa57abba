#ifndef BREVANTIS_ASN1_RUNTIME_STREAM_H
#define BREVANTIS_ASN1_RUNTIME_STREAM_H

#include <brevantis/asn1/export.h>
#include <brevantis/asn1/runtime/context.h>

/// @file
/// Forward writing: octets go through a context's buffer, or on to a stream attached to it.
///
/// A program brings the stream: a record of its own that begins with ASN1Stream, placed on the
/// context's heap. rtFreeContext and rtStreamRelease give its memory back; neither flushes, and no
/// destructor runs. This one writes to a file descriptor:
///
/// @code
/// struct FileStream : ASN1Stream {
///     int descriptor;
///     int failure;
/// };
///
/// int writeAll(ASN1Stream* stream, const unsigned char* data, unsigned int count) {
///     auto& file = static_cast<FileStream&>(*stream);
///     while (file.failure == 0 && count > 0) {
///         const ssize_t written = ::write(file.descriptor, data, count);
///         if (written > 0) {
///             data += written;
///             count -= static_cast<unsigned int>(written);
///         } else if (written == 0 || errno != EINTR) {
///             file.failure = ASN1S_BUFFER_OVERFLOW; // and so for every further call
///         }
///     }
///     return file.failure;
/// }
///
/// int sendMessage(int descriptor, const unsigned char* message, unsigned int length) {
///     ASN1CTXT ctxt;
///     int status = rtInitContext(&ctxt, nullptr);
///     if (status == 0) {
///         status = rtInitContextBuffer(&ctxt, nullptr, 4096); // what gathers between two writes
///     }
///     void* memory =
///         status == 0 ? rtMemHeapAllocZ(&ctxt.memHeap, int{sizeof(FileStream)}) : nullptr;
///     if (memory != nullptr) {
///         ctxt.stream =
///             new (memory) FileStream{{writeAll, nullptr, 0, ASN1StreamOutput}, descriptor, 0};
///         status = rtWriteBytes(&ctxt, message, length);
///         if (status == 0) {
///             status = rtStreamBufFlush(&ctxt);
///         }
///     } else if (status == 0) {
///         status = ASN1S_NO_MEMORY;
///     }
///     rtFreeContext(&ctxt);
///     return status;
/// }
/// @endcode
///
/// The context of a stream is one for forward writing: after rtInitContextBuffer its position is 0
/// and `byteIndex` counts the octets that wait in the buffer. The encoders write backwards and
/// belong on another context; what they produced is then handed to rtWriteBytes.

/// Bits of ASN1Stream::streamFlags.
enum ASN1StreamFlag : unsigned int {
    ASN1StreamOutput = 0x0002,        ///< takes octets
    ASN1StreamBufferedOutput = 0x8000 ///< takes octets from the context's buffer
};

/// A stream attached to a context.
struct ASN1Stream {
    /// Takes all of @p count octets and returns 0, or returns a negative status. A short write is
    /// its own to continue. After a failure the caller may try again and the same octets are then
    /// offered again: an operation that took a part of them and cannot tell must go on failing.
    int (*write)(ASN1Stream* stream, const unsigned char* data, unsigned int count);
    /// Passes on what the stream itself holds back; 0 or a negative status. Null: nothing to do.
    int (*flush)(ASN1Stream* stream);
    unsigned int byteCount;   ///< octets that `write` took, modulo 2^32
    unsigned int streamFlags; ///< ASN1StreamFlag bits
};

/// Calls the stream's flush operation. Octets in the context's buffer stay there.
/// @return what the operation returned, 0 when there is none; ASN1S_INVALID_PARAMETER without an
///         output stream
BREVANTIS_ASN1_API int rtStreamFlush(ASN1CTXT* ctxt);

/// Hands octets to the stream, past the context's buffer.
/// @return what the write operation returned; ASN1S_NOT_INITIALISED without an output stream or an
///         operation; ASN1S_INVALID_PARAMETER when @p data is null and @p count is not 0
BREVANTIS_ASN1_API int rtStreamWrite(ASN1CTXT* ctxt, const unsigned char* data, unsigned int count);

/// Writes the octets that wait in the context's buffer and flushes the stream. On a failure of the
/// write operation the octets stay in the buffer.
/// @return 0; a failure of either operation, that of writing recorded; ASN1S_INVALID_PARAMETER
///         without an output stream, or when the position lies outside the buffer;
///         ASN1S_NOT_INITIALISED without a write operation
BREVANTIS_ASN1_API int rtStreamBufFlush(ASN1CTXT* ctxt);

/// Puts octets into the context's buffer, after writing out what waits there when they do not fit;
/// a piece as large as the buffer goes straight to the stream.
/// @return 0; a failure as of rtStreamWrite, recorded: what waited then still waits, unless it has
///         been written already
BREVANTIS_ASN1_API int rtStreamBufWrite(ASN1CTXT* ctxt, const unsigned char* data,
                                        unsigned int count);

/// Detaches the stream and gives its record back to the heap. Nothing is flushed.
/// @return 0
BREVANTIS_ASN1_API int rtStreamRelease(ASN1CTXT* ctxt) noexcept;

/// Makes room for @p count octets behind the position: by flushing to the stream, then by growing a
/// dynamic buffer by @p count octets and no less than 16384.
/// @return 0; recorded: ASN1S_BUFFER_OVERFLOW when the caller's buffer is too small,
///         ASN1S_NO_MEMORY when memory is out, ASN1S_INVALID_PARAMETER when the position lies
///         outside the buffer, a failure of flushing
BREVANTIS_ASN1_API int rtCheckBuffer(ASN1CTXT* ctxt, unsigned int count);

/// Writes octets forward: to the stream by way of the buffer, or into the buffer.
/// @param data @p count octets that stay the caller's
/// @return 0; a failure as of rtStreamBufWrite or rtCheckBuffer; ASN1S_INVALID_PARAMETER, recorded,
///         when @p data is null and @p count is not 0
BREVANTIS_ASN1_API int rtWriteBytes(ASN1CTXT* ctxt, const unsigned char* data, unsigned int count);

#endif
