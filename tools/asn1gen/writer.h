#ifndef BREVANTIS_ASN1GEN_WRITER_H
#define BREVANTIS_ASN1GEN_WRITER_H

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace asn1gen {

/// What stands in a template for what.
using Values = std::map<std::string, std::string>;

/// A template with its placeholders replaced: `$name`, or `${name}` in front of a letter.
/// @throws std::logic_error at a placeholder without a value
std::string filled(std::string_view pattern, const Values& values);

/// Collects C++ text. Lines break where the templates do; only comments are filled.
class Writer {
public:
    /// A line of its own; without text an empty one.
    void line(const std::string& text = "");

    /// Lines of a template. A line break at its very beginning does not count.
    void lines(std::string_view pattern, const Values& values);

    /// Items one below the other, commas between them.
    void items(const std::vector<std::string>& items, unsigned indent);

    /// A Doxygen comment whose words are filled into lines.
    void comment(const std::string& text, unsigned indent = 0);

    /// The lines of a text in the notation, set off in a Doxygen comment.
    void notation(const std::string& text, unsigned indent = 0);

    const std::string& text() const { return text_; }

private:
    std::string text_;
};

/// Parts with commas between them.
std::string joined(const std::vector<std::string>& parts);

/// Arcs of an object identifier, separated.
std::string arcsText(const std::vector<unsigned>& arcs, const char* separator);

/// A text as a C++ string literal, one line of it a piece.
std::vector<std::string> literalLines(const std::string& text);

} // namespace asn1gen

#endif
