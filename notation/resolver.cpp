#include "resolver.h"

#include <algorithm>

#include "builtin_types.h"
#include "names.h"
#include "printer.h"

namespace notation {
namespace {

const char* const remarkKeys[] = {"value",   "storage",   "capacity",        "end-of-contents",
                                  "no-copy", "name",      "keep-extensions", "standard",
                                  "shared",  "ambiguous", "template"};

std::unique_ptr<TypeNode> clone(const std::unique_ptr<TypeNode>& node) {
    if (node == nullptr) {
        return nullptr;
    }
    auto copy = std::make_unique<TypeNode>();
    copy->kind = node->kind;
    copy->at = node->at;
    copy->tag = node->tag;
    copy->reference = node->reference;
    copy->className = node->className;
    copy->fieldName = node->fieldName;
    copy->names = node->names;
    for (const ComponentNode& component : node->components) {
        ComponentNode& line = copy->components.emplace_back();
        line.name = component.name;
        line.at = component.at;
        line.lastLine = component.lastLine;
        line.type = clone(component.type);
        line.optional = component.optional;
        line.defaultValue = component.defaultValue;
        line.extensionMarker = component.extensionMarker;
        line.remarks = component.remarks;
        line.comment = component.comment;
    }
    copy->element = clone(node->element);
    copy->sizes = node->sizes;
    copy->values = node->values;
    copy->constraintAt = node->constraintAt;
    copy->table = node->table;
    copy->containing = clone(node->containing);
    return copy;
}

} // namespace

Resolver::Resolver(Model& model, Diagnostics& diagnostics)
    : model_(model), diagnostics_(diagnostics) {}

void Resolver::run() {
    addBuiltins();
    for (auto& module : model_.modules) {
        declare(*module);
    }
    for (auto& module : model_.modules) {
        checkImports(*module);
    }
    for (auto& module : model_.modules) {
        for (Assignment& assignment : module->node.assignments) {
            if (assignment.kind == Assignment::Type) {
                expandTemplates(*module, assignment.type);
            }
        }
    }
    for (auto& module : model_.modules) {
        for (Assignment& assignment : module->node.assignments) {
            const Symbol& symbol = symbols_[module.get()][assignment.name];
            if (symbol.assignment != &assignment) {
                continue; // a second one of that name
            }
            if (symbol.type != nullptr) {
                const Remark* standard = nullptr;
                for (Remark* remark : assignment.remarks) {
                    if (remark->key == "standard") {
                        remark->taken = true;
                        standard = remark;
                    }
                }
                fill(*symbol.type, *assignment.type,
                     {module.get(), symbol.type->name,
                      standard != nullptr ? standard->value : module->node.standard,
                      &assignment.remarks});
            } else if (symbol.objectClass != nullptr) {
                module->classes.push_back(symbol.objectClass);
            } else if (symbol.object != nullptr) {
                resolveObject(*module, assignment, *symbol.object);
                module->objects.push_back(symbol.object);
            } else if (symbol.set != nullptr) {
                resolveSet(*module, assignment, *symbol.set);
                module->sets.push_back(symbol.set);
            } else if (assignment.kind == Assignment::Value) {
                resolveValue(*module, assignment);
            }
        }
    }
    for (Type& type : model_.types) {
        breakNameCycle(type);
    }
    for (auto& module : model_.modules) {
        for (Type* type : module->types) {
            fillTable(*type, *module);
        }
        checkRemarks(*module);
    }
    for (const Type& type : model_.types) {
        const TypeNode* element = type.node != nullptr ? type.node->element.get() : nullptr;
        if (element != nullptr && element->table && resolvedLists_.count(type.node) == 0) {
            diagnostics_.error(element->table->setAt,
                               "object sets resolve open values of a SEQUENCE alone");
        }
    }
}

// Names that stand for nothing but each other.
void Resolver::breakNameCycle(Type& type) {
    std::vector<Type*> path;
    for (Type* name = &type; name != nullptr; name = name->aliasOf) {
        const auto found = std::find(path.begin(), path.end(), name);
        if (found != path.end()) {
            std::string cycle;
            for (auto step = found; step != path.end(); ++step) {
                cycle += (*step)->name + " -> ";
            }
            diagnostics_.error(name->at,
                               "'" + name->name + "' stands for itself: " + cycle + name->name);
            path.back()->aliasOf = nullptr;
            return;
        }
        path.push_back(name);
    }
}

void Resolver::addBuiltins() {
    for (const BuiltinType& row : builtinTypes()) {
        Type& type = model_.types.emplace_back();
        type.name = row.constant;
        type.builtin = true;
        type.shape = row.shape;
        type.universalTag = row.tag;
        type.generalizedTime = row.tag == 24;
        for (const std::string& notation : row.notations) {
            model_.builtins[builtinKey(notation, row.variant)] = &type;
        }
    }
}

void Resolver::declare(Module& module) {
    // Classes come first: whether a value is an object depends on its governor.
    for (const bool classes : {true, false}) {
        for (Assignment& assignment : module.node.assignments) {
            if ((assignment.kind == Assignment::Class) == classes) {
                declareAssignment(module, assignment);
            }
        }
    }
}

void Resolver::declareAssignment(Module& module, Assignment& assignment) {
    Symbol& symbol = symbols_[&module][assignment.name];
    if (symbol.assignment != nullptr) {
        diagnostics_.error(assignment.at, "'" + assignment.name + "' is assigned twice; line " +
                                              std::to_string(symbol.assignment->at.line) +
                                              " does it first");
        return;
    }
    symbol.assignment = &assignment;
    symbol.module = &module;
    const std::string name = memberName(assignment.name);
    switch (assignment.kind) {
    case Assignment::Type: {
        for (Remark* remark : assignment.remarks) {
            if (remark->key == "template") {
                remark->taken = true;
                symbol.isTemplate = true;
                return; // nothing is emitted under its own name
            }
        }
        const bool null = assignment.type->kind == TypeNode::Null;
        symbol.type = &newType(module, null ? name + "_" : name, assignment.at);
        symbol.type->comment = assignment.comment;
        return;
    }
    case Assignment::Class:
        symbol.objectClass = &model_.classes.emplace_back();
        declareClass(module, assignment, *symbol.objectClass);
        break;
    case Assignment::Set:
        symbol.set = &model_.sets.emplace_back();
        symbol.set->name = name;
        symbol.set->comment = assignment.comment;
        symbol.set->module = &module;
        break;
    case Assignment::Value:
        if (assignment.type->kind == TypeNode::Reference) {
            // A class of another module is told by its import, wherever that module stands.
            for (const auto& other : model_.modules) {
                for (const Assignment& candidate : other->node.assignments) {
                    if (candidate.kind == Assignment::Class &&
                        candidate.name == assignment.type->reference && symbol.object == nullptr) {
                        symbol.object = &model_.objects.emplace_back();
                        symbol.object->name = name;
                        symbol.object->comment = assignment.comment;
                        symbol.object->at = assignment.at;
                        symbol.object->module = &module;
                    }
                }
            }
        }
        break;
    }
    const auto [found, isNew] = valuesByName_.emplace(name, assignment.at);
    if (!isNew) {
        diagnostics_.error(assignment.at, "'" + name + "' already stands at " + found->second.file +
                                              ":" + std::to_string(found->second.line) +
                                              "; the modules of a run share their names in C++");
    }
}

void Resolver::declareClass(Module& module, Assignment& assignment, ObjectClass& objectClass) {
    objectClass.name = cppName(assignment.name);
    objectClass.node = &assignment;
    objectClass.module = &module;
    bool hasId = false;
    for (const ClassFieldNode& field : assignment.fields) {
        if (field.isType) {
            if (!objectClass.typeField.empty()) {
                diagnostics_.error(field.at, "a class can have one type field");
            }
            objectClass.typeField = field.name;
            objectClass.typeOptional = field.optional;
        } else if (field.name == "id") {
            hasId = !field.optional;
        }
    }
    if (objectClass.typeField.empty() || !hasId) {
        diagnostics_.error(assignment.at, "a class needs a type field and a mandatory field '&id'");
    }
}

void Resolver::checkImports(const Module& module) {
    for (const ImportNode& import : module.node.imports) {
        const auto from =
            std::find_if(model_.modules.begin(), model_.modules.end(),
                         [&import](const auto& m) { return m->node.name == import.module; });
        if (from == model_.modules.end()) {
            diagnostics_.error(import.moduleAt,
                               "module '" + import.module + "' is not among the files");
        } else if (symbols_[from->get()].count(import.name) == 0) {
            diagnostics_.error(import.at, "module '" + import.module + "' does not define '" +
                                              import.name + "'");
        }
    }
}

const Resolver::Symbol* Resolver::findTemplate(const Module& module, const std::string& name) {
    const auto in = [this, &name](const Module& where) -> const Symbol* {
        const auto& names = symbols_[&where];
        const auto found = names.find(name);
        return found != names.end() ? &found->second : nullptr;
    };
    const Symbol* symbol = in(module);
    for (const ImportNode& import : module.node.imports) {
        for (const auto& other : model_.modules) {
            if (symbol == nullptr && import.name == name && other->node.name == import.module) {
                symbol = in(*other);
            }
        }
    }
    return symbol != nullptr && symbol->isTemplate ? symbol : nullptr;
}

// A template's right-hand side takes the place of its name, as if it had been written there: so
// the usual rules name what is hoisted, and each place gets a type of its own.
void Resolver::expandTemplates(const Module& module, std::unique_ptr<TypeNode>& node) {
    if (node == nullptr) {
        return;
    }
    if (node->kind == TypeNode::Reference) {
        if (const Symbol* symbol = findTemplate(module, node->reference)) {
            if (!evaluating_.insert(symbol->assignment).second) {
                diagnostics_.error(node->at, "template '" + node->reference + "' holds itself");
                return;
            }
            expandTemplates(*symbol->module, symbol->assignment->type);
            evaluating_.erase(symbol->assignment);
            std::unique_ptr<TypeNode> copy = clone(symbol->assignment->type);
            const bool constrained = !node->sizes.empty() || !node->values.empty();
            if (constrained || (node->tag && copy->tag)) {
                diagnostics_.error(node->at, "a constraint or a second tag on a template is not "
                                             "supported");
            }
            copy->at = node->at;
            if (node->tag) {
                copy->tag = node->tag;
            }
            node = std::move(copy);
        }
        return;
    }
    for (ComponentNode& component : node->components) {
        expandTemplates(module, component.type);
    }
    expandTemplates(module, node->element);
}

const Resolver::Symbol* Resolver::find(const Module& module, const std::string& name,
                                       const Location& at, const char* what) {
    const auto& own = symbols_[&module];
    if (const auto found = own.find(name); found != own.end()) {
        return &found->second;
    }
    for (const ImportNode& import : module.node.imports) {
        if (import.name != name) {
            continue;
        }
        for (const auto& other : model_.modules) {
            if (other->node.name == import.module) {
                const auto& names = symbols_[other.get()];
                const auto found = names.find(name);
                return found != names.end() ? &found->second : nullptr;
            }
        }
        return nullptr; // the import has been complained about
    }
    diagnostics_.error(at, std::string(what) + " '" + name + "' is neither defined nor imported");
    return nullptr;
}

Type& Resolver::newType(Module& module, const std::string& name, const Location& at) {
    Type& type = model_.types.emplace_back();
    type.name = name;
    type.module = &module;
    type.at = at;
    const auto [found, isNew] = typesByName_.emplace(name, &type);
    if (!isNew) {
        diagnostics_.error(at, "type '" + name + "' already stands at " + found->second->at.file +
                                   ":" + std::to_string(found->second->at.line) +
                                   "; the modules of a run share their names in C++");
    }
    module.types.push_back(&type);
    return type;
}

Remark* Resolver::hasRemark(const Place& place, const char* key) const {
    if (place.remarks != nullptr) {
        for (Remark* remark : *place.remarks) {
            if (remark->key == key) {
                return remark;
            }
        }
    }
    return nullptr;
}

Remark* Resolver::takeRemark(const Place& place, const char* key) const {
    Remark* remark = hasRemark(place, key);
    if (remark != nullptr) {
        remark->taken = true;
    }
    return remark;
}

unsigned Resolver::positiveNumber(const Remark& remark) {
    const bool digits = !remark.value.empty() && remark.value.size() < 9 &&
                        remark.value.find_first_not_of("0123456789") == std::string::npos;
    const unsigned number = digits ? static_cast<unsigned>(std::stoul(remark.value)) : 0;
    if (number == 0) {
        diagnostics_.error(remark.at, "the remark '" + remark.key + "' needs a number above 0");
        return 1;
    }
    return number;
}

void Resolver::checkRemarks(const Module& module) {
    for (const Remark& remark : module.node.stream.remarks) {
        if (remark.taken) {
            continue;
        }
        const bool known = std::any_of(std::begin(remarkKeys), std::end(remarkKeys),
                                       [&remark](const char* key) { return remark.key == key; });
        diagnostics_.error(remark.at, known ? "the remark '" + remark.key + "' does not fit here"
                                            : "the remark '" + remark.key + "' is unknown");
    }
}

std::optional<long long> Resolver::number(const Module& module, const ValueNode& value) {
    if (value.kind == ValueNode::Number) {
        return value.number;
    }
    if (value.kind != ValueNode::Reference) {
        diagnostics_.error(value.at, "a number is needed here");
        return std::nullopt;
    }
    const Symbol* symbol = find(module, value.reference, value.at, "value");
    if (symbol == nullptr) {
        return std::nullopt;
    }
    Assignment* assignment = symbol->assignment;
    if (assignment->kind != Assignment::Value || assignment->type->kind != TypeNode::Integer ||
        !evaluating_.insert(assignment).second) {
        diagnostics_.error(value.at, "'" + value.reference + "' is not a number");
        return std::nullopt;
    }
    std::optional<long long> result;
    if (const std::optional<ValueNode> read = valueOf(*symbol->module, *assignment)) {
        result = number(*symbol->module, *read);
    }
    evaluating_.erase(assignment);
    return result;
}

} // namespace notation
