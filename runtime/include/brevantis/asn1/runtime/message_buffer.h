#ifndef BREVANTIS_ASN1_RUNTIME_MESSAGE_BUFFER_H
#define BREVANTIS_ASN1_RUNTIME_MESSAGE_BUFFER_H

#include <exception>

#include <brevantis/asn1/export.h>
#include <brevantis/asn1/runtime/context.h>

/// @file
/// Message buffers: a shared context together with the direction that it works in.
///
/// A message buffer holds a reference to an ASN1Context, and so does each control object on it;
/// what a decode produces lies on that context's heap and lives as long as the last of them. A copy
/// of a message buffer shares the context with its origin, position and bound octets included.

class ASN1CType;
struct ASN1MemBuf;

/// Failure of an operation that has no result to carry a status: a constructor or a stream
/// operator.
class BREVANTIS_ASN1_API ASN1RTLException : public std::exception {
public:
    /// @param status what the operation that failed returned
    explicit ASN1RTLException(int status) noexcept : status_(status) {}
    ~ASN1RTLException() override;

    /// The status of the operation that failed. From `operator<<` it may be the octet count of an
    /// encoding that worked, see there.
    int status() const noexcept { return status_; }
    /// @return the name of the status, a constant text
    const char* what() const noexcept override;

private:
    int status_;
};

/// What control objects ask of a message buffer.
class BREVANTIS_ASN1_API ASN1MessageBufferIF {
public:
    /// Direction of a buffer.
    enum Type {
        EncodeBuffer = 0, ///< messages are written to it
        DecodeBuffer = 1  ///< messages are read from it
    };

    virtual ~ASN1MessageBufferIF() = 0;

    /// @return a further reference to the context
    virtual ASN1ContextRef getContext() = 0;
    /// @return the context; it lives as long as a reference to it is held
    virtual ASN1CTXT* getCtxtPtr() = 0;
    /// @return a copy of the message made with `new[]`, the caller's to `delete[]`; null when the
    ///         buffer offers none
    virtual unsigned char* getMsgCopy();
    /// @return the message, owned by the buffer; null when there is none
    virtual unsigned char* getMsgPtr();
    /// Makes the buffer ready for a run of a coder.
    /// @return 0 or a status
    virtual int init();
    /// Binds the context to the octets of a growable buffer.
    /// @return 0 or a status; ASN1S_NOT_SUPPORTED where this is not offered
    virtual int initBuffer(ASN1MemBuf& memBuf);
    /// @return ASN1S_NOT_SUPPORTED: octets come as octets here
    virtual int initBuffer(unsigned short* text);
    /// @return ASN1S_NOT_SUPPORTED: octets come as octets here
    virtual int initBuffer(char* text);
    /// @return whether the buffer works in this direction
    virtual bool isA(Type type) = 0;

protected:
    ASN1MessageBufferIF() = default;
    ASN1MessageBufferIF(const ASN1MessageBufferIF&) = default;
    ASN1MessageBufferIF& operator=(const ASN1MessageBufferIF&) = default;
};

/// A message buffer with a context of its own.
class BREVANTIS_ASN1_API ASN1MessageBuffer : public ASN1MessageBufferIF {
public:
    /// Failure of a constructor of the runtime's classes.
    class BREVANTIS_ASN1_API RTLError : public ASN1RTLException {
    public:
        /// @param status what the operation that failed returned
        explicit RTLError(int status) noexcept : ASN1RTLException(status) {}
        ~RTLError() override;
    };

    /// Creates a context and holds the one reference to it.
    /// @throws RTLError with ASN1S_NO_MEMORY when memory is out
    explicit ASN1MessageBuffer(ASN1MessageBufferIF::Type type);
    ~ASN1MessageBuffer() override;
    ASN1MessageBuffer(const ASN1MessageBuffer&) = default;
    ASN1MessageBuffer& operator=(const ASN1MessageBuffer&) = default;

    ASN1ContextRef getContext() override;
    ASN1CTXT* getCtxtPtr() override;
    /// @return null
    unsigned char* getMsgCopy() override;
    /// @return the octets that the context is bound to
    unsigned char* getMsgPtr() override;
    /// Binds the context to the octets in @p memBuf, which has to outlive their use. The memory
    /// buffer must not grow in the meantime.
    /// @return 0; ASN1S_NOT_SUPPORTED for a decode buffer and a @p memBuf that never held anything;
    ///         ASN1S_NO_MEMORY when an encode buffer gets a block of its own for want of one in
    ///         @p memBuf and memory is out
    int initBuffer(ASN1MemBuf& memBuf) override;
    /// @return ASN1S_NOT_SUPPORTED: octets come as octets here
    int initBuffer(unsigned short* text) override;
    int initBuffer(char* text) override;

protected:
    ASN1ContextRef context; ///< shared with copies of the buffer and with the control objects on it
    ASN1MessageBufferIF::Type bufferType; ///< the direction that the constructor was given
};

/// A message buffer for the Basic Encoding Rules.
class BREVANTIS_ASN1_API ASN1BERMessageBuffer : public ASN1MessageBuffer {
public:
    /// @throws RTLError with ASN1S_NO_MEMORY when memory is out
    explicit ASN1BERMessageBuffer(ASN1MessageBufferIF::Type type);
    ~ASN1BERMessageBuffer() override;
    ASN1BERMessageBuffer(const ASN1BERMessageBuffer&) = default;
    ASN1BERMessageBuffer& operator=(const ASN1BERMessageBuffer&) = default;
};

/// Takes encodings. A message is written from the end of the block to its beginning; its length is
/// what the encoder returned.
class BREVANTIS_ASN1_API ASN1BEREncodeBuffer : public ASN1BERMessageBuffer {
public:
    /// A block of 16384 octets that grows with the message.
    /// @throws RTLError with ASN1S_NO_MEMORY when memory is out
    ASN1BEREncodeBuffer();
    /// A block of the caller's, which has to outlive its use. Its last octet stays unused.
    /// @param size octets in @p buffer
    /// @throws RTLError with what setBuffer would return
    ASN1BEREncodeBuffer(unsigned char* buffer, int size);
    ~ASN1BEREncodeBuffer() override;
    ASN1BEREncodeBuffer(const ASN1BEREncodeBuffer&) = default;
    ASN1BEREncodeBuffer& operator=(const ASN1BEREncodeBuffer&) = default;

    /// Turns to another block; null for one that grows with the message.
    /// @param size octets in @p buffer, or of the first growing block (0: 16384)
    /// @return 0; ASN1S_NO_MEMORY when memory is out; ASN1S_INVALID_PARAMETER when @p size is
    ///         negative; what xe_setp returns
    int setBuffer(unsigned char* buffer, int size);

    /// Copies the message and the unused last octet behind it.
    /// @return a block of message length + 1 octets, the caller's to `delete[]`; null when the
    ///         buffer holds nothing at all or memory is out
    unsigned char* getMsgCopy() override;
    /// @return the first octet written so far, valid until the next write or init()
    unsigned char* getMsgPtr() override;
    /// Rewinds: the next encoding replaces what was written. A grown block stays grown.
    /// @return 0
    int init() override;
    bool isA(Type type) override;

    /// Encodes an object, whose length the caller learns by no other way than the exception: use
    /// `Encode` or `EncodeTo` where it matters. An object without an encoder is passed over.
    /// @throws ASN1RTLException with every non-zero result: a failure, and the octet count of an
    ///         encoding that worked
    ASN1BEREncodeBuffer& operator<<(ASN1CType& object);
};

/// Gives a message to decoders. It remembers the message and binds it at the first decode; the
/// octets stay the caller's and have to outlive their use.
class BREVANTIS_ASN1_API ASN1BERDecodeBuffer : public ASN1BERMessageBuffer {
public:
    /// No message yet.
    /// @throws RTLError with ASN1S_NO_MEMORY when memory is out
    ASN1BERDecodeBuffer();
    /// Remembers a message; nothing is read.
    /// @param size octets in @p msg
    /// @throws RTLError with ASN1S_NO_MEMORY when memory is out
    ASN1BERDecodeBuffer(const unsigned char* msg, int size);
    ~ASN1BERDecodeBuffer() override;
    ASN1BERDecodeBuffer(const ASN1BERDecodeBuffer&) = default;
    ASN1BERDecodeBuffer& operator=(const ASN1BERDecodeBuffer&) = default;

    /// Binds the remembered message unless that has been done: no rewind, a further decode goes on
    /// where the last one ended. Only where a decode has failed inside an open value, and left the
    /// context on the octets of that value, is the context bound anew to what it was bound to
    /// before: by setBuffer(), findElement(), initBuffer() or, seen by the last init(), by a call
    /// on the context itself such as xd_setp.
    /// @return as setBuffer; 0 on a buffer that is bound, even when what setBuffer() was given last
    ///         cannot be
    int init() override;
    /// Binds the context to the octets in @p memBuf, from the first to the last, in place of a
    /// message that is bound. One that is remembered and not bound yet is bound by init() all the
    /// same.
    /// @param memBuf has to outlive the use of its octets, and must not grow in the meantime
    /// @return 0; ASN1S_NOT_SUPPORTED for a @p memBuf that never held anything
    int initBuffer(ASN1MemBuf& memBuf) override;
    using ASN1BERMessageBuffer::initBuffer;
    bool isA(Type type) override;

    /// Remembers and binds a message: reads its first header and takes that element's end as the
    /// end of the message.
    /// @param size octets in @p msg
    /// @param keepIfSame non-zero: nothing happens when this very message is bound already
    /// @return 0; ASN1S_NOT_SUPPORTED when @p msg is null or @p size below 1 (they are remembered
    ///         all the same); otherwise what xd_setp returns, as ASN1S_INVALID_LENGTH for an
    ///         element that claims more than @p size
    int setBuffer(const unsigned char* msg, int size, unsigned char keepIfSame = 0);

    /// Searches the message for an element, depth first and without decoding anything.
    /// @param tag the tag to find; its form bit does not count
    /// @param elemLen receives the length of the contents, or ASN1IndefiniteLength
    /// @param firstFlag non-zero: bind the message and search from its beginning; 0: go on behind
    ///        the element found before
    /// @return the identifier octets of the element inside the message; null when there is none
    const unsigned char* findElement(unsigned int tag, int& elemLen, int firstFlag);

    /// Decodes into the object's value. An object without a decoder is passed over.
    /// @throws ASN1RTLException with the status of a decoding that failed
    ASN1BERDecodeBuffer& operator>>(ASN1CType& object);

private:
    void rememberBinding() noexcept;
    void leaveOpenValue() noexcept;

    const unsigned char* msgPtr = nullptr;
    int msgSize = 0;
    bool setupDone = false;
    ASN1Buffer binding{}; ///< what the context was bound to last, open values apart
    unsigned short bindingFlags = 0;
};

#endif
