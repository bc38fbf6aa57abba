#ifndef BREVANTIS_ASN1_VALUES_UTIL_TEXT_CONVERSION_H
#define BREVANTIS_ASN1_VALUES_UTIL_TEXT_CONVERSION_H

#include <string>

#include <brevantis/asn1/export.h>

/// @file
/// Narrow and wide text. Narrow text is in code page 0, which is UTF-8. A null pointer stands for
/// the empty text.

namespace Brevantis::ASN1 {

/// Narrows a text whose characters take one octet each.
/// @param text terminated
/// @throws ATL::CAtlException with the code of AtlThrowLastWin32 when the narrow text needs more
///         octets than @p text has characters
BREVANTIS_ASN1_API std::string tostring(const wchar_t* text);
/// The same: @p text points to `wchar_t` units, whatever its type says.
BREVANTIS_ASN1_API std::string tostring(const unsigned short* text);
/// The decimal text of a number.
BREVANTIS_ASN1_API std::string tostring(int number);

/// Widens a text. Octets that are no UTF-8 become U+FFFD.
/// @param text terminated
BREVANTIS_ASN1_API std::wstring towstring(const char* text);
/// The decimal text of a number.
BREVANTIS_ASN1_API std::wstring towstring(int number);

} // namespace Brevantis::ASN1

#endif
