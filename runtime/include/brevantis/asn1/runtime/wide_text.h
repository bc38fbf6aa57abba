#ifndef BREVANTIS_ASN1_RUNTIME_WIDE_TEXT_H
#define BREVANTIS_ASN1_RUNTIME_WIDE_TEXT_H

#include <cstddef>

#include <brevantis/asn1/export.h>
#include <brevantis/asn1/runtime/value_types.h>

/// @file
/// Conversions between the platform's texts and UniversalString. They are per character and know no
/// encoding.

struct ASN1CTXT;

/// Permitted alphabet of a 32-bit string.
struct Asn132BitCharSet {
    unsigned int nchars;      ///< values in `data`; 0: every value within the bounds
    const unsigned int* data; ///< the permitted values
    unsigned int firstChar;   ///< lowest permitted value
    unsigned int lastChar;    ///< highest permitted value
};

/// Makes a character of each octet of a terminated text.
/// @param target receives the count and a block of the heap of @p ctxt, 4 octets for each octet of
///        @p text
/// @param alphabet drops every value that it does not permit; null permits all
/// @return @p target; null for a null text or target, or when memory is out, the target then being
///         empty
BREVANTIS_ASN1_API Asn132BitCharString* rtCToUCSString(ASN1CTXT* ctxt, const char* text,
                                                       Asn132BitCharString* target,
                                                       const Asn132BitCharSet* alphabet) noexcept;

/// The same for a terminated wide text, of whose characters the low 16 bits count.
BREVANTIS_ASN1_API Asn132BitCharString* rtWCSToUCSString(ASN1CTXT* ctxt, const wchar_t* text,
                                                         Asn132BitCharString* target,
                                                         const Asn132BitCharSet* alphabet) noexcept;

/// Copies the characters below 0x10000 and drops the others.
/// @param source the string, not null
/// @param target receives the characters, and a terminator if there is room behind them
/// @param capacity characters of @p target; when the text fills it there is no terminator
/// @return @p target
BREVANTIS_ASN1_API wchar_t* rtUCSToWCSString(const Asn132BitCharString* source, wchar_t* target,
                                             std::size_t capacity) noexcept;

#endif
