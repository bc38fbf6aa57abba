#include "identifier_text.h"

#include <brevantis/asn1/text/names.h>

namespace derview {

std::string identifierText(const ASN1OBJID& identifier) {
    const char* const name = identifierName(identifier);
    const std::string dotted = dottedText(identifier);
    return name != nullptr ? std::string(name) + " (" + dotted + ")" : dotted;
}

} // namespace derview
