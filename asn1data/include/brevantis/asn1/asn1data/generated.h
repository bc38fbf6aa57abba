#ifndef BREVANTIS_ASN1_ASN1DATA_GENERATED_H
#define BREVANTIS_ASN1_ASN1DATA_GENERATED_H

#include <initializer_list>

#include <brevantis/asn1/asn1data/describe.h>
#include <brevantis/asn1/runtime/message_buffer.h>
#include <brevantis/asn1/runtime/status.h>

/// @file
/// What the sources made by asn1gen have in common besides the engine.

namespace asn1data {

/// The identifier octets that a value can begin with, listed.
constexpr IdentifierSet beginsWith(std::initializer_list<unsigned char> octets) {
    IdentifierSet set{};
    for (const unsigned char octet : octets) {
        set.bits[octet >> 6] |= 1ULL << (octet & 63);
    }
    return set;
}

/// An open type begins with anything but an end-of-contents (X.690, 8.1.5).
constexpr IdentifierSet beginsWithAny() {
    return IdentifierSet{{~1ULL, ~0ULL, ~0ULL, ~0ULL}};
}

/// No constraint.
constexpr Constraint unconstrained{nullptr, 0};

/// Any of these ranges.
template <unsigned Count>
constexpr Constraint within(const ValueRange (&ranges)[Count]) {
    return {ranges, Count};
}

namespace family {

/// Copies the value of a control object on to its context's heap, for another object to serve.
/// @throws ASN1MessageBuffer::RTLError with ASN1S_NO_MEMORY when memory is out
template <class Control>
auto& copiedValue(Control& other) {
    auto* const copy = other.getCopy(nullptr);
    if (copy == nullptr) {
        throw ASN1MessageBuffer::RTLError(ASN1S_NO_MEMORY);
    }
    return *copy;
}

} // namespace family

} // namespace asn1data

#endif
