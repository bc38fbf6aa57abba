#include "parser.h"

// The part of the parser that reads constraints: plain ranges, table constraints and CONTAINING,
// which mean something to the engine, and any other one, which is kept as it stands.

namespace notation {

void Parser::parseConstraint(TypeNode& type) {
    const Level level(*this);
    type.constraintAt = peek().at;
    const std::size_t first = next_;
    expect("(");
    const bool second = !type.sizes.empty() || !type.values.empty();
    if ((!second && parsePlainRanges(type)) || parseTable(type) || parseContaining(type)) {
        return;
    }
    ConstraintNode constraint = parseUnion();
    if (accept(",")) {
        // Others are permitted by later versions: nothing to hold a value against.
        constraint.kind = ConstraintNode::Other;
        expect("...");
        if (accept(",")) {
            parseUnion();
        }
    }
    if (accept("!")) {
        parseValue();
    }
    expect(")");
    type.furtherText += " " + textFrom(first);
    type.further.push_back(std::move(constraint));
}

// Ranges and values alone, of the value or behind SIZE; to the closing parenthesis.
bool Parser::parsePlainRanges(TypeNode& type) {
    const bool size = peek().is("SIZE") && peek(1).is("(");
    std::size_t ahead = size ? 2 : 0;
    for (; !peek(ahead).is(")"); ++ahead) {
        const Token& token = peek(ahead);
        const bool value = token.kind == Token::Number || token.kind == Token::Lower;
        if (!value && !token.is("..") && !token.is("|") && !token.is("-") && !token.is("MIN") &&
            !token.is("MAX")) {
            return false;
        }
    }
    if (size && !peek(ahead + 1).is(")")) {
        return false;
    }
    if (size) {
        take();
        take();
    }
    std::vector<RangeNode>& ranges = size ? type.sizes : type.values;
    do {
        ranges.push_back(parseRange());
    } while (accept("|"));
    expect(")");
    if (size) {
        expect(")");
    }
    return true;
}

// X.682, clause 10. An inline set, or one of what an object tells, is kept as text: the engine
// resolves sets that have a name.
bool Parser::parseTable(TypeNode& type) {
    if (!peek().is("{")) {
        return false;
    }
    TableNode table;
    table.setAt = peek().at;
    table.scope = scope();
    const std::size_t first = next_;
    std::size_t depth = 0;
    while (peek(depth).is("{")) {
        ++depth;
    }
    const bool plain = peek(depth).kind == Token::Upper && peek(depth + 1).is("}");
    const bool withArguments =
        depth == 1 && peek(depth).kind == Token::Upper && peek(depth + 1).is("{");
    if (plain || withArguments) {
        for (std::size_t i = 0; i < depth; ++i) {
            take();
        }
        table.setAt = peek().at;
        table.scope = scope();
        table.set = take().text;
        if (withArguments) {
            table.arguments = parseArguments();
        }
        for (std::size_t i = 0; i < depth; ++i) {
            expect("}");
        }
    } else {
        const Token& item = peek(depth);
        if (depth == 1 && item.kind == Token::Lower && peek(depth + 1).is("}") &&
            type.kind != TypeNode::ClassField) {
            return false;
        }
        table.members = takeBalanced();
        table.text = textFrom(first);
    }
    if (accept("{")) {
        unsigned fields = 0;
        do {
            expect("@");
            while (accept(".")) {
            }
            const Token field = take(Token::Lower, "the name of an element");
            table.fieldAt = field.at;
            table.field = field.text;
            ++fields;
            while (accept(".")) {
                table.outer = true;
                take(Token::Lower, "the name of an element");
            }
        } while (accept(","));
        table.outer = table.outer || fields > 1;
        expect("}");
    }
    if (accept("!")) {
        parseValue();
    }
    expect(")");
    if (type.kind == TypeNode::ClassField && !type.table) {
        type.table = table;
    } else {
        type.furtherText += " (" + textFrom(first);
    }
    return true;
}

bool Parser::parseContaining(TypeNode& type) {
    if (!peek().is("CONTAINING") || type.kind != TypeNode::OctetString) {
        return false;
    }
    take();
    type.containing = parseType();
    if (accept("ENCODED")) {
        expect("BY");
        parseValue();
    }
    expect(")");
    return true;
}

ConstraintNode Parser::parseUnion() {
    const Level level(*this);
    return parseChain(ConstraintNode::Union, "|", "UNION", &Parser::parseIntersection);
}

ConstraintNode Parser::parseIntersection() {
    return parseChain(ConstraintNode::Intersection, "^", "INTERSECTION", &Parser::parseExclusion);
}

ConstraintNode Parser::parseChain(ConstraintNode::Kind kind, const char* sign, const char* word,
                                  ConstraintNode (Parser::*parsePart)()) {
    ConstraintNode first = (this->*parsePart)();
    if (!peek().is(sign) && !peek().is(word)) {
        return first;
    }
    ConstraintNode all;
    all.kind = kind;
    all.parts.push_back(std::move(first));
    while (accept(sign) || accept(word)) {
        all.parts.push_back((this->*parsePart)());
    }
    return all;
}

ConstraintNode Parser::parseExclusion() {
    ConstraintNode except;
    except.kind = ConstraintNode::Except;
    if (accept("ALL")) {
        expect("EXCEPT");
        except.parts.push_back(parseConstraintElement());
        return except;
    }
    ConstraintNode first = parseConstraintElement();
    if (!accept("EXCEPT")) {
        return first;
    }
    except.parts.push_back(std::move(first));
    except.parts.push_back(parseConstraintElement());
    return except;
}

ConstraintNode Parser::parseConstraintElement() {
    const Level level(*this);
    ConstraintNode node;
    if (accept("(")) {
        node = parseUnion();
        if (accept(",")) {
            node.kind = ConstraintNode::Other;
            expect("...");
            if (accept(",")) {
                parseUnion();
            }
        }
        expect(")");
        return node;
    }
    if (peek().is("SIZE") || peek().is("FROM")) {
        const bool size = take().text == "SIZE";
        node.parts.push_back(parseConstraintElement());
        node.kind = size ? ConstraintNode::Size : ConstraintNode::Other;
        return node;
    }
    if (accept("WITH")) {
        if (accept("COMPONENT")) {
            parseConstraintElement();
        } else {
            expect("COMPONENTS");
            takeBalanced();
        }
        return node;
    }
    if (accept("CONSTRAINED")) {
        expect("BY");
        takeBalanced();
        return node;
    }
    if (accept("PATTERN") || accept("SETTINGS")) {
        parseValue();
        return node;
    }
    if (accept("CONTAINING")) {
        parseType();
        if (accept("ENCODED")) {
            expect("BY");
            parseValue();
        }
        return node;
    }
    if (accept("ENCODED")) {
        expect("BY");
        parseValue();
        return node;
    }
    accept("INCLUDES");
    const bool bound = peek().is("MIN") || peek().is("MAX") || peek().is("TRUE") ||
                       peek().is("FALSE") || peek().is("NULL") || peek().is("PLUS-INFINITY") ||
                       peek().is("MINUS-INFINITY");
    const bool typed = peek(1).is(":") || (peek(1).is(".") && peek(2).kind == Token::Lower);
    if (peek().kind == Token::Upper && !bound && !typed) {
        parseType(); // the values of another type
        return node;
    }
    node.kind = ConstraintNode::Range;
    node.range.lower = parseBound();
    const bool lowerOpen = accept("<");
    bool upperOpen = false;
    node.range.upper = node.range.lower;
    if (accept("..")) {
        upperOpen = accept("<");
        node.range.upper = parseBound();
    }
    const auto isNumber = [](const BoundNode& end) {
        return end.kind != BoundNode::Value || end.value.kind == ValueNode::Number ||
               end.value.kind == ValueNode::Reference;
    };
    if (lowerOpen || upperOpen || !isNumber(node.range.lower) || !isNumber(node.range.upper)) {
        node.kind = ConstraintNode::Other;
    }
    return node;
}

RangeNode Parser::parseRange() {
    RangeNode range;
    range.lower = parseBound();
    range.upper = accept("..") ? parseBound() : range.lower;
    return range;
}

BoundNode Parser::parseBound() {
    BoundNode bound;
    if (accept("MIN")) {
        bound.kind = BoundNode::Min;
    } else if (accept("MAX")) {
        bound.kind = BoundNode::Max;
    } else {
        bound.value = parseValue();
    }
    return bound;
}

} // namespace notation
