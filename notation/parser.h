#ifndef BREVANTIS_NOTATION_PARSER_H
#define BREVANTIS_NOTATION_PARSER_H

#include "ast.h"

namespace notation {

/// Thrown by the parser to leave an assignment that it has already complained about.
struct SyntaxError {};

/// Reads the notation of X.680 and X.681 from a module's tokens.
class Parser {
public:
    Parser(ModuleNode& module, Diagnostics& diagnostics, std::size_t firstToken = 0)
        : module_(module), diagnostics_(diagnostics), next_(firstToken) {}

    /// Reads the whole module into the node that was given.
    void parseModule();

    /// Reads a type at the position, as the resolver needs for an object's fields.
    std::unique_ptr<TypeNode> parseType();
    /// Reads a value at the position.
    ValueNode parseValue();

    const Token& peek(std::size_t ahead = 0) const;
    Token take();
    /// @param expected what a token of another kind is told not to be
    Token take(Token::Kind kind, const char* expected);
    bool accept(const char* spelling);
    void expect(const char* spelling);
    [[noreturn]] void fail(const std::string& expected);

private:
    void parseHeader();
    void parseImports();
    void parseAssignment();
    void parseClass(Assignment& assignment);
    std::vector<SyntaxNode> parseSyntax(const char* closing);
    void parseSet(Assignment& assignment);
    void skipValue();
    void recover();

    TagNode parseTag();
    void parseComponents(TypeNode& type);
    void parseNamedNumbers(TypeNode& type);
    void parseListOf(TypeNode& type, bool set);
    void parseConstraint(TypeNode& type);
    std::vector<RangeNode> parseRanges();
    BoundNode parseBound();
    TableNode parseTable();
    unsigned previousLine() const;

    void attachRemarksAndComments();

    ModuleNode& module_;
    Diagnostics& diagnostics_;
    std::size_t next_;
};

} // namespace notation

#endif
