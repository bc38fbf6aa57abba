#include <algorithm>

#include "names.h"
#include "parser.h"
#include "printer.h"
#include "resolver.h"

// The part of the resolver that reads object identifiers, information objects and object sets.

namespace notation {
namespace {

// The names that need no number (X.660, annex A), behind the arcs in front of them.
std::optional<unsigned> knownArc(const std::vector<unsigned>& before, const std::string& name) {
    static const std::map<std::string, unsigned> roots = {
        {"itu-t", 0}, {"ccitt", 0}, {"iso", 1}, {"joint-iso-itu-t", 2}, {"joint-iso-ccitt", 2}};
    static const std::map<std::string, unsigned> ofItu = {
        {"recommendation", 0},   {"question", 1},         {"administration", 2},
        {"network-operator", 3}, {"r-recommendation", 5}, {"identified-organization", 4}};
    static const std::map<std::string, unsigned> ofIso = {{"standard", 0},
                                                          {"registration-authority", 1},
                                                          {"member-body", 2},
                                                          {"identified-organization", 3}};
    const bool recommendation = before == std::vector<unsigned>{0, 0};
    if (recommendation && name.size() == 1 && name[0] >= 'a' && name[0] <= 'z') {
        return static_cast<unsigned>(name[0] - 'a' + 1);
    }
    if (before.size() > 1 || (before.size() == 1 && before[0] > 1)) {
        return std::nullopt;
    }
    const auto& names = before.empty() ? roots : before[0] == 0 ? ofItu : ofIso;
    const auto found = names.find(name);
    return found != names.end() ? std::optional<unsigned>(found->second) : std::nullopt;
}

/// What WITH SYNTAX matched of an object.
struct ObjectFields {
    std::map<std::string, ValueNode> values;
    std::map<std::string, Owned<TypeNode>> types;
};

bool stands(const SyntaxNode& word, const Parser& parser) {
    return word.text[0] == '&'
               ? parser.peek().kind == Token::Field && parser.peek().text == word.text.substr(1)
               : parser.peek().is(word.text.c_str());
}

// Whether an optional group is there: by its own first word or, if it begins with a field, because
// what follows the group does not come yet.
bool isPresent(const SyntaxNode& group, const SyntaxNode* following, const Parser& parser) {
    if (group.group.empty()) {
        return false;
    }
    const SyntaxNode& first = group.group.front();
    if (first.kind == SyntaxNode::Word) {
        return stands(first, parser);
    }
    if (first.kind == SyntaxNode::Optional) {
        return isPresent(first, group.group.size() > 1 ? &group.group[1] : following, parser);
    }
    const bool wordFollows = following != nullptr && following->kind == SyntaxNode::Word;
    return !parser.peek().is(wordFollows ? following->text.c_str() : "}") && !parser.peek().is("}");
}

// Whether braces list names, which a set in them does; what has names in a row is an object.
bool listsNames(const Tokens& body) {
    const auto isName = [](const Token& token) {
        const bool word = token.is("UNION") || token.is("INTERSECTION") || token.is("EXCEPT");
        return !word && (token.kind == Token::Lower || token.kind == Token::Upper);
    };
    enum { DeepestBraces = 16 }; // parameters that hand on parameters add a pair each
    int depth = 0;
    for (std::size_t i = 1; i + 2 < body.size(); ++i) {
        depth += body[i].is("{") ? 1 : body[i].is("}") ? -1 : 0;
        if (depth > DeepestBraces || body[i].kind == Token::Field ||
            body[i].kind == Token::Number || (isName(body[i]) && isName(body[i + 1]))) {
            return false;
        }
    }
    return true;
}

// A setting that nothing is made of.
void skipSetting(Parser& parser) {
    const bool named = parser.peek().kind == Token::Upper && !parser.peek().is("TRUE") &&
                       !parser.peek().is("FALSE");
    if (!named && !parser.peek().is("{")) {
        parser.parseValue();
        return;
    }
    parser.takeBalanced();
    while (parser.peek().is("{") || parser.peek().is(".") || parser.peek().is(":")) {
        parser.takeBalanced();
        if (parser.peek().kind == Token::Field || parser.peek(0).is("{")) {
            parser.takeBalanced();
        }
    }
}

const ClassFieldNode* fieldNamed(const Assignment& objectClass, const std::string& name) {
    for (const ClassFieldNode& field : objectClass.fields) {
        if (field.name == name) {
            return &field;
        }
    }
    return nullptr;
}

// Reads an object along the syntax of its class (X.681, 11.5).
void matchSyntax(const Assignment& objectClass, const std::vector<SyntaxNode>& syntax,
                 Parser& parser, ObjectFields& fields) {
    for (std::size_t i = 0; i < syntax.size(); ++i) {
        const SyntaxNode& node = syntax[i];
        if (node.kind == SyntaxNode::Word) {
            if (node.text[0] == '&') {
                parser.take();
            } else {
                parser.expect(node.text.c_str());
            }
            continue;
        }
        if (node.kind == SyntaxNode::Optional) {
            if (isPresent(node, i + 1 < syntax.size() ? &syntax[i + 1] : nullptr, parser)) {
                matchSyntax(objectClass, node.group, parser, fields);
            }
            continue;
        }
        const ClassFieldNode* const field = fieldNamed(objectClass, node.text);
        const bool identifier = field != nullptr && !field->isSet && field->governor != nullptr &&
                                field->governor->kind == TypeNode::ObjectIdentifier;
        if (field != nullptr && field->isType) {
            fields.types[node.text] = parser.parseType();
        } else if (identifier) {
            fields.values[node.text] = parser.parseValue();
        } else {
            skipSetting(parser);
        }
    }
}

} // namespace

void Resolver::resolveValue(Module& module, Assignment& assignment) {
    const TypeNode* governor = assignment.type.get();
    for (unsigned depth = 0; governor->kind == TypeNode::Reference; ++depth) {
        const Symbol* symbol = findType(*governor);
        if (symbol == nullptr) {
            return;
        }
        if (symbol->assignment->kind == Assignment::Class) {
            return; // a class with parameters
        }
        if (symbol->assignment->type == nullptr || depth > 100) {
            diagnostics_.error(governor->at, "'" + governor->reference + "' is not a type");
            return;
        }
        if (!symbol->assignment->parameters.empty()) {
            return;
        }
        governor = symbol->assignment->type.get();
    }
    if (governor->kind == TypeNode::Integer && governor->names.empty()) {
        if (const std::optional<ValueNode> read = valueOf(module, assignment)) {
            number(*read);
        }
        return;
    }
    const bool identifierField = governor->kind == TypeNode::ClassField &&
                                 governor->fieldName[0] >= 'a' && governor->fieldName[0] <= 'z';
    if (governor->kind != TypeNode::ObjectIdentifier && !identifierField) {
        return; // nothing is made of it in C++
    }
    const std::optional<ValueNode> read = valueOf(module, assignment);
    if (!read) {
        return;
    }
    const ValueNode& value = *read;
    Identifier identifier;
    identifier.name = valueMemberName(assignment.name);
    identifier.notation = printValue(value);
    identifier.comment = assignment.comment;
    identifier.at = assignment.at;
    identifier.arcs = arcs(value);
    if (value.kind == ValueNode::Reference) {
        identifier.copyOf = valueMemberName(value.reference);
    }
    if (!identifier.arcs.empty()) { // otherwise what it builds on is not there
        module.identifiers.push_back(std::move(identifier));
    }
}

// The value of an assignment; nothing, once complained about, when it is none.
std::optional<ValueNode> Resolver::valueOf(const Module& module, const Assignment& assignment) {
    try {
        return Parser(assignment.body, module.node, diagnostics_).parseValue();
    } catch (const SyntaxError&) {
        return std::nullopt;
    }
}

void Resolver::appendArcs(std::vector<unsigned>& result, const ValueNode& value,
                          const std::string& name, const Location& at, bool first) {
    const Symbol* symbol = first ? find(value.scope, name, at, "value") : lookUp(value.scope, name);
    if (symbol == nullptr) {
        if (!first) {
            diagnostics_.error(at, "an arc needs its number");
        }
        return;
    }
    const Assignment* assignment = symbol->assignment;
    const bool isNumber =
        assignment->kind == Assignment::Value && assignment->type->kind == TypeNode::Integer;
    if (!first && isNumber) {
        ValueNode reference;
        reference.kind = ValueNode::Reference;
        reference.at = at;
        reference.scope = value.scope;
        reference.reference = name;
        result.push_back(static_cast<unsigned>(number(reference).value_or(0)));
        return;
    }
    if (!first) {
        diagnostics_.error(at, "an arc needs its number");
        return;
    }
    if (const auto known = arcs_.find(assignment); known != arcs_.end()) {
        result = known->second;
        return;
    }
    const bool isValue =
        assignment->kind == Assignment::Value && symbol->object == nullptr && !isNumber;
    if (!isValue || evaluating_.count(assignment) != 0) {
        diagnostics_.error(at, isValue ? "'" + name + "' is defined by itself"
                                       : "'" + name + "' is not an object identifier");
        return;
    }
    if (evaluating_.size() > LongestChain) {
        diagnostics_.error(at, ChainTooLong);
        return;
    }
    evaluating_.insert(assignment);
    if (const std::optional<ValueNode> read = valueOf(*symbol->module, *assignment)) {
        result = arcs(*read);
    }
    evaluating_.erase(assignment);
    arcs_.emplace(assignment, result);
}

std::vector<unsigned> Resolver::arcs(const ValueNode& value) {
    std::vector<unsigned> result;
    if (value.kind == ValueNode::Reference) {
        appendArcs(result, value, value.reference, value.at, true);
        return result;
    }
    if (value.kind != ValueNode::Braces || value.arcs.empty()) {
        diagnostics_.error(value.at, value.kind == ValueNode::Text
                                         ? "an object identifier is needed here; it is written "
                                           "{ 1 2 3 }, without quotation marks"
                                         : "an object identifier is needed here");
        return result;
    }
    for (const ValueNode::Arc& arc : value.arcs) {
        if (!arc.reference.empty()) {
            ValueNode reference = value;
            reference.kind = ValueNode::Reference;
            reference.at = arc.at;
            reference.reference = arc.reference;
            result.push_back(static_cast<unsigned>(number(reference).value_or(0)));
            continue;
        }
        if (arc.number.empty()) {
            if (const std::optional<unsigned> known = knownArc(result, arc.name)) {
                result.push_back(*known);
            } else {
                appendArcs(result, value, arc.name, arc.at, &arc == &value.arcs.front());
            }
            continue;
        }
        if (arc.number.size() > 10 || std::stoull(arc.number) > 0xFFFFFFFFull) {
            diagnostics_.error(arc.at, "an arc above 32 bits is not supported");
            continue;
        }
        result.push_back(static_cast<unsigned>(std::stoul(arc.number)));
    }
    if (result.size() > 128) {
        diagnostics_.error(value.at, "more than 128 arcs are not supported");
    }
    return result;
}

// `object CLASS ::= other`
void Resolver::resolveOtherName(Object& object, const Assignment& assignment) {
    const Token& name = assignment.body[0];
    const Symbol* const other = find(&object.module->node, name.text, name.at, "object");
    if (other == nullptr) {
        return;
    }
    if (other->object == nullptr || other->object->objectClass != object.objectClass) {
        diagnostics_.error(name.at, "'" + name.text + "' is not an object of class '" +
                                        object.objectClass->node->name + "'");
        return;
    }
    if (evaluating_.size() > LongestChain || other->object->state == Object::Resolving) {
        diagnostics_.error(name.at, other->object->state == Object::Resolving
                                        ? "'" + name.text + "' is defined by itself"
                                        : ChainTooLong);
        return;
    }
    evaluating_.insert(&object);
    resolveObject(*other->object, *other->assignment);
    evaluating_.erase(&object);
    object.arcs = other->object->arcs;
    object.type = other->object->type;
    object.state = Object::Resolved;
}

void Resolver::resolveObject(Object& object, Assignment& assignment) {
    if (object.state != Object::Declared) {
        return;
    }
    object.state = Object::Resolving;
    Module& module = *object.module;
    const ObjectClass& objectClass = *object.objectClass;
    if (assignment.body[0].kind == Token::Lower) {
        resolveOtherName(object, assignment);
        return;
    }
    ObjectFields fields;
    try {
        Parser parser(assignment.body, module.node, diagnostics_);
        parser.expect("{");
        matchSyntax(*objectClass.node, objectClass.node->syntax, parser, fields);
        parser.expect("}");
    } catch (const SyntaxError&) {
        return;
    }
    object.state = Object::Resolved;
    if (const auto id = fields.values.find(objectClass.idField); id != fields.values.end()) {
        object.arcs = arcs(id->second);
    } else if (objectClass.hasRecord) {
        diagnostics_.error(assignment.at, "the object has no identifier");
    }
    object.typeNode = std::move(fields.types[objectClass.typeField]);
    if (!object.typeNode) {
        if (!objectClass.typeOptional) {
            diagnostics_.error(assignment.at, "the object has no type");
        }
        return;
    }
    expand(object.typeNode);
    const TypeNode& node = *object.typeNode;
    Place place{&module, objectTypeName(object.name, objectClass.typeField), module.node.standard,
                &assignment.remarks};
    if (const Remark* standard = hasRemark(place, "standard")) {
        place.standard = standard->value;
    }
    // Texts and NULL need no type of their own; any other value in place has a record, a limit or
    // a storage that a control class has to know.
    const bool plain = (node.kind == TypeNode::CharacterString || node.kind == TypeNode::Null) &&
                       standsInPlace(node, place) && !node.tag && node.sizes.empty();
    bool taken = false;
    if ((node.kind == TypeNode::Reference && !node.tag) || plain) {
        object.type = use(node, place, taken);
    } else {
        takeRemark(place, "standard"); // no other object has a type of its own to say it of
        object.type = hoist(node, place);
        object.type->comment = assignment.comment; // the object tells what its value is for
    }
}

void Resolver::resolveSet(ObjectSet& set, const Assignment& assignment) {
    if (!set.resolved) {
        set.resolved = true;
        addMembers(set, assignment.body, *set.module);
    }
}

// The objects of another set, once each.
void Resolver::addMembersOf(ObjectSet& set, const Symbol& other) {
    if (evaluating_.size() > LongestChain) {
        diagnostics_.error(other.assignment->at, "sets hold each other more than " +
                                                     std::to_string(LongestChain) + " deep");
        return;
    }
    evaluating_.insert(&set);
    resolveSet(*other.set, *other.assignment);
    evaluating_.erase(&set);
    const std::set<const Object*> known(set.objects.begin(), set.objects.end());
    for (const Object* object : other.set->objects) {
        if (known.count(object) == 0) {
            set.objects.push_back(object);
        }
    }
}

// Objects and other sets, one or the other or both of them. What the members have in common
// (INTERSECTION) or is left out (EXCEPT) is not looked at: an object more resolves a value more.
void Resolver::addMembers(ObjectSet& set, const Tokens& body, const Module& home) {
    Parser parser(body, home.node, diagnostics_);
    try {
        parser.expect("{");
        while (!parser.accept("}")) {
            const Token token = parser.peek();
            const ModuleNode* const scope = token.scope != nullptr ? token.scope : &home.node;
            const bool name = token.kind == Token::Lower || token.kind == Token::Upper;
            const bool all = token.is("ALL") || token.is("UNION") || token.is("INTERSECTION");
            if (token.is("EXCEPT")) {
                parser.take();
                parser.takeBalanced();
                continue;
            }
            if (!name || all) {
                if (!token.is("...") && !token.is("|") && !token.is(",") && !token.is("^") &&
                    !token.is("{") && !token.is("(") && !all) {
                    parser.expect("...");
                }
                const Tokens inner = parser.takeBalanced();
                if (inner[0].is("{") && listsNames(inner)) {
                    addMembers(set, inner, home); // any other is an object that is told by no name
                }
                continue;
            }
            parser.take();
            if (parser.peek().is("{") || parser.peek().is(".")) {
                while (parser.peek().is("{") || parser.peek().is(".")) {
                    parser.takeBalanced();
                    if (parser.peek().kind == Token::Field) {
                        parser.take();
                    }
                }
                continue; // with parameters, or a field of an object
            }
            Symbol* const member =
                find(scope, token.text, token.at, token.kind == Token::Lower ? "object" : "set");
            if (member == nullptr) {
                continue;
            }
            if (member->set != nullptr && member->set->objectClass == set.objectClass) {
                addMembersOf(set, *member);
                continue;
            }
            if (member->object == nullptr || member->object->objectClass != set.objectClass) {
                const bool parametrised = !member->assignment->parameters.empty() ||
                                          member->assignment->kind == Assignment::Macro;
                if (!parametrised) {
                    diagnostics_.error(token.at, "'" + token.text +
                                                     "' is not an object of class '" +
                                                     set.objectClass->node->name + "'");
                }
                continue;
            }
            resolveObject(*member->object, *member->assignment);
            const bool known = std::find(set.objects.begin(), set.objects.end(), member->object) !=
                               set.objects.end();
            if ((!member->object->arcs.empty() && !(known && !set.objectClass->hasRecord)) ||
                set.objectClass->hasRecord) {
                set.objects.push_back(member->object);
            }
        }
    } catch (const SyntaxError&) {
        return;
    }
}

} // namespace notation
