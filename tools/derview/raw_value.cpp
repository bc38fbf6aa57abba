#include "raw_value.h"

#include "value_text.h"

namespace derview {

using asn1data::TypeDescription;
using asn1data::WalkAction;
using asn1data::WalkElement;

namespace {

const TypeDescription* builtinType(unsigned char identifier) {
    namespace builtin = asn1data::builtin;
    constexpr const TypeDescription* known[] = {
        &builtin::boolean,          &builtin::bigInteger,    &builtin::null,
        &builtin::objectIdentifier, &builtin::octetString,   &builtin::bitString,
        &builtin::utf8String,       &builtin::numericString, &builtin::printableString,
        &builtin::teletexString,    &builtin::ia5String,     &builtin::utcTime,
        &builtin::generalizedTime,  &builtin::visibleString, &builtin::generalString,
        &builtin::universalString,  &builtin::bmpString};
    for (const TypeDescription* const type : known) {
        if (type->tag == identifier) {
            return type;
        }
    }
    return nullptr;
}

class OneValue : public asn1data::WalkVisitor {
public:
    OneValue(std::size_t room, const IdentifierNames& names) : room_(room), names_(names) {}

    WalkAction primitive(const WalkElement& element) override {
        result =
            RawValue{element.type->name, valueKind(element), valueText(element, room_, names_)};
        return WalkAction::Continue;
    }

    std::optional<RawValue> result;

private:
    std::size_t room_;
    const IdentifierNames& names_;
};

} // namespace

std::optional<RawValue> rawValueText(const WalkElement& element, std::size_t room,
                                     const IdentifierNames& names) {
    const asn1data::WalkValue& raw = element.value;
    const TypeDescription* const type = raw.octetCount != 0 ? builtinType(raw.octets[0]) : nullptr;
    if (type == nullptr) {
        return std::nullopt;
    }
    constexpr std::size_t separator = 2;
    const std::size_t name = std::string_view(type->name).size() + separator;
    OneValue visitor(room > name ? room - name : 0, names);
    const asn1data::WalkResult result = asn1data::walk(*type, raw.octets, raw.octetCount, visitor);
    return result.status == 0 && result.consumed == raw.octetCount ? visitor.result : std::nullopt;
}

} // namespace derview
