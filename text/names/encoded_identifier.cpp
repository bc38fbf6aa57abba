#include "encoded_identifier.h"

#include <brevantis/asn1/asn1data/describe.h>
#include <brevantis/asn1/asn1data/walk.h>

namespace asn1text {

std::size_t readEncoded(Octets octets, ASN1OBJID& identifier) {
    class Identifier : public asn1data::WalkVisitor {
    public:
        explicit Identifier(ASN1OBJID& found) : found_(found) {}
        asn1data::WalkAction primitive(const asn1data::WalkElement& element) override {
            found_ = *element.value.identifier;
            return asn1data::WalkAction::Continue;
        }

    private:
        ASN1OBJID& found_;
    };
    Identifier visitor(identifier);
    const asn1data::WalkResult result =
        asn1data::walk(asn1data::builtin::objectIdentifier, octets.data(), octets.size(), visitor);
    return result.status == 0 ? result.consumed : 0;
}

} // namespace asn1text
