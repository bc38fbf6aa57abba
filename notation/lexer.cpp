#include "lexer.h"

namespace notation {
namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}
bool isUpper(char c) {
    return c >= 'A' && c <= 'Z';
}
bool isLower(char c) {
    return c >= 'a' && c <= 'z';
}
bool isAlnum(char c) {
    return isDigit(c) || isUpper(c) || isLower(c);
}
bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

std::string trimmed(std::string_view text) {
    std::size_t first = 0;
    std::size_t last = text.size();
    while (first < last && isBlank(text[first])) {
        ++first;
    }
    while (last > first && isBlank(text[last - 1])) {
        --last;
    }
    return std::string(text.substr(first, last - first));
}

class Lexer {
public:
    Lexer(const std::string& file, std::string_view text, Diagnostics& diagnostics)
        : text_(text), diagnostics_(diagnostics) {
        at_.file = file;
        at_.line = 1;
        at_.column = 1;
    }

    TokenStream run() {
        while (position_ < text_.size()) {
            const char c = text_[position_];
            if (isBlank(c)) {
                step();
            } else if (starts("--")) {
                lineComment();
            } else if (starts("/*")) {
                blockComment();
            } else {
                token(c);
                lineHasToken_ = true;
            }
        }
        add(Token::End, "", at_);
        return std::move(stream_);
    }

private:
    char peek(std::size_t ahead = 0) const {
        return position_ + ahead < text_.size() ? text_[position_ + ahead] : '\0';
    }
    bool starts(std::string_view what) const {
        return text_.substr(position_, what.size()) == what;
    }
    void step(std::size_t count = 1) {
        for (; count > 0 && position_ < text_.size(); --count, ++position_) {
            if (text_[position_] == '\n') {
                ++at_.line;
                at_.column = 1;
                lineHasToken_ = false;
            } else {
                ++at_.column;
            }
        }
    }

    // X.680, 12.6.3: a comment ends at the next pair of hyphens or with the line.
    void lineComment() {
        const Location at = at_;
        const bool ownLine = !lineHasToken_;
        step(2);
        const std::size_t start = position_;
        while (position_ < text_.size() && peek() != '\n' && !starts("--")) {
            step();
        }
        const std::string_view body = text_.substr(start, position_ - start);
        // A second remark on the line opens with the hyphens that close the first.
        if (starts("--") && !starts("--@")) {
            step(2);
        }
        if (!body.empty() && body[0] == '@') {
            remark(body.substr(1), at);
        } else {
            stream_.comments.push_back({trimmed(body), at, ownLine});
        }
    }

    void remark(std::string_view body, const Location& at) {
        const std::string text = trimmed(body);
        const std::size_t blank = text.find_first_of(" \t");
        Remark remark;
        remark.key = text.substr(0, blank);
        remark.value = blank == std::string::npos ? "" : trimmed(text.substr(blank));
        remark.at = at;
        stream_.remarks.push_back(remark);
    }

    void blockComment() {
        const Location at = at_;
        const bool ownLine = !lineHasToken_;
        step(2);
        const std::size_t start = position_;
        int depth = 1; // X.680, 12.6.4: they nest
        while (position_ < text_.size()) {
            if (starts("*/")) {
                if (--depth == 0) {
                    break;
                }
                step(2);
            } else if (starts("/*")) {
                ++depth;
                step(2);
            } else {
                step();
            }
        }
        if (depth > 0) {
            diagnostics_.error(at, "the comment has no end");
            return;
        }
        stream_.comments.push_back({trimmed(text_.substr(start, position_ - start)), at, ownLine});
        step(2);
    }

    void token(char c) {
        const Location at = at_;
        if (isUpper(c) || isLower(c)) {
            add(isUpper(c) ? Token::Upper : Token::Lower, word(), at);
        } else if (isDigit(c)) {
            const std::size_t start = position_;
            while (isDigit(peek())) {
                step();
            }
            add(Token::Number, std::string(text_.substr(start, position_ - start)), at);
        } else if (c == '&' && (isUpper(peek(1)) || isLower(peek(1)))) {
            step();
            add(Token::Field, word(), at);
        } else if (c == '"') {
            quoted(at);
        } else if (c == '\'') {
            digits(at);
        } else {
            symbol(at);
        }
    }

    void add(Token::Kind kind, std::string text, const Location& at) {
        stream_.tokens.push_back({kind, std::move(text), at});
    }

    // X.680, 12.14: a quotation mark within the text is written twice.
    void quoted(const Location& at) {
        std::string text;
        for (step(); position_ < text_.size(); step()) {
            if (peek() == '"') {
                if (peek(1) != '"') {
                    step();
                    add(Token::String, std::move(text), at);
                    return;
                }
                step();
            }
            text += peek();
        }
        diagnostics_.error(at, "the text has no closing quotation mark");
    }

    // X.680, 12.10 and 12.12: blanks between the digits do not count.
    void digits(const Location& at) {
        std::string text;
        for (step(); position_ < text_.size() && peek() != '\''; step()) {
            text += isBlank(peek()) ? "" : std::string(1, peek());
        }
        step();
        if (peek() != 'B' && peek() != 'H') {
            diagnostics_.error(at, "a text of digits ends in 'B or 'H");
            return;
        }
        add(peek() == 'B' ? Token::Bits : Token::Hex, std::move(text), at);
        step();
    }

    // A hyphen belongs to the word when a letter or digit follows.
    std::string word() {
        const std::size_t start = position_;
        while (isAlnum(peek()) || (peek() == '-' && isAlnum(peek(1)))) {
            step();
        }
        return std::string(text_.substr(start, position_ - start));
    }

    void symbol(const Location& at) {
        for (const char* spelling : {"::=", "...", "..", "{", "}", "(", ")", "[", "]", ",", ";",
                                     ".",   "|",   "@",  "-", ":", "^", "<", "!", "*", "/", ">"}) {
            if (starts(spelling)) {
                add(Token::Symbol, spelling, at);
                step(std::string_view(spelling).size());
                return;
            }
        }
        diagnostics_.error(at,
                           std::string("'") + text_[position_] + "' is not part of the notation");
        step();
    }

    std::string_view text_;
    Diagnostics& diagnostics_;
    TokenStream stream_;
    std::size_t position_ = 0;
    Location at_;
    bool lineHasToken_ = false;
};

std::string spellingOf(const Token& token) {
    switch (token.kind) {
    case Token::Field:
        return "&" + token.text;
    case Token::String: {
        std::string text = "\"";
        for (const char c : token.text) {
            text += c == '"' ? "\"\"" : std::string(1, c);
        }
        return text + "\"";
    }
    case Token::Bits:
        return "'" + token.text + "'B";
    case Token::Hex:
        return "'" + token.text + "'H";
    default:
        return token.text;
    }
}

bool isOneOf(const Token& token, std::string_view symbols) {
    return token.kind == Token::Symbol && token.text.size() == 1 &&
           symbols.find(token.text) != std::string_view::npos;
}

} // namespace

std::string spelled(const Token* first, const Token* last) {
    std::string text;
    for (const Token* token = first; token != last; ++token) {
        const bool joins = token == first || isOneOf(*token, ",;).:") || token->is("..") ||
                           isOneOf(token[-1], "(.@:!-") || token[-1].is("..");
        text += (joins ? "" : " ") + spellingOf(*token);
    }
    return text;
}

TokenStream tokenize(const std::string& file, std::string_view text, Diagnostics& diagnostics) {
    return Lexer(file, text, diagnostics).run();
}

} // namespace notation
