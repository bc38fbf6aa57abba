#ifndef BREVANTIS_ASN1_RUNTIME_OBJECT_IDENTIFIER_CODING_H
#define BREVANTIS_ASN1_RUNTIME_OBJECT_IDENTIFIER_CODING_H

#include <brevantis/asn1/export.h>
#include <brevantis/asn1/runtime/object_identifier.h>
#include <brevantis/asn1/runtime/value_types.h>

/// @file
/// Coders of OBJECT IDENTIFIER (X.690 clause 8.19).

struct ASN1CTXT;

/// Reads an OBJECT IDENTIFIER.
/// @param value receives the arcs. A last number whose final octet is missing is kept as far as it
///        goes, and numbers beyond 32 bits lose their high bits
/// @param length with ASN1TagImplicit the length of the content
/// @return 0, or a status. Recorded: -2 for content past the end of the message, -3 for another
///         tag, -5 for a bad length or no content. Not recorded: -4 for more than 128 arcs, `value`
///         then holding the first 128
BREVANTIS_ASN1_API int xd_objid(ASN1CTXT* ctxt, ASN1OBJID* value, ASN1TagType tagging,
                                int length) noexcept;

/// Writes an OBJECT IDENTIFIER.
/// @return octets written; -4 for a null @p value, fewer than 2 or more than 128 arcs, a first arc
///         above 2, or a second one above 39 where the first is 0 or 1; -1 when a caller-owned
///         buffer is full; -12 when memory is out
BREVANTIS_ASN1_API int xe_objid(ASN1CTXT* ctxt, ASN1OBJID* value, ASN1TagType tagging) noexcept;

#endif
