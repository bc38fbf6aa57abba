#include "escape.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <limits>

namespace derview {

namespace {

constexpr std::uint32_t NoCharacter = 0xFFFFFFFF;

struct Character {
    std::uint32_t code; ///< NoCharacter when the octets are none
    unsigned size;      ///< octets that it takes, at least 1
};

bool isSurrogate(std::uint32_t code) {
    return code >= 0xD800 && code <= 0xDFFF;
}

Character utf8At(Octets octets) {
    const unsigned char lead = octets[0];
    if (lead < 0x80) {
        return {lead, 1};
    }
    const unsigned size = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || octets.size() < size) {
        return {NoCharacter, 1};
    }
    std::uint32_t code = lead & (0x7Fu >> size);
    for (unsigned i = 1; i < size; ++i) {
        if ((octets[i] & 0xC0u) != 0x80) {
            return {NoCharacter, 1};
        }
        code = code << 6 | (octets[i] & 0x3Fu);
    }
    constexpr std::uint32_t smallest[] = {0, 0, 0x80, 0x800, 0x10000};
    const bool valid = code >= smallest[size] && code <= 0x10FFFF && !isSurrogate(code);
    return valid ? Character{code, size} : Character{NoCharacter, 1};
}

std::uint32_t number(Octets octets, std::size_t first, unsigned size) {
    std::uint32_t result = 0;
    for (unsigned i = 0; i < size; ++i) {
        result = result << 8 | octets[first + i];
    }
    return result;
}

Character utf16At(Octets octets) {
    if (octets.size() < 2) {
        return {NoCharacter, 1};
    }
    const std::uint32_t high = number(octets, 0, 2);
    if (!isSurrogate(high)) {
        return {high, 2};
    }
    const std::uint32_t low = octets.size() >= 4 ? number(octets, 2, 2) : 0;
    if (high >= 0xDC00 || low < 0xDC00 || low > 0xDFFF) {
        return {NoCharacter, 2};
    }
    return {0x10000 + ((high - 0xD800) << 10) + (low - 0xDC00), 4};
}

Character characterAt(Octets octets, CharacterCoding coding) {
    switch (coding) {
    case CharacterCoding::Utf8:
        return utf8At(octets);
    case CharacterCoding::Utf16:
        return utf16At(octets);
    case CharacterCoding::Utf32: {
        if (octets.size() < 4) {
            return {NoCharacter, 1};
        }
        const std::uint32_t code = number(octets, 0, 4);
        return {code > 0x10FFFF || isSurrogate(code) ? NoCharacter : code, 4};
    }
    case CharacterCoding::Latin1:
        break;
    }
    return {octets[0], 1};
}

struct CodeRange {
    std::uint32_t first;
    std::uint32_t last;
};

template <std::size_t Count>
bool isIn(const CodeRange (&ranges)[Count], std::uint32_t code) {
    for (const CodeRange& range : ranges) {
        if (code >= range.first && code <= range.last) {
            return true;
        }
    }
    return false;
}

/// Whether a character shows nothing of its own, or changes how others are shown.
bool isHidden(std::uint32_t code) {
    constexpr CodeRange hidden[] = {
        {0x00, 0x1F},       {0x7F, 0x9F},       {0xAD, 0xAD},       {0x34F, 0x34F},
        {0x61C, 0x61C},     {0x115F, 0x1160},   {0x17B4, 0x17B5},   {0x180B, 0x180F},
        {0x200B, 0x200F},   {0x2028, 0x202E},   {0x2060, 0x206F},   {0x3164, 0x3164},
        {0xE000, 0xF8FF},   {0xFE00, 0xFE0F},   {0xFEFF, 0xFEFF},   {0xFFA0, 0xFFA0},
        {0xFFF0, 0xFFFB},   {0xFFFE, 0xFFFF},   {0x1BCA0, 0x1BCA3}, {0x1D173, 0x1D17A},
        {0xE0000, 0xE0FFF}, {0xF0000, 0x10FFFF}};
    return isIn(hidden, code);
}

/// Columns that a visible character takes.
std::size_t columnsOf(std::uint32_t code) {
    constexpr CodeRange combining[] = {
        {0x300, 0x36F}, {0x1AB0, 0x1AFF}, {0x1DC0, 0x1DFF}, {0x20D0, 0x20FF}, {0xFE20, 0xFE2F}};
    constexpr CodeRange wide[] = {{0x1100, 0x115F},   {0x2E80, 0x303E},  {0x3041, 0xA4CF},
                                  {0xA960, 0xA97F},   {0xAC00, 0xD7A3},  {0xF900, 0xFAFF},
                                  {0xFE30, 0xFE6F},   {0xFF00, 0xFF60},  {0xFFE0, 0xFFE6},
                                  {0x1F300, 0x1FAFF}, {0x20000, 0x3FFFD}};
    if (isIn(combining, code)) {
        return 0;
    }
    return isIn(wide, code) ? 2 : 1;
}

void appendUtf8(std::string& text, std::uint32_t code) {
    const auto put = [&](std::uint32_t octet) { text += static_cast<char>(octet); };
    if (code < 0x80) {
        put(code);
        return;
    }
    if (code < 0x800) {
        put(0xC0 | code >> 6);
    } else {
        if (code < 0x10000) {
            put(0xE0 | code >> 12);
        } else {
            put(0xF0 | code >> 18);
            put(0x80 | (code >> 12 & 0x3F));
        }
        put(0x80 | (code >> 6 & 0x3F));
    }
    put(0x80 | (code & 0x3F));
}

std::string escapeSequence(std::uint32_t code) {
    switch (code) {
    case '\n':
        return "\\n";
    case '\r':
        return "\\r";
    case '\t':
        return "\\t";
    case '\\':
        return "\\\\";
    case '"':
        return "\\\"";
    default:
        break;
    }
    char text[16];
    std::snprintf(text, sizeof text, code < 0x80 ? "\\x%02X" : "\\u{%X}", code);
    return text;
}

} // namespace

EscapedText escape(Octets octets, CharacterCoding coding, std::size_t room, bool quoted) {
    EscapedText result;
    for (std::size_t place = 0; place < octets.size();) {
        const Character character = characterAt(octets.subspan(place), coding);
        std::string shown;
        std::size_t columns = 0;
        if (character.code == NoCharacter) {
            for (unsigned i = 0; i < character.size; ++i) {
                char text[8];
                std::snprintf(text, sizeof text, "\\x%02X", unsigned{octets[place + i]});
                shown += text;
            }
            columns = shown.size();
        } else if (isHidden(character.code) ||
                   (quoted && (character.code == '"' || character.code == '\\'))) {
            shown = escapeSequence(character.code);
            columns = shown.size();
        } else {
            appendUtf8(shown, character.code);
            columns = columnsOf(character.code);
        }
        if (result.columns + columns > room) {
            result.rest = octets.size() - place;
            break;
        }
        result.text += shown;
        result.columns += columns;
        place += character.size;
    }
    return result;
}

std::string escapeName(std::string_view text) {
    const OctetStore octets(text.begin(), text.end());
    return escape(octets, CharacterCoding::Utf8, std::numeric_limits<std::size_t>::max(), false)
        .text;
}

ShownUnit firstUnit(std::string_view text) {
    if (text[0] == '\\') {
        const char kind = text.size() > 1 ? text[1] : '\0';
        const std::size_t brace = kind == 'u' ? text.find('}') : std::string_view::npos;
        const std::size_t usual = kind == 'x' ? 4 : 2;
        const std::size_t size =
            std::min(brace != std::string_view::npos ? brace + 1 : usual, text.size());
        return {size, size};
    }
    const std::string_view start = text.substr(0, 4);
    const Character character = utf8At(OctetStore(start.begin(), start.end()));
    return {character.size, columnsOf(character.code)};
}

std::size_t columnsOf(std::string_view text) {
    std::size_t columns = 0;
    while (!text.empty()) {
        const ShownUnit unit = firstUnit(text);
        columns += unit.columns;
        text.remove_prefix(unit.size);
    }
    return columns;
}

std::string toUtf8(Octets octets, CharacterCoding coding) {
    constexpr std::uint32_t replacement = 0xFFFD;
    std::string text;
    for (std::size_t place = 0; place < octets.size();) {
        const Character character = characterAt(octets.subspan(place), coding);
        appendUtf8(text, character.code == NoCharacter ? replacement : character.code);
        place += character.size;
    }
    return text;
}

} // namespace derview
