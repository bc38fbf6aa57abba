#ifndef BREVANTIS_ASN1_VALUES_UTIL_CODING_H
#define BREVANTIS_ASN1_VALUES_UTIL_CODING_H

#include <brevantis/asn1/values/util/private_buffer.h>
#include <brevantis/support/blob.h>

/// @file
/// The bridge between value classes and the catalogue: every `encode` and `decode` of a value class
/// is one of these.
///
/// A traits class says how a value and a record of the catalogue exchange their content; see
/// traits.h for its shape. Each call makes contexts of its own and leaves nothing behind, so calls
/// on different values run side by side.
///
/// Failures are exceptions: ATL::CAtlException with CRYPT_E_ASN1_INTERNAL for whatever a coder
/// refuses, with CRYPT_E_ASN1_MEMORY when a context's memory is out, and what the traits class and
/// the standard containers throw.

namespace Brevantis::ASN1 {

/// Encodes a value.
/// @return the complete message
template <class Traits, class Value>
CBlob asn1Encode(const Value& value) {
    EncodeBuffer buffer;
    // The record has a context of its own, whose heap goes when the message has been copied out.
    DecodeBuffer memory;
    typename Traits::ASN1_T record{};
    Traits::set(memory.getCtxtPtr(), record, value);
    return buffer.message(Traits::encode(buffer, record));
}

/// Decodes a value. Octets behind the first complete value are not looked at.
/// @param blob has to stay as it is during the call
/// @param value unchanged when the message does not decode
template <class Traits, class Value>
void asn1Decode(const CBlob& blob, Value& value) {
    DecodeBuffer buffer(blob);
    typename Traits::ASN1_T record{};
    requireSuccess(Traits::decode(buffer, record));
    Traits::get(record, value);
}

/// Encodes a record.
/// @return the complete message
template <class Traits>
CBlob asn1EncodeT(const typename Traits::ASN1_T& record) {
    EncodeBuffer buffer;
    typename Traits::ASN1_T copy{};
    Traits::copy(buffer.getCtxtPtr(), record, copy);
    return buffer.message(Traits::encode(buffer, copy));
}

/// Decodes a record.
/// @param ctxt gives the heap that @p record's content lies on
template <class Traits>
void asn1DecodeT(const CBlob& blob, ASN1CTXT* ctxt, typename Traits::ASN1_T& record) {
    DecodeBuffer buffer(blob);
    typename Traits::ASN1_T decoded{};
    requireSuccess(Traits::decode(buffer, decoded));
    Traits::copy(ctxt, decoded, record);
}

} // namespace Brevantis::ASN1

#endif
