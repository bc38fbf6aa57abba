#ifndef BREVANTIS_ASN1_TEXT_CHARACTERS_H
#define BREVANTIS_ASN1_TEXT_CHARACTERS_H

#include <cstdint>
#include <string>

#include <brevantis/asn1/text/export.h>
#include <brevantis/asn1/text/octets.h>

/// @file
/// Characters as octets of strings have them, and as UTF-8.

namespace asn1text {

/// How the octets of a character string stand for characters.
enum class CharacterCoding : unsigned char {
    Utf8,   ///< one to four octets (RFC 3629)
    Latin1, ///< one octet a character; what is written into TeletexStrings above 7F, too
    Utf16,  ///< two octets, the high one first (BMPString; surrogate pairs are joined)
    Utf32   ///< four octets, the high one first (UniversalString)
};

/// What octets are that stand for no character: ill-formed UTF-8, a lone surrogate, a number beyond
/// 10FFFF.
constexpr std::uint32_t NoCharacter = 0xFFFFFFFF;

/// A character as it is coded.
struct Character {
    std::uint32_t code; ///< of ISO/IEC 10646, or NoCharacter
    unsigned size;      ///< octets that it takes, at least 1
};

/// Octets that the first character needs, as far as the ones that are there tell: while it is more
/// than there are, the character is not whole.
/// @param octets at least one
BREVANTIS_ASN1_TEXT_API unsigned neededSize(Octets octets, CharacterCoding coding) noexcept;

/// The first character.
/// @param octets at least one
BREVANTIS_ASN1_TEXT_API Character characterAt(Octets octets, CharacterCoding coding) noexcept;

/// Adds a character to a text in UTF-8.
/// @throws std::bad_alloc
BREVANTIS_ASN1_TEXT_API void appendUtf8(std::string& text, std::uint32_t code);

/// The characters as UTF-8; what is no character becomes U+FFFD.
/// @throws std::bad_alloc
BREVANTIS_ASN1_TEXT_API std::string toUtf8(Octets octets, CharacterCoding coding);

} // namespace asn1text

#endif
