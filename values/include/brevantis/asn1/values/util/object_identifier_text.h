#ifndef BREVANTIS_ASN1_VALUES_UTIL_OBJECT_IDENTIFIER_TEXT_H
#define BREVANTIS_ASN1_VALUES_UTIL_OBJECT_IDENTIFIER_TEXT_H

#include <brevantis/asn1/export.h>
#include <brevantis/asn1/runtime/object_identifier.h>
#include <brevantis/support/blob.h>
#include <brevantis/support/text.h>

/// @file
/// Object identifiers (X.660) and their dotted text, as the value classes hold them.

namespace Brevantis::ASN1 {

/// Reads a dotted text. Blanks may stand around the arcs, a sign in front of them, and the first
/// two arcs are not held to X.660. Arcs are cut to their low 32 bits; a last arc of 4294967295 is
/// refused.
/// @param text terminated; null is no identifier
/// @param oid receives the arcs, also those in front of a failure
/// @return 0; 1 for a text that is no identifier or has more than 128 arcs
BREVANTIS_ASN1_API unsigned str2oid(const char* text, ASN1OBJID* oid);

/// Writes the dotted text.
/// @param text receives the text and its terminator, which `cbData` counts
/// @return true
BREVANTIS_ASN1_API bool oid2str(CBlob& text, const ASN1OBJID* oid);

/// The identifier of a dotted text.
/// @throws ATL::CAtlException with E_INVALIDARG when the text is none
BREVANTIS_ASN1_API ASN1OBJID toASN1OBJID(const char* text);

/// The dotted text of an identifier; empty for no arcs.
BREVANTIS_ASN1_API CStringProxy toOID(const ASN1OBJID& oid);

} // namespace Brevantis::ASN1

#endif
