#ifndef BREVANTIS_ASN1_VALUES_TYPES_NAME_RFC4514_H
#define BREVANTIS_ASN1_VALUES_TYPES_NAME_RFC4514_H

#include <string>
#include <string_view>

#include <brevantis/asn1/export.h>
#include <brevantis/asn1/values/types/name.h>

/// @file
/// Distinguished names as RFC 4514 writes them, in UTF-8: "CN=Somebody,O=Company\, Ltd.,C=RU", from
/// the leaf of the directory up, with what would be taken for a separator escaped. CName::toString
/// has a form of its own.

namespace Brevantis::ASN1 {

/// A name as RFC 4514 writes it. The types of the table there (CN, L, ST, O, OU, C, STREET, DC,
/// UID) go by their names, with the value as text; of any other the identifier is written, and the
/// encoding of the value as "#" and hexadecimal digits. So is a value that is no character string.
/// fromRfc4514 gives a name of the same types and texts again.
/// @throws ATL::CAtlException with CRYPT_E_ASN1_INTERNAL for the value of a listed type whose
///         string is cut off or damaged
BREVANTIS_ASN1_API std::string toRfc4514(const CName& name);

/// A name from a text of RFC 4514. Types may be in either case, of the table or of CATAVRegister,
/// or identifiers, with "OID." in front or without. Blanks around separators are no part of a value
/// unless they are escaped. A text is encoded as the register tells, UTF8String where it tells
/// nothing; a value that begins with "#" is the encoding itself, one whole element.
/// @return no relative names for the empty text
/// @throws ATL::CAtlException with E_INVALIDARG for a text that is none: a type that is not known,
///         or is no identifier that can be encoded, a missing "=", an escape that is none, octets
///         that are no UTF-8, a character of value 0
BREVANTIS_ASN1_API CName fromRfc4514(std::string_view text);

} // namespace Brevantis::ASN1

#endif
