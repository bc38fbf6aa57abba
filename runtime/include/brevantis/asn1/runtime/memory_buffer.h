#ifndef BREVANTIS_ASN1_RUNTIME_MEMORY_BUFFER_H
#define BREVANTIS_ASN1_RUNTIME_MEMORY_BUFFER_H

#include <brevantis/asn1/export.h>
#include <brevantis/asn1/runtime/context.h>

/// @file
/// A growable octet buffer on the heap of a context; a message buffer can be bound to it.

/// Growable octets. The valid ones are `buffer[startOffset .. usedLength)`.
struct ASN1MemBuf {
    ASN1CTXT* ownerCtxt;         ///< its `memHeap` serves the buffer
    unsigned int segmentSize;    ///< octets; the block grows to a multiple of it
    unsigned int startOffset;    ///< the first valid octet
    unsigned int usedLength;     ///< one past the last valid octet
    unsigned int bufferSize;     ///< octets allocated
    unsigned int readBitOffset;  ///< 0: octets are whole here
    unsigned int writeBitOffset; ///< 0 likewise
    unsigned char* buffer;       ///< the block; null until there is one
    /// Non-zero: `buffer` came from the heap. A program that puts octets of its own into `buffer`
    /// clears this; the first growth then turns to a block of the heap.
    unsigned char ownsBuffer;
};

/// Makes @p buf empty, without a block.
/// @param ctxt context whose heap serves the buffer; it has to outlive the buffer's use
/// @param segmentSize granule of growth in octets, above 0
BREVANTIS_ASN1_API void rtMemBufInit(ASN1CTXT* ctxt, ASN1MemBuf* buf,
                                     unsigned int segmentSize) noexcept;

/// Gives an owned block back to the heap. The fields stay as they are, so that only rtMemBufInit
/// may follow.
BREVANTIS_ASN1_API void rtMemBufFree(ASN1MemBuf* buf) noexcept;

/// Forgets the contents and keeps the block.
BREVANTIS_ASN1_API void rtMemBufReset(ASN1MemBuf* buf) noexcept;

/// Makes room for @p count octets behind the contents. Pointers into an earlier block end here. A
/// growth that leaves a block of the caller's does not carry the contents over.
/// @return 0; ASN1S_NO_MEMORY when memory is out, with the fields unchanged;
///         ASN1S_INVALID_PARAMETER when @p count is negative, or a growth is needed and
///         `segmentSize` is 0
BREVANTIS_ASN1_API int rtMemBufPreAllocate(ASN1MemBuf* buf, int count) noexcept;

/// Appends octets.
/// @param data @p count octets, which may be some of the buffer's own; or null to reserve the room
///        only
/// @return as rtMemBufPreAllocate
BREVANTIS_ASN1_API int rtMemBufAppend(ASN1MemBuf* buf, const unsigned char* data,
                                      unsigned int count) noexcept;

/// Appends @p count times the low 8 bits of @p value.
/// @return as rtMemBufPreAllocate
BREVANTIS_ASN1_API int rtMemBufSet(ASN1MemBuf* buf, unsigned int value,
                                   unsigned int count) noexcept;

/// @param length receives the count of valid octets unless it is null
/// @return the first valid octet, the buffer's, until it grows; null when there is no block
BREVANTIS_ASN1_API unsigned char* rtMemBufGetData(ASN1MemBuf* buf, unsigned int* length) noexcept;

#endif
