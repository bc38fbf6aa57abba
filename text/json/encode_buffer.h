#ifndef BREVANTIS_ASN1_TEXT_JSON_ENCODE_BUFFER_H
#define BREVANTIS_ASN1_TEXT_JSON_ENCODE_BUFFER_H

#include <new>

#include <brevantis/asn1/asn1data/family.h>
#include <brevantis/asn1/runtime.h>
#include <brevantis/asn1/text/octets.h>

namespace asn1text {

/// A buffer to encode to, with a context of its own.
class EncodeBuffer {
public:
    /// @throws std::bad_alloc
    EncodeBuffer() try {
    } catch (const ASN1RTLException&) {
        throw std::bad_alloc(); // there is nothing else that a context can fail for
    }

    ASN1CTXT* context() { return buffer_.getCtxtPtr(); }

    /// Encodes a value.
    /// @param value the record that @p type describes, not changed
    /// @return 0, or the negative status of the encoder
    int encode(const asn1data::TypeDescription& type, void* value) {
        size_ = asn1data::family::encode(context(), type, value, ASN1TagExplicit);
        return size_ < 0 ? size_ : ASN1S_SUCCESS;
    }
    /// What was encoded; it lives as long as the buffer.
    Octets octets() { return {buffer_.getMsgPtr(), static_cast<std::size_t>(size_)}; }

private:
    ASN1BEREncodeBuffer buffer_;
    int size_ = 0;
};

} // namespace asn1text

#endif
