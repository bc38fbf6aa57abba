#include "parser.h"

namespace notation {

const Token& Parser::peek(std::size_t ahead) const {
    const std::vector<Token>& tokens = module_.stream.tokens;
    return next_ + ahead < tokens.size() ? tokens[next_ + ahead] : tokens.back();
}

Token Parser::take() {
    Token token = peek();
    if (next_ + 1 < module_.stream.tokens.size()) {
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
    diagnostics_.error(found.at, "expected " + expected + ", found " +
                                     (found.kind == Token::End ? std::string("the end of the file")
                                      : found.kind == Token::Field ? "'&" + found.text + "'"
                                                                   : "'" + found.text + "'"));
    throw SyntaxError();
}

unsigned Parser::previousLine() const {
    return next_ == 0 ? 1 : module_.stream.tokens[next_ - 1].at.line;
}

void Parser::parseModule() {
    try {
        parseHeader();
    } catch (const SyntaxError&) {
        return; // without a header nothing that follows can be told apart
    }
    while (!peek().is("END")) {
        if (peek().kind == Token::End) {
            diagnostics_.error(peek().at, "expected 'END', found the end of the file");
            return;
        }
        try {
            parseAssignment();
        } catch (const SyntaxError&) {
            recover();
        }
    }
    take();
    if (peek().kind != Token::End) {
        diagnostics_.error(peek().at, "expected the end of the file behind 'END'");
    }
    attachRemarksAndComments();
}

void Parser::parseHeader() {
    const Token name = take(Token::Upper, "the name of the module");
    module_.at = name.at;
    module_.name = name.text;
    if (peek().is("{")) {
        parseValue();
    }
    expect("DEFINITIONS");
    if (peek().is("AUTOMATIC")) {
        diagnostics_.error(peek().at, "automatic tags are not supported");
        take();
        expect("TAGS");
    } else if (peek().is("IMPLICIT") || peek().is("EXPLICIT")) {
        module_.implicitTags = take().text == "IMPLICIT";
        expect("TAGS");
    }
    expect("::=");
    expect("BEGIN");
    if (accept("EXPORTS")) {
        while (!accept(";")) {
            if (peek().kind == Token::End) {
                fail("';'");
            }
            take();
        }
    }
    if (accept("IMPORTS")) {
        parseImports();
    }
}

void Parser::parseImports() {
    while (!accept(";")) {
        const std::size_t first = module_.imports.size();
        do {
            if (peek().kind != Token::Upper && peek().kind != Token::Lower) {
                fail("a name to import");
            }
            ImportNode import;
            import.at = peek().at;
            import.name = take().text;
            module_.imports.push_back(import);
        } while (accept(","));
        expect("FROM");
        const Token from = take(Token::Upper, "the name of a module");
        if (peek().is("{")) {
            parseValue();
        }
        for (std::size_t i = first; i < module_.imports.size(); ++i) {
            module_.imports[i].module = from.text;
            module_.imports[i].moduleAt = from.at;
        }
    }
}

// Every assignment of a sensible module begins a line.
void Parser::recover() {
    while (peek().kind != Token::End && !peek().is("END")) {
        const bool isName = peek().kind == Token::Upper || peek().kind == Token::Lower;
        if (isName && peek().at.column == 1) {
            return;
        }
        take();
    }
}

void Parser::parseAssignment() {
    const Token name = peek();
    if (name.kind != Token::Upper && name.kind != Token::Lower) {
        fail("an assignment");
    }
    take();
    Assignment assignment;
    assignment.name = name.text;
    assignment.at = name.at;
    if (name.kind == Token::Lower) {
        assignment.kind = Assignment::Value;
        assignment.type = parseType();
        expect("::=");
        assignment.firstToken = next_;
        skipValue();
    } else if (accept("::=")) {
        if (peek().is("CLASS")) {
            parseClass(assignment);
        } else {
            assignment.kind = Assignment::Type;
            assignment.type = parseType();
        }
    } else {
        parseSet(assignment);
    }
    assignment.lastLine = previousLine();
    module_.assignments.push_back(std::move(assignment));
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
        field.isType = field.name[0] >= 'A' && field.name[0] <= 'Z';
        if (!field.isType) {
            const Token type = peek();
            if (parseType()->kind != TypeNode::ObjectIdentifier) {
                diagnostics_.error(type.at, "a value field of a class can only be an "
                                            "OBJECT IDENTIFIER");
            }
            accept("UNIQUE");
        }
        field.optional = accept("OPTIONAL");
        assignment.fields.push_back(field);
    } while (accept(","));
    expect("}");
    expect("WITH");
    expect("SYNTAX");
    expect("{");
    assignment.syntax = parseSyntax("}");
}

std::vector<SyntaxNode> Parser::parseSyntax(const char* closing) {
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

void Parser::parseSet(Assignment& assignment) {
    assignment.kind = Assignment::Set;
    assignment.governor = take(Token::Upper, "'::=' or the name of a class").text;
    expect("::=");
    expect("{");
    while (!accept("}")) {
        if (peek().kind == Token::Lower) {
            const Token member = take();
            assignment.members.emplace_back(member.text, member.at);
        } else {
            expect("...");
        }
        if (!peek().is("}") && !accept("|")) {
            expect(",");
        }
    }
}

// Objects are read when the class is known: its WITH SYNTAX tells how.
void Parser::skipValue() {
    if (!peek().is("{")) {
        accept("-");
        take();
        return;
    }
    int depth = 0;
    do {
        if (peek().kind == Token::End) {
            fail("'}'");
        }
        depth += peek().is("{") ? 1 : peek().is("}") ? -1 : 0;
        take();
    } while (depth > 0);
}

} // namespace notation
