#ifndef BREVANTIS_NOTATION_LEXER_H
#define BREVANTIS_NOTATION_LEXER_H

#include <string>
#include <string_view>
#include <vector>

#include "diagnostics.h"

namespace notation {

struct ModuleNode;

/// A lexical item of X.680, clause 12.
struct Token {
    enum Kind {
        Upper,  ///< begins with a capital: a type, a class, a set or a keyword
        Lower,  ///< begins with a small letter: an identifier or a value
        Field,  ///< begins with `&`: a field of an object class; the text leaves the sign out
        Number, ///< decimal digits
        String, ///< `"..."`: the text leaves the outer quotation marks out
        Bits,   ///< `'...'B`
        Hex,    ///< `'...'H`
        Symbol, ///< punctuation, such as `::=`
        End     ///< behind the last item
    };

    Kind kind = End;
    std::string text;
    Location at;
    /// The module whose names it is read with; null for the module that it stands in. Differs where
    /// parameters have been put in.
    const ModuleNode* scope = nullptr;

    bool is(const char* spelling) const {
        return (kind == Upper || kind == Symbol) && text == spelling;
    }
};

/// An ASN.1 comment.
struct Comment {
    std::string text;
    Location at;
    bool ownLine = false; ///< nothing but blanks stands in front of it
};

/// A comment that begins with `@`: an instruction to the compiler.
struct Remark {
    std::string key;
    std::string value;
    Location at;
    bool taken = false; ///< something understood it
};

/// A module's text, taken apart.
struct TokenStream {
    std::vector<Token> tokens; ///< ends with a token of kind End
    std::vector<Comment> comments;
    std::vector<Remark> remarks;
};

/// The items as text again, evenly spaced.
std::string spelled(const Token* first, const Token* last);

/// Takes a text apart; reports what is no lexical item and goes on behind it.
TokenStream tokenize(const std::string& file, std::string_view text, Diagnostics& diagnostics);

} // namespace notation

#endif
