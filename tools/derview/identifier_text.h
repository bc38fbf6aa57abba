#ifndef DERVIEW_IDENTIFIER_TEXT_H
#define DERVIEW_IDENTIFIER_TEXT_H

#include <string>

#include <brevantis/asn1/text/names.h>

#include "octets.h"

namespace derview {

/// With its name if it has one: "id_at_commonName (2.5.4.3)".
std::string identifierText(const ASN1OBJID& identifier, const IdentifierNames& names);

} // namespace derview

#endif
