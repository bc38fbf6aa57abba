#ifndef BREVANTIS_ASN1_VALUES_TYPES_CHARACTER_STRING_H
#define BREVANTIS_ASN1_VALUES_TYPES_CHARACTER_STRING_H

#include <brevantis/asn1/export.h>
#include <brevantis/support/blob.h>
#include <brevantis/support/text.h>

/// @file
/// Encodings of the character strings that names are made of (X.680, 41; DirectoryString of RFC
/// 5280, 4.1.2.4) and their wide text, one character in each `wchar_t`.

namespace Brevantis::ASN1 {

/// How a text is written.
enum StringType : unsigned {
    StringTypeDefault = 0,   ///< as the attribute register tells for the attribute's type
    StringTypeUTF8 = 1,      ///< UTF8String
    StringTypePrintable = 2, ///< PrintableString
    StringTypeTeletex = 3,   ///< TeletexString
    StringTypeBMP = 4,       ///< BMPString
    StringTypeIA5 = 5,       ///< IA5String
    StringTypeUniversal = 6  ///< UniversalString
};

/// Reads a string of one of the types above, or a NumericString, in its primitive form. Octets
/// behind the string are not looked at.
///
/// The content of the types with 8-bit characters, TeletexString too, is taken as UTF-8. Octets
/// that are none become U+FFFD there, but make a UTF8String fail. A UTF8String that breaks off
/// within its last character does not: the bits that are there make the character.
/// @warning The text of a string ends in front of its first zero character, so that two different
///          strings may have the same text. Of a UniversalString the characters above U+FFFF are
///          left out; those of a BMPString are taken singly, surrogates too.
/// @throws ATL::CAtlException with CRYPT_E_ASN1_INTERNAL when @p encoded is no such string, with
///         that code or CRYPT_E_ASN1_MEMORY when memory is out
BREVANTIS_ASN1_API CWStringProxy decodeCharString(const CBlob& encoded);

/// Writes a text as a string, header included. Whether its characters belong to the string's
/// alphabet is not looked at.
/// @warning BMPString and UniversalString take the low 16 bits of each character and drop the rest.
/// @param text terminated; null stands for the empty text
/// @param type any but StringTypeDefault
/// @throws ATL::CAtlException with CRYPT_E_ASN1_INTERNAL for another @p type or a character that
///         UTF-8 does not code, with the code of AtlThrowLastWin32 when PrintableString,
///         TeletexString or IA5String is asked for and a character is not ASCII, with
///         CRYPT_E_ASN1_INTERNAL or CRYPT_E_ASN1_MEMORY when memory is out
BREVANTIS_ASN1_API CBlob encodeCharString(const wchar_t* text, StringType type);

} // namespace Brevantis::ASN1

#endif
