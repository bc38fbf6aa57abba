#include <algorithm>

#include "parser.h"
#include "printer.h"
#include "resolver.h"

// The part of the resolver that puts what is meant in the place of what stands for it: templates,
// COMPONENTS OF, automatic tags, selection types, values of a class's fields, parameters. What
// comes behind it knows none of them.

namespace notation {
namespace {

/// Puts a tag in front of a type, outside one that it has.
void addTag(Owned<TypeNode>& node, const TagNode& tag) {
    if (node->tag) {
        auto outer = std::make_unique<TypeNode>();
        outer->kind = TypeNode::Tagged;
        outer->at = node->at;
        outer->scope = node->scope;
        outer->expanded = true;
        outer->element = std::move(node);
        node = std::move(outer);
    }
    node->tag = tag;
}

// How much a copy takes, in tokens that would be read to the same.
std::size_t piecesOf(const TypeNode& node) {
    constexpr std::size_t usual = 5;
    std::size_t pieces = usual + node.names.size() + node.arguments.size();
    for (const ComponentNode& component : node.components) {
        pieces += component.type != nullptr ? piecesOf(*component.type) : 1;
    }
    for (const TypeNode* inner : {node.element.get(), node.containing.get()}) {
        pieces += inner != nullptr ? piecesOf(*inner) : 0;
    }
    return pieces;
}

} // namespace

void Resolver::expand(Owned<TypeNode>& node) {
    if (node == nullptr || node->expanded) {
        return;
    }
    node->expanded = true;
    if (expanding_ > LongestChain) {
        if (!tooDeep_) {
            diagnostics_.error(node->at, TypesTooDeep);
        }
        tooDeep_ = true;
        node->kind = TypeNode::Null;
        return;
    }
    const Level level(expanding_);
    if (node->tag && node->tag->reference) {
        const std::optional<long long> value = number(*node->tag->reference);
        node->tag->number = static_cast<unsigned>(value.value_or(0)) & 0x1FFFFFFFu;
        node->tag->reference.reset();
    }
    switch (node->kind) {
    case TypeNode::Reference: {
        const Symbol* symbol =
            node->module.empty() ? lookUp(node->scope, node->reference) : nullptr;
        if (symbol != nullptr && symbol->isTemplate) {
            expandTemplate(node, *symbol);
        }
        return;
    }
    case TypeNode::Selection:
        expandSelection(node);
        return;
    case TypeNode::ClassField:
        expandField(node);
        return;
    case TypeNode::Sequence:
    case TypeNode::Set:
    case TypeNode::Choice:
        tagAutomatically(*node);
        for (ComponentNode& component : node->components) {
            expand(component.type);
        }
        return;
    default:
        expand(node->element);
        expand(node->containing);
        return;
    }
}

// A template's right-hand side takes the place of its name, as if it had been written there: so
// the usual rules name what is hoisted, and each place gets a type of its own.
void Resolver::expandTemplate(Owned<TypeNode>& node, const Symbol& symbol) {
    if (!evaluating_.insert(symbol.assignment).second) {
        diagnostics_.error(node->at, "template '" + node->reference + "' holds itself");
        return;
    }
    expand(symbol.assignment->type);
    evaluating_.erase(symbol.assignment);
    Owned<TypeNode> copy = symbol.assignment->type;
    if (node->isConstrained() || (node->tag && copy->tag)) {
        diagnostics_.error(node->at, "a constraint or a second tag on a template is not supported");
    }
    copy->at = node->at;
    if (node->tag) {
        copy->tag = node->tag;
    }
    node = std::move(copy);
}

// `alternative < Choice`: X.680, clause 30.
void Resolver::expandSelection(Owned<TypeNode>& node) {
    const TypeNode* choice = structureOf(*node->element);
    const ComponentNode* found = nullptr;
    if (choice != nullptr && choice->kind == TypeNode::Choice) {
        for (const ComponentNode& component : choice->components) {
            found = component.name == node->fieldName ? &component : found;
        }
    }
    if (found == nullptr) {
        diagnostics_.error(node->at, "there is no alternative '" + node->fieldName + "' in '" +
                                         printType(*node->element) + "'");
        node->kind = TypeNode::Null;
        return;
    }
    Owned<TypeNode> copy = found->type;
    copy->at = node->at;
    expand(copy);
    if (node->tag) {
        addTag(copy, *node->tag);
    }
    node = std::move(copy);
}

// The field of a class that a type names, null when there is none.
const ClassFieldNode* Resolver::fieldOf(const TypeNode& node) {
    const ModuleNode* scope = node.scope;
    std::string name = node.className;
    const ClassFieldNode* field = nullptr;
    for (std::size_t i = 0; i <= node.fieldPath.size(); ++i) {
        const Symbol* symbol = classOf(scope, name);
        if (symbol == nullptr) {
            return nullptr;
        }
        const std::string& wanted = i < node.fieldPath.size() ? node.fieldPath[i] : node.fieldName;
        field = nullptr;
        for (const ClassFieldNode& candidate : symbol->objectClass->node->fields) {
            field = candidate.name == wanted ? &candidate : field;
        }
        if (i == node.fieldPath.size()) {
            break;
        }
        if (field == nullptr || field->governor == nullptr ||
            field->governor->kind != TypeNode::Reference) {
            return nullptr;
        }
        scope = field->governor->scope;
        name = field->governor->reference;
    }
    return field;
}

// A value of a field, or of a set of values, has the type that the class gives it.
void Resolver::expandField(Owned<TypeNode>& node) {
    const ClassFieldNode* field = fieldOf(*node);
    if (field == nullptr || field->governor == nullptr ||
        (field->governor->kind == TypeNode::ObjectIdentifier && node->fieldPath.empty())) {
        return;
    }
    Owned<TypeNode> copy = std::make_unique<TypeNode>(*field->governor);
    copy->at = node->at;
    if (node->tag) {
        addTag(copy, *node->tag);
    }
    copy->furtherText += node->furtherText;
    if (node->table) {
        const std::string& set = node->table->set;
        copy->furtherText += " (" + (set.empty() ? node->table->text : "{" + set + "}") + ")";
    }
    node = std::move(copy);
    expand(node);
}

// The SEQUENCE, SET or CHOICE that a type is in the end; null when it is none.
const TypeNode* Resolver::structureOf(const TypeNode& start) {
    const TypeNode* node = &start;
    for (std::size_t depth = 0; depth < LongestChain; ++depth) {
        if (node->kind == TypeNode::Tagged) {
            node = node->element.get();
            continue;
        }
        if (node->kind == TypeNode::ClassField) {
            const ClassFieldNode* const field = fieldOf(*node);
            if (field == nullptr || field->governor == nullptr) {
                return nullptr;
            }
            node = field->governor.get();
            continue;
        }
        if (node->kind != TypeNode::Reference) {
            const bool structure = node->kind == TypeNode::Sequence ||
                                   node->kind == TypeNode::Set || node->kind == TypeNode::Choice;
            return structure ? node : nullptr;
        }
        Symbol* symbol = findType(*node);
        if (symbol == nullptr || symbol->assignment->type == nullptr) {
            return nullptr;
        }
        if (!symbol->assignment->parameters.empty()) {
            Instance* const instance = instanceOf(*node, *symbol);
            if (instance == nullptr) {
                return nullptr;
            }
            node = instance->node.get();
            continue;
        }
        expand(symbol->assignment->type);
        node = symbol->assignment->type.get();
    }
    return nullptr;
}

// COMPONENTS OF: X.680, 25.5. The components behind the extension mark are not among them.
bool Resolver::spend(std::size_t pieces, const Location& at) {
    const bool left = pieces <= piecesLeft_;
    piecesLeft_ -= left ? pieces : piecesLeft_;
    if (!left) {
        diagnostics_.error(at, "what stands for something else leads to more than " +
                                   std::to_string(MostPieces) + " tokens");
    }
    return left;
}

void Resolver::spliceComponents(TypeNode& node) {
    const bool any = std::any_of(node.components.begin(), node.components.end(),
                                 [](const ComponentNode& line) { return line.componentsOf; });
    if (!any) {
        return;
    }
    if (!evaluating_.insert(&node).second || evaluating_.size() > LongestChain) {
        diagnostics_.error(node.at, "the type would hold its own components");
        return;
    }
    std::vector<ComponentNode> lines;
    for (ComponentNode& line : node.components) {
        if (!line.componentsOf) {
            lines.push_back(std::move(line));
            continue;
        }
        const TypeNode* const other = structureOf(*line.type);
        if (other == nullptr || other->kind != node.kind || evaluating_.count(other) != 0) {
            diagnostics_.error(line.at,
                               "COMPONENTS OF needs another " +
                                   std::string(node.kind == TypeNode::Set ? "SET" : "SEQUENCE") +
                                   ", which '" + printType(*line.type) + "' is not");
            continue;
        }
        for (const ComponentNode& component : other->components) {
            if (!component.extensionMarker && !component.addition) {
                if (!spend(piecesOf(*component.type), line.at)) {
                    break;
                }
                lines.push_back(component);
                lines.back().addition = line.addition;
            }
        }
    }
    node.components = std::move(lines);
    evaluating_.erase(&node);
}

// X.680, 25.7 to 25.9 and 29.2: by place, those behind the extension mark last.
void Resolver::tagAutomatically(TypeNode& node) {
    const bool automatic =
        node.automatic &&
        std::none_of(node.components.begin(), node.components.end(), [](const ComponentNode& line) {
            return line.type != nullptr && !line.componentsOf && line.type->tag.has_value();
        });
    spliceComponents(node);
    if (!automatic) {
        return;
    }
    unsigned next = 0;
    for (const bool additions : {false, true}) {
        for (ComponentNode& line : node.components) {
            if (line.extensionMarker || line.addition != additions) {
                continue;
            }
            if (!line.type->tag) {
                TagNode tag;
                tag.at = line.at;
                tag.implicitDefault = true;
                line.type->tag = tag;
            }
            // A tag that COMPONENTS OF brought gives way: the new one would replace it on the wire.
            line.type->tag->tagClass = TagNode::Context;
            line.type->tag->number = next++;
        }
    }
}

// The right-hand side with the parameters put in: X.683, clause 9.
Tokens Resolver::filledIn(const Assignment& assignment, const ModuleNode& home,
                          const Tokens& arguments, const Location& at) {
    std::vector<Tokens> actual;
    int depth = 0;
    for (const Token& token : arguments) {
        if (token.kind == Token::End) {
            break;
        }
        if (actual.empty() || (depth == 0 && token.is(","))) {
            actual.emplace_back();
            if (depth == 0 && token.is(",")) {
                continue;
            }
        }
        depth += token.is("{") || token.is("(") ? 1 : token.is("}") || token.is(")") ? -1 : 0;
        actual.back().push_back(token);
    }
    if (actual.size() != assignment.parameters.size()) {
        diagnostics_.error(
            at, "'" + assignment.name + "' has " + std::to_string(assignment.parameters.size()) +
                    " parameters, and " + std::to_string(actual.size()) + " are given");
        return {};
    }
    Tokens result;
    for (std::size_t i = 0; i < assignment.body.size(); ++i) {
        const Token& token = assignment.body[i];
        const bool name = token.kind == Token::Upper || token.kind == Token::Lower;
        const Token* const before = i > 0 ? &assignment.body[i - 1] : nullptr;
        const Token* const behind =
            i + 1 < assignment.body.size() ? &assignment.body[i + 1] : nullptr;
        // The name of an element is no parameter, though it may be spelled like one.
        const bool element = token.kind == Token::Lower && before != nullptr &&
                             (before->is("{") || before->is(",")) && behind != nullptr &&
                             (behind->kind == Token::Upper || behind->is("["));
        std::size_t place = assignment.parameters.size();
        for (std::size_t k = 0; name && !element && token.scope == &home && k < place; ++k) {
            place = assignment.parameters[k].name == token.text ? k : place;
        }
        if (place == assignment.parameters.size()) {
            result.push_back(token);
        } else {
            result.insert(result.end(), actual[place].begin(), actual[place].end());
        }
        if (result.size() > 100000) {
            diagnostics_.error(at, "the parameters of '" + assignment.name +
                                       "' lead to ever new types");
            return {};
        }
    }
    return spend(result.size(), at) ? result : Tokens();
}

Resolver::Instance* Resolver::instanceOf(const TypeNode& node, const Symbol& symbol) {
    const Assignment& assignment = *symbol.assignment;
    std::string key = (symbol.module->ofLibrary ? "." : "") + symbol.module->node.name + "." +
                      assignment.name + "{";
    for (const Token& token : node.arguments) {
        // Names that mean the same make the same type, whoever hands them over.
        const bool name = token.kind == Token::Upper || token.kind == Token::Lower;
        const Symbol* const meant =
            name && token.scope != nullptr ? lookUp(token.scope, token.text) : nullptr;
        key += spelled(&token, &token + 1) + " ";
        key += meant != nullptr
                   ? (meant->module->ofLibrary ? "@." : "@") + meant->module->node.name + " "
                   : "";
    }
    const auto [found, isNew] = instances_.emplace(key, Instance());
    Instance& instance = found->second;
    if (!isNew) {
        return instance.node != nullptr ? &instance : nullptr;
    }
    if (instances_.size() > 100000 || key.size() > 10000) {
        diagnostics_.error(node.at,
                           "the parameters of '" + assignment.name + "' lead to ever new types");
        return nullptr;
    }
    const Tokens body = filledIn(assignment, symbol.module->node, node.arguments, node.at);
    if (body.empty()) {
        return nullptr;
    }
    try {
        instance.node = Parser(body, symbol.module->node, diagnostics_).parseType();
    } catch (const SyntaxError&) {
        return nullptr;
    }
    expand(instance.node);
    return &instance;
}

} // namespace notation
