#ifndef BREVANTIS_NOTATION_PARSER_H
#define BREVANTIS_NOTATION_PARSER_H

#include <functional>

#include "ast.h"

namespace notation {

/// Thrown by the parser to leave an assignment that it has already complained about.
struct SyntaxError {};

/// Reads the notation of X.680 to X.683, and what X.208 had, from tokens.
class Parser {
public:
    /// @param tokens end with one of kind End, and outlive the parser
    /// @param module that names belong to where a token does not tell
    Parser(const Tokens& tokens, const ModuleNode& module, Diagnostics& diagnostics,
           std::size_t first = 0)
        : tokens_(tokens), module_(&module), diagnostics_(diagnostics), next_(first) {}

    /// Reads the module at the position. Further modules may follow.
    void parseModule(ModuleNode& module);
    bool atEnd() const { return peek().kind == Token::End; }
    std::size_t position() const { return next_; }

    Owned<TypeNode> parseType();
    ValueNode parseValue();
    /// Reads `CLASS { ... }`.
    void parseClass(Assignment& assignment);
    /// Steps over balanced braces or a single item.
    Tokens takeBalanced();

    const Token& peek(std::size_t ahead = 0) const;
    Token take();
    /// @param expected what a token of another kind is told not to be
    Token take(Token::Kind kind, const char* expected);
    bool accept(const char* spelling);
    void expect(const char* spelling);
    [[noreturn]] void fail(const std::string& expected);
    std::string hintFor(const std::string& expected, const Token& found) const;

private:
    /// Keeps what nests from running out of stack.
    class Level {
    public:
        explicit Level(Parser& parser);
        ~Level() { --parser_.depth_; }
        Level(const Level&) = delete;
        Level& operator=(const Level&) = delete;

    private:
        Parser& parser_;
    };

    void parseHeader(ModuleNode& module);
    void parseImports(ModuleNode& module);
    void parseAssignment(ModuleNode& module);
    void parseBody(ModuleNode& module, Assignment& assignment);
    void parseParameters(Assignment& assignment);
    void skipMacro();
    void skipInstance();
    bool beginsAssignment() const;
    std::vector<SyntaxNode> parseSyntax(const char* closing);
    void recover();

    const ModuleNode* scope() const;
    Tokens slice(std::size_t first) const;
    std::string textFrom(std::size_t first) const;

    TagNode parseTag();
    Owned<TypeNode> parsePlainType();
    void parseWord(TypeNode& type);
    void parseReference(TypeNode& type, const Token& word);
    void parseFieldNames(TypeNode& type);
    Tokens parseArguments();
    void parseComponents(TypeNode& type);
    void parseComponentLines(TypeNode& type, const char* closing, bool& additions);
    void parseNamedNumbers(TypeNode& type);
    void parseListOf(TypeNode& type, bool set);
    void parseConstraint(TypeNode& type);
    bool parseTable(TypeNode& type);
    bool parseContaining(TypeNode& type);
    bool parsePlainRanges(TypeNode& type);
    ConstraintNode parseUnion();
    ConstraintNode parseIntersection();
    /// Parts with a sign, or the word for it, between them; a single part is itself.
    ConstraintNode parseChain(ConstraintNode::Kind kind, const char* sign, const char* word,
                              ConstraintNode (Parser::*parsePart)());
    ConstraintNode parseExclusion();
    ConstraintNode parseConstraintElement();
    RangeNode parseRange();
    BoundNode parseBound();
    void parseArcs(ValueNode& value);
    unsigned previousLine() const;

    const Tokens& tokens_;
    const ModuleNode* module_;
    Diagnostics& diagnostics_;
    std::size_t next_;
    unsigned depth_ = 0;
};

/// Whether a word is the name of a built-in type for text or time.
bool isCharacterString(const std::string& word);

/// Reads one of the modules of a file.
/// @param module tells its file
/// @param first of its tokens
/// @return the token behind it
std::size_t parseModule(ModuleNode& module, std::size_t first, Diagnostics& diagnostics);

/// Gives each remark and comment of a file to what it belongs to.
void attachRemarksAndComments(ModuleNode& module);

} // namespace notation

#endif
