#ifndef BREVANTIS_ASN1_VALUES_SRC_TYPES_NAME_TEXT_H
#define BREVANTIS_ASN1_VALUES_SRC_TYPES_NAME_TEXT_H

#include <string>

#include <brevantis/support/blob.h>

/// @file
/// The text of names, built in one string.

namespace Brevantis::ASN1 {

/// Appends what decodeCharString gives, and fails as that does.
void appendCharString(std::wstring& text, const CBlob& encoded);

/// Appends the short name of an identifier as CATAVRegister::typeToStr gives it, "=", and the text
/// of a value as CATAVRegister::valueToStr gives it.
void appendPair(std::wstring& text, const char* oid, const CBlob& value);

} // namespace Brevantis::ASN1

#endif
