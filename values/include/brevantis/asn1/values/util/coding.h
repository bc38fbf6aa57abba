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
/// Failures are exceptions: CCodingError, an ATL::CAtlException with CRYPT_E_ASN1_INTERNAL, for
/// whatever a coder refuses, which tells where and why; ATL::CAtlException with CRYPT_E_ASN1_MEMORY
/// when a context's memory is out; and what the traits class and the standard containers throw.

namespace Brevantis::ASN1 {

/// What a traits class codes; null where it does not say so.
template <class Traits, class = void>
struct CodedType {
    /// The description that goes with the traits class; null where it tells none.
    static const asn1data::TypeDescription* get() noexcept { return nullptr; }
};
template <class Traits>
struct CodedType<Traits, decltype(static_cast<void>(Traits::type()))> {
    static const asn1data::TypeDescription* get() noexcept { return Traits::type(); }
};

/// Throws for a record that an encoder has refused with a status: where it is only for a size, a
/// message without that check tells the place.
template <class Traits>
[[noreturn]] void throwUnencodable(int status, typename Traits::ASN1_T& record) {
    EncodeBuffer buffer;
    rtCtxtSetFlag(buffer.getCtxtPtr(), ASN1F_TOLERATE_SIZES);
    const int length = Traits::encode(buffer, record);
    throwEncodingError(status, CodedType<Traits>::get(), length >= 0 ? buffer.getMsgPtr() : nullptr,
                       length >= 0 ? static_cast<std::size_t>(length) : 0);
}

/// Encodes a value.
/// @return the complete message
template <class Traits, class Value>
CBlob asn1Encode(const Value& value) {
    EncodeBuffer buffer;
    // The record has a context of its own, whose heap goes when the message has been copied out.
    DecodeBuffer memory;
    typename Traits::ASN1_T record{};
    Traits::set(memory.getCtxtPtr(), record, value);
    const int length = Traits::encode(buffer, record);
    if (length < 0) {
        throwUnencodable<Traits>(length, record);
    }
    return buffer.message(length);
}

/// Decodes a value under a policy. Octets behind the first complete value are not looked at.
/// @param blob has to stay as it is during the call
/// @param value unchanged when the message does not decode
/// @param policy flags (`ASN1F_TOLERATE_OPEN_VALUES`), or flags and limits. Where open values are
///        tolerated, a general name of a kind that CGeneralName does not carry keeps its octets.
///        What was tolerated, asn1data::toleratedFaults lists
template <class Traits, class Value>
void asn1Decode(const CBlob& blob, Value& value, const asn1data::ReadingPolicy& policy) {
    const ReadingScope scope(policy);
    DecodeBuffer buffer(blob);
    typename Traits::ASN1_T record{};
    int status = policy.apply(buffer.getCtxtPtr());
    if (status == 0) {
        status = Traits::decode(buffer, record);
    }
    if (status != 0) {
        throwDecodingError(status, CodedType<Traits>::get(), blob.pbData(), blob.cbData(), policy);
    }
    Traits::get(record, value);
}

/// Decodes a value as messages are read in the thread: under no policy, unless a ReadingScope says
/// otherwise.
template <class Traits, class Value>
void asn1Decode(const CBlob& blob, Value& value) {
    asn1Decode<Traits>(blob, value, ReadingScope::policy());
}

/// Encodes a record.
/// @return the complete message
template <class Traits>
CBlob asn1EncodeT(const typename Traits::ASN1_T& record) {
    EncodeBuffer buffer;
    typename Traits::ASN1_T copy{};
    Traits::copy(buffer.getCtxtPtr(), record, copy);
    const int length = Traits::encode(buffer, copy);
    if (length < 0) {
        throwUnencodable<Traits>(length, copy);
    }
    return buffer.message(length);
}

/// Decodes a record.
/// @param ctxt gives the heap that @p record's content lies on
template <class Traits>
void asn1DecodeT(const CBlob& blob, ASN1CTXT* ctxt, typename Traits::ASN1_T& record) {
    const asn1data::ReadingPolicy& policy = ReadingScope::policy();
    DecodeBuffer buffer(blob);
    typename Traits::ASN1_T decoded{};
    int status = policy.apply(buffer.getCtxtPtr());
    if (status == 0) {
        status = Traits::decode(buffer, decoded);
    }
    if (status != 0) {
        throwDecodingError(status, CodedType<Traits>::get(), blob.pbData(), blob.cbData(), policy);
    }
    Traits::copy(ctxt, decoded, record);
}

} // namespace Brevantis::ASN1

#endif
