#include <algorithm>
#include <functional>

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

// Aliases are followed as far as they are known.
Shape finalShape(const Type& type) {
    const Type* target = &type;
    while (target->aliasOf != nullptr) {
        target = target->aliasOf;
    }
    return target->shape;
}

// Whether all that a constraint permits lies in ranges that a test accepts.
bool allWithin(const ConstraintNode& node, const std::function<bool(const RangeNode&)>& fits) {
    const auto inner = [&fits](const ConstraintNode& part) { return allWithin(part, fits); };
    switch (node.kind) {
    case ConstraintNode::Range:
        return fits(node.range);
    case ConstraintNode::Union:
        return std::all_of(node.parts.begin(), node.parts.end(), inner);
    case ConstraintNode::Intersection:
        return std::any_of(node.parts.begin(), node.parts.end(), inner);
    case ConstraintNode::Except:
        return node.parts.size() > 1 && inner(node.parts.front());
    default:
        return false;
    }
}

} // namespace

void Resolver::fill(Type& type, const TypeNode& node, const Place& place) {
    if (filling_ > LongestChain) {
        diagnostics_.error(node.at, TypesTooDeep);
        return;
    }
    const Level level(filling_);
    type.node = &node;
    type.notation = printType(node, DeepestPrinted);
    type.standard = place.standard;
    type.tagNode = node.tag;
    fillNames(type, node);
    type.copyable = takeRemark(place, "no-copy") == nullptr;
    type.ambiguous = node.kind == TypeNode::Choice && takeRemark(place, "ambiguous") != nullptr;
    switch (node.kind) {
    case TypeNode::Reference:
        fillReference(type, node, place);
        break;
    case TypeNode::Tagged: {
        Place inner = place;
        inner.remarks = nullptr;
        inner.name = inlineTypeName(place.name, "inner");
        type.aliasOf = hoist(*node.element, inner);
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
        fillBuiltin(type, node, place);
        return;
    }
    if (node.kind != TypeNode::Reference) {
        type.stepsOverEndOfContents = takeRemark(place, "end-of-contents") != nullptr;
    }
}

void Resolver::fillNames(Type& type, const TypeNode& node) {
    type.names = node.names;
    std::set<std::string> names;
    std::map<long long, std::string> numbers;
    for (NamedNumber& named : type.names) {
        if (named.reference) {
            named.number = number(*named.reference).value_or(0);
        }
        const auto [first, isNew] = numbers.emplace(named.number, named.name);
        if (!names.insert(named.name).second) {
            diagnostics_.error(named.at, "'" + named.name + "' repeats '" + named.name + "'");
        } else if (!isNew && node.kind == TypeNode::Enumerated) {
            diagnostics_.error(named.at, "'" + named.name + "' repeats '" + first->second + "'");
        }
    }
}

void Resolver::fillReference(Type& type, const TypeNode& node, const Place& place) {
    Symbol* const symbol = findType(node);
    if (symbol == nullptr) {
        return;
    }
    const Assignment& assignment = *symbol->assignment;
    if (!assignment.parameters.empty() && assignment.kind == Assignment::Type) {
        // The first use that has a name lends it.
        Instance* const instance = instanceOf(node, *symbol);
        if (instance != nullptr && instance->type == nullptr && !node.tag &&
            !node.isConstrained()) {
            instance->type = &type;
            const std::string notation = type.notation;
            fill(type, *instance->node, place);
            type.notation = notation;
            return;
        }
    }
    Place inner = place;
    inner.remarks = nullptr;
    type.aliasOf = useReference(node, inner);
}

void Resolver::fillBuiltin(Type& type, const TypeNode& node, const Place& place) {
    const Type* base = builtinOf(node, place);
    if (base == nullptr) {
        return;
    }
    // Negative values of ENUMERATED are held as those of an INTEGER are.
    const bool negative = node.kind == TypeNode::Enumerated &&
                          std::any_of(type.names.begin(), type.names.end(),
                                      [](const NamedNumber& named) { return named.number < 0; });
    type.shape = negative ? model_.builtins[builtinKey("INTEGER", "signed32")]->shape : base->shape;
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
    case TypeNode::Any:
        return model_.builtins["open type"];
    default:
        break;
    }
    // A field of a class: X.681, clause 14.
    const bool isType = node.fieldName[0] >= 'A' && node.fieldName[0] <= 'Z';
    const bool isDirect = node.fieldPath.empty();
    const Symbol* symbol = find(node.scope, node.className, node.at, "class");
    if (symbol == nullptr) {
        return nullptr;
    }
    const Symbol* const named = classOf(node.scope, node.className);
    const bool parametrised = symbol->assignment->kind == Assignment::Class && named == nullptr;
    if (isDirect && !parametrised && (named == nullptr || fieldOf(node) == nullptr)) {
        diagnostics_.error(node.at, named == nullptr
                                        ? "'" + node.className + "' is not a class"
                                        : "class '" + node.className + "' has no field '&" +
                                              node.fieldName + "'");
        return nullptr;
    }
    if (!isType) {
        return model_.builtins["OBJECT IDENTIFIER"];
    }
    return model_.builtins[builtinKey("open type", node.table && isDirect ? "typed" : "")];
}

bool Resolver::boundWithin(const TypeNode& node, const BoundNode& bound, long long lowest,
                           long long highest) {
    if (bound.kind != BoundNode::Value || !bound.value.digits.empty()) {
        return false;
    }
    for (const NamedNumber& named : node.names) {
        if (bound.value.kind == ValueNode::Reference && named.name == bound.value.reference) {
            return !named.reference && named.number >= lowest && named.number <= highest;
        }
    }
    const std::optional<long long> value = number(bound.value);
    return value && *value >= lowest && *value <= highest;
}

// Without a remark, a range decides: what fits a machine word is held in one.
Type* Resolver::integerOf(const TypeNode& node, const Place& place) {
    const Remark* remark = takeRemark(place, "value");
    if (remark == nullptr) {
        const auto within = [&](long long lowest, long long highest) {
            const auto fits = [&](const RangeNode& range) {
                return boundWithin(node, range.lower, lowest, highest) &&
                       boundWithin(node, range.upper, lowest, highest);
            };
            return (!node.values.empty() &&
                    std::all_of(node.values.begin(), node.values.end(), fits)) ||
                   std::any_of(node.further.begin(), node.further.end(),
                               [&](const ConstraintNode& each) { return allWithin(each, fits); });
        };
        for (const BuiltinType* row : heldAs("INTEGER")) {
            const ShapeTraits& traits = traitsOf(row->shape);
            if (traits.kind == ShapeKind::Number && within(traits.lower, traits.upper)) {
                return model_.builtins[builtinKey("INTEGER", row->variant)];
            }
        }
        return model_.builtins["INTEGER"];
    }
    const auto found = model_.builtins.find(builtinKey("INTEGER", remark->value));
    if (found == model_.builtins.end()) {
        diagnostics_.error(remark->at, "an INTEGER is held as " + variantsText("INTEGER"));
        return model_.builtins["INTEGER"];
    }
    return found->second;
}

// Whether a type in place is a built-in one as it stands, without anything that needs a name.
bool Resolver::standsInPlace(const TypeNode& node, const Place& place) const {
    return !isList(node) && node.kind != TypeNode::Tagged && !isDescribedByElements(node) &&
           node.names.empty() && hasRemark(place, "capacity") == nullptr &&
           hasRemark(place, "name") == nullptr;
}

Type* Resolver::use(const TypeNode& node, const Place& place, bool& tagTaken) {
    tagTaken = false;
    if (node.kind == TypeNode::Reference) {
        return useReference(node, place);
    }
    if (node.kind == TypeNode::Tagged) {
        return hoist(*node.element, place);
    }
    if (standsInPlace(node, place)) {
        return builtinOf(node, place);
    }
    if (isList(node) && node.sizes.empty() && node.further.empty() &&
        hasRemark(place, "name") == nullptr) {
        const TypeNode& element = *node.element;
        const bool plain = element.kind == TypeNode::Reference && !element.tag &&
                           !element.isConstrained() && element.further.empty();
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

Type* Resolver::useReference(const TypeNode& node, const Place& place) {
    Symbol* const symbol = findType(node);
    if (symbol == nullptr) {
        return nullptr;
    }
    const Assignment& assignment = *symbol->assignment;
    if (!assignment.parameters.empty() && assignment.kind == Assignment::Type) {
        Instance* const instance = instanceOf(node, *symbol);
        if (instance == nullptr) {
            return nullptr;
        }
        if (instance->type == nullptr) {
            // Names and numbers for parameters make a name; anything else is named by its place.
            std::string name = cppName(assignment.name);
            for (const Token& token : node.arguments) {
                const bool word = token.kind == Token::Upper || token.kind == Token::Lower ||
                                  token.kind == Token::Number;
                const bool mark =
                    token.is("{") || token.is("}") || token.is(",") || token.kind == Token::End;
                if (!word && !mark) {
                    name.clear();
                    break;
                }
                name.append(word ? "_" + cppName(token.text) : "");
            }
            Place inner = place;
            inner.remarks = nullptr;
            if (!name.empty() && name.size() < 100) {
                inner.name = name;
            }
            // Known by name before it is filled: it may hold itself.
            instance->type = &newType(*inner.module, inner.name, node.at);
            instance->type->inPlace = true;
            inner.name = instance->type->name;
            fill(*instance->type, *instance->node, inner);
        }
        return instance->type;
    }
    if (symbol->module == &model_.builtinModule && assignment.kind == Assignment::Type &&
        symbol->type == nullptr) {
        // It belongs to the first module that needs it.
        symbol->type = &newType(*place.module, cppName(assignment.name), node.at);
        fill(*symbol->type, *assignment.type, {place.module, symbol->type->name, "X.680", nullptr});
    }
    if (symbol->type == nullptr) {
        diagnostics_.error(node.at, "'" + node.reference + "' is not a type");
    }
    return symbol->type;
}

Type* Resolver::hoist(const TypeNode& node, Place place) {
    if (const Remark* name = takeRemark(place, "name")) {
        place.name = cppName(name->value);
    }
    Type& type = newType(*place.module, place.name, node.at);
    type.inPlace = true;
    place.name = type.name;
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
    // A list of a type of the library may be the library's as well.
    const bool ofLibrary = place.module->ofLibrary;
    auto found = sharedLists_.find({&element, set, ofLibrary});
    if (found == sharedLists_.end() && !element.builtin) {
        found = sharedLists_.find({&element, set, true});
    }
    if (found != sharedLists_.end()) {
        if (found->second->shape != shape) {
            diagnostics_.error(node.at, "'" + name + "' is held otherwise at " +
                                            found->second->at.file + ":" +
                                            std::to_string(found->second->at.line));
        }
        return found->second;
    }
    Type& type = newType(*place.module, name, node.at);
    sharedLists_[{&element, set, ofLibrary}] = &type;
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
            const std::optional<long long> upper = number(node.sizes.back().upper.value);
            type.capacity = static_cast<unsigned>(upper.value_or(1));
        }
    }
    const TypeNode& element = *node.element;
    const bool free = !element.tag && !element.isConstrained() && element.further.empty();
    const bool plain = standsInPlace(element, inner) && free;
    bool taken = false;
    type.element =
        (element.kind == TypeNode::Reference && free) || plain || (isList(element) && !element.tag)
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
            element.constraintPending =
                !list && (component.type->isConstrained() || !component.type->further.empty());
        }
        if (component.type->containing != nullptr && !tagTaken) {
            element.hasSlot = true;
        }
        // An older sender leaves out what stands behind the extension mark.
        const bool left =
            component.addition && !component.defaultValue && type.shape != Shape::Choice;
        if (component.optional || left) {
            element.presence = Presence::Optional;
            element.presenceBit = presenceBit++;
        } else if (component.defaultValue) {
            element.presence = Presence::Default;
        }
        type.elements.push_back(std::move(element));
    }
}

// Binds the open value of a record to its set: X.682, clause 10. A value that the engine cannot
// resolve stays open.
void Resolver::fillTable(Type& type) {
    for (std::size_t i = 0; i < type.elements.size(); ++i) {
        const TypeNode* node = type.elements[i].node;
        if (node == nullptr) {
            continue;
        }
        Table table;
        table.value = i;
        if (node->containing != nullptr && type.elements[i].hasSlot) {
            table.kind = Table::OctetString;
            node = node->containing.get();
        } else if (isList(*node)) {
            table.kind = Table::OpenTypes;
            node = node->element.get();
        }
        const bool openType = isTypeField(*node) && node->fieldPath.empty();
        if (!node->table) {
            if (table.kind == Table::OctetString) {
                type.elements[i].hasSlot = false;
            }
            continue;
        }
        if (!openType) {
            // The identifier's own constraint says nothing more, but its set has to be there.
            if (node->kind == TypeNode::ClassField && node->table->arguments.empty() &&
                !node->table->set.empty()) {
                find(node->table->scope, node->table->set, node->table->setAt, "object set");
            }
            continue;
        }
        if (!bindTable(type, i, *node, table)) {
            leaveOpen(type, i, table.kind);
        } else if (table.kind == Table::OpenTypes) {
            resolvedLists_.insert(type.elements[i].node);
        }
    }
}

// The set that a constraint names or lists; null, complained about or not, when there is none that
// can be resolved.
ObjectSet* Resolver::setOf(const Type& type, std::size_t index, const TypeNode& node) {
    const TableNode& constraint = *node.table;
    const Symbol* symbol = nullptr;
    if (!constraint.set.empty()) {
        symbol = find(constraint.scope, constraint.set, constraint.setAt, "object set");
        if (symbol == nullptr) {
            return nullptr;
        }
        if (symbol->assignment->kind != Assignment::Set) {
            diagnostics_.error(constraint.setAt, "'" + constraint.set + "' is not an object set");
            return nullptr;
        }
    }
    if (symbol != nullptr && constraint.arguments.empty()) {
        if (symbol->set != nullptr && !symbol->set->resolved) {
            resolveSet(*symbol->set, *symbol->assignment);
            declareSet(*symbol->set);
        }
        return symbol->set;
    }
    // A set without a name of its own is called by its place.
    const Symbol* const governor = classOf(node.scope, node.className);
    if (governor == nullptr) {
        return nullptr;
    }
    const Tokens body = symbol == nullptr ? constraint.members
                                          : filledIn(*symbol->assignment, symbol->module->node,
                                                     constraint.arguments, constraint.setAt);
    ObjectSet set;
    set.name = inlineTypeName(type.name, type.elements[index].name) + "_Set";
    set.comment = "The set that '" + type.elements[index].name + "' of " + type.name + " lists.";
    set.module = type.module;
    set.objectClass = governor->objectClass;
    set.resolved = true;
    addMembers(set, body, symbol == nullptr ? *type.module : *symbol->module);
    if (set.objects.empty()) {
        return nullptr;
    }
    model_.sets.push_back(set);
    declareSet(model_.sets.back());
    return &model_.sets.back();
}

void Resolver::declareSet(ObjectSet& set) {
    set.module->sets.push_back(&set);
    for (const Object* object : set.objects) {
        std::vector<const Object*>& known = object->module->objects;
        if (std::find(known.begin(), known.end(), object) == known.end()) {
            known.push_back(object);
        }
    }
}

bool Resolver::bindTable(Type& type, std::size_t index, const TypeNode& node, Table table) {
    const TableNode& constraint = *node.table;
    const Symbol* const governor = classOf(node.scope, node.className);
    if (governor == nullptr) {
        return false;
    }
    const std::string& field = constraint.field;
    table.identifier = type.elements.size();
    for (std::size_t k = 0; k < type.elements.size(); ++k) {
        if (type.elements[k].name == field) {
            table.identifier = k;
        }
    }
    const ObjectClass& objectClass = *governor->objectClass;
    if (table.identifier == type.elements.size() && !field.empty() && !type.inPlace &&
        !constraint.outer) {
        diagnostics_.error(constraint.fieldAt, "there is no element '" + field + "' beside '" +
                                                   type.elements[index].name + "'");
    }
    if (table.identifier == type.elements.size() || constraint.outer || field.empty() ||
        type.shape != Shape::Sequence || objectClass.idField.empty() ||
        objectClass.typeField != node.fieldName || type.table ||
        finalShape(*type.elements[table.identifier].type) != Shape::ObjectIdentifier) {
        return false;
    }
    table.set = setOf(type, index, node);
    if (table.set == nullptr || table.set->objectClass != governor->objectClass) {
        return false;
    }
    type.table = table;
    return true;
}

void Resolver::leaveOpen(Type& type, std::size_t index, Table::Kind kind) {
    Element& element = type.elements[index];
    Type* const open = model_.builtins["open type"];
    if (kind == Table::OctetString) {
        element.hasSlot = false;
    } else if (kind == Table::OpenType && element.type->builtin) {
        element.type = open;
    } else if (element.type->element != nullptr && element.type->element->builtin) {
        element.type->element = open;
    }
}

} // namespace notation
