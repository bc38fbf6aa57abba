#ifndef BREVANTIS_ASN1_RUNTIME_CHARACTER_CLASSES_H
#define BREVANTIS_ASN1_RUNTIME_CHARACTER_CLASSES_H

#include <array>

#include <brevantis/asn1/export.h>

/// @file
/// Classes of the ASCII characters, independent of any locale.

/// Class flags of a character.
enum ASN1CharacterClass : unsigned char {
    ASN1CharUpperCase = 0x01,
    ASN1CharLowerCase = 0x02,
    ASN1CharDigit = 0x04,
    ASN1CharWhiteSpace = 0x08,
    ASN1CharPunctuation = 0x10,
    ASN1CharControl = 0x20,
    ASN1CharHexadecimal = 0x40, ///< a letter that is a hexadecimal digit
    ASN1CharBlank = 0x80
};

/// Flags by character value; 0 from 128 on.
extern BREVANTIS_ASN1_API const std::array<unsigned char, 256> rtCtypeTable;

#endif
