#ifndef BREVANTIS_ASN1_TEXT_TYPES_H
#define BREVANTIS_ASN1_TEXT_TYPES_H

#include <brevantis/asn1/asn1data/describe.h>
#include <brevantis/asn1/text/export.h>

/// @file
/// The types that the library brings along, by name.

namespace asn1text {

/// Finds a type that the library brings along.
/// @param name of the catalogue, "Certificate"; or of <brevantis/asn1/asn1published.h>,
///        "PublishedKeys.RSAPrivateKey", without the module too where the catalogue has no such
///        name
/// @return null when there is none
BREVANTIS_ASN1_TEXT_API const asn1data::TypeDescription* findType(const char* name) noexcept;

/// The published type of the same name as one of the catalogue, which is narrower.
/// @return null when there is none
BREVANTIS_ASN1_TEXT_API const asn1data::TypeDescription*
publishedForm(const asn1data::TypeDescription& type) noexcept;

} // namespace asn1text

#endif
