#include "model.h"

#include <algorithm>

namespace notation {

bool Type::hasPresence() const {
    const Type& self = target();
    return std::any_of(self.elements.begin(), self.elements.end(),
                       [](const Element& member) { return member.presence == Presence::Optional; });
}

unsigned Type::mandatoryCount() const {
    return static_cast<unsigned>(
        std::count_if(elements.begin(), elements.end(), [](const Element& member) {
            return member.presence == Presence::Mandatory;
        }));
}

std::string Type::parameter() const {
    const std::string count = traitsOf(shape).countName;
    return count.empty() || shape == Shape::Choice ? "*pvalue" : "pvalue->" + count;
}

unsigned Element::matchTag() const {
    if (tagging != Tagging::Untagged) {
        return tag;
    }
    return type->outerTag != 0 ? 0 : type->tag;
}

bool ObjectClass::hasOptionalFields() const {
    return std::any_of(node->fields.begin(), node->fields.end(),
                       [](const ClassFieldNode& field) { return field.optional; });
}

} // namespace notation
