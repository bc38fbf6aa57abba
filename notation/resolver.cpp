#include "resolver.h"

#include <algorithm>

#include "builtin_types.h"
#include "names.h"
#include "parser.h"
#include "remarks.h"

namespace notation {

const char* const ChainTooLong =
    "a value stands for another, which stands for another, more than 1000 times";
const char* const TypesTooDeep = "types are told by each other more than 1000 deep";

Resolver::Resolver(Model& model, Diagnostics& diagnostics)
    : model_(model), diagnostics_(diagnostics) {}

void Resolver::run() {
    addBuiltins();
    std::vector<Module*> all = {&model_.builtinModule};
    for (auto& module : model_.modules) {
        all.push_back(module.get());
        modulesByName_[{module->ofLibrary, module->node.published}].push_back(module.get());
    }
    for (Module* module : all) {
        modules_[&module->node] = module;
        declare(*module);
    }
    for (auto& module : model_.modules) {
        checkImports(*module);
    }
    for (auto& module : model_.modules) {
        for (Assignment& assignment : module->node.assignments) {
            declareAssignment(*module, assignment);
        }
    }
    for (Module* module : all) {
        for (Assignment& assignment : module->node.assignments) {
            if (assignment.type != nullptr && assignment.parameters.empty()) {
                const bool isNew = evaluating_.insert(&assignment).second;
                expand(assignment.type);
                if (isNew) {
                    evaluating_.erase(&assignment);
                }
            }
        }
    }
    for (auto& module : model_.modules) {
        for (Assignment& assignment : module->node.assignments) {
            const Symbol& symbol = symbols_[&module->node][assignment.name];
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
            } else if (assignment.kind == Assignment::Class && symbol.objectClass != nullptr) {
                if (symbol.objectClass->hasRecord) {
                    module->classes.push_back(symbol.objectClass);
                }
            } else if (symbol.object != nullptr) {
                if (symbol.object->objectClass->hasRecord) {
                    resolveObject(*symbol.object, assignment);
                    module->objects.push_back(symbol.object);
                }
            } else if (symbol.set != nullptr) {
                if (symbol.set->objectClass->hasRecord) {
                    resolveSet(*symbol.set, assignment);
                    module->sets.push_back(symbol.set);
                }
            } else if (assignment.kind == Assignment::Value) {
                resolveValue(*module, assignment);
            }
        }
    }
    breakNameCycles();
    // Sets of an own kind of class come in where a value is bound to one, with types of theirs.
    for (std::size_t i = 0; i < model_.types.size(); ++i) {
        fillTable(model_.types[i]);
    }
    breakNameCycles();
    for (Type& type : model_.types) {
        const TypeNode* element = type.node != nullptr ? type.node->element.get() : nullptr;
        if (type.isRepeated() && element != nullptr && element->table && type.element != nullptr &&
            resolvedLists_.count(type.node) == 0 && type.element->shape == Shape::OpenType) {
            type.element = model_.builtins["open type"];
        }
    }
    breakRecordCycles();
    checkRemarks();
    separateNames();
}

// Names that stand for nothing but each other.
void Resolver::breakNameCycles() {
    std::map<const Type*, std::size_t> lengths; // of the chains that have been followed
    for (Type& type : model_.types) {
        std::vector<Type*> path;
        std::set<const Type*> onPath;
        std::size_t further = 0;
        for (Type* name = &type; name != nullptr; name = name->aliasOf) {
            if (const auto known = lengths.find(name); known != lengths.end()) {
                further = known->second;
                break;
            }
            if (onPath.insert(name).second) {
                path.push_back(name);
                continue;
            }
            std::string cycle;
            for (auto step = std::find(path.begin(), path.end(), name); step != path.end();
                 ++step) {
                cycle += (*step)->name + " -> ";
            }
            diagnostics_.error(name->at,
                               "'" + name->name + "' stands for itself: " + cycle + name->name);
            path.back()->aliasOf = nullptr;
            break;
        }
        if (!path.empty() && path.size() + further > LongestChain) {
            diagnostics_.error(type.at, "'" + type.name +
                                            "' stands for another name, which stands "
                                            "for another, more than " +
                                            std::to_string(LongestChain) + " times");
            path.back()->aliasOf = nullptr;
            further = 0;
        }
        for (std::size_t i = 0; i < path.size(); ++i) {
            lengths[path[i]] = path.size() - i + further;
        }
    }
}

// A record cannot hold itself. Where an element on the way round can be absent, it is held by
// pointer; where none can, no value would end, and the checker says so. The path is kept on the
// heap: it can be as long as the module.
void Resolver::breakRecordCycles() {
    enum State { Unseen, Open, Done };
    std::map<const Type*, State> states;
    struct Step {
        Type* type;
        std::size_t next;
    };
    std::vector<Step> path;
    // What a value holds in itself, one after the other.
    const auto heldBy = [](const Type& type, std::size_t number) -> Type* {
        const bool record = type.shape == Shape::Sequence || type.shape == Shape::Set;
        if (type.aliasOf != nullptr || type.shape == Shape::FixedArray) {
            return number > 0 ? nullptr : type.aliasOf != nullptr ? type.aliasOf : type.element;
        }
        return record && number < type.elements.size() ? type.elements[number].type : nullptr;
    };
    for (std::size_t i = 0; i < model_.types.size(); ++i) {
        path = {{&model_.types[i], 0}};
        while (!path.empty()) {
            Type* const type = path.back().type;
            states[type] = Open;
            Type* const held = heldBy(*type, path.back().next++);
            if (held == nullptr) {
                states[type] = Done;
                path.pop_back();
            } else if (states[held] == Unseen) {
                path.push_back({held, 0});
            } else if (states[held] == Open) {
                std::size_t at = path.size();
                bool absent = false;
                do {
                    const Step& step = path[--at];
                    absent = !step.type->elements.empty() && step.type->aliasOf == nullptr &&
                             step.type->elements[step.next - 1].presence != Presence::Mandatory;
                } while (!absent && path[at].type != held);
                if (absent) {
                    holdByPointer(*path[at].type, path[at].type->elements[path[at].next - 1]);
                    for (; path.size() > at + 1; path.pop_back()) {
                        states[path.back().type] = Unseen;
                    }
                }
            }
        }
    }
}

// A CHOICE holds records by pointer, and one of a single alternative is that on the wire.
void Resolver::holdByPointer(Type& record, Element& element) {
    Type& choice = newType(*record.module, inlineTypeName(record.name, element.name), element.at);
    choice.shape = Shape::Choice;
    choice.inPlace = true;
    choice.standard = record.standard;
    choice.notation = "CHOICE { " + element.name + " " + element.type->name + " }";
    choice.comment = "Holds the element, whose values can hold such an element themselves.";
    Element alternative = element;
    alternative.presence = Presence::Mandatory;
    alternative.presenceBit = 0;
    alternative.defaultValue.reset();
    choice.elements.push_back(std::move(alternative));
    element.type = &choice;
    element.tagNode.reset();
    element.constraintPending = false;
}

// Modules that give one name to different things get namespaces of their own.
void Resolver::separateNames() {
    std::map<std::string, std::set<Module*>> homes;
    for (const auto& module : model_.modules) {
        if (module->ofLibrary) {
            continue;
        }
        for (const Type* type : module->types) {
            homes["type " + type->name].insert(module.get());
        }
        const auto add = [&](const std::string& name) { homes[name].insert(module.get()); };
        for (const Identifier& identifier : module->identifiers) {
            add(identifier.name);
        }
        for (const ObjectClass* each : module->classes) {
            add(each->name);
        }
        for (const Object* each : module->objects) {
            add(each->name);
        }
        for (const ObjectSet* each : module->sets) {
            add(each->name);
        }
    }
    for (const auto& [name, modules] : homes) {
        for (Module* module : modules) {
            if (modules.size() > 1) {
                module->space = cppName(module->node.name);
            }
        }
    }
}

// The types that are structures or tags of others, as X.680 and X.690 give them: 8.5 and 8.18 to
// 8.26. What has no coder of its own is kept as its contents octets.
const char* const builtinNotation = R"(
Builtin DEFINITIONS EXPLICIT TAGS ::= BEGIN
TYPE-IDENTIFIER ::= CLASS { &id OBJECT IDENTIFIER UNIQUE, &Type }
    WITH SYNTAX { &Type IDENTIFIED BY &id }
ABSTRACT-SYNTAX ::= CLASS {
    &id OBJECT IDENTIFIER UNIQUE, &Type, &property BIT STRING DEFAULT {} }
    WITH SYNTAX { &Type IDENTIFIED BY &id [HAS PROPERTY &property] }
ObjectDescriptor ::= [UNIVERSAL 7] IMPLICIT GeneralString
EXTERNAL ::= [UNIVERSAL 8] IMPLICIT SEQUENCE {
    direct-reference OBJECT IDENTIFIER OPTIONAL,
    indirect-reference INTEGER OPTIONAL,
    data-value-descriptor ObjectDescriptor OPTIONAL,
    encoding CHOICE {
        single-ASN1-type [0] ANY,
        octet-aligned [1] IMPLICIT OCTET STRING,
        arbitrary [2] IMPLICIT BIT STRING } }
INSTANCE-OF ::= [UNIVERSAL 8] IMPLICIT SEQUENCE {
    type-id OBJECT IDENTIFIER,
    value [0] EXPLICIT ANY }
REAL ::= [UNIVERSAL 9] IMPLICIT OCTET STRING
PDV-Identification ::= CHOICE {
    syntaxes [0] IMPLICIT SEQUENCE {
        abstract [0] IMPLICIT OBJECT IDENTIFIER,
        transfer [1] IMPLICIT OBJECT IDENTIFIER },
    syntax [1] IMPLICIT OBJECT IDENTIFIER,
    presentation-context-id [2] IMPLICIT INTEGER,
    context-negotiation [3] IMPLICIT SEQUENCE {
        presentation-context-id [0] IMPLICIT INTEGER,
        transfer-syntax [1] IMPLICIT OBJECT IDENTIFIER },
    transfer-syntax [4] IMPLICIT OBJECT IDENTIFIER,
    fixed [5] IMPLICIT NULL }
EMBEDDED-PDV ::= [UNIVERSAL 11] IMPLICIT SEQUENCE {
    identification [0] EXPLICIT PDV-Identification,
    data-value [2] IMPLICIT OCTET STRING }
ANY-MISSING ::= ANY
RELATIVE-OID ::= [UNIVERSAL 13] IMPLICIT OCTET STRING
TIME ::= [UNIVERSAL 14] IMPLICIT VisibleString
VideotexString ::= [UNIVERSAL 21] IMPLICIT OCTET STRING
GraphicString ::= [UNIVERSAL 25] IMPLICIT GeneralString
CHARACTER-STRING ::= [UNIVERSAL 29] IMPLICIT SEQUENCE {
    identification [0] EXPLICIT PDV-Identification,
    string-value [2] IMPLICIT OCTET STRING }
DATE ::= [UNIVERSAL 31] IMPLICIT VisibleString
TIME-OF-DAY ::= [UNIVERSAL 32] IMPLICIT VisibleString
DATE-TIME ::= [UNIVERSAL 33] IMPLICIT VisibleString
DURATION ::= [UNIVERSAL 34] IMPLICIT VisibleString
OID-IRI ::= [UNIVERSAL 35] IMPLICIT UTF8String
RELATIVE-OID-IRI ::= [UNIVERSAL 36] IMPLICIT UTF8String
END
)";

void Resolver::addBuiltins() {
    ModuleNode& builtin = model_.builtinModule.node;
    builtin.file = std::make_shared<FileNode>();
    builtin.file->stream = tokenize("built-in types", builtinNotation, diagnostics_);
    Parser(builtin.file->stream.tokens, builtin, diagnostics_).parseModule(builtin);
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
    for (Assignment& assignment : module.node.assignments) {
        Symbol& symbol = symbols_[&module.node][assignment.name];
        if (symbol.assignment != nullptr) {
            diagnostics_.error(assignment.at, "'" + assignment.name + "' is assigned twice; line " +
                                                  std::to_string(symbol.assignment->at.line) +
                                                  " does it first");
            continue;
        }
        symbol.assignment = &assignment;
        symbol.module = &module;
        if (assignment.kind == Assignment::Class && assignment.parameters.empty()) {
            symbol.objectClass = &model_.classes.emplace_back();
            declareClass(module, assignment, *symbol.objectClass);
        }
        for (Remark* remark : assignment.remarks) {
            if (remark->key == "template" && assignment.kind == Assignment::Type) {
                remark->taken = true;
                symbol.isTemplate = true; // nothing is emitted under its own name
            }
        }
    }
}

// What a value or a set is, the class of its governor tells, wherever that stands.
void Resolver::declareAssignment(Module& module, Assignment& assignment) {
    Symbol& symbol = symbols_[&module.node][assignment.name];
    if (symbol.assignment != &assignment || symbol.isTemplate || !assignment.parameters.empty() ||
        assignment.kind == Assignment::Macro) {
        return;
    }
    const std::string name = valueMemberName(assignment.name);
    const bool named = assignment.type != nullptr && assignment.type->kind == TypeNode::Reference;
    const Symbol* governor =
        named ? classOf(assignment.type->scope, assignment.type->reference) : nullptr;
    switch (assignment.kind) {
    case Assignment::Set: {
        const Symbol* type = named && governor == nullptr
                                 ? lookUp(assignment.type->scope, assignment.type->reference)
                                 : nullptr;
        if (named && governor == nullptr && type == nullptr) {
            find(assignment.type->scope, assignment.type->reference, assignment.at, "class");
            return;
        }
        if (governor != nullptr) {
            symbol.set = &model_.sets.emplace_back();
            symbol.set->name = name;
            symbol.set->comment = assignment.comment;
            symbol.set->module = &module;
            symbol.set->objectClass = governor->objectClass;
            declareValue(module, assignment);
            return;
        }
        // A set of values is their type, narrowed.
        assignment.type->furtherText +=
            " (" +
            spelled(assignment.body.data() + 1,
                    assignment.body.data() + assignment.body.size() - 2) +
            ")";
        symbol.type = &newType(module, cppName(assignment.name), assignment.at);
        symbol.type->comment = assignment.comment;
        return;
    }
    case Assignment::Type: {
        const bool renamed = named && assignment.type->arguments.empty() && governor != nullptr;
        if (renamed) {
            symbol.objectClass = governor->objectClass; // another name of a class
            return;
        }
        const Symbol* parametrised = named ? findType(*assignment.type) : nullptr;
        if (parametrised != nullptr && parametrised->assignment->kind == Assignment::Class) {
            return; // a class with parameters: its objects are in no set that can be resolved
        }
        const bool null = assignment.type->kind == TypeNode::Null;
        const std::string typeName = cppName(assignment.name);
        symbol.type = &newType(module, null ? typeName + "_" : typeName, assignment.at);
        symbol.type->comment = assignment.comment;
        return;
    }
    case Assignment::Class:
        declareValue(module, assignment);
        return;
    case Assignment::Value:
        if (governor != nullptr) {
            symbol.object = &model_.objects.emplace_back();
            symbol.object->name = name;
            symbol.object->comment = assignment.comment;
            symbol.object->at = assignment.at;
            symbol.object->module = &module;
            symbol.object->objectClass = governor->objectClass;
        }
        declareValue(module, assignment);
        return;
    case Assignment::Macro:
        return;
    }
}

void Resolver::declareValue(Module& module, const Assignment& assignment) {
    valuesByName_.emplace(std::pair(&module, valueMemberName(assignment.name)), assignment.at);
}

void Resolver::declareClass(Module& module, Assignment& assignment, ObjectClass& objectClass) {
    objectClass.name = className(assignment.name);
    objectClass.node = &assignment;
    objectClass.module = &module;
    const auto isIdentifier = [](const ClassFieldNode& field) {
        return !field.isType && !field.isSet && field.governor != nullptr &&
               field.governor->kind == TypeNode::ObjectIdentifier;
    };
    unsigned types = 0;
    bool others = false;
    for (const ClassFieldNode& field : assignment.fields) {
        if (field.isType) {
            ++types;
            if (objectClass.typeField.empty() || field.name == "Type") {
                objectClass.typeField = field.name;
                objectClass.typeOptional = field.optional;
            }
        } else if (isIdentifier(field)) {
            if (objectClass.idField.empty() || field.name == "id" ||
                (field.unique && objectClass.idField != "id")) {
                objectClass.idField = field.name;
            }
        } else {
            others = true;
        }
    }
    const bool mandatoryId =
        std::any_of(assignment.fields.begin(), assignment.fields.end(),
                    [](const auto& field) { return field.name == "id" && !field.optional; });
    objectClass.hasRecord = &module != &model_.builtinModule && types == 1 && !others &&
                            objectClass.idField == "id" && mandatoryId;
}

void Resolver::checkImports(const Module& module) {
    for (const ImportNode& import : module.node.imports) {
        const Module* const from = moduleNamed(&module.node, import.module, import.identifier);
        if (from == nullptr) {
            diagnostics_.error(import.moduleAt, "module '" + import.module +
                                                    "' is not among the files" + hintFor(import));
        } else if (lookUp(&from->node, import.name) == nullptr && !isCharacterString(import.name) &&
                   symbols_[&model_.builtinModule.node].count(import.name) == 0) {
            // Published modules name what a later version of the other has, mostly without using
            // it.
            const bool type = import.name[0] >= 'A' && import.name[0] <= 'Z';
            diagnostics_.warning(import.at,
                                 "module '" + import.module + "' does not define '" + import.name +
                                     "'" + (type ? "; values of that type are left open" : ""));
        }
    }
}

// A module of the library means another one of it, any other means those beside it first. Of
// several with the name it is the one with the identifier.
Module* Resolver::moduleNamed(const ModuleNode* scope, const std::string& name,
                              const std::string& identifier) const {
    const auto home = modules_.find(scope);
    const bool ofLibrary = home != modules_.end() && home->second->ofLibrary;
    auto found = modulesByName_.find({ofLibrary, name});
    if (found == modulesByName_.end() && !ofLibrary) {
        found = modulesByName_.find({true, name});
    }
    if (found == modulesByName_.end()) {
        return nullptr;
    }
    for (Module* module : found->second) {
        if (module->node.identifier == identifier) {
            return module;
        }
    }
    return found->second.front();
}

// Where else a name is that is imported from a module that is not there.
std::string Resolver::hintFor(const ImportNode& import) {
    for (const auto& module : model_.modules) {
        const auto& own = symbols_[&module->node];
        if (module->ofLibrary && own.count(import.name) != 0) {
            return "; add the file that holds it, or import '" + import.name + "' from '" +
                   module->node.name + "', which is installed with the library (" +
                   module->node.file->name + ")";
        }
    }
    return "; add the file that holds it";
}

// A module may hand on what it imports itself.
Resolver::Symbol* Resolver::lookUp(const ModuleNode* scope, const std::string& name,
                                   unsigned depth) {
    auto& own = symbols_[scope];
    if (const auto found = own.find(name); found != own.end()) {
        return &found->second;
    }
    for (const ImportNode& import : scope->imports) {
        const Module* const from = import.name == name && depth < 8
                                       ? moduleNamed(scope, import.module, import.identifier)
                                       : nullptr;
        if (from != nullptr) {
            if (Symbol* symbol = lookUp(&from->node, name, depth + 1)) {
                return symbol;
            }
        }
    }
    return nullptr;
}

Resolver::Symbol* Resolver::find(const ModuleNode* scope, const std::string& name,
                                 const Location& at, const char* what) {
    if (Symbol* symbol = lookUp(scope, name)) {
        return symbol;
    }
    auto& builtins = symbols_[&model_.builtinModule.node];
    if (const auto found = builtins.find(name); found != builtins.end()) {
        return &found->second;
    }
    const auto import =
        std::find_if(scope->imports.begin(), scope->imports.end(),
                     [&name](const ImportNode& candidate) { return candidate.name == name; });
    if (import == scope->imports.end()) {
        diagnostics_.error(at,
                           std::string(what) + " '" + name + "' is neither defined nor imported");
        return nullptr;
    }
    const bool given = moduleNamed(scope, import->module, import->identifier) != nullptr;
    const bool type = name[0] >= 'A' && name[0] <= 'Z';
    if (given && type && std::string(what) == "type") {
        return &builtins["ANY-MISSING"];
    }
    if (given) { // otherwise the import has been complained about
        const std::string sentence = std::string(what) + " '" + name + "' is imported from '" +
                                     import->module + "', which does not define it";
        if (std::string(what) == "class") {
            diagnostics_.error(at, sentence);
        } else {
            diagnostics_.warning(at, sentence + "; what builds on it is left out");
        }
    }
    return nullptr;
}

Resolver::Symbol* Resolver::findType(const TypeNode& node) {
    if (node.module.empty()) {
        return find(node.scope, node.reference, node.at, "type");
    }
    std::string identifier;
    for (const ImportNode& import : node.scope->imports) {
        if (import.module == node.module && (identifier.empty() || import.name == node.reference)) {
            identifier = import.identifier;
        }
    }
    const Module* const module = moduleNamed(node.scope, node.module, identifier);
    if (module == nullptr) {
        diagnostics_.error(node.at, "module '" + node.module + "' is not among the files");
        return nullptr;
    }
    return find(&module->node, node.reference, node.at, "type");
}

// The class that a name stands for, null when it is none.
Resolver::Symbol* Resolver::classOf(const ModuleNode* scope, const std::string& name,
                                    unsigned depth) {
    Symbol* symbol = lookUp(scope, name);
    if (symbol == nullptr) {
        auto& builtins = symbols_[&model_.builtinModule.node];
        const auto found = builtins.find(name);
        symbol = found != builtins.end() ? &found->second : nullptr;
    }
    if (symbol == nullptr || symbol->objectClass != nullptr || depth > 100) {
        return symbol != nullptr && symbol->objectClass != nullptr ? symbol : nullptr;
    }
    const Assignment& assignment = *symbol->assignment;
    const bool renamed = assignment.kind == Assignment::Type && assignment.parameters.empty() &&
                         assignment.type->kind == TypeNode::Reference &&
                         assignment.type->arguments.empty() && assignment.type->module.empty();
    return renamed ? classOf(assignment.type->scope, assignment.type->reference, depth + 1)
                   : nullptr;
}

// Within a module a name in place gives way to one that is there; between modules namespaces tell.
Type& Resolver::newType(Module& module, const std::string& name, const Location& at) {
    Type& type = model_.types.emplace_back();
    type.name = name;
    for (unsigned count = 2; !typesByName_.emplace(std::pair(&module, type.name), &type).second;
         ++count) {
        type.name = name + "_" + std::to_string(count);
    }
    type.module = &module;
    type.at = at;
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

void Resolver::checkRemarks() {
    for (const File& file : model_.files) {
        for (const Remark& remark : file.node->stream.remarks) {
            if (remark.taken) {
                continue;
            }
            const bool known =
                std::any_of(remarkKinds().begin(), remarkKinds().end(),
                            [&remark](const RemarkKind& kind) { return remark.key == kind.key; });
            diagnostics_.error(remark.at, known
                                              ? "the remark '" + remark.key + "' does not fit here"
                                              : "the remark '" + remark.key + "' is unknown");
        }
    }
}

std::optional<long long> Resolver::number(const ValueNode& value) {
    if (value.kind == ValueNode::Number) {
        return value.number;
    }
    if (value.kind != ValueNode::Reference) {
        diagnostics_.error(value.at, "a number is needed here");
        return std::nullopt;
    }
    const Symbol* symbol = find(value.scope, value.reference, value.at, "value");
    if (symbol == nullptr) {
        return std::nullopt;
    }
    const Assignment* assignment = symbol->assignment;
    if (const auto known = numbers_.find(assignment); known != numbers_.end()) {
        return known->second;
    }
    // The governor may be another name of INTEGER, with names for numbers.
    const TypeNode* governor = assignment->type.get();
    for (unsigned depth = 0;
         governor != nullptr && governor->kind == TypeNode::Reference && depth < 100; ++depth) {
        const Symbol* type = lookUp(governor->scope, governor->reference);
        governor = type != nullptr ? type->assignment->type.get() : nullptr;
    }
    if (assignment->kind != Assignment::Value || governor == nullptr ||
        governor->kind != TypeNode::Integer || evaluating_.count(assignment) != 0) {
        diagnostics_.error(value.at, "'" + value.reference + "' is not a number");
        return std::nullopt;
    }
    if (evaluating_.size() > LongestChain) {
        diagnostics_.error(value.at, ChainTooLong);
        return std::nullopt;
    }
    evaluating_.insert(assignment);
    std::optional<long long> result;
    if (const std::optional<ValueNode> read = valueOf(*symbol->module, *assignment)) {
        for (const NamedNumber& named : governor->names) {
            if (read->kind == ValueNode::Reference && named.name == read->reference) {
                result = named.reference ? number(*named.reference) : named.number;
            }
        }
        result = result ? result : number(*read);
    }
    evaluating_.erase(assignment);
    numbers_.emplace(assignment, result);
    return result;
}

} // namespace notation
