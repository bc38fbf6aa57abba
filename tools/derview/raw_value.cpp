#include "raw_value.h"

#include <brevantis/asn1/text/elements.h>

#include "value_text.h"

namespace derview {

using asn1data::WalkAction;
using asn1data::WalkElement;

namespace {

class OneValue : public asn1data::WalkVisitor {
public:
    OneValue(std::size_t room, const IdentifierNames& names) : room_(room), names_(names) {}

    WalkAction primitive(const WalkElement& element) override {
        result = RawValue{valueKind(element), valueText(element, room_, names_)};
        return WalkAction::Continue;
    }

    std::optional<RawValue> result;

private:
    std::size_t room_;
    const IdentifierNames& names_;
};

} // namespace

std::optional<RawValue> rawValueText(Octets element, std::size_t room,
                                     const IdentifierNames& names) {
    const std::optional<PlainElement> plain = firstElement(element);
    const auto* const type = plain ? builtinType(*plain) : nullptr;
    if (type == nullptr) {
        return std::nullopt;
    }
    OneValue visitor(room, names);
    const asn1data::WalkResult result =
        asn1data::walk(*type, element.data(), element.size(), visitor);
    return result.status == 0 && result.consumed == element.size() ? visitor.result : std::nullopt;
}

} // namespace derview
