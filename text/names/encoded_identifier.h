#ifndef BREVANTIS_ASN1_TEXT_NAMES_ENCODED_IDENTIFIER_H
#define BREVANTIS_ASN1_TEXT_NAMES_ENCODED_IDENTIFIER_H

#include <brevantis/asn1/runtime/object_identifier.h>
#include <brevantis/asn1/text/octets.h>

namespace asn1text {

/// Reads the OBJECT IDENTIFIER that octets begin with.
/// @return octets of it; 0 when there is none, and @p identifier is as it was
std::size_t readEncoded(Octets octets, ASN1OBJID& identifier);

} // namespace asn1text

#endif
