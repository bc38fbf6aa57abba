#ifndef BREVANTIS_ASN1_RUNTIME_OBJECT_IDENTIFIER_CODING_H
#define BREVANTIS_ASN1_RUNTIME_OBJECT_IDENTIFIER_CODING_H

#include <brevantis/asn1/export.h>
#include <brevantis/asn1/runtime/object_identifier.h>
#include <brevantis/asn1/runtime/value_types.h>

/// @file
/// Coders of OBJECT IDENTIFIER (X.690, 8.19).

struct ASN1CTXT;

/// Reads an OBJECT IDENTIFIER.
/// @param value receives the arcs. A last number whose final octet is missing is kept as far as it
///        goes, and numbers beyond 32 bits lose their high bits
/// @param length with ASN1TagImplicit the length of the content
/// @return 0, or a status. Recorded: ASN1S_END_OF_BUFFER for content past the end of the message,
///         ASN1S_TAG_NOT_FOUND for another tag, ASN1S_INVALID_LENGTH for a bad length or no
///         content. Not recorded: ASN1S_INVALID_OBJID for more than 128 arcs, `value` then holding
///         the first 128
BREVANTIS_ASN1_API int xd_objid(ASN1CTXT* ctxt, ASN1OBJID* value, ASN1TagType tagging,
                                int length) noexcept;

/// Writes an OBJECT IDENTIFIER.
/// @return octets written; ASN1S_INVALID_OBJID for a null @p value, fewer than 2 or more than 128
///         arcs, a first arc above 2, or a second one above 39 where the first is 0 or 1;
///         ASN1S_BUFFER_OVERFLOW when a caller-owned buffer is full; ASN1S_NO_MEMORY when memory is
///         out
BREVANTIS_ASN1_API int xe_objid(ASN1CTXT* ctxt, ASN1OBJID* value, ASN1TagType tagging) noexcept;

#endif
