#include "identifier_text.h"

#include <brevantis/asn1/asn1data/describe.h>

namespace derview {

std::string dottedText(const ASN1OBJID& identifier) {
    std::string text;
    for (unsigned i = 0; i < identifier.numids; ++i) {
        text += (i == 0 ? "" : ".") + std::to_string(identifier.subid[i]);
    }
    return text;
}

std::string identifierText(const ASN1OBJID& identifier) {
    const char* const name = asn1data::identifierName(identifier);
    const std::string dotted = dottedText(identifier);
    return name != nullptr ? std::string(name) + " (" + dotted + ")" : dotted;
}

} // namespace derview
