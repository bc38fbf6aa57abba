#include "writer.h"

#include <cctype>
#include <sstream>
#include <stdexcept>

namespace asn1gen {
namespace {

constexpr std::size_t Columns = 100; // of comments

bool isNamePart(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0;
}

} // namespace

std::string filled(std::string_view pattern, const Values& values) {
    std::string text;
    while (!pattern.empty()) {
        const std::size_t mark = pattern.find('$');
        text += pattern.substr(0, mark);
        if (mark == std::string_view::npos) {
            break;
        }
        pattern.remove_prefix(mark + 1);
        const bool braced = !pattern.empty() && pattern.front() == '{';
        const std::size_t start = braced ? 1 : 0;
        std::size_t end = start;
        while (end < pattern.size() && isNamePart(pattern[end])) {
            ++end;
        }
        const std::string name(pattern.substr(start, end - start));
        const auto value = values.find(name);
        const bool closed = !braced || pattern.substr(end, 1) == "}";
        if (value == values.end() || !closed) {
            throw std::logic_error("a template has no value for '" + name + "'");
        }
        text += value->second;
        pattern.remove_prefix(end + start); // the closing brace, where there is one
    }
    return text;
}

void Writer::line(const std::string& text) {
    text_ += text + "\n";
}

void Writer::lines(std::string_view pattern, const Values& values) {
    pattern.remove_prefix(!pattern.empty() && pattern.front() == '\n' ? 1 : 0);
    text_ += filled(pattern, values);
}

void Writer::items(const std::vector<std::string>& items, unsigned indent) {
    for (const std::string& item : items) {
        line(std::string(indent, ' ') + item + (&item == &items.back() ? "" : ","));
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

std::string joined(const std::vector<std::string>& parts) {
    std::string text;
    for (const std::string& part : parts) {
        text += (text.empty() ? "" : ", ") + part;
    }
    return text;
}

std::string arcsText(const std::vector<unsigned>& arcs, const char* separator) {
    std::string text;
    for (const unsigned arc : arcs) {
        text += (text.empty() ? "" : separator) + std::to_string(arc);
    }
    return text;
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
