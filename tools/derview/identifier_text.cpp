#include "identifier_text.h"

namespace derview {

std::string identifierText(const ASN1OBJID& identifier, const IdentifierNames& names) {
    const char* const name = names.nameOf(identifier);
    const std::string dotted = dottedText(identifier);
    return name != nullptr ? std::string(name) + " (" + dotted + ")" : dotted;
}

} // namespace derview
