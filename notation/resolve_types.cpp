#include "builtin_types.h"
#include "names.h"
#include "printer.h"
#include "resolver.h"

// The part of the resolver that gives each type its storage and each inline type its name.

namespace notation {
namespace {

bool isList(const TypeNode& node) {
    return node.kind == TypeNode::SequenceOf || node.kind == TypeNode::SetOf;
}

bool isDescribedByElements(const TypeNode& node) {
    return node.kind == TypeNode::Sequence || node.kind == TypeNode::Set ||
           node.kind == TypeNode::Choice;
}

bool isTypeField(const TypeNode& node) {
    return node.kind == TypeNode::ClassField && node.fieldName[0] >= 'A' &&
           node.fieldName[0] <= 'Z';
}

bool isConstrained(const TypeNode& node) {
    return !node.sizes.empty() || !node.values.empty();
}

} // namespace

void Resolver::fill(Type& type, const TypeNode& node, const Place& place) {
    type.node = &node;
    type.notation = printType(node);
    type.standard = place.standard;
    type.tagNode = node.tag;
    type.names = node.names;
    for (const NamedNumber& named : node.names) {
        for (const NamedNumber& other : node.names) {
            if (&other < &named && (other.name == named.name || other.number == named.number)) {
                diagnostics_.error(named.at, "'" + named.name + "' repeats '" + other.name + "'");
            }
        }
    }
    type.copyable = takeRemark(place, "no-copy") == nullptr;
    type.ambiguous = node.kind == TypeNode::Choice && takeRemark(place, "ambiguous") != nullptr;
    if (node.containing != nullptr) {
        diagnostics_.error(node.constraintAt,
                           "CONTAINING is supported on an element of a SEQUENCE alone");
    }
    switch (node.kind) {
    case TypeNode::Reference: {
        const Symbol* symbol = find(*place.module, node.reference, node.at, "type");
        if (symbol != nullptr && symbol->type == nullptr) {
            diagnostics_.error(node.at, "'" + node.reference + "' is not a type");
        } else if (symbol != nullptr) {
            type.aliasOf = symbol->type;
        }
        if (isConstrained(node)) {
            diagnostics_.error(node.constraintAt,
                               "a constraint on another name of a type is not supported");
        }
        break;
    }
    case TypeNode::Sequence:
    case TypeNode::Set:
    case TypeNode::Choice:
        type.shape = node.kind == TypeNode::Sequence ? Shape::Sequence
                     : node.kind == TypeNode::Set    ? Shape::Set
                                                     : Shape::Choice;
        type.universalTag = node.kind == TypeNode::Sequence ? Constructed | 16
                            : node.kind == TypeNode::Set    ? Constructed | 17
                                                            : 0;
        fillElements(type, node, place);
        break;
    case TypeNode::SequenceOf:
    case TypeNode::SetOf:
        fillList(type, node, place);
        break;
    default:
        if (node.kind == TypeNode::ClassField && node.table && isTypeField(node)) {
            diagnostics_.error(node.table->setAt,
                               "object sets resolve open values of a SEQUENCE alone");
        }
        fillBuiltin(type, node, place);
        return;
    }
    if (node.kind != TypeNode::Reference) {
        type.stepsOverEndOfContents = takeRemark(place, "end-of-contents") != nullptr;
    }
}

void Resolver::fillBuiltin(Type& type, const TypeNode& node, const Place& place) {
    const Type* base = builtinOf(node, place);
    if (base == nullptr) {
        return;
    }
    type.shape = base->shape;
    type.universalTag = base->universalTag;
    type.generalizedTime = base->generalizedTime;
    if (type.shape != Shape::OctetString && type.shape != Shape::BitString) {
        return;
    }
    if (const Remark* capacity = takeRemark(place, "capacity")) {
        const bool octets = type.shape == Shape::OctetString;
        type.shape = octets ? Shape::FixedOctetString : Shape::FixedBitString;
        type.capacity = positiveNumber(*capacity);
    }
}

Type* Resolver::builtinOf(const TypeNode& node, const Place& place) {
    switch (node.kind) {
    case TypeNode::Boolean:
        return model_.builtins["BOOLEAN"];
    case TypeNode::Integer:
        return integerOf(node, place);
    case TypeNode::Enumerated:
        return model_.builtins["ENUMERATED"];
    case TypeNode::Null:
        return model_.builtins["NULL"];
    case TypeNode::ObjectIdentifier:
        return model_.builtins["OBJECT IDENTIFIER"];
    case TypeNode::OctetString:
        return model_.builtins["OCTET STRING"];
    case TypeNode::BitString:
        return model_.builtins["BIT STRING"];
    case TypeNode::CharacterString:
        return model_.builtins[node.reference];
    default:
        break;
    }
    // A field of a class: X.681, clause 14. TYPE-IDENTIFIER is there without an assignment
    // (X.681, Annex A).
    const bool isType = node.fieldName[0] >= 'A' && node.fieldName[0] <= 'Z';
    if (node.className != "TYPE-IDENTIFIER") {
        const Symbol* symbol = find(*place.module, node.className, node.at, "class");
        if (symbol == nullptr) {
            return nullptr;
        }
        bool found = false;
        if (symbol->objectClass != nullptr) {
            for (const ClassFieldNode& field : symbol->assignment->fields) {
                found = found || field.name == node.fieldName;
            }
        }
        if (!found) {
            diagnostics_.error(node.at, symbol->objectClass == nullptr
                                            ? "'" + node.className + "' is not a class"
                                            : "class '" + node.className + "' has no field '&" +
                                                  node.fieldName + "'");
            return nullptr;
        }
    }
    if (!isType) {
        return model_.builtins["OBJECT IDENTIFIER"];
    }
    return model_.builtins[builtinKey("open type", node.table ? "typed" : "")];
}

Type* Resolver::integerOf(const TypeNode&, const Place& place) {
    const Remark* remark = takeRemark(place, "value");
    if (remark == nullptr) {
        return model_.builtins["INTEGER"];
    }
    const auto found = model_.builtins.find(builtinKey("INTEGER", remark->value));
    if (found == model_.builtins.end()) {
        std::vector<std::string> variants;
        for (const BuiltinType& row : builtinTypes()) {
            if (row.notations.front() == "INTEGER" && !row.variant.empty()) {
                variants.push_back(row.variant);
            }
        }
        std::string text;
        for (const std::string& variant : variants) {
            text += (text.empty() ? "" : &variant == &variants.back() ? " or " : ", ") + variant;
        }
        diagnostics_.error(remark->at, "an INTEGER is held as " + text);
        return model_.builtins["INTEGER"];
    }
    return found->second;
}

// Whether a type in place is a built-in one as it stands, without anything that needs a name.
bool Resolver::standsInPlace(const TypeNode& node, const Place& place) const {
    return !isList(node) && !isDescribedByElements(node) && node.names.empty() &&
           hasRemark(place, "capacity") == nullptr && hasRemark(place, "name") == nullptr;
}

Type* Resolver::use(const TypeNode& node, const Place& place, bool& tagTaken) {
    tagTaken = false;
    if (node.kind == TypeNode::Reference) {
        const Symbol* symbol = find(*place.module, node.reference, node.at, "type");
        if (symbol != nullptr && symbol->type == nullptr) {
            diagnostics_.error(node.at, "'" + node.reference + "' is not a type");
        }
        return symbol != nullptr ? symbol->type : nullptr;
    }
    if (standsInPlace(node, place)) {
        return builtinOf(node, place);
    }
    if (isList(node) && node.sizes.empty() && hasRemark(place, "name") == nullptr) {
        const TypeNode& element = *node.element;
        const bool plain =
            element.kind == TypeNode::Reference && !element.tag && !isConstrained(element);
        if (plain || isDescribedByElements(element)) {
            Place inner = place;
            inner.name = inlineTypeName(place.name, "element");
            inner.remarks = nullptr;
            bool taken = false;
            Type* elementType = plain ? use(element, inner, taken) : hoist(element, inner);
            return elementType != nullptr ? sharedList(node, *elementType, place) : nullptr;
        }
    }
    tagTaken = true;
    return hoist(node, place);
}

Type* Resolver::hoist(const TypeNode& node, Place place) {
    if (const Remark* name = takeRemark(place, "name")) {
        place.name = cppName(name->value);
    }
    Type& type = newType(*place.module, place.name, node.at);
    fill(type, node, place);
    return &type;
}

Type* Resolver::sharedList(const TypeNode& node, Type& element, const Place& place) {
    const bool set = node.kind == TypeNode::SetOf;
    const std::string name = sharedListName(element.name, set);
    const Remark* storage = takeRemark(place, "storage");
    if (storage != nullptr && storage->value != "array") {
        diagnostics_.error(storage->at, "a list that is shared by its element type can be held as "
                                        "array, or as list without a remark");
    }
    const Shape shape = storage != nullptr ? Shape::Array : Shape::List;
    if (const auto found = typesByName_.find(name); found != typesByName_.end()) {
        if (found->second->shape != shape) {
            diagnostics_.error(node.at, "'" + name + "' is held otherwise at " +
                                            found->second->at.file + ":" +
                                            std::to_string(found->second->at.line));
        }
        return found->second;
    }
    Type& type = newType(*place.module, name, node.at);
    type.shape = shape;
    type.setOf = set;
    type.universalTag = Constructed | (set ? 17u : 16u);
    type.notation =
        std::string(set ? "SET OF " : "SEQUENCE OF ") +
        (node.element->kind == TypeNode::Reference ? node.element->reference : element.name);
    type.standard = place.standard;
    type.element = &element;
    type.node = &node;
    type.comment = std::string(set ? "A SET OF " : "A SEQUENCE OF ") + element.name +
                   ", wherever one stands without a constraint.";
    return &type;
}

void Resolver::fillList(Type& type, const TypeNode& node, const Place& place) {
    const bool set = node.kind == TypeNode::SetOf;
    type.shape = Shape::List;
    type.setOf = set;
    type.universalTag = Constructed | (set ? 17u : 16u);
    if (const Remark* shared = takeRemark(place, "shared")) {
        // Another name for the list that all plain lists of the element share.
        Place inner = place;
        inner.remarks = nullptr;
        bool taken = false;
        const bool plain = node.sizes.empty() && !node.tag;
        type.aliasOf = plain ? use(node, inner, taken) : nullptr;
        if (!plain || taken) {
            diagnostics_.error(shared->at, "the list has a constraint, a tag or an element of its "
                                           "own, so it cannot be shared");
        }
        return;
    }
    if (const Remark* storage = takeRemark(place, "storage")) {
        if (storage->value == "array") {
            type.shape = Shape::Array;
        } else if (storage->value == "fixed") {
            type.shape = Shape::FixedArray;
        } else {
            diagnostics_.error(storage->at, "a list is held as array or fixed, or as list without "
                                            "a remark");
        }
    }
    Place inner = place;
    inner.name = inlineTypeName(place.name, "element");
    std::vector<Remark*> innerRemarks;
    if (place.remarks != nullptr) {
        for (Remark* remark : *place.remarks) {
            // What a list has no use for is meant for its element.
            const bool capacity = remark->key == "capacity" && type.shape != Shape::FixedArray;
            if (remark->key == "value" || capacity) {
                innerRemarks.push_back(remark);
            }
        }
    }
    inner.remarks = &innerRemarks;
    if (type.shape == Shape::FixedArray) {
        if (const Remark* capacity = takeRemark(place, "capacity")) {
            type.capacity = positiveNumber(*capacity);
        } else if (node.sizes.empty() || node.sizes.back().upper.kind != BoundNode::Value) {
            diagnostics_.error(node.at, "a fixed array needs a SIZE with an upper bound or the "
                                        "remark 'capacity'");
            type.capacity = 1;
        } else {
            const std::optional<long long> upper =
                number(*place.module, node.sizes.back().upper.value);
            type.capacity = static_cast<unsigned>(upper.value_or(1));
        }
    }
    const TypeNode& element = *node.element;
    if (element.kind == TypeNode::Reference && (element.tag || isConstrained(element))) {
        diagnostics_.error(element.at, "a tag or constraint on the element of a list needs a type "
                                       "of that name");
    }
    const bool plain = standsInPlace(element, inner) && !element.tag && !isConstrained(element);
    bool taken = false;
    type.element = element.kind == TypeNode::Reference || plain || isList(element)
                       ? use(element, inner, taken)
                       : hoist(element, inner);
}

void Resolver::fillElements(Type& type, const TypeNode& node, const Place& place) {
    unsigned presenceBit = 0;
    std::map<std::string, Location> names;
    for (const ComponentNode& component : node.components) {
        Place inner = place;
        std::vector<Remark*> remarks = component.remarks;
        inner.remarks = &remarks;
        if (component.extensionMarker) {
            if (const Remark* keep = takeRemark(inner, "keep-extensions")) {
                if (type.shape != Shape::Sequence) {
                    diagnostics_.error(keep->at, "only a SEQUENCE keeps unknown elements");
                }
                type.extensionMember = memberName(keep->value);
            }
            continue;
        }
        const auto [first, isNew] = names.emplace(component.name, component.at);
        if (!isNew) {
            diagnostics_.error(component.at, "'" + component.name + "' is there twice; line " +
                                                 std::to_string(first->second.line) +
                                                 " has it first");
        }
        inner.name = inlineTypeName(type.name, component.name);
        Element element;
        element.name = component.name;
        element.member = memberName(component.name);
        element.line = printComponent(component);
        element.comment = component.comment;
        element.at = component.at;
        element.node = component.type.get();
        element.defaultValue = component.defaultValue;
        element.ambiguous = takeRemark(inner, "ambiguous") != nullptr;
        bool tagTaken = false;
        element.type = use(*component.type, inner, tagTaken);
        if (element.type == nullptr) {
            continue; // complained about
        }
        if (!tagTaken) {
            element.tagNode = component.type->tag;
            const bool list = isList(*component.type);
            element.constraintPending = !list && isConstrained(*component.type);
        }
        if (component.type->containing != nullptr && !tagTaken) {
            element.hasSlot = true;
        }
        if (component.optional) {
            element.presence = Presence::Optional;
            element.presenceBit = presenceBit++;
        } else if (component.defaultValue) {
            element.presence = Presence::Default;
        }
        type.elements.push_back(std::move(element));
    }
    if (presenceBit > 32) {
        diagnostics_.error(type.at, "more than 32 OPTIONAL elements are not supported");
    }
}

// Binds the open value of a record to its set: X.682, clause 10.
void Resolver::fillTable(Type& type, const Module& module) {
    for (std::size_t i = 0; i < type.elements.size(); ++i) {
        const Element& element = type.elements[i];
        const TypeNode* node = element.node;
        Table table;
        table.value = i;
        if (node->containing != nullptr) {
            table.kind = Table::OctetString;
            node = node->containing.get();
            if (node->kind != TypeNode::ClassField || !node->table) {
                diagnostics_.error(node->at, "CONTAINING needs a field of a class with its object "
                                             "set");
                continue;
            }
        } else if (isList(*node)) {
            table.kind = Table::OpenTypes;
            resolvedLists_.insert(node);
            node = node->element.get();
        }
        const bool openType = isTypeField(*node);
        if (!node->table) {
            continue;
        }
        const Symbol* symbol = find(module, node->table->set, node->table->setAt, "object set");
        if (symbol == nullptr) {
            continue;
        }
        if (symbol->set == nullptr) {
            diagnostics_.error(node->table->setAt,
                               "'" + node->table->set + "' is not an object set");
            continue;
        }
        if (!openType) {
            continue; // the identifier's own constraint says nothing more
        }
        table.set = symbol->set;
        const std::string& field = node->table->field;
        table.identifier = type.elements.size();
        for (std::size_t k = 0; k < type.elements.size(); ++k) {
            if (type.elements[k].name == field) {
                table.identifier = k;
            }
        }
        if (table.identifier == type.elements.size()) {
            diagnostics_.error(field.empty() ? node->table->setAt : node->table->fieldAt,
                               field.empty()
                                   ? "the constraint does not tell which element identifies the "
                                     "value"
                                   : "there is no element '" + field + "' beside '" + element.name +
                                         "'");
        } else if (type.shape != Shape::Sequence) {
            diagnostics_.error(node->table->setAt,
                               "object sets resolve open values of a SEQUENCE alone");
        } else if (type.elements[table.identifier].type->target().shape !=
                   Shape::ObjectIdentifier) {
            diagnostics_.error(node->table->fieldAt, "'" + field + "' is not an OBJECT IDENTIFIER");
        } else if (type.table) {
            diagnostics_.error(element.at, "a second open value in a SEQUENCE is not supported");
        } else {
            type.table = table;
        }
    }
}

} // namespace notation
