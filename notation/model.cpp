#include "model.h"

#include <algorithm>

namespace notation {

bool Type::hasPresence() const {
    const Type& self = target();
    return std::any_of(self.elements.begin(), self.elements.end(),
                       [](const Element& member) { return member.presence == Presence::Optional; });
}

bool ObjectClass::hasOptionalFields() const {
    return std::any_of(node->fields.begin(), node->fields.end(),
                       [](const ClassFieldNode& field) { return field.optional; });
}

} // namespace notation
