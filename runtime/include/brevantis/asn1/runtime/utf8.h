#ifndef BREVANTIS_ASN1_RUNTIME_UTF8_H
#define BREVANTIS_ASN1_RUNTIME_UTF8_H

#include <cstddef>

#include <brevantis/asn1/export.h>

/// @file
/// UTF-8 in its wide form of one to six octets (RFC 2279): values up to 0x7FFFFFFF; surrogates and
/// overlong sequences are not refused.
///
/// A failure is the plain result, nothing is recorded in a context.

struct ASN1CTXT;

/// Marks of the lead octet for sequences of two to six octets.
extern BREVANTIS_ASN1_API const unsigned char encoding_byte[5];

/// Octets that @p value takes in UTF-8, 1 to 6.
BREVANTIS_ASN1_API unsigned int rtUTF8CharSize(unsigned int value) noexcept;

/// Writes one character.
/// @param target receives the sequence; at least one octet, whatever @p size says
/// @param size octets of @p target, looked at for sequences of two octets and more
/// @return octets written; ASN1S_BUFFER_OVERFLOW when @p size is too small; ASN1S_INVALID_UTF8 for
///         a value above 0x7FFFFFFF
BREVANTIS_ASN1_API int rtUTF8EncodeChar(unsigned int value, char* target,
                                        std::size_t size) noexcept;

/// Reads one character.
/// @param ctxt not used, may be null
/// @param text the lead octet and what follows it
/// @param size in: octets of @p text; out: octets used, unchanged on failure
/// @return the value; ASN1S_INVALID_UTF8 for null pointers, an octet that cannot lead, a bad
///         continuation octet or a sequence cut short by @p size
BREVANTIS_ASN1_API int rtUTF8DecodeChar(ASN1CTXT* ctxt, const char* text,
                                        std::size_t* size) noexcept;

/// Number of characters of a terminated text, judged by lead octets alone. A sequence that the
/// terminator cuts off counts as a character.
/// @return the number; 0 for null; ASN1S_INVALID_UTF8 at an octet that cannot lead;
///         ASN1S_BUFFER_OVERFLOW above 0x7FFFFFFF
BREVANTIS_ASN1_API int rtUTF8Len(const char* text) noexcept;

/// A count of characters that goes on from one piece of a text to the next.
struct ASN1UTF8Count {
    int characters;       ///< as rtUTF8Len counts them so far, or its failure
    unsigned int missing; ///< octets of the last character that the next piece holds
    bool ended;           ///< at a zero octet or a bad one; what follows does not count
};

/// Counts the characters of one more piece.
/// @param count all zero for the first piece
BREVANTIS_ASN1_API void rtUTF8CountPiece(ASN1UTF8Count* count, const unsigned char* octets,
                                         std::size_t size) noexcept;

/// Octets of a terminated text in front of its terminator; 0 for null.
BREVANTIS_ASN1_API std::size_t rtUTF8LenBytes(const char* text) noexcept;

/// Copies a terminated text to the heap of @p ctxt.
/// @return the copy with its terminator; null for a null text or when memory is out
BREVANTIS_ASN1_API char* rtUTF8Strdup(ASN1CTXT* ctxt, const char* text) noexcept;

/// Converts a terminated text to wide characters; no terminator is written. A last sequence that
/// the terminator cuts off yields the bits gathered so far.
/// @param ctxt not used, may be null
/// @param target receives the characters; null to check the text only
/// @param capacity characters of @p target, of which at most 0x7FFFFFFF are used
/// @return characters written, 0 without a target; ASN1S_BUFFER_OVERFLOW when more than @p capacity
///         are there; ASN1S_INVALID_UTF8 for an octet that cannot lead or a bad continuation octet.
///         What was converted until then stands in @p target
BREVANTIS_ASN1_API int rtUTF8ToWCS(ASN1CTXT* ctxt, const char* text, wchar_t* target,
                                   std::size_t capacity) noexcept;

/// Converts wide characters to UTF-8; no terminator is written beyond one that @p count includes.
/// @param ctxt not used, may be null
/// @param count characters of @p text
/// @param size octets of @p target, of which at most 0x7FFFFFFF are used. A sequence of two octets
///        or more must leave one octet free behind it
/// @return octets written; ASN1S_BUFFER_OVERFLOW when @p target is too small; ASN1S_INVALID_UTF8
///         for a negative character
BREVANTIS_ASN1_API int rtWCSToUTF8(ASN1CTXT* ctxt, const wchar_t* text, std::size_t count,
                                   char* target, std::size_t size) noexcept;

#endif
