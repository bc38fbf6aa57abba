#ifndef RUNTIME_SRC_HEADER_OCTETS_H
#define RUNTIME_SRC_HEADER_OCTETS_H

#include <cstdint>

#include <brevantis/asn1/runtime/header.h>
#include <brevantis/asn1/runtime/status.h>

/// @file
/// The one place that takes identifier and length octets apart, for the calls with a context and
/// those without one.

namespace runtime_detail {

/// Octets in front of a reader. The place stands behind what has been read, after a failure too.
struct OctetReader {
    const unsigned char* octets;
    std::uint32_t place;
    std::uint32_t end;

    bool ended() const noexcept { return place >= end; }
    unsigned char take() noexcept { return octets[place++]; }
};

/// Reads identifier octets.
/// @return 0; ASN1S_END_OF_BUFFER; ASN1S_BAD_TAG
inline int readTagOctets(OctetReader& reader, ASN1TAG* tag) noexcept {
    *tag = 0;
    if (reader.ended()) {
        return ASN1S_END_OF_BUFFER;
    }
    const unsigned char first = reader.take();
    if ((first & 0x1F) != ASN1LongTagNumber) {
        *tag = rtTagOfOctet(first);
        return ASN1S_SUCCESS;
    }
    // X.690, 8.1.2.4.2, with leading zero octets (against its item c) and numbers below 31
    // tolerated as encoders with fixed-width tags write them. Four octets cannot exceed the limit,
    // nine are the most that any such encoder uses.
    std::uint32_t number = 0;
    for (int position = 1;; ++position) {
        if (reader.ended()) {
            return ASN1S_END_OF_BUFFER;
        }
        const unsigned char octet = reader.take();
        number = (number << 7) | (octet & 0x7FU);
        if (position >= 5 && number > ASN1TagNumberMask) {
            return ASN1S_BAD_TAG;
        }
        if ((octet & 0x80) == 0) {
            break;
        }
        if (position == 9) {
            return ASN1S_BAD_TAG;
        }
    }
    *tag = ((first & 0xE0U) << 24) | number;
    return ASN1S_SUCCESS;
}

/// Reads length octets. A length of more than 31 bits comes out negative, and the one that looks
/// like ASN1IndefiniteLength as that.
/// @return 0; ASN1S_END_OF_BUFFER; ASN1S_INVALID_LENGTH for more than four octets
inline int readLengthOctets(OctetReader& reader, int* length) noexcept {
    *length = 0;
    if (reader.ended()) {
        return ASN1S_END_OF_BUFFER;
    }
    const unsigned char first = reader.take();
    if (first < 0x80) { // short form, X.690, 8.1.3.4
        *length = first;
        return ASN1S_SUCCESS;
    }
    if (first == 0x80) { // indefinite form, X.690, 8.1.3.6
        *length = ASN1IndefiniteLength;
        return ASN1S_SUCCESS;
    }
    const int count = first & 0x7F;
    if (count > 4) { // X.690, 8.1.3.5 allows more octets; no content of 4 GB can be held
        return ASN1S_INVALID_LENGTH;
    }
    std::uint32_t value = 0;
    for (int i = 0; i < count; ++i) {
        if (reader.ended()) {
            return ASN1S_END_OF_BUFFER;
        }
        value = (value << 8) | reader.take();
    }
    // Kept: FF FF D8 F1 comes out as ASN1IndefiniteLength.
    *length = static_cast<int>(value);
    return ASN1S_SUCCESS;
}

} // namespace runtime_detail

#endif
