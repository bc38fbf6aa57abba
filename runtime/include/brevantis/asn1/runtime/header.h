#ifndef BREVANTIS_ASN1_RUNTIME_HEADER_H
#define BREVANTIS_ASN1_RUNTIME_HEADER_H

#include <brevantis/asn1/export.h>
#include <brevantis/asn1/runtime/context.h>
#include <brevantis/asn1/runtime/value_types.h>

/// @file
/// Identifier and length octets (X.690, 8.1.2 and 8.1.3) by themselves: what every coder reads and
/// writes them with, for programs that need neither a context nor a heap for it.

/// Low five bits of the first identifier octet that announce further ones (X.690, 8.1.2.4).
constexpr ASN1TAG ASN1LongTagNumber = 31;

/// Class, form and, up to 30, number that a first identifier octet tells.
constexpr ASN1TAG rtTagOfOctet(unsigned char identifierOctet) noexcept {
    return (identifierOctet & 0xE0u) << 24 | (identifierOctet & 0x1Fu);
}

/// First identifier octet of a tag, the only one up to number 30.
constexpr unsigned char rtIdentifierOctet(ASN1TAG tag) noexcept {
    const ASN1TAG number = tag & ASN1TagNumberMask;
    return static_cast<unsigned char>((tag >> 24 & 0xE0u) |
                                      (number < ASN1LongTagNumber ? number : ASN1LongTagNumber));
}

/// Identifier octets that a tag takes, in the fewest.
constexpr unsigned int rtTagSize(ASN1TAG tag) noexcept {
    const ASN1TAG number = tag & ASN1TagNumberMask;
    unsigned int size = 1;
    if (number >= ASN1LongTagNumber) {
        for (ASN1TAG rest = number; rest != 0; rest >>= 7) {
            ++size;
        }
    }
    return size;
}

/// Length octets that a length takes, in the fewest (X.690, 10.1).
/// @param length octets of contents, or ASN1IndefiniteLength
constexpr unsigned int rtLengthSize(int length) noexcept {
    unsigned int size = 1;
    if (length >= 0x80) {
        for (auto rest = static_cast<unsigned int>(length); rest != 0; rest >>= 8) {
            ++size;
        }
    }
    return size;
}

/// A header that has been read.
struct ASN1Header {
    ASN1TAG tag;          ///< class, form and number, as ASN1TAG has them
    unsigned int tagSize; ///< identifier octets
    unsigned int size;    ///< identifier and length octets
    int length;           ///< octets of contents, or ASN1IndefiniteLength
};

/// Reads a header. What is behind it is not looked at.
/// @param octets at least @p count octets
/// @param header is written on success
/// @return 0; ASN1S_END_OF_BUFFER when the header goes on behind @p count octets; ASN1S_BAD_TAG for
///         a tag number of more than 29 bits; ASN1S_INVALID_LENGTH for a length of more than four
///         octets, one of more than 31 bits, and an indefinite one in primitive form
BREVANTIS_ASN1_API int rtReadHeader(const unsigned char* octets, unsigned int count,
                                    ASN1Header* header) noexcept;

/// Most octets that rtWriteHeader writes.
enum : unsigned int { ASN1LongestHeader = 11 };

/// Writes a header in the fewest octets.
/// @param octets room for ASN1LongestHeader octets, or for what rtTagSize and rtLengthSize add up
/// to
/// @param length octets of contents, or ASN1IndefiniteLength
/// @return the octets written
BREVANTIS_ASN1_API unsigned int rtWriteHeader(ASN1TAG tag, int length,
                                              unsigned char* octets) noexcept;

/// Makes a context to read with: bound to octets, without a heap until something is allocated on
/// it. Release it with rtFreeContext, which may be left out where nothing was.
/// @param ctxt any storage; what it held is overwritten
/// @param octets the message; null with a @p count of 0
/// @param count the end of the message; nothing behind it is read
BREVANTIS_ASN1_API void rtInitReader(ASN1CTXT* ctxt, const unsigned char* octets,
                                     unsigned int count) noexcept;

#endif
