#ifndef BREVANTIS_ASN1_RUNTIME_SCALAR_H
#define BREVANTIS_ASN1_RUNTIME_SCALAR_H

#include <brevantis/asn1/export.h>
#include <brevantis/asn1/runtime/context.h>
#include <brevantis/asn1/runtime/value_types.h>

/// @file
/// BOOLEAN, INTEGER of up to 32 bits, ENUMERATED and NULL (X.690, 8.2 to 8.4 and 8.8).
///
/// Encoders return the octets added, ASN1S_BAD_VALUE for a null value, or a failure of the buffer
/// (ASN1S_BUFFER_OVERFLOW, ASN1S_NO_MEMORY). With ASN1TagExplicit they write tag and length, and a
/// decoder reads them: a tag octet that differs, its form included, or is not there is
/// ASN1S_TAG_NOT_FOUND. With ASN1TagImplicit the decoder gets the contents' length as an argument.
/// Decoders leave the position behind the value.

/// Writes BOOLEAN: FF for any value but 0 (X.690, 11.1).
BREVANTIS_ASN1_API int xe_boolean(ASN1CTXT* ctxt, unsigned char* value,
                                  ASN1TagType tagging) noexcept;

/// Reads BOOLEAN.
/// @param value receives the octet as it stands: any octet but 0 is true (X.690, 8.2.2)
/// @return 0, or recorded: ASN1S_TAG_NOT_FOUND; ASN1S_INVALID_LENGTH for a length other than 1;
///         ASN1S_END_OF_BUFFER at the end of the buffer
BREVANTIS_ASN1_API int xd_boolean(ASN1CTXT* ctxt, unsigned char* value, ASN1TagType tagging,
                                  int length) noexcept;

/// Writes a signed INTEGER in the fewest octets (X.690, 8.3.2).
BREVANTIS_ASN1_API int xe_integer(ASN1CTXT* ctxt, int* value, ASN1TagType tagging) noexcept;

/// Reads a signed INTEGER of one to four octets, minimal or not.
/// @return 0, or recorded: ASN1S_TAG_NOT_FOUND; ASN1S_VALUE_TOO_BIG for any other length, even when
///         the value would fit; ASN1S_INVALID_LENGTH for length 0; ASN1S_END_OF_BUFFER at the end
///         of the buffer
BREVANTIS_ASN1_API int xd_integer(ASN1CTXT* ctxt, int* value, ASN1TagType tagging,
                                  int length) noexcept;

/// Writes an unsigned INTEGER in the fewest octets, five for values from 0x80000000 on.
BREVANTIS_ASN1_API int xe_unsigned(ASN1CTXT* ctxt, unsigned int* value,
                                   ASN1TagType tagging) noexcept;

/// Reads an unsigned INTEGER. No sign is looked at: FF is 255. No octets at all are 0.
/// @return 0, or recorded: ASN1S_TAG_NOT_FOUND; ASN1S_VALUE_TOO_BIG for more than five octets, or
///         five that do not start with 0; the header's ASN1S_END_OF_BUFFER and
///         ASN1S_INVALID_LENGTH. Contents that end beyond the buffer are ASN1S_END_OF_BUFFER, not
///         recorded
BREVANTIS_ASN1_API int xd_unsigned(ASN1CTXT* ctxt, unsigned int* value, ASN1TagType tagging,
                                   int length) noexcept;

/// Writes a 16-bit unsigned INTEGER in the fewest octets.
BREVANTIS_ASN1_API int xe_uint16(ASN1CTXT* ctxt, unsigned short* value,
                                 ASN1TagType tagging) noexcept;

/// Reads a 16-bit unsigned INTEGER with a one-octet length. A length of 0 takes one octet all the
/// same.
/// @return 0, or recorded: ASN1S_END_OF_BUFFER when the buffer ends (in a message of definite
///         length at once when fewer than three octets are left); ASN1S_TAG_NOT_FOUND;
///         ASN1S_VALUE_TOO_BIG for a length above 3, or 3 octets that do not start with 0
BREVANTIS_ASN1_API int xd_uint16(ASN1CTXT* ctxt, unsigned short* value, ASN1TagType tagging,
                                 int length) noexcept;

/// Writes ENUMERATED. The range is the type's own matter.
BREVANTIS_ASN1_API int xe_enum(ASN1CTXT* ctxt, int* value, ASN1TagType tagging) noexcept;

/// Reads ENUMERATED; the form flag of the context is left alone by an explicit tag.
/// @return 0; ASN1S_TAG_NOT_FOUND or the ASN1S_END_OF_BUFFER behind the tag, neither recorded; the
///         failures of xd_len and xd_integer
BREVANTIS_ASN1_API int xd_enum(ASN1CTXT* ctxt, int* value, ASN1TagType tagging,
                               int length) noexcept;

/// Writes NULL: 05 00, or nothing with ASN1TagImplicit.
BREVANTIS_ASN1_API int xe_null(ASN1CTXT* ctxt, ASN1TagType tagging) noexcept;

/// Reads NULL; with ASN1TagImplicit nothing is looked at.
/// @return 0, or recorded: ASN1S_TAG_NOT_FOUND; ASN1S_INVALID_LENGTH for a length other than 0;
///         ASN1S_END_OF_BUFFER when there is no length octet
BREVANTIS_ASN1_API int xd_null(ASN1CTXT* ctxt, ASN1TagType tagging) noexcept;

#endif
