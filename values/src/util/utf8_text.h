#ifndef BREVANTIS_ASN1_VALUES_SRC_UTIL_UTF8_TEXT_H
#define BREVANTIS_ASN1_VALUES_SRC_UTIL_UTF8_TEXT_H

#include <string>

struct ASN1CTXT;

namespace Brevantis::ASN1 {

/// The UTF-8 form of a wide text in a block of the context's heap.
/// @param failure code of the exception for a character that UTF-8 does not code
/// @throws ATL::CAtlException also with CRYPT_E_ASN1_MEMORY when memory is out
const char* encodeUTF8(ASN1CTXT* ctxt, const wchar_t* text, int failure);

/// The wide form of a UTF-8 text, up to its first zero character. Of a text that breaks off within
/// its last character the bits that are there make the character.
/// @param text null stands for the empty text
/// @param failure code of the exception for text that is no UTF-8
std::wstring decodeUTF8(const char* text, int failure);

} // namespace Brevantis::ASN1

#endif
