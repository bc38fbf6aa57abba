#include "writer.h"

#include <algorithm>
#include <sstream>

namespace asn1gen {
namespace {

constexpr std::size_t Columns = 100;

std::string join(const std::vector<std::string>& parts) {
    std::string text;
    for (const std::string& part : parts) {
        text += (text.empty() ? "" : ", ") + part;
    }
    return text;
}

} // namespace

void Writer::line(const std::string& text) {
    text_ += text + "\n";
}

void Writer::call(const std::string& head, const std::vector<std::string>& arguments,
                  const std::string& tail) {
    const std::string whole = head + "(" + join(arguments) + ")" + tail;
    if (whole.size() <= Columns) {
        line(whole);
        return;
    }
    const std::size_t resultEnd = head.rfind(' ');
    if (head.size() + 1 > Columns && resultEnd != std::string::npos && head[0] != ' ') {
        line(head.substr(0, resultEnd));
        call(head.substr(resultEnd + 1), arguments, tail);
        return;
    }
    const std::size_t scope = head.rfind("::");
    if (head.size() + 1 > Columns && scope != std::string::npos) {
        line(head.substr(0, scope + 2));
        call("    " + head.substr(scope + 2), arguments, tail);
        return;
    }
    const std::size_t indent = head.find_first_not_of(' ');
    std::size_t aligned = head.size() + 1;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::size_t behind = i + 1 == arguments.size() ? 1 + tail.size() : 1;
        if (aligned + arguments[i].size() + behind > Columns) {
            aligned = indent + 4; // no room behind the parenthesis
            break;
        }
    }
    const std::size_t result = head.rfind(' ');
    if (aligned == indent + 4 && result != std::string::npos && result > indent &&
        head.compare(indent, 8, "explicit") != 0 && head.compare(indent, 6, "return") != 0) {
        const std::string rest = head.substr(result + 1) + "(" + join(arguments) + ")" + tail;
        if (indent + rest.size() <= Columns) {
            line(head.substr(0, result));
            line(std::string(indent, ' ') + rest);
            return;
        }
    }
    std::string opening = head + "(";
    if (aligned == indent + 4) {
        line(opening);
        opening = std::string(aligned, ' ');
    }
    std::vector<std::string> pieces = arguments.empty() ? std::vector<std::string>{""} : arguments;
    pieces.back() += ")" + tail;
    fill(opening, aligned, pieces);
}

// Fills pieces into lines; the first one goes on behind what is there.
void Writer::fill(const std::string& opening, std::size_t indent,
                  const std::vector<std::string>& pieces) {
    std::string current = opening;
    bool isStart = true;
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        const std::string piece = pieces[i] + (i + 1 == pieces.size() ? "" : ",");
        if (!isStart && current.size() + 1 + piece.size() > Columns) {
            line(current);
            current = std::string(indent, ' ');
            isStart = true;
        }
        current += (isStart ? "" : " ") + piece;
        isStart = false;
    }
    line(current);
}

void Writer::declare(const std::string& head, const std::string& name, const std::string& tail) {
    if (head.size() + 1 + name.size() + tail.size() <= Columns) {
        line(head + " " + name + tail);
    } else {
        line(head);
        line("    " + name + tail);
    }
}

void Writer::derived(const std::string& head, const std::string& base) {
    const std::string whole = head + " : " + base + " {";
    if (whole.size() <= Columns) {
        line(whole);
    } else {
        line(head);
        line("    : " + base + " {");
    }
}

void Writer::enumeration(const std::string& head, const std::vector<std::string>& items) {
    const std::string whole = head + " { " + join(items) + " };";
    if (whole.size() <= Columns) {
        line(whole);
        return;
    }
    line(head + " {");
    for (std::size_t i = 0; i < items.size(); ++i) {
        line("    " + items[i] + (i + 1 == items.size() ? "" : ","));
    }
    line("};");
}

void Writer::row(const std::vector<std::string>& items) {
    std::vector<std::string> pieces = items;
    pieces.back() += "},";
    fill("    {", 5, pieces);
}

void Writer::constructor(const std::string& name, const std::vector<std::string>& arguments,
                         const std::vector<std::string>& initializers, const std::string& body) {
    const std::string whole = name + "(" + join(arguments) + ") : " + join(initializers) + body;
    if (whole.size() <= Columns) {
        line(whole);
        return;
    }
    call(name, arguments, "");
    const std::string together = "    : " + join(initializers) + body;
    if (together.size() <= Columns) {
        line(together);
        return;
    }
    for (std::size_t i = 0; i < initializers.size(); ++i) {
        const bool last = i + 1 == initializers.size();
        line((i == 0 ? "    : " : "      ") + initializers[i] + (last ? body : ","));
    }
}

void Writer::comment(const std::string& text, unsigned indent) {
    const std::string margin = std::string(indent, ' ') + "///";
    std::istringstream words(text);
    std::string current = margin;
    for (std::string word; words >> word;) {
        if (current != margin && current.size() + 1 + word.size() > Columns) {
            line(current);
            current = margin;
        }
        current += " " + word;
    }
    line(current);
}

void Writer::notation(const std::string& text, unsigned indent) {
    const std::string margin = std::string(indent, ' ') + "///     ";
    std::istringstream lines(text);
    for (std::string current; std::getline(lines, current);) {
        // A single word may be longer than the line; it stays whole.
        while (margin.size() + current.size() > Columns) {
            const std::size_t start = current.find_first_not_of(' ');
            const std::size_t at = current.rfind(' ', Columns - margin.size());
            if (at == std::string::npos || at <= start) {
                break;
            }
            line(margin + current.substr(0, at));
            current = std::string(start + 4, ' ') + current.substr(at + 1);
        }
        line(margin + current);
    }
}

void Writer::list(const std::string& head, const std::vector<std::string>& items) {
    const std::string whole = head + " = {" + join(items) + "};";
    if (whole.size() <= Columns) {
        line(whole);
        return;
    }
    line(head + " = {");
    std::vector<std::string> pieces = items;
    pieces.back() += "};";
    fill("    ", 4, pieces);
}

void Writer::initialized(const std::string& head, const std::string& items) {
    const std::string whole = head + " = {" + items + "};";
    if (whole.size() <= Columns) {
        line(whole);
    } else {
        line(head + " = {");
        line("    " + items + "};");
    }
}

void Writer::sameType(const std::string& first, const std::string& second) {
    const std::string start = "static_assert(";
    const std::string argument = "    std::is_same_v<";
    const std::string same = "std::is_same_v<" + first + ", " + second + ">);";
    if (start.size() + same.size() <= Columns) {
        line(start + same);
    } else if (4 + same.size() <= Columns) {
        line(start);
        line("    " + same);
    } else {
        const std::string aligned = start + "std::is_same_v<";
        const bool fits = aligned.size() + std::max(first.size() + 1, second.size() + 3) <= Columns;
        if (!fits) {
            line(start);
        }
        const std::string& opening = fits ? aligned : argument;
        line(opening + first + ",");
        line(std::string(opening.size(), ' ') + second + ">);");
    }
}

void Writer::function(const std::string& head, const std::vector<std::string>& arguments,
                      const std::string& callee, const std::vector<std::string>& passed) {
    call(head, arguments, " {");
    call("    " + callee, passed, ";");
    line("}");
}

std::vector<std::string> literalLines(const std::string& text) {
    std::vector<std::string> result;
    std::string current = "\"";
    for (const char c : text) {
        if (c == '\n') {
            result.push_back(current + "\\n\"");
            current = "\"";
        } else {
            if (c == '"' || c == '\\') {
                current += '\\';
            }
            current += c;
        }
    }
    result.push_back(current + "\"");
    return result;
}

} // namespace asn1gen
