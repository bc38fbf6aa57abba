#include "parser.h"

#include <algorithm>
#include <cctype>
#include <map>

namespace notation {

namespace {
enum : unsigned { DeepestNesting = 256 };
}

Parser::Level::Level(Parser& parser) : parser_(parser) {
    if (++parser_.depth_ > DeepestNesting) {
        parser_.diagnostics_.error(
            parser_.peek().at, "the notation nests more than " + std::to_string(DeepestNesting) +
                                   " deep here; give inner types names of their own");
        --parser_.depth_;
        throw SyntaxError();
    }
}

const Token& Parser::peek(std::size_t ahead) const {
    return next_ + ahead < tokens_.size() ? tokens_[next_ + ahead] : tokens_.back();
}

Token Parser::take() {
    Token token = peek();
    if (next_ + 1 < tokens_.size()) {
        ++next_;
    }
    return token;
}

Token Parser::take(Token::Kind kind, const char* expected) {
    if (peek().kind != kind) {
        fail(expected);
    }
    return take();
}

bool Parser::accept(const char* spelling) {
    if (!peek().is(spelling)) {
        return false;
    }
    take();
    return true;
}

void Parser::expect(const char* spelling) {
    if (!accept(spelling)) {
        fail(std::string("'") + spelling + "'");
    }
}

void Parser::fail(const std::string& expected) {
    const Token& found = peek();
    const bool atEndOfModule = found.kind == Token::End;
    diagnostics_.error(found.at, "expected " + expected + ", found " +
                                     (atEndOfModule ? std::string("the end of the file")
                                                    : "'" + spelled(&found, &found + 1) + "'") +
                                     hintFor(expected, found));
    throw SyntaxError();
}

// What is usually meant by what stands at the position.
std::string Parser::hintFor(const std::string& expected, const Token& found) const {
    const bool lower = found.kind == Token::Lower;
    if (((expected == "'}'" || expected == "']'") && (lower || found.is("..."))) ||
        (expected == "'FROM'" && (lower || found.kind == Token::Upper))) {
        return "; a comma may be missing in front of it";
    }
    const bool behindComma = next_ > 0 && tokens_[next_ - 1].is(",");
    if (behindComma && (found.is("}") || found.is("]") || found.is("FROM"))) {
        return "; nothing stands between it and the comma in front of it";
    }
    if (found.kind == Token::String) {
        return "; nothing stands in quotation marks here";
    }
    if (expected == "a type" && lower) {
        std::string capitals = found.text;
        std::transform(capitals.begin(), capitals.end(), capitals.begin(),
                       [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
        static const char* const words[] = {"BOOLEAN", "INTEGER", "ENUMERATED", "NULL",
                                            "OBJECT",  "OCTET",   "BIT",        "SEQUENCE",
                                            "SET",     "CHOICE",  "ANY"};
        const bool word =
            std::find(std::begin(words), std::end(words), capitals) != std::end(words);
        return "; the names of types begin with a capital" +
               (word ? ", and '" + capitals + "' has no others" : "");
    }
    if (expected == "a type" && found.is("::=")) {
        return "; the names of types begin with a capital, and a value has its type in front of "
               "'::='";
    }
    if (expected == "the name of an element" && found.kind == Token::Upper) {
        return "; it begins with a small letter";
    }
    return "";
}

const ModuleNode* Parser::scope() const {
    return peek().scope != nullptr ? peek().scope : module_;
}

// The tokens from a position up to here, with their scope and an end, so that they can be read
// anywhere.
Tokens Parser::slice(std::size_t first) const {
    Tokens result(tokens_.begin() + static_cast<std::ptrdiff_t>(first),
                  tokens_.begin() + static_cast<std::ptrdiff_t>(next_));
    for (Token& token : result) {
        token.scope = token.scope != nullptr ? token.scope : module_;
    }
    result.push_back({Token::End, "", peek().at, module_});
    return result;
}

std::string Parser::textFrom(std::size_t first) const {
    return spelled(tokens_.data() + first, tokens_.data() + next_);
}

unsigned Parser::previousLine() const {
    return next_ == 0 ? 1 : tokens_[next_ - 1].at.line;
}

void Parser::parseModule(ModuleNode& module) {
    module_ = &module;
    module.firstLine = next_ == 0 ? 0 : previousLine() + 1;
    try {
        parseHeader(module);
    } catch (const SyntaxError&) {
        next_ = tokens_.size() - 1;
        return; // without a header nothing that follows can be told apart
    }
    while (!peek().is("END")) {
        if (atEnd()) {
            diagnostics_.error(peek().at, "expected 'END', found the end of the file");
            break;
        }
        try {
            parseAssignment(module);
        } catch (const SyntaxError&) {
            recover();
        }
    }
    module.lastLine = atEnd() ? ~0u : peek().at.line;
    take();
    if (!atEnd() && peek().kind != Token::Upper) {
        diagnostics_.error(peek().at, "expected the end of the file behind 'END'");
        next_ = tokens_.size() - 1;
    }
    attachRemarksAndComments(module);
}

std::size_t parseModule(ModuleNode& module, std::size_t first, Diagnostics& diagnostics) {
    Parser parser(module.file->stream.tokens, module, diagnostics, first);
    parser.parseModule(module);
    return parser.position();
}

namespace {

// The arcs of a module's identifier, so that both ways of writing them come to the same.
std::string identifierOf(const Tokens& tokens) {
    if (!tokens.front().is("{")) {
        return ""; // a value's name
    }
    static const std::map<std::string, std::string> roots = {{"itu-t", "0"},
                                                             {"ccitt", "0"},
                                                             {"iso", "1"},
                                                             {"joint-iso-itu-t", "2"},
                                                             {"joint-iso-ccitt", "2"}};
    std::string arcs;
    for (std::size_t i = 1; i + 2 < tokens.size(); ++i) {
        const bool numbered = tokens[i + 1].is("(");
        const auto root = roots.find(tokens[i].text);
        if (tokens[i].kind == Token::Number) {
            arcs += tokens[i].text + " ";
        } else if (tokens[i].kind == Token::Lower && !numbered) {
            arcs += (root != roots.end() && arcs.empty() ? root->second : tokens[i].text) + " ";
        }
    }
    return arcs;
}

} // namespace

void Parser::parseHeader(ModuleNode& module) {
    const Token name = take(Token::Upper, "the name of the module");
    module.at = name.at;
    module.name = name.text;
    module.published = name.text;
    if (peek().is("{")) {
        module.identifier = identifierOf(takeBalanced());
    }
    if (peek().kind == Token::String) {
        take(); // an internationalized identifier
    }
    expect("DEFINITIONS");
    if (peek().is("AUTOMATIC") || peek().is("IMPLICIT") || peek().is("EXPLICIT")) {
        const Token tags = take();
        module.automaticTags = tags.text == "AUTOMATIC";
        module.implicitTags = tags.text != "EXPLICIT";
        expect("TAGS");
    }
    if (accept("EXTENSIBILITY")) {
        expect("IMPLIED");
    }
    expect("::=");
    expect("BEGIN");
    if (accept("EXPORTS")) {
        while (!accept(";")) {
            if (atEnd()) {
                fail("';'");
            }
            take();
        }
    }
    if (accept("IMPORTS")) {
        parseImports(module);
    }
}

void Parser::parseImports(ModuleNode& module) {
    while (!accept(";")) {
        const std::size_t first = module.imports.size();
        do {
            if (peek().kind != Token::Upper && peek().kind != Token::Lower) {
                fail("a name to import");
            }
            ImportNode import;
            import.at = peek().at;
            import.name = take().text;
            if (peek().is("{")) {
                takeBalanced(); // `Name{}`: it has parameters
            }
            module.imports.push_back(import);
        } while (accept(","));
        expect("FROM");
        const Token from = take(Token::Upper, "the name of a module");
        // X.680, 13.16: a name in front of a comma or FROM is the next one to import.
        const bool named = peek().kind == Token::Lower && !peek(1).is(",") && !peek(1).is("FROM") &&
                           !peek(1).is("{");
        std::string identifier;
        if (named || peek().is("{")) {
            identifier = identifierOf(takeBalanced());
        }
        if (accept("WITH")) {
            take(); // SUCCESSORS or DESCENDANTS
        }
        for (std::size_t i = first; i < module.imports.size(); ++i) {
            module.imports[i].module = from.text;
            module.imports[i].identifier = identifier;
            module.imports[i].moduleAt = from.at;
        }
    }
}

// Every assignment of a sensible module begins a line.
void Parser::recover() {
    while (!atEnd() && !peek().is("END")) {
        const bool isName = peek().kind == Token::Upper || peek().kind == Token::Lower;
        if (isName && peek().at.column == 1) {
            return;
        }
        take();
    }
}

// Whether an assignment, or the end of them, stands at the position.
bool Parser::beginsAssignment() const {
    if (peek().kind == Token::Lower) {
        return peek(1).kind == Token::Upper || peek(1).is("{") || peek(1).is("[") ||
               peek(1).kind == Token::Lower;
    }
    if (peek().kind != Token::Upper) {
        return atEnd();
    }
    return peek().is("END") || peek(1).is("::=") || peek(1).is("{") || peek(1).is("MACRO") ||
           peek(1).kind == Token::Upper;
}

void Parser::parseAssignment(ModuleNode& module) {
    const Token name = peek();
    if (name.kind != Token::Upper && name.kind != Token::Lower) {
        fail("an assignment");
    }
    take();
    Assignment assignment;
    assignment.name = name.text;
    assignment.at = name.at;
    if (peek().is("{")) {
        parseParameters(assignment);
    }
    parseBody(module, assignment);
    assignment.lastLine = previousLine();
    module.assignments.push_back(std::move(assignment));
}

void Parser::parseBody(ModuleNode& module, Assignment& assignment) {
    const bool lower = assignment.name[0] >= 'a' && assignment.name[0] <= 'z';
    if (lower) {
        assignment.kind = Assignment::Value;
        const std::string lost = "OBJECT";
        const bool glued =
            peek().is("IDENTIFIER") && assignment.name.size() > lost.size() &&
            assignment.name.compare(assignment.name.size() - lost.size(), lost.size(), lost) == 0;
        if (glued) {
            // Texts that were taken from a page lose blanks.
            assignment.name.resize(assignment.name.size() - lost.size());
            diagnostics_.warning(assignment.at, "read as '" + assignment.name +
                                                    " OBJECT IDENTIFIER': a blank is missing");
            take();
            assignment.type = std::make_unique<TypeNode>();
            assignment.type->kind = TypeNode::ObjectIdentifier;
            assignment.type->at = assignment.at;
            assignment.type->scope = &module;
        } else {
            assignment.type = parseType();
        }
        if (!peek().is("::=") && assignment.type->kind == TypeNode::Reference &&
            peek().at.column > 1 && !peek().is("END") && !atEnd()) {
            diagnostics_.warning(assignment.at, "'" + assignment.name + "' is stepped over: '" +
                                                    assignment.type->reference +
                                                    "' is taken for a MACRO");
            assignment.kind = Assignment::Macro;
            while (!peek().is("::=") && !peek().is("END") && !atEnd()) {
                take();
            }
        }
        expect("::=");
        const std::size_t first = next_;
        if (assignment.kind == Assignment::Macro || peek().is("{")) {
            takeBalanced();
        } else {
            parseValue();
        }
        assignment.body = slice(first);
        return;
    }
    if (accept("MACRO")) {
        assignment.kind = Assignment::Macro;
        diagnostics_.warning(assignment.at, "MACRO '" + assignment.name + "' is stepped over");
        skipMacro();
        return;
    }
    if (!accept("::=")) {
        assignment.kind = Assignment::Set;
        if (peek().kind != Token::Upper) {
            fail("'::=' or the name of a class");
        }
        assignment.type = parseType();
        expect("::=");
        if (!peek().is("{")) {
            fail("'{'");
        }
        const std::size_t first = next_;
        takeBalanced();
        assignment.body = slice(first);
        return;
    }
    const std::size_t first = next_;
    if (peek().is("CLASS")) {
        assignment.kind = Assignment::Class;
        parseClass(assignment);
    } else {
        assignment.kind = Assignment::Type;
        if (peek().kind == Token::Lower && !peek(1).is("<") && !peek(1).is(".")) {
            fail("a type");
        }
        assignment.type = parseType();
        if (!beginsAssignment() && assignment.type->kind == TypeNode::Reference &&
            peek().at.column > 1) {
            diagnostics_.warning(assignment.at, "'" + assignment.name + "' is stepped over: '" +
                                                    assignment.type->reference +
                                                    "' is taken for a MACRO; its values are open");
            skipInstance();
            auto open = std::make_unique<TypeNode>();
            open->kind = TypeNode::Any;
            open->text = textFrom(first);
            open->at = assignment.type->at;
            open->scope = &module;
            assignment.type = std::move(open);
        }
    }
    if (!assignment.parameters.empty()) {
        assignment.body = slice(first);
    }
}

// `{Governor:name, Name}`: X.683, 8.3.
void Parser::parseParameters(Assignment& assignment) {
    expect("{");
    while (!accept("}")) {
        ParameterNode parameter;
        while (!peek().is(",") && !peek().is("}")) {
            if (atEnd() || peek().is("::=")) {
                fail("'}'");
            }
            if (peek().is("{")) {
                takeBalanced();
                continue;
            }
            parameter.name = take().text;
        }
        accept(",");
        assignment.parameters.push_back(parameter);
    }
}

void Parser::skipMacro() {
    expect("::=");
    if (peek().kind == Token::Upper && !peek().is("BEGIN")) {
        take(); // another macro's name
        return;
    }
    expect("BEGIN");
    while (!accept("END")) {
        if (atEnd()) {
            fail("'END'");
        }
        take();
    }
}

void Parser::skipInstance() {
    while (!atEnd() && !peek().is("END")) {
        const bool isName = peek().kind == Token::Upper || peek().kind == Token::Lower;
        if (isName && (peek().at.column == 1 || peek(1).is("::="))) {
            return;
        }
        if (peek().is("{")) {
            takeBalanced();
        } else {
            take();
        }
    }
}

void Parser::parseClass(Assignment& assignment) {
    assignment.kind = Assignment::Class;
    expect("CLASS");
    expect("{");
    do {
        const Token name = take(Token::Field, "a field such as '&id'");
        ClassFieldNode field;
        field.at = name.at;
        field.name = name.text;
        const bool upper = field.name[0] >= 'A' && field.name[0] <= 'Z';
        const bool bare =
            peek().is(",") || peek().is("}") || peek().is("OPTIONAL") || peek().is("DEFAULT");
        field.isType = upper && bare;
        field.isSet = upper && !bare;
        if (peek().kind == Token::Field) {
            while (peek().kind == Token::Field || peek().is(".")) {
                take(); // a value of a type that the object tells
            }
        } else if (!field.isType) {
            field.governor = parseType();
        }
        field.unique = accept("UNIQUE");
        field.optional = accept("OPTIONAL");
        if (accept("DEFAULT")) {
            field.optional = true;
            while (!peek().is(",") && !peek().is("}") && !atEnd()) {
                takeBalanced();
            }
        }
        assignment.fields.push_back(field);
    } while (accept(","));
    expect("}");
    if (accept("WITH")) {
        expect("SYNTAX");
        expect("{");
        assignment.syntax = parseSyntax("}");
        return;
    }
    // X.681, 11.4: without a syntax each field is told by its name.
    for (const ClassFieldNode& field : assignment.fields) {
        SyntaxNode comma;
        comma.kind = SyntaxNode::Optional;
        comma.group.emplace_back();
        comma.group.back().text = ",";
        SyntaxNode group;
        group.kind = SyntaxNode::Optional;
        group.group.resize(2);
        group.group[0].text = "&" + field.name;
        group.group[1].kind = SyntaxNode::Field;
        group.group[1].text = field.name;
        group.group.push_back(comma);
        assignment.syntax.push_back(group);
    }
}

std::vector<SyntaxNode> Parser::parseSyntax(const char* closing) {
    const Level level(*this);
    std::vector<SyntaxNode> syntax;
    while (!accept(closing)) {
        SyntaxNode node;
        if (accept("[")) {
            node.kind = SyntaxNode::Optional;
            node.group = parseSyntax("]");
        } else if (peek().kind == Token::Field) {
            node.kind = SyntaxNode::Field;
            node.text = take().text;
        } else if (peek().kind == Token::Upper || peek().is(",")) {
            node.text = take().text;
        } else {
            fail("a word or a field of the class");
        }
        syntax.push_back(std::move(node));
    }
    return syntax;
}

Tokens Parser::takeBalanced() {
    const std::size_t first = next_;
    int depth = 0;
    accept("-");
    do {
        if (atEnd()) {
            fail("'}'");
        }
        depth += peek().is("{") || peek().is("(") ? 1 : peek().is("}") || peek().is(")") ? -1 : 0;
        take();
    } while (depth > 0);
    return slice(first);
}

} // namespace notation
