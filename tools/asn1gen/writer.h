#ifndef BREVANTIS_ASN1GEN_WRITER_H
#define BREVANTIS_ASN1GEN_WRITER_H

#include <string>
#include <vector>

namespace asn1gen {

/// Collects C++ text in the layout of the project: 100 columns, four blanks.
class Writer {
public:
    /// A line of its own; without text an empty one.
    void line(const std::string& text = "");

    /// `head(argument, ...)tail`, broken over lines as needed.
    /// @param head up to the name, without the parenthesis, blanks of indentation included
    void call(const std::string& head, const std::vector<std::string>& arguments,
              const std::string& tail);

    /// A Doxygen comment whose words are filled into lines.
    void comment(const std::string& text, unsigned indent = 0);

    /// The lines of a text in the notation, set off in a Doxygen comment.
    void notation(const std::string& text, unsigned indent = 0);

    /// `head name tail`, the name on the next line if needed.
    void declare(const std::string& head, const std::string& name, const std::string& tail);

    /// `head : base {`
    void derived(const std::string& head, const std::string& base);

    /// An enumeration, on one line if it fits.
    void enumeration(const std::string& head, const std::vector<std::string>& items);

    /// `{items},` over lines that are indented by four blanks.
    void row(const std::vector<std::string>& items);

    /// A definition of a constructor with its initialisers.
    void constructor(const std::string& name, const std::vector<std::string>& arguments,
                     const std::vector<std::string>& initializers, const std::string& body);

    /// `head = {items};`
    void initialized(const std::string& head, const std::string& items);

    /// Asserts at compile time that two types are one.
    void sameType(const std::string& first, const std::string& second);

    /// A function whose body is one call, its value returned if the callee begins with `return`.
    void function(const std::string& head, const std::vector<std::string>& arguments,
                  const std::string& callee, const std::vector<std::string>& passed);

    /// `name = { items };` over lines of 100 columns.
    void list(const std::string& head, const std::vector<std::string>& items);

    const std::string& text() const { return text_; }

private:
    void fill(const std::string& opening, std::size_t indent,
              const std::vector<std::string>& pieces);

    std::string text_;
};

/// A text as a C++ string literal, one line of it a piece.
std::vector<std::string> literalLines(const std::string& text);

} // namespace asn1gen

#endif
