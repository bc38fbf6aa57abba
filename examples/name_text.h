#ifndef EXAMPLES_NAME_TEXT_H
#define EXAMPLES_NAME_TEXT_H

#include <string>

#include <brevantis/asn1/asn1data/x509.h>

/// What a certificate's owner should be called on a screen: the first common name, else the first
/// organisation or organisational unit of the name, else "-".
/// @return UTF-8 that is safe to print, see displayText
std::string displayName(const asn1data::ASN1T_Name& name);

/// Text of an encoded string of any of the types that names are made of, in UTF-8. Characters that
/// would steer a terminal or turn the direction of the line are written as \u{NNNN}, octets that
/// are no UTF-8 as \xNN, a backslash as two. T61String is taken as Latin-1, as its writers mean it.
/// @param element the whole element, header included
/// @return the text, "-" for an element that is not a string
std::string displayText(const unsigned char* element, unsigned size);

#endif
