#ifndef BREVANTIS_ASN1_RUNTIME_SRC_OCTET_WRITER_H
#define BREVANTIS_ASN1_RUNTIME_SRC_OCTET_WRITER_H

#include <cstdint>
#include <cstring>

#include <brevantis/asn1/runtime/context.h>
#include <brevantis/asn1/runtime/status.h>

/// @file
/// What every encoder does with the room in front of the message: the one place that asks whether
/// there is some, and for more.

namespace runtime_detail {

/// Makes room for @p count more octets in front of the message. Defined beside the coders of tags
/// and lengths.
/// @return 0; ASN1S_BUFFER_OVERFLOW for a static buffer; ASN1S_NO_MEMORY
int growBuffer(ASN1CTXT* ctxt, std::uint32_t count) noexcept;

/// Writes one octet: a plain store, no copy call.
/// @return 1, or the failure of growBuffer
inline int putOctet(ASN1CTXT* ctxt, std::uint32_t octet) noexcept {
    ASN1Buffer& buffer = ctxt->buffer;
    if (buffer.byteIndex == 0) {
        const int status = growBuffer(ctxt, 1);
        if (status != ASN1S_SUCCESS) {
            return status;
        }
    }
    buffer.data[--buffer.byteIndex] = static_cast<unsigned char>(octet);
    return 1;
}

/// Largest message.
constexpr std::uint32_t longestMessage = 0x7FFFFFFF;

/// Writes octets that stand outside the buffer.
/// @param octets not null
/// @return @p count, or the failure of growBuffer
inline int putOctets(ASN1CTXT* ctxt, const unsigned char* octets, std::uint32_t count) noexcept {
    ASN1Buffer& buffer = ctxt->buffer;
    if (count > longestMessage) { // its count could not be returned
        return buffer.dynamic == 0 ? ASN1S_BUFFER_OVERFLOW : ASN1S_NO_MEMORY;
    }
    if (buffer.byteIndex < count) {
        const int status = growBuffer(ctxt, count);
        if (status != ASN1S_SUCCESS) {
            return status;
        }
    }
    if (count != 0) {
        buffer.byteIndex -= count;
        std::memcpy(buffer.data + buffer.byteIndex, octets, count);
    }
    return static_cast<int>(count);
}

} // namespace runtime_detail

#endif
