#include <algorithm>
#include <iterator>

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

const char* universalTypeName(unsigned number) noexcept {
    static constexpr const char* names[] = {nullptr,
                                            "BOOLEAN",
                                            "INTEGER",
                                            "BIT STRING",
                                            "OCTET STRING",
                                            "NULL",
                                            "OBJECT IDENTIFIER",
                                            "ObjectDescriptor",
                                            "EXTERNAL",
                                            "REAL",
                                            "ENUMERATED",
                                            "EMBEDDED PDV",
                                            "UTF8String",
                                            "RELATIVE-OID",
                                            "TIME",
                                            nullptr,
                                            "SEQUENCE",
                                            "SET",
                                            "NumericString",
                                            "PrintableString",
                                            "TeletexString",
                                            "VideotexString",
                                            "IA5String",
                                            "UTCTime",
                                            "GeneralizedTime",
                                            "GraphicString",
                                            "VisibleString",
                                            "GeneralString",
                                            "UniversalString",
                                            "CHARACTER STRING",
                                            "BMPString"};
    return number < std::size(names) ? names[number] : nullptr;
}

} // namespace asn1data
