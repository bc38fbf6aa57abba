#ifndef BREVANTIS_ASN1_VALUES_SRC_UTIL_WIDE_TEXT_H
#define BREVANTIS_ASN1_VALUES_SRC_UTIL_WIDE_TEXT_H

#include <string>
#include <string_view>

namespace Brevantis::ASN1 {

/// Appends a text of ASCII characters, as most are, which reads alike in every conversion.
/// @return false, with nothing appended, for any other text
bool appendASCII(std::wstring& text, std::string_view narrow);

/// Appends a text in the way of `towstring`.
void appendWide(std::wstring& text, std::string_view narrow);

} // namespace Brevantis::ASN1

#endif
