#ifndef BREVANTIS_ASN1_RUNTIME_BIT_STRING_H
#define BREVANTIS_ASN1_RUNTIME_BIT_STRING_H

#include <brevantis/asn1/export.h>
#include <brevantis/asn1/runtime/value_types.h>

/// @file
/// Coders of BIT STRING (X.690, 8.6): any BER form in, the primitive definite form out. The first
/// bit of a value is the high bit of its first octet.
///
/// Of a constructed string only the last segment gives up its count of unused bits. The first octet
/// of every other segment stays in the value as data, and a constructed segment counts as data as a
/// whole. So a value from several segments is not the one that X.690, 8.6.4 has in mind.

struct ASN1CTXT;

/// Writes a BIT STRING.
/// @param data the bits; unused bits of the last octet go out as they stand
/// @param numbits bits in @p data; trailing zero bits are not trimmed
/// @return octets written; 0, with nothing written, for bits without @p data, which counts as an
///         absent value; ASN1S_BUFFER_OVERFLOW when a caller-owned buffer is full; ASN1S_NO_MEMORY
///         when memory is out
BREVANTIS_ASN1_API int xe_bitstr(ASN1CTXT* ctxt, const unsigned char* data, unsigned int numbits,
                                 ASN1TagType tagging) noexcept;

/// Reads a BIT STRING.
/// @param data receives the bits: a block of the context's heap or, with ASN1F_NO_COPY and a
///        primitive form, a pointer into the message, which must then outlive the value; null for
///        an empty string
/// @param numbits receives the count of bits; 0 after a failure
/// @param length with ASN1TagImplicit the length of the content, or ASN1IndefiniteLength
/// @return 0, or a status. Recorded: ASN1S_END_OF_BUFFER for a segment past the end of the message,
///         ASN1S_TAG_NOT_FOUND for another tag, ASN1S_INVALID_LENGTH for bad lengths and missing
///         end-of-contents octets, ASN1S_NO_MEMORY when memory is out, ASN1S_STRING_OVERFLOW for a
///         segment that exceeds the string, ASN1S_BAD_TAG for a segment of another tag in a string
///         of indefinite length. Not recorded: ASN1S_END_OF_BUFFER for content past the end,
///         ASN1S_INVALID_LENGTH for unused bits of an empty string, ASN1S_STRING_OVERFLOW for more
///         bits than 32 bits can count, ASN1S_BAD_VALUE for more than 7 unused bits
BREVANTIS_ASN1_API int xd_bitstr(ASN1CTXT* ctxt, const unsigned char** data, unsigned int* numbits,
                                 ASN1TagType tagging, int length) noexcept;

/// Reads a BIT STRING into a buffer.
/// @param buffer the caller's, of the whole octets that `*numbits` bits take
/// @param numbits in: capacity of @p buffer in bits, where 0 means that it holds any value; out, on
///        success: bits read
/// @param tagging ASN1TagExplicit takes a primitive element only
/// @param length with ASN1TagImplicit the length of the content, or ASN1IndefiniteLength, whose
///        end-of-contents octets are left for the caller
/// @return 0, or a status as for xd_bitstr; ASN1S_STRING_OVERFLOW also when the content exceeds the
///         capacity, recorded for a constructed form only
BREVANTIS_ASN1_API int xd_bitstr_s(ASN1CTXT* ctxt, unsigned char* buffer, unsigned int* numbits,
                                   ASN1TagType tagging, int length) noexcept;

#endif
