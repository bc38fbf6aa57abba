#ifndef BREVANTIS_ASN1_RUNTIME_VALUE_COPY_H
#define BREVANTIS_ASN1_RUNTIME_VALUE_COPY_H

#include <brevantis/asn1/export.h>
#include <brevantis/asn1/runtime/object_identifier.h>
#include <brevantis/asn1/runtime/value_types.h>

/// @file
/// Deep copies of plain values to the heap of a context; rtCopyOID stands with the identifiers.
///
/// Every function returns 1 or, on failure, 0, and records nothing. Blocks live as long as the
/// heap. When memory is out, or a source claims content at a null pointer, the target is empty.

struct ASN1CTXT;

/// Copies bits into a caller's array.
/// @param ctxt not used, may be null
/// @param numbits bits at @p source
/// @param targetBits receives @p numbits
/// @param target at least (@p numbits + 7) / 8 octets
/// @return 1; 0 for null pointers, and also for 0 bits, though the count is stored then
BREVANTIS_ASN1_API int rtCopyBitStr(ASN1CTXT* ctxt, unsigned int numbits,
                                    const unsigned char* source, unsigned int* targetBits,
                                    unsigned char* target) noexcept;

/// Copies octets into a caller's array.
/// @param ctxt not used, may be null
/// @param numocts octets at @p source
/// @param targetOctets receives @p numocts
/// @param target at least @p numocts octets
/// @return 1; 0 for null pointers, and also for 0 octets, though the count is stored then
BREVANTIS_ASN1_API int rtCopyOctStr(ASN1CTXT* ctxt, unsigned int numocts,
                                    const unsigned char* source, unsigned int* targetOctets,
                                    unsigned char* target) noexcept;

/// Copies a BIT STRING into a new block; no block for no bits.
/// @return 1; 0 for a null record or when memory is out
BREVANTIS_ASN1_API int rtCopyDynBitStr(ASN1CTXT* ctxt, const ASN1TDynBitStr* source,
                                       ASN1TDynBitStr* target) noexcept;

/// Copies an OCTET STRING into a new block; no block for no octets.
/// @return 1; 0 for a null record or when memory is out
BREVANTIS_ASN1_API int rtCopyDynOctStr(ASN1CTXT* ctxt, const ASN1TDynOctStr* source,
                                       ASN1TDynOctStr* target) noexcept;

/// Copies a terminated text, terminator included, into a new block.
/// @param target receives the copy, null when memory is out
/// @return 1; 0 for a null argument, nothing being stored then, or when memory is out
BREVANTIS_ASN1_API int rtCopyCharStr(ASN1CTXT* ctxt, const char* source,
                                     const char** target) noexcept;

/// Copies a BMPString into a new block; no block for no characters.
/// @return 1; 0 for a null record or when memory is out
BREVANTIS_ASN1_API int rtCopy16BitCharStr(ASN1CTXT* ctxt, const Asn116BitCharString* source,
                                          Asn116BitCharString* target) noexcept;

/// Copies a UniversalString into a new block; no block for no characters.
/// @return 1; 0 for a null record or when memory is out
BREVANTIS_ASN1_API int rtCopy32BitCharStr(ASN1CTXT* ctxt, const Asn132BitCharString* source,
                                          Asn132BitCharString* target) noexcept;

#endif
