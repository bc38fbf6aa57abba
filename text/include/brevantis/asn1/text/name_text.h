#ifndef BREVANTIS_ASN1_TEXT_NAME_TEXT_H
#define BREVANTIS_ASN1_TEXT_NAME_TEXT_H

#include <optional>
#include <string>

#include <brevantis/asn1/text/export.h>
#include <brevantis/asn1/text/names.h>
#include <brevantis/asn1/text/octets.h>

/// @file
/// Distinguished names in a line.

namespace asn1text {

/// A distinguished name in one line, "C=DE,O=Test,CN=Test CA": its parts in the order of the
/// message, several attributes of one part joined by "+", with the escapes of RFC 4514. Attributes
/// without a short name have the one that @p names tell, or their dots; values that are no text are
/// "#" and their encoding in hexadecimal digits.
/// @param name an encoded RDNSequence
/// @return the line in UTF-8; nothing when the octets are none, or more than 64 KB
/// @throws std::bad_alloc
BREVANTIS_ASN1_TEXT_API std::optional<std::string>
nameText(Octets name, const IdentifierNames& names = IdentifierNames::ofLibrary());

} // namespace asn1text

#endif
