#ifndef BREVANTIS_ASN1_RUNTIME_CONTROL_H
#define BREVANTIS_ASN1_RUNTIME_CONTROL_H

#include <brevantis/asn1/export.h>
#include <brevantis/asn1/runtime/context.h>
#include <brevantis/asn1/runtime/message_buffer.h>

/// @file
/// Base of the control classes, each of which ties a value to a context and a message buffer.

/// Holds a reference to the context that a value's memory comes from, and the message buffer that
/// the value is coded with. The buffer is not owned: it has to outlive `Encode` and `Decode`.
class BREVANTIS_ASN1_API ASN1CType {
public:
    /// On a context of its own, without a buffer.
    /// @throws ASN1MessageBuffer::RTLError with ASN1S_NO_MEMORY when memory is out
    ASN1CType();
    /// On the buffer and its context.
    explicit ASN1CType(ASN1MessageBufferIF& buffer);
    /// On a context that others hold too, without a buffer. The context must have been made with
    /// `new`, or its owner must hold a reference itself: it deletes itself with the last one.
    explicit ASN1CType(ASN1Context& sharedContext);
    /// On the context and the buffer of @p other.
    ASN1CType(const ASN1CType& other);
    ASN1CType& operator=(const ASN1CType&) = delete;
    virtual ~ASN1CType();

    /// Encodes the value to the object's buffer.
    /// @return octets written, 0 or more; a negative status; ASN1S_INVALID_PARAMETER when there is
    ///         no buffer
    virtual int Encode();
    /// Decodes the value from the object's buffer.
    /// @return 0 or a status; ASN1S_INVALID_PARAMETER when there is no buffer
    virtual int Decode();
    /// Encodes the value to @p buffer.
    /// @return octets written, 0 or more, or a negative status; always 0 from ASN1CType itself,
    /// which
    ///         has no value
    virtual int EncodeTo(ASN1MessageBufferIF& buffer);
    /// Decodes the value from @p buffer.
    /// @return 0 or a status; always 0 from ASN1CType itself
    virtual int DecodeFrom(ASN1MessageBufferIF& buffer);

    /// Turns to another buffer, which stays the caller's. From now on the object's context
    /// allocates from the buffer's heap, so that what is decoded lives as long as that heap.
    void setMsgBuf(ASN1MessageBufferIF& buffer);

    /// @return a further reference to the context
    ASN1ContextRef getContext() const noexcept { return context; }
    /// @return the context for the plain coders, null when the object holds none
    ASN1CTXT* getCtxtPtr() const noexcept { return context.get(); }
    /// @return the buffer, null when none was given
    ASN1MessageBufferIF* getMsgBuf() const noexcept { return msgBuf; }

protected:
    ASN1ContextRef context; ///< held as long as the object lives; setMsgBuf leaves it
    ASN1MessageBufferIF* msgBuf = nullptr; ///< not owned; null when none was given
};

#endif
