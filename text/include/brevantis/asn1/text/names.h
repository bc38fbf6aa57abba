#ifndef BREVANTIS_ASN1_TEXT_NAMES_H
#define BREVANTIS_ASN1_TEXT_NAMES_H

#include <string>
#include <string_view>

#include <brevantis/asn1/runtime/object_identifier.h>
#include <brevantis/asn1/text/export.h>

/// @file
/// Object identifiers as text: dots, and the names of the catalogue's constants and of further
/// well-known identifiers (text/names/names.txt).

namespace asn1text {

/// "1.2.840.113549"
/// @throws std::bad_alloc
BREVANTIS_ASN1_TEXT_API std::string dottedText(const ASN1OBJID& identifier);

/// Reads the dotted form: at least two arcs, the first of them 0, 1 or 2, the second below 40 under
/// 0 and 1.
/// @param identifier receives the arcs; undefined after a failure
/// @return whether it is one, within ASN1MaxSubIds arcs of 32 bits
BREVANTIS_ASN1_TEXT_API bool readDotted(std::string_view text, ASN1OBJID& identifier) noexcept;

/// The name of an identifier, that of the catalogue's constant if there is one.
/// @return a constant text; null when it has none
BREVANTIS_ASN1_TEXT_API const char* identifierName(const ASN1OBJID& identifier) noexcept;

/// Where the name of an identifier comes from.
/// @return a constant text as "RFC 5480"; null when it has no name, or a constant's of the
/// catalogue
BREVANTIS_ASN1_TEXT_API const char* identifierSource(const ASN1OBJID& identifier) noexcept;

/// Finds an identifier by a name, also where the same arcs have several.
/// @param identifier receives the arcs
/// @return whether there is one
BREVANTIS_ASN1_TEXT_API bool findIdentifier(std::string_view name, ASN1OBJID& identifier) noexcept;

} // namespace asn1text

#endif
