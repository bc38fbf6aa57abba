#include "hex_text.h"

#include <algorithm>
#include <cctype>

#include "value/blanks.h"

namespace asn1text {

namespace {

constexpr std::string_view HexDigits = "0123456789abcdefABCDEF";

std::string_view takeLine(std::string_view& text) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return trimmed(line);
}

/// Whether digits tell an offset, in base 16 or 8.
bool isOffset(std::string_view digits, std::size_t offset) {
    for (const std::size_t base : {std::size_t{16}, std::size_t{8}}) {
        std::size_t number = 0;
        const bool good = std::all_of(digits.begin(), digits.end(), [&](char digit) {
            const int value = hexDigit(static_cast<unsigned char>(digit));
            number = number * base + static_cast<std::size_t>(std::max(value, 0));
            return value >= 0 && static_cast<std::size_t>(value) < base;
        });
        if (good && number == offset) {
            return true;
        }
    }
    return false;
}

/// The octets of a line of a dump behind its offset: pairs of digits up to two blanks in a row that
/// do not stand in their middle, or up to a character that stands in none.
void takeOctets(std::string_view line, OctetStore& octets) {
    constexpr std::size_t mostInLine = 64;
    constexpr std::size_t middle = 8;
    std::size_t count = 0;
    while (!line.empty() && count < mostInLine) {
        const std::size_t blanks = std::min(line.find_first_not_of(" \t-"), line.size());
        const bool gap = line.substr(0, blanks).find("  ") != std::string_view::npos;
        if (gap && count != 0 && count != middle) {
            return;
        }
        line.remove_prefix(blanks);
        const std::size_t end = std::min(line.find_first_not_of(HexDigits), line.size());
        const bool whole = end != 0 && end % 2 == 0 &&
                           (end == line.size() || line[end] == ' ' || line[end] == '-');
        if (!whole) {
            return;
        }
        for (std::size_t place = 0; place < end; place += 2, ++count) {
            octets.push_back(
                static_cast<unsigned char>(hexDigit(static_cast<unsigned char>(line[place])) << 4 |
                                           hexDigit(static_cast<unsigned char>(line[place + 1]))));
        }
        line.remove_prefix(end);
    }
}

std::optional<OctetStore> octetsOfLines(std::string_view text) {
    OctetStore octets;
    std::size_t inLine = 0; // octets of the line before
    bool repeats = false;
    while (!text.empty()) {
        const std::string_view line = takeLine(text);
        if (line.empty()) {
            continue;
        }
        if (line == "*") { // lines that are the same as the one before are left out
            repeats = true;
            continue;
        }
        const std::size_t end = std::min(line.find_first_not_of(HexDigits), line.size());
        if (repeats && inLine != 0) {
            constexpr std::size_t most = std::size_t{1} << 24;
            const std::size_t start = octets.size() - inLine;
            while (octets.size() < most && !isOffset(line.substr(0, end), octets.size())) {
                octets.push_back(octets[start + (octets.size() - start) % inLine]);
            }
            repeats = false;
        }
        constexpr std::size_t fewest = 4;
        if (end < fewest || !isOffset(line.substr(0, end), octets.size())) {
            return std::nullopt;
        }
        std::string_view rest = line.substr(end);
        rest.remove_prefix(!rest.empty() && rest.front() == ':' ? 1 : 0);
        if (!rest.empty() && Blanks.find(rest.front()) == std::string_view::npos) {
            return std::nullopt;
        }
        const std::size_t before = octets.size();
        takeOctets(trimmed(rest), octets);
        inLine = octets.size() - before;
        if (inLine == 0) { // the last line may be the size alone
            return trimmed(rest).empty() && trimmed(text).empty() ? std::optional(octets)
                                                                  : std::nullopt;
        }
    }
    return octets.empty() ? std::nullopt : std::optional(octets);
}

/// Digits in "0x30" or "\x30", with what a language puts around them.
std::optional<OctetStore> octetsOfSource(std::string_view text) {
    // A declaration in front of the values ends with a brace, a bracket or an equals sign.
    const std::size_t first =
        std::min(text.find("0x"), std::min(text.find("0X"), text.find("\\x")));
    if (first == std::string_view::npos) {
        return std::nullopt;
    }
    const std::size_t opening = text.find_last_of("{[=(", first);
    text.remove_prefix(opening == std::string_view::npos ? 0 : opening + 1);
    OctetStore octets;
    while (!(text = text.substr(std::min(text.find_first_not_of(" \t\r\n,\"'"), text.size())))
                .empty()) {
        const bool marked = text.size() > 2 && (text[0] == '0' || text[0] == '\\') &&
                            (text[1] == 'x' || text[1] == 'X');
        if (!marked) {
            const bool closes = std::string_view("}]);").find(text[0]) != std::string_view::npos;
            return closes && !octets.empty() ? std::optional(octets) : std::nullopt;
        }
        text.remove_prefix(2);
        const std::size_t end = std::min(text.find_first_not_of(HexDigits), text.size());
        if (end == 0 || end > 2) {
            return std::nullopt;
        }
        unsigned value = 0;
        for (const char digit : text.substr(0, end)) {
            value = value << 4 | static_cast<unsigned>(hexDigit(static_cast<unsigned char>(digit)));
        }
        octets.push_back(static_cast<unsigned char>(value));
        text.remove_prefix(end);
    }
    return octets;
}

} // namespace

std::optional<OctetStore> octetsOfDump(std::string_view text) {
    std::optional<OctetStore> octets = octetsOfLines(text);
    return octets ? octets : octetsOfSource(text);
}

} // namespace asn1text
