#include <cerrno>
#include <cstdlib>

#include "parser.h"

// The part of the parser that reads types, constraints and values.

namespace notation {
namespace {

const char* const characterStrings[] = {
    "UTF8String", "NumericString", "PrintableString", "TeletexString", "T61String",
    "IA5String",  "VisibleString", "ISO646String",    "GeneralString", "UniversalString",
    "BMPString",  "UTCTime",       "GeneralizedTime"};

bool isCharacterString(const std::string& word) {
    for (const char* name : characterStrings) {
        if (word == name) {
            return true;
        }
    }
    return false;
}

} // namespace

TagNode Parser::parseTag() {
    TagNode tag;
    tag.at = peek().at;
    expect("[");
    if (accept("UNIVERSAL")) {
        tag.tagClass = TagNode::Universal;
    } else if (accept("APPLICATION")) {
        tag.tagClass = TagNode::Application;
    } else if (accept("PRIVATE")) {
        tag.tagClass = TagNode::Private;
    }
    if (peek().kind != Token::Number) {
        fail("a tag number");
    }
    const ValueNode number = parseValue();
    if (number.number > 30) {
        diagnostics_.error(number.at, "tag numbers above 30 are not supported");
    }
    tag.number = static_cast<unsigned>(number.number) & 0x1F;
    expect("]");
    if (accept("IMPLICIT")) {
        tag.mode = TagNode::Implicit;
    } else if (accept("EXPLICIT")) {
        tag.mode = TagNode::Explicit;
    }
    return tag;
}

std::unique_ptr<TypeNode> Parser::parseType() {
    auto type = std::make_unique<TypeNode>();
    type->at = peek().at;
    if (peek().is("[")) {
        type->tag = parseTag();
        if (peek().is("[")) {
            fail("a type: one tag on a type is all that is supported");
        }
    }
    const Token word = peek();
    if (word.kind != Token::Upper) {
        fail("a type");
    }
    take();
    if (word.text == "BOOLEAN") {
        type->kind = TypeNode::Boolean;
    } else if (word.text == "INTEGER") {
        type->kind = TypeNode::Integer;
        parseNamedNumbers(*type);
    } else if (word.text == "ENUMERATED") {
        type->kind = TypeNode::Enumerated;
        if (!peek().is("{")) {
            fail("'{'");
        }
        parseNamedNumbers(*type);
    } else if (word.text == "NULL") {
        type->kind = TypeNode::Null;
    } else if (word.text == "OBJECT") {
        expect("IDENTIFIER");
        type->kind = TypeNode::ObjectIdentifier;
    } else if (word.text == "OCTET") {
        expect("STRING");
        type->kind = TypeNode::OctetString;
    } else if (word.text == "BIT") {
        expect("STRING");
        type->kind = TypeNode::BitString;
        parseNamedNumbers(*type);
    } else if (isCharacterString(word.text)) {
        type->kind = TypeNode::CharacterString;
        type->reference = word.text;
    } else if (word.text == "CHOICE") {
        type->kind = TypeNode::Choice;
        parseComponents(*type);
    } else if (word.text == "SEQUENCE" || word.text == "SET") {
        const bool set = word.text == "SET";
        if (peek().is("{")) {
            type->kind = set ? TypeNode::Set : TypeNode::Sequence;
            parseComponents(*type);
        } else {
            parseListOf(*type, set);
        }
    } else if (peek().is(".")) {
        take();
        type->kind = TypeNode::ClassField;
        type->className = word.text;
        type->fieldName = take(Token::Field, "a field such as '&Type'").text;
    } else {
        type->kind = TypeNode::Reference;
        type->reference = word.text;
    }
    while (peek().is("(")) {
        parseConstraint(*type);
    }
    return type;
}

void Parser::parseListOf(TypeNode& type, bool set) {
    type.kind = set ? TypeNode::SetOf : TypeNode::SequenceOf;
    if (peek().is("(")) {
        parseConstraint(type);
    } else if (peek().is("SIZE")) {
        type.constraintAt = take().at;
        expect("(");
        type.sizes = parseRanges();
        expect(")");
    }
    expect("OF");
    type.element = parseType();
}

void Parser::parseNamedNumbers(TypeNode& type) {
    if (!accept("{")) {
        return;
    }
    long long following = 0;
    do {
        if (accept("...")) {
            continue;
        }
        const Token name = take(Token::Lower, "a name");
        NamedNumber named;
        named.at = name.at;
        named.name = name.text;
        if (type.kind == TypeNode::Enumerated && !peek().is("(")) {
            named.number = following; // X.680, 20.3: counted on from the one before
        } else {
            expect("(");
            const ValueNode value = parseValue();
            if (value.kind != ValueNode::Number) {
                diagnostics_.error(value.at, "the value of a name has to be a number");
            }
            named.number = value.number;
            expect(")");
        }
        following = named.number + 1;
        type.names.push_back(named);
    } while (accept(","));
    expect("}");
}

void Parser::parseComponents(TypeNode& type) {
    expect("{");
    if (accept("}")) {
        return;
    }
    do {
        ComponentNode component;
        component.at = peek().at;
        if (accept("...")) {
            component.extensionMarker = true;
        } else {
            component.name = take(Token::Lower, "the name of an element").text;
            component.type = parseType();
            if (type.kind != TypeNode::Choice) {
                if (accept("OPTIONAL")) {
                    component.optional = true;
                } else if (accept("DEFAULT")) {
                    component.defaultValue = parseValue();
                }
            }
        }
        component.lastLine = previousLine();
        type.components.push_back(std::move(component));
    } while (accept(","));
    expect("}");
}

void Parser::parseConstraint(TypeNode& type) {
    type.constraintAt = peek().at;
    expect("(");
    if (accept("SIZE")) {
        expect("(");
        type.sizes = parseRanges();
        expect(")");
        if (accept(",")) {
            expect("...");
        }
    } else if (accept("CONTAINING")) {
        if (type.kind != TypeNode::OctetString) {
            diagnostics_.error(type.constraintAt, "only an OCTET STRING can contain a type");
        }
        type.containing = parseType();
    } else if (peek().is("{")) {
        type.table = parseTable();
    } else {
        type.values = parseRanges();
    }
    expect(")");
}

TableNode Parser::parseTable() {
    TableNode table;
    expect("{");
    const Token set = take(Token::Upper, "the name of an object set");
    table.setAt = set.at;
    table.set = set.text;
    expect("}");
    if (accept("{")) {
        expect("@");
        accept(".");
        const Token field = take(Token::Lower, "the name of an element");
        table.fieldAt = field.at;
        table.field = field.text;
        expect("}");
    }
    return table;
}

std::vector<RangeNode> Parser::parseRanges() {
    std::vector<RangeNode> ranges;
    do {
        if (!ranges.empty() && accept("...")) {
            break;
        }
        RangeNode range;
        range.lower = parseBound();
        range.upper = accept("..") ? parseBound() : range.lower;
        ranges.push_back(range);
    } while (accept("|") || accept(","));
    return ranges;
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

ValueNode Parser::parseValue() {
    ValueNode value;
    value.at = peek().at;
    if (peek().is("TRUE") || peek().is("FALSE")) {
        value.kind = ValueNode::Boolean;
        value.boolean = take().text == "TRUE";
        return value;
    }
    if (peek().kind == Token::Lower) {
        value.kind = ValueNode::Reference;
        value.reference = take().text;
        return value;
    }
    if (accept("{")) {
        value.kind = ValueNode::Braces;
        while (!accept("}")) {
            ValueNode::Arc arc;
            arc.at = peek().at;
            if (peek().kind == Token::Lower) {
                arc.name = take().text;
                if (accept("(")) {
                    arc.number = take(Token::Number, "a number").text;
                    expect(")");
                }
            } else if (peek().kind == Token::Number) {
                arc.number = take().text;
            } else {
                fail("an arc of an object identifier");
            }
            value.arcs.push_back(arc);
        }
        return value;
    }
    const bool negative = accept("-");
    if (peek().kind != Token::Number) {
        fail("a value");
    }
    errno = 0;
    value.number = std::strtoll(peek().text.c_str(), nullptr, 10);
    if (errno == ERANGE) {
        diagnostics_.error(peek().at, "the number does not fit 64 bits");
    }
    take();
    value.number = negative ? -value.number : value.number;
    return value;
}

} // namespace notation
