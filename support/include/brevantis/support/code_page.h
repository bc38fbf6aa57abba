#ifndef BREVANTIS_SUPPORT_CODE_PAGE_H
#define BREVANTIS_SUPPORT_CODE_PAGE_H

#include <brevantis/asn1/export.h>

/// @file
/// Conversions between narrow text in a code page and wide text, which is one Unicode code point
/// in each wchar_t. The code page is always UTF-8 (RFC 3629), known by the numbers 0 and 65001; no
/// locale is read or changed.

/// An argument is not among those that a conversion takes.
constexpr unsigned long ERROR_INVALID_PARAMETER = 87;
/// The result does not fit into the target.
constexpr unsigned long ERROR_INSUFFICIENT_BUFFER = 122;

/// Makes wide text of UTF-8. Each octet that belongs to no well-formed sequence becomes U+FFFD.
/// @param codePage 0 or 65001
/// @param flags 0
/// @param text not null
/// @param size octets of @p text, above 0; -1: up to and including its terminator, which then
///        counts in the result too
/// @param target receives the characters; untouched on failure. Not the memory of @p text
/// @param targetSize characters that @p target holds; 0: nothing is written and @p target may be
///        null
/// @return characters written, or with a @p targetSize of 0 characters needed. 0 on failure, and
///         then GetLastError() gives ERROR_INSUFFICIENT_BUFFER when they do not fit, or
///         ERROR_INVALID_PARAMETER for any other argument than told or a result above INT_MAX
BREVANTIS_ASN1_API int MultiByteToWideChar(unsigned codePage, unsigned long flags, const char* text,
                                           int size, wchar_t* target, int targetSize) noexcept;

/// Makes UTF-8 of wide text. Surrogates and characters above U+10FFFF, which UTF-8 cannot hold,
/// become the replacement, one each.
/// @param codePage 0 or 65001
/// @param flags 0
/// @param text not null
/// @param size characters of @p text, above 0; -1: up to and including its terminator, which then
///        counts in the result too
/// @param target receives the octets; untouched on failure. Not the memory of @p text
/// @param targetSize octets that @p target holds; 0: nothing is written and @p target may be null
/// @param defaultChar points to the replacement, one ASCII character; null: '?'
/// @param usedDefaultChar receives 1 when a replacement was needed, otherwise 0; untouched on
///        failure. May be null
/// @return octets written, or with a @p targetSize of 0 octets needed; 0 on failure, as for
///         MultiByteToWideChar
BREVANTIS_ASN1_API int WideCharToMultiByte(unsigned codePage, unsigned long flags,
                                           const wchar_t* text, int size, char* target,
                                           int targetSize, const char* defaultChar,
                                           int* usedDefaultChar) noexcept;

/// The last error of the calling thread: what the two conversions or SetLastError left. A success
/// leaves it as it was; a thread starts with 0.
BREVANTIS_ASN1_API unsigned long GetLastError() noexcept;

/// Sets what GetLastError() gives in the calling thread.
BREVANTIS_ASN1_API void SetLastError(unsigned long error) noexcept;

#endif
