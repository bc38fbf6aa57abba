#include <algorithm>

#include <brevantis/asn1/asn1data/describe.h>

// Look-ups in the library's description of itself that need no generated code.

namespace asn1data {

namespace {

const unsigned* endOfArcs(const ASN1OBJID& identifier) {
    return identifier.subid + std::min<unsigned>(identifier.numids, ASN1MaxSubIds);
}

bool isBefore(const IdentifierDescription& described, const ASN1OBJID& wanted) {
    return std::lexicographical_compare(described.identifier->subid,
                                        endOfArcs(*described.identifier), wanted.subid,
                                        endOfArcs(wanted));
}

} // namespace

const char* identifierName(const ASN1OBJID& identifier) noexcept {
    const IdentifierRange all = allIdentifiers();
    const auto* found = std::lower_bound(all.begin(), all.end(), identifier, isBefore);
    return found != all.end() && *found->identifier == identifier ? found->name : nullptr;
}

const char* numberName(const TypeDescription& type, long long number) noexcept {
    for (unsigned i = 0; i < type.nameCount; ++i) {
        if (type.names[i].number == number) {
            return type.names[i].name;
        }
    }
    return nullptr;
}

} // namespace asn1data
