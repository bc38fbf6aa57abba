#ifndef BREVANTIS_ASN1_RUNTIME_OCTET_STRING_H
#define BREVANTIS_ASN1_RUNTIME_OCTET_STRING_H

#include <brevantis/asn1/export.h>
#include <brevantis/asn1/runtime/value_types.h>

/// @file
/// Coders of OCTET STRING (X.690, 8.7): any BER form in, the primitive definite form out.
///
/// The decoders do not ask for DER. A constructed string consists of primitive segments only. A
/// string of indefinite length takes its own end-of-contents octets with it.

struct ASN1CTXT;

/// Writes an OCTET STRING.
/// @param data the octets; null writes no content, whatever @p numocts says
/// @param numocts octets in @p data
/// @return octets written; ASN1S_BUFFER_OVERFLOW when a caller-owned buffer is full;
///         ASN1S_NO_MEMORY when memory is out
BREVANTIS_ASN1_API int xe_octstr(ASN1CTXT* ctxt, const unsigned char* data, unsigned int numocts,
                                 ASN1TagType tagging) noexcept;

/// Reads an OCTET STRING.
/// @param data receives the octets: a block of the context's heap or, with ASN1F_NO_COPY and a
///        primitive form, a pointer into the message, which must then outlive the value
/// @param numocts receives the count of octets; 0 after a failure
/// @param length with ASN1TagImplicit the length of the content, or ASN1IndefiniteLength
/// @return 0, or a status recorded in the context: ASN1S_END_OF_BUFFER for content past the end of
///         the message, ASN1S_TAG_NOT_FOUND for another tag, ASN1S_INVALID_LENGTH for a bad length
///         or missing end-of-contents octets, ASN1S_NO_MEMORY when memory is out,
///         ASN1S_STRING_OVERFLOW for a segment that exceeds the string, ASN1S_BAD_TAG for a segment
///         of another tag in a string of indefinite length
BREVANTIS_ASN1_API int xd_octstr(ASN1CTXT* ctxt, const unsigned char** data, unsigned int* numocts,
                                 ASN1TagType tagging, int length) noexcept;

/// Reads an OCTET STRING of definite length into a buffer.
/// @param buffer the caller's, of `*size` octets
/// @param size in: capacity of @p buffer, which has to hold the headers of segments too; out, on
///        success: octets read
/// @param tagging ASN1TagExplicit takes a primitive element only
/// @param length with ASN1TagImplicit the length of the content. With ASN1TagExplicit it is used
///        when the message's own length cannot be read; that failure is recorded nevertheless
/// @return 0, or a status recorded in the context: ASN1S_END_OF_BUFFER, ASN1S_TAG_NOT_FOUND,
///         ASN1S_INVALID_LENGTH as for xd_octstr, ASN1S_STRING_OVERFLOW when the content exceeds
///         the capacity
BREVANTIS_ASN1_API int xd_octstr_s(ASN1CTXT* ctxt, unsigned char* buffer, unsigned int* size,
                                   ASN1TagType tagging, int length) noexcept;

#endif
