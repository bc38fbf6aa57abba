#include "names.h"
#include "parser.h"
#include "printer.h"
#include "resolver.h"

// The part of the resolver that reads object identifiers, information objects and object sets.

namespace notation {
namespace {

// The names that an identifier may begin with unexplained (X.660, annex A).
std::optional<unsigned> rootArc(const std::string& name) {
    static const std::map<std::string, unsigned> roots = {
        {"itu-t", 0}, {"ccitt", 0}, {"iso", 1}, {"joint-iso-itu-t", 2}, {"joint-iso-ccitt", 2}};
    const auto found = roots.find(name);
    return found != roots.end() ? std::optional<unsigned>(found->second) : std::nullopt;
}

/// What WITH SYNTAX matched of an object.
struct ObjectFields {
    std::map<std::string, ValueNode> values;
    std::unique_ptr<TypeNode> type;
};

// Whether an optional group is there: by its own first word or, if it begins with a field, because
// what follows the group does not come yet.
bool isPresent(const SyntaxNode& group, const SyntaxNode* following, const Parser& parser) {
    const SyntaxNode& first = group.group.front();
    if (first.kind == SyntaxNode::Word) {
        return parser.peek().is(first.text.c_str());
    }
    const bool wordFollows = following != nullptr && following->kind == SyntaxNode::Word;
    return !parser.peek().is(wordFollows ? following->text.c_str() : "}");
}

// Reads an object along the syntax of its class (X.681, 11.5).
void matchSyntax(const std::vector<SyntaxNode>& syntax, Parser& parser, ObjectFields& fields) {
    for (std::size_t i = 0; i < syntax.size(); ++i) {
        const SyntaxNode& node = syntax[i];
        if (node.kind == SyntaxNode::Word) {
            parser.expect(node.text.c_str());
        } else if (node.kind == SyntaxNode::Optional) {
            if (isPresent(node, i + 1 < syntax.size() ? &syntax[i + 1] : nullptr, parser)) {
                matchSyntax(node.group, parser, fields);
            }
        } else if (node.text[0] >= 'A' && node.text[0] <= 'Z') {
            fields.type = parser.parseType();
        } else {
            fields.values[node.text] = parser.parseValue();
        }
    }
}

} // namespace

void Resolver::resolveValue(Module& module, Assignment& assignment) {
    const TypeNode* governor = assignment.type.get();
    Module* home = &module;
    for (int depth = 0; governor->kind == TypeNode::Reference; ++depth) {
        const Symbol* symbol = find(*home, governor->reference, governor->at, "type");
        if (symbol == nullptr) {
            return;
        }
        if (symbol->type == nullptr || depth > 100) {
            diagnostics_.error(governor->at, "'" + governor->reference + "' is not a type");
            return;
        }
        governor = symbol->assignment->type.get();
        home = symbol->module;
    }
    const std::optional<ValueNode> read = valueOf(module, assignment);
    if (!read) {
        return;
    }
    const ValueNode& value = *read;
    if (governor->kind == TypeNode::Integer) {
        number(module, value);
        return;
    }
    if (governor->kind != TypeNode::ObjectIdentifier) {
        diagnostics_.error(assignment.at,
                           "values can be of the types OBJECT IDENTIFIER and INTEGER");
        return;
    }
    Identifier identifier;
    identifier.name = memberName(assignment.name);
    identifier.notation = printValue(value);
    identifier.comment = assignment.comment;
    identifier.at = assignment.at;
    identifier.arcs = arcs(module, value);
    if (value.kind == ValueNode::Reference) {
        identifier.copyOf = memberName(value.reference);
    }
    module.identifiers.push_back(std::move(identifier));
}

// The value of an assignment; nothing, once complained about, when it is none.
std::optional<ValueNode> Resolver::valueOf(Module& module, const Assignment& assignment) {
    try {
        return Parser(module.node, diagnostics_, assignment.firstToken).parseValue();
    } catch (const SyntaxError&) {
        return std::nullopt;
    }
}

std::vector<unsigned> Resolver::arcs(const Module& module, const ValueNode& value) {
    std::vector<unsigned> result;
    const auto appendNamed = [&](const std::string& name, const Location& at) {
        const Symbol* symbol = find(module, name, at, "value");
        if (symbol == nullptr) {
            return;
        }
        Assignment* assignment = symbol->assignment;
        const bool isValue = assignment->kind == Assignment::Value && symbol->object == nullptr &&
                             assignment->type->kind != TypeNode::Integer;
        if (!isValue || !evaluating_.insert(assignment).second) {
            diagnostics_.error(at, isValue ? "'" + name + "' is defined by itself"
                                           : "'" + name + "' is not an object identifier");
            return;
        }
        if (const std::optional<ValueNode> read = valueOf(*symbol->module, *assignment)) {
            result = arcs(*symbol->module, *read);
        }
        evaluating_.erase(assignment);
    };
    if (value.kind == ValueNode::Reference) {
        appendNamed(value.reference, value.at);
        return result;
    }
    if (value.kind != ValueNode::Braces || value.arcs.empty()) {
        diagnostics_.error(value.at, "an object identifier is needed here");
        return result;
    }
    for (const ValueNode::Arc& arc : value.arcs) {
        if (arc.number.empty()) {
            if (&arc != &value.arcs.front()) {
                diagnostics_.error(arc.at, "an arc needs its number");
            } else if (const std::optional<unsigned> root = rootArc(arc.name)) {
                result.push_back(*root);
            } else {
                appendNamed(arc.name, arc.at);
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

void Resolver::resolveObject(Module& module, Assignment& assignment, Object& object) {
    const Symbol* symbol = find(module, assignment.type->reference, assignment.type->at, "class");
    if (symbol == nullptr) {
        return;
    }
    if (symbol->objectClass == nullptr) {
        diagnostics_.error(assignment.type->at,
                           "'" + assignment.type->reference + "' is not a class");
        return;
    }
    object.objectClass = symbol->objectClass;
    ObjectFields fields;
    try {
        Parser parser(module.node, diagnostics_, assignment.firstToken);
        parser.expect("{");
        matchSyntax(symbol->objectClass->node->syntax, parser, fields);
        parser.expect("}");
    } catch (const SyntaxError&) {
        return;
    }
    if (const auto id = fields.values.find("id"); id != fields.values.end()) {
        object.arcs = arcs(module, id->second);
    } else {
        diagnostics_.error(assignment.at, "the object has no identifier");
    }
    if (!fields.type) {
        if (!symbol->objectClass->typeOptional) {
            diagnostics_.error(assignment.at, "the object has no type");
        }
        return;
    }
    object.typeNode = std::move(fields.type);
    expandTemplates(module, object.typeNode);
    const TypeNode& node = *object.typeNode;
    Place place{&module, objectTypeName(object.name, symbol->objectClass->typeField),
                module.node.standard, &assignment.remarks};
    if (const Remark* standard = hasRemark(place, "standard")) {
        place.standard = standard->value;
    }
    // Texts and NULL need no type of their own; any other value in place has a record, a limit or
    // a storage that a control class has to know.
    const bool plain = (node.kind == TypeNode::CharacterString || node.kind == TypeNode::Null) &&
                       standsInPlace(node, place) && !node.tag && node.sizes.empty();
    bool taken = false;
    if (node.kind == TypeNode::Reference || plain) {
        object.type = use(node, place, taken);
    } else {
        takeRemark(place, "standard"); // no other object has a type of its own to say it of
        object.type = hoist(node, place);
        object.type->comment = assignment.comment; // the object tells what its value is for
    }
}

void Resolver::resolveSet(Module& module, Assignment& assignment, ObjectSet& set) {
    const Symbol* symbol = find(module, assignment.governor, assignment.at, "class");
    if (symbol == nullptr) {
        return;
    }
    if (symbol->objectClass == nullptr) {
        diagnostics_.error(assignment.at, "'" + assignment.governor + "' is not a class");
        return;
    }
    set.objectClass = symbol->objectClass;
    for (const auto& [name, at] : assignment.members) {
        const Symbol* member = find(module, name, at, "object");
        if (member == nullptr) {
            continue;
        }
        if (member->object == nullptr ||
            member->assignment->type->reference != assignment.governor) {
            diagnostics_.error(at, "'" + name + "' is not an object of class '" +
                                       assignment.governor + "'");
            continue;
        }
        set.objects.push_back(member->object);
    }
}

} // namespace notation
