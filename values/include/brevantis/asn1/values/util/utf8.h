#ifndef BREVANTIS_ASN1_VALUES_UTIL_UTF8_H
#define BREVANTIS_ASN1_VALUES_UTIL_UTF8_H

#include <string>
#include <string_view>

#include <brevantis/asn1/export.h>

/// @file
/// UTF-8 beside the wide text of the value classes, one character in each `wchar_t`.

namespace Brevantis::ASN1 {

/// Wide text as UTF-8, characters of value 0 inside it too.
/// @throws ATL::CAtlException with E_INVALIDARG for a character that UTF-8 does not code: a
///         surrogate, or one above U+10FFFF
BREVANTIS_ASN1_API std::string toUtf8(std::wstring_view text);

/// UTF-8 as wide text, characters of value 0 inside it too.
/// @throws ATL::CAtlException with E_INVALIDARG for octets that are no UTF-8 (RFC 3629)
BREVANTIS_ASN1_API std::wstring fromUtf8(std::string_view text);

} // namespace Brevantis::ASN1

#endif
