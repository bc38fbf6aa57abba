#ifndef BREVANTIS_ASN1_VALUES_UTIL_PRIVATE_BUFFER_H
#define BREVANTIS_ASN1_VALUES_UTIL_PRIVATE_BUFFER_H

#include <new>

#include <brevantis/asn1/asn1data/list_records.h>
#include <brevantis/asn1/runtime/heap.h>
#include <brevantis/asn1/runtime/message_buffer.h>
#include <brevantis/asn1/values/util/coding_error.h>
#include <brevantis/support/blob.h>
#include <brevantis/support/error.h>

/// @file
/// The buffers that a conversion works on and tears down again, and memory of their contexts. They
/// differ from the runtime's in how they fail: by the one exception of the value classes.

namespace Brevantis::ASN1 {

/// Takes one encoding.
class EncodeBuffer : public ASN1BEREncodeBuffer {
public:
    /// @throws ATL::CAtlException with CRYPT_E_ASN1_MEMORY when memory is out
    EncodeBuffer() try {
    } catch (const RTLError&) {
        ATL::AtlThrowImpl(CRYPT_E_ASN1_MEMORY);
    }

    /// The encoding that an encoder has just made.
    /// @param length what the encoder returned
    /// @throws CCodingError with CRYPT_E_ASN1_INTERNAL when that is a failure
    CBlob message(int length) {
        if (length < 0) {
            throwEncodingError(length, nullptr, nullptr, 0);
        }
        return CBlob(getMsgPtr(), static_cast<unsigned long>(length));
    }
};

/// Gives one message to a decoder, or, without a message, a context whose heap holds a record.
class DecodeBuffer : public ASN1BERDecodeBuffer {
public:
    /// @throws ATL::CAtlException with CRYPT_E_ASN1_MEMORY when memory is out
    DecodeBuffer() try {
    } catch (const RTLError&) {
        ATL::AtlThrowImpl(CRYPT_E_ASN1_MEMORY);
    }
    /// @param message has to outlive the buffer; its size is cut to 32 bits
    /// @throws ATL::CAtlException with CRYPT_E_ASN1_MEMORY when memory is out
    explicit DecodeBuffer(const CBlob& message) try
        : ASN1BERDecodeBuffer(message.pbData(), static_cast<int>(message.cbData())) {
    } catch (const RTLError&) {
        ATL::AtlThrowImpl(CRYPT_E_ASN1_MEMORY);
    }
};

/// Throws CCodingError with CRYPT_E_ASN1_INTERNAL for a status that is not success.
inline void requireSuccess(int status) {
    if (status != 0) {
        throwDecodingError(status, nullptr, nullptr, 0, {});
    }
}

/// A block on the context's heap, also for no octets.
/// @throws ATL::CAtlException with CRYPT_E_ASN1_MEMORY when memory is out or @p size beyond what
///         the heap can give
inline void* allocateBlock(ASN1CTXT* ctxt, unsigned long size) {
    void* block =
        size <= 0x7FFFFFFFul ? rtMemHeapAlloc(&ctxt->memHeap, static_cast<int>(size)) : nullptr;
    if (block == nullptr) {
        ATL::AtlThrowImpl(CRYPT_E_ASN1_MEMORY);
    }
    return block;
}

/// An empty record on the context's heap. It lives as long as the heap and is never destroyed
/// singly.
/// @throws ATL::CAtlException with CRYPT_E_ASN1_MEMORY when memory is out
template <class Record>
Record& newRecord(ASN1CTXT* ctxt) {
    return *::new (allocateBlock(ctxt, sizeof(Record))) Record();
}

/// Appends a new, empty element to a list of the catalogue, as asn1data::appendRecord does.
/// @param list as asn1data::ASN1T_SignerInfos: tells what its elements are
/// @return the element, which lives as long as the heap of @p ctxt
/// @throws ATL::CAtlException with CRYPT_E_ASN1_MEMORY when memory is out; the list is unchanged
///         then
template <class List>
typename List::Element& newElement(ASN1CTXT* ctxt, List& list) {
    auto* const element = asn1data::appendRecord(ctxt, list);
    if (element == nullptr) {
        ATL::AtlThrowImpl(CRYPT_E_ASN1_MEMORY);
    }
    return *element;
}

} // namespace Brevantis::ASN1

#endif
