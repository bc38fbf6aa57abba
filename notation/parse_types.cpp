#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <set>

#include "parser.h"

// The part of the parser that reads types and values.

namespace notation {
namespace {

const char* const characterStrings[] = {
    "UTF8String", "NumericString", "PrintableString", "TeletexString", "T61String",
    "IA5String",  "VisibleString", "ISO646String",    "GeneralString", "UniversalString",
    "BMPString",  "UTCTime",       "GeneralizedTime"};

} // namespace

bool isCharacterString(const std::string& word) {
    return std::find(std::begin(characterStrings), std::end(characterStrings), word) !=
           std::end(characterStrings);
}

namespace {

// X.680, 20.3: who has no number takes the least one that is free; behind `...` the next one.
void numberNames(std::vector<NamedNumber>& names, const std::vector<bool>& numbered,
                 std::size_t rootCount) {
    std::set<long long> used;
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (numbered[i]) {
            used.insert(names[i].number);
        }
    }
    long long following = 0;
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (i == rootCount && !used.empty()) {
            following = std::max(following, *used.rbegin() + 1);
        }
        if (!numbered[i]) {
            while (!used.insert(following).second) {
                ++following;
            }
            names[i].number = following;
        }
    }
}

} // namespace

TagNode Parser::parseTag() {
    TagNode tag;
    tag.at = peek().at;
    const ModuleNode* const home = scope();
    tag.implicitDefault = home->implicitTags;
    expect("[");
    if (accept("UNIVERSAL")) {
        tag.tagClass = TagNode::Universal;
    } else if (accept("APPLICATION")) {
        tag.tagClass = TagNode::Application;
    } else if (accept("PRIVATE")) {
        tag.tagClass = TagNode::Private;
    }
    if (peek().kind != Token::Number && peek().kind != Token::Lower) {
        fail("a tag number");
    }
    const ValueNode number = parseValue();
    if (number.kind == ValueNode::Reference) {
        tag.reference = number;
    } else if (number.number > 0x1FFFFFFF) {
        diagnostics_.error(number.at, "tag numbers above 536870911 are not supported");
    }
    tag.number = static_cast<unsigned>(number.number) & 0x1FFFFFFF;
    expect("]");
    if (accept("IMPLICIT")) {
        tag.mode = TagNode::Implicit;
    } else if (accept("EXPLICIT")) {
        tag.mode = TagNode::Explicit;
    }
    return tag;
}

Owned<TypeNode> Parser::parseType() {
    const Level level(*this);
    if (!peek().is("[")) {
        return parsePlainType();
    }
    const Location at = peek().at;
    const ModuleNode* const home = scope();
    const TagNode tag = parseTag();
    Owned<TypeNode> type;
    if (peek().is("[")) {
        type = std::make_unique<TypeNode>();
        type->kind = TypeNode::Tagged;
        type->scope = home;
        type->element = parseType();
    } else {
        type = parsePlainType();
    }
    type->at = at;
    type->tag = tag;
    return type;
}

Owned<TypeNode> Parser::parsePlainType() {
    auto type = std::make_unique<TypeNode>();
    type->at = peek().at;
    type->scope = scope();
    if (peek().kind == Token::Lower && peek(1).is("<")) {
        type->kind = TypeNode::Selection;
        type->fieldName = take().text;
        take();
        type->element = parseType();
    } else if (peek().kind == Token::Lower && (peek(1).is(".") || peek(1).is("{"))) {
        // What an object of a class tells: it is open whichever object that is.
        const std::size_t first = next_;
        take();
        if (peek().is("{")) {
            takeBalanced();
        }
        type->kind = TypeNode::Any;
        parseFieldNames(*type);
        type->text = textFrom(first);
    } else {
        parseWord(*type);
    }
    while (peek().is("(")) {
        parseConstraint(*type);
    }
    return type;
}

void Parser::parseWord(TypeNode& type) {
    const Token word = peek();
    if (word.kind != Token::Upper || word.text == "END") {
        fail("a type");
    }
    take();
    if (word.text == "BOOLEAN") {
        type.kind = TypeNode::Boolean;
    } else if (word.text == "INTEGER") {
        type.kind = TypeNode::Integer;
        parseNamedNumbers(type);
    } else if (word.text == "ENUMERATED") {
        type.kind = TypeNode::Enumerated;
        if (!peek().is("{")) {
            fail("'{'");
        }
        parseNamedNumbers(type);
    } else if (word.text == "NULL") {
        type.kind = TypeNode::Null;
    } else if (word.text == "OBJECT") {
        expect("IDENTIFIER");
        type.kind = TypeNode::ObjectIdentifier;
    } else if (word.text == "OCTET") {
        expect("STRING");
        type.kind = TypeNode::OctetString;
    } else if (word.text == "BIT") {
        expect("STRING");
        type.kind = TypeNode::BitString;
        parseNamedNumbers(type);
    } else if (isCharacterString(word.text)) {
        type.kind = TypeNode::CharacterString;
        type.reference = word.text;
    } else if (word.text == "CHOICE") {
        type.kind = TypeNode::Choice;
        parseComponents(type);
    } else if (word.text == "SEQUENCE" || word.text == "SET") {
        const bool set = word.text == "SET";
        if (peek().is("{")) {
            type.kind = set ? TypeNode::Set : TypeNode::Sequence;
            parseComponents(type);
        } else {
            parseListOf(type, set);
        }
    } else if (word.text == "ANY") {
        type.kind = TypeNode::Any;
        type.text = "ANY";
        if (accept("DEFINED")) {
            expect("BY");
            type.text += " DEFINED BY " + take(Token::Lower, "the name of an element").text;
        }
    } else if (word.text == "EMBEDDED" && accept("PDV")) {
        type.kind = TypeNode::Reference;
        type.reference = "EMBEDDED-PDV";
    } else if (word.text == "CHARACTER" && accept("STRING")) {
        type.kind = TypeNode::Reference;
        type.reference = "CHARACTER-STRING";
    } else if (word.text == "INSTANCE" && accept("OF")) {
        take(Token::Upper, "the name of a class");
        type.kind = TypeNode::Reference;
        type.reference = "INSTANCE-OF";
    } else {
        parseReference(type, word);
    }
}

void Parser::parseReference(TypeNode& type, const Token& word) {
    type.kind = TypeNode::Reference;
    type.reference = word.text;
    if (peek().is(".") && peek(1).kind == Token::Upper) {
        take();
        type.module = word.text;
        type.reference = take().text;
    }
    if (peek().is("{")) {
        type.arguments = parseArguments();
    }
    if (peek().is(".") && peek(1).kind == Token::Field) {
        type.kind = TypeNode::ClassField;
        type.className = type.reference;
        parseFieldNames(type);
        if (!type.arguments.empty()) {
            type.kind = TypeNode::Any;
            type.text = type.className + "{...}.&" + type.fieldName;
        }
    }
}

void Parser::parseFieldNames(TypeNode& type) {
    expect(".");
    type.fieldName = take(Token::Field, "a field such as '&Type'").text;
    while (accept(".")) {
        type.fieldPath.push_back(type.fieldName);
        type.fieldName = take(Token::Field, "a field such as '&Type'").text;
    }
}

// What stands in the braces, which are left out.
Tokens Parser::parseArguments() {
    Tokens all = takeBalanced();
    Tokens inner(all.begin() + 1, all.end() - 2);
    inner.push_back(all.back());
    return inner;
}

void Parser::parseListOf(TypeNode& type, bool set) {
    type.kind = set ? TypeNode::SetOf : TypeNode::SequenceOf;
    if (peek().is("(")) {
        parseConstraint(type);
    } else if (peek().is("SIZE")) {
        // X.680, 48.2: as if it stood in parentheses.
        type.constraintAt = take().at;
        const std::size_t first = next_;
        TypeNode sizes;
        take();
        if (tokens_[first].is("(") && parsePlainRanges(sizes)) {
            type.sizes = sizes.values;
        } else {
            next_ = first;
            ConstraintNode size;
            size.kind = ConstraintNode::Size;
            size.parts.push_back(parseConstraintElement());
            type.furtherText = " (SIZE " + textFrom(first) + ")";
            type.further.push_back(size);
        }
    }
    expect("OF");
    if (peek().kind == Token::Lower && !peek(1).is("<") && !peek(1).is(".")) {
        take(); // the element's name, which nothing is called by
    }
    type.element = parseType();
}

void Parser::parseNamedNumbers(TypeNode& type) {
    if (!accept("{")) {
        return;
    }
    std::vector<bool> numbered;
    std::size_t rootCount = ~std::size_t{0};
    if (accept("}")) {
        return;
    }
    do {
        if (accept("...")) {
            rootCount = type.names.size();
            if (accept("!")) {
                parseValue();
            }
            continue;
        }
        const Token name = take(Token::Lower, "a name");
        NamedNumber named;
        named.at = name.at;
        named.name = name.text;
        numbered.push_back(type.kind != TypeNode::Enumerated || peek().is("("));
        if (numbered.back()) {
            expect("(");
            const ValueNode value = parseValue();
            if (value.kind == ValueNode::Reference) {
                named.reference = value;
            } else if (value.kind != ValueNode::Number) {
                diagnostics_.error(value.at, "the value of a name has to be a number");
            }
            named.number = value.number;
            expect(")");
        }
        type.names.push_back(named);
    } while (accept(","));
    expect("}");
    numberNames(type.names, numbered, rootCount);
}

void Parser::parseComponents(TypeNode& type) {
    type.automatic = scope()->automaticTags;
    expect("{");
    bool additions = false;
    if (!accept("}")) {
        parseComponentLines(type, "}", additions);
    }
}

void Parser::parseComponentLines(TypeNode& type, const char* closing, bool& additions) {
    do {
        if (peek().is("[") && peek(1).is("[")) {
            take();
            take();
            if (peek().kind == Token::Number && peek(1).is(":")) {
                take();
                take();
            }
            bool inner = true;
            parseComponentLines(type, "]", inner);
            expect("]");
            continue;
        }
        ComponentNode component;
        component.at = peek().at;
        component.addition = additions;
        if (accept("...")) {
            component.extensionMarker = true;
            additions = !additions;
            if (accept("!")) {
                parseValue();
            }
        } else if (accept("COMPONENTS")) {
            expect("OF");
            component.componentsOf = true;
            component.type = parseType();
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
    expect(closing);
}

ValueNode Parser::parseValue() {
    const Level level(*this);
    ValueNode value;
    value.at = peek().at;
    value.scope = scope();
    const std::size_t first = next_;
    const auto other = [&] {
        value.kind = ValueNode::Other;
        value.text = textFrom(first);
        return value;
    };
    if (peek().is("TRUE") || peek().is("FALSE")) {
        value.kind = ValueNode::Boolean;
        value.boolean = take().text == "TRUE";
        return value;
    }
    if (peek().kind == Token::Lower) {
        value.kind = ValueNode::Reference;
        value.reference = take().text;
        if (accept(":")) {
            parseValue();
            return other();
        }
        if (peek().is("{") || peek().is(".")) {
            while (peek().is("{") || peek().is(".")) {
                takeBalanced();
                if (peek().kind == Token::Field) {
                    take();
                }
            }
            return other();
        }
        return value;
    }
    if (peek().kind == Token::Upper && peek(1).is(".") && peek(2).kind == Token::Lower) {
        value.kind = ValueNode::Reference;
        value.module = take().text;
        take();
        value.reference = take().text;
        return value;
    }
    if (peek().is("{")) {
        parseArcs(value);
        return value;
    }
    if (peek().kind == Token::String) {
        value.kind = ValueNode::Text;
        value.text = take().text;
        return value;
    }
    const bool word = peek().kind == Token::Upper && !peek().is("END");
    if (word || peek().kind == Token::Bits || peek().kind == Token::Hex) {
        take(); // NULL, PLUS-INFINITY, ...; a type in front of its value
        if (word && peek().is("{")) {
            takeBalanced();
        }
        if (word && accept(":")) {
            parseValue();
        }
        return other();
    }
    const bool negative = accept("-");
    if (peek().kind != Token::Number) {
        fail("a value");
    }
    errno = 0;
    value.number = std::strtoll(peek().text.c_str(), nullptr, 10);
    if (errno == ERANGE) {
        value.digits = (negative ? "-" : "") + peek().text;
    }
    take();
    value.number = negative ? -value.number : value.number;
    if (peek().is(".") && peek(1).kind == Token::Number) {
        take();
        take();
        return other();
    }
    return value;
}

// Braces that could be an object identifier are read as one; whether they are is the governor's.
void Parser::parseArcs(ValueNode& value) {
    const std::size_t first = next_;
    value.kind = ValueNode::Braces;
    take();
    while (peek().kind == Token::Lower || peek().kind == Token::Number) {
        ValueNode::Arc arc;
        arc.at = peek().at;
        const bool named = peek().kind == Token::Lower;
        (named ? arc.name : arc.number) = take().text;
        if (named && peek().is("(") && peek(2).is(")")) {
            take();
            if (peek().kind == Token::Number) {
                arc.number = take().text;
            } else {
                arc.reference = take().text;
            }
            take();
        }
        value.arcs.push_back(arc);
    }
    if (!accept("}")) {
        next_ = first;
        takeBalanced();
        value.arcs.clear();
        value.kind = ValueNode::Other;
    }
    value.text = textFrom(first);
}

} // namespace notation
