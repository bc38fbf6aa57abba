#ifndef BREVANTIS_ASN1_RUNTIME_CHARACTER_STRING_H
#define BREVANTIS_ASN1_RUNTIME_CHARACTER_STRING_H

#include <brevantis/asn1/export.h>
#include <brevantis/asn1/runtime/value_types.h>

/// @file
/// Coders of the character string types (X.690, 8.23). They move octets: alphabets, sizes and
/// encodings of characters are the business of whoever names the tag.
///
/// `tag` is the type's own tag, such as 12 for UTF8String, 30 for BMPString or 28 for
/// UniversalString; the decoders match it in its one-octet form, below 31. Segments of a
/// constructed string carry the tag of OCTET STRING. The decoders always copy, ASN1F_NO_COPY or
/// not.

struct ASN1CTXT;

/// Writes a string of 8-bit characters.
/// @param text NUL-terminated
/// @return octets written; ASN1S_BAD_VALUE for a null @p text; ASN1S_BUFFER_OVERFLOW when a
///         caller-owned buffer is full; ASN1S_NO_MEMORY when memory is out
BREVANTIS_ASN1_API int xe_charstr(ASN1CTXT* ctxt, const char* text, ASN1TagType tagging,
                                  ASN1TAG tag) noexcept;

/// Reads a string of 8-bit characters.
/// @param text receives a NUL-terminated block of the context's heap, never null on success;
///        embedded NUL octets are not looked for
/// @param length with ASN1TagImplicit the length of the content, or ASN1IndefiniteLength
/// @return 0, or a status recorded in the context: ASN1S_END_OF_BUFFER for content past the end of
///         the message, ASN1S_TAG_NOT_FOUND for another tag, ASN1S_INVALID_LENGTH for a bad length
///         or missing end-of-contents octets, ASN1S_NO_MEMORY when memory is out,
///         ASN1S_STRING_OVERFLOW for a segment that exceeds the string, ASN1S_BAD_TAG for a segment
///         of another tag in a string of indefinite length
BREVANTIS_ASN1_API int xd_charstr(ASN1CTXT* ctxt, char** text, ASN1TagType tagging, ASN1TAG tag,
                                  int length) noexcept;

/// Writes a string of 16-bit characters, high octets first.
/// @return octets written; ASN1S_BAD_VALUE for a null @p value or characters without `data`;
///         ASN1S_BUFFER_OVERFLOW when a caller-owned buffer is full or the string exceeds what a
///         length can say; ASN1S_NO_MEMORY when memory is out
BREVANTIS_ASN1_API int xe_16BitCharStr(ASN1CTXT* ctxt, Asn116BitCharString* value,
                                       ASN1TagType tagging, ASN1TAG tag) noexcept;

/// Writes a string of 32-bit characters; otherwise as xe_16BitCharStr.
BREVANTIS_ASN1_API int xe_32BitCharStr(ASN1CTXT* ctxt, Asn132BitCharString* value,
                                       ASN1TagType tagging, ASN1TAG tag) noexcept;

/// Reads a string of 16-bit characters.
/// @param value receives the characters in a block of the context's heap, null for a length of 0;
///        octets at the end that fill no character are dropped
/// @param length with ASN1TagImplicit the length of the content, or ASN1IndefiniteLength
/// @return 0, or a status recorded in the context, as for xd_charstr
BREVANTIS_ASN1_API int xd_16BitCharStr(ASN1CTXT* ctxt, Asn116BitCharString* value,
                                       ASN1TagType tagging, ASN1TAG tag, int length) noexcept;

/// Reads a string of 32-bit characters; otherwise as xd_16BitCharStr.
BREVANTIS_ASN1_API int xd_32BitCharStr(ASN1CTXT* ctxt, Asn132BitCharString* value,
                                       ASN1TagType tagging, ASN1TAG tag, int length) noexcept;

#endif
