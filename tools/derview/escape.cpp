#include "escape.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <limits>

namespace derview {

namespace {

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
    const bool oneOctet = coding == CharacterCoding::Utf8 || coding == CharacterCoding::Latin1;
    for (std::size_t place = 0; place < octets.size();) {
        const unsigned char octet = octets[place];
        if (oneOctet && octet >= 0x20 && octet < 0x7F &&
            (!quoted || (octet != '"' && octet != '\\')) && result.columns < room) {
            result.text += static_cast<char>(octet);
            ++result.columns;
            ++place;
            continue;
        }
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
    const Character character =
        characterAt(OctetStore(start.begin(), start.end()), CharacterCoding::Utf8);
    return {character.size, columnsOf(character.code)};
}

std::size_t columnsOf(std::string_view text) {
    std::size_t columns = 0;
    // Plain characters are what most texts consist of.
    while (columns < text.size() && text[columns] >= ' ' && text[columns] <= '~' &&
           text[columns] != '\\') {
        ++columns;
    }
    text.remove_prefix(columns);
    while (!text.empty()) {
        const ShownUnit unit = firstUnit(text);
        columns += unit.columns;
        text.remove_prefix(unit.size);
    }
    return columns;
}

} // namespace derview
