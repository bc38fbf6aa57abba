#ifndef BREVANTIS_ASN1_RUNTIME_CHARACTER_CLASSES_H
#define BREVANTIS_ASN1_RUNTIME_CHARACTER_CLASSES_H

#include <array>

#include <brevantis/asn1/export.h>

/// @file
/// Classes of the ASCII characters, independent of any locale.

/// Class flags of a character.
enum ASN1CharacterClass : unsigned char {
    ASN1CharUpperCase = 0x01, ///< A to Z
    ASN1CharLowerCase = 0x02, ///< a to z
    ASN1CharDigit = 0x04,     ///< 0 to 9
    /// Space, and 9 to 13: tab, line feed, vertical tab, form feed, carriage return.
    ASN1CharWhiteSpace = 0x08,
    ASN1CharPunctuation = 0x10, ///< what can be seen and is neither letter nor digit
    ASN1CharControl = 0x20,     ///< 0 to 31 and 127
    ASN1CharHexadecimal = 0x40, ///< a letter that is a hexadecimal digit
    ASN1CharBlank = 0x80        ///< the space alone
};

/// Flags by character value; 0 from 128 on.
extern BREVANTIS_ASN1_API const std::array<unsigned char, 256> rtCtypeTable;

#endif
