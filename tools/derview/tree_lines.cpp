#include "tree_lines.h"

#include <algorithm>
#include <cstdio>

#include "escape.h"

namespace derview {

namespace {

constexpr std::size_t IndentStep = 2;
constexpr std::size_t OffsetColumns = 22;

/// Octets of an escaped text that fit in a line: behind a blank if there is one near the end, and
/// whole characters and escapes.
std::size_t sizeOfLine(std::string_view text, std::size_t room) {
    if (columnsOf(text) <= room) {
        return text.size();
    }
    std::size_t size = 0;
    std::size_t columns = 0;
    std::size_t blank = 0; // behind the last one
    while (size < text.size()) {
        const ShownUnit unit = firstUnit(text.substr(size));
        if (size != 0 && columns + unit.columns > room) {
            return blank > size / 2 ? blank : size;
        }
        size += unit.size;
        columns += unit.columns;
        blank = text[size - 1] == ' ' ? size : blank;
    }
    return size;
}

} // namespace

Style styleOf(ValueKind kind) {
    switch (kind) {
    case ValueKind::Boolean:
    case ValueKind::Number:
    case ValueKind::BigNumber:
    case ValueKind::Time:
        return Style::Number;
    case ValueKind::Text:
        return Style::Text;
    case ValueKind::Bits:
    case ValueKind::OctetString:
    case ValueKind::Raw:
        return Style::Hex;
    default:
        return Style::Plain;
    }
}

std::size_t TreeLines::margin() const {
    return (offsets_ ? OffsetColumns : 0) + depth_ * IndentStep;
}

std::size_t TreeLines::begin(std::size_t depth, const TreePlace& place) {
    depth_ = depth;
    if (offsets_) {
        const std::string contents =
            place.contentLength < 0 ? "indef" : std::to_string(place.contentLength);
        char text[64];
        std::snprintf(text, sizeof text, "%c%9zu %2zu+%-7s ", place.assembled ? '~' : ' ',
                      place.offset, place.headerLength, contents.c_str());
        output_.write(Style::Quiet, text);
    }
    output_.fill(depth_ * IndentStep);
    return margin();
}

std::size_t TreeLines::name(std::string_view name, std::size_t columns, std::size_t column) {
    output_.write(Style::Name, name);
    const std::size_t taken = std::max(columns, name.size()) + 2;
    output_.fill(taken - name.size());
    return column + taken;
}

std::size_t TreeLines::prefix(std::string_view text, std::size_t column) {
    column = findRoom(column, text.size() + 1);
    output_.write(Style::Quiet, text);
    output_.write(Style::Quiet, ": ");
    return column + text.size() + 2;
}

std::size_t TreeLines::roomAt(std::size_t column) const {
    return width_ > column + LeastRoom ? width_ - column : LeastRoom;
}

std::size_t TreeLines::findRoom(std::size_t column, std::size_t columns) {
    if (column + columns <= width_) {
        return column;
    }
    output_.dropBlanks();
    output_.write("\n");
    const std::size_t most = width_ > LeastRoom ? width_ - LeastRoom : 0;
    const std::size_t next = std::min(margin() + IndentStep, most);
    output_.fill(next);
    return next;
}

void TreeLines::text(Style style, std::string_view text, std::size_t column) {
    const std::size_t room = roomAt(column);
    for (bool first = true; first || !text.empty(); first = false) {
        const std::size_t size = sizeOfLine(text, room);
        output_.fill(first ? 0 : column);
        output_.write(style, text.substr(0, size));
        output_.write("\n");
        text.remove_prefix(size);
    }
}

void TreeLines::octets(Octets octets, std::size_t column) {
    const std::size_t room = roomAt(column) / 2;
    for (bool first = true; !octets.empty(); first = false) {
        const std::size_t size = std::min(octets.size(), room);
        output_.fill(first ? 0 : column);
        output_.write(Style::Hex, hexText(octets.first(size)));
        output_.write("\n");
        octets = octets.subspan(size);
    }
}

void TreeLines::value(ValueKind kind, const ValueText& value, std::size_t column) {
    if (value.rest == 0) {
        text(styleOf(kind), value.text, column);
        return;
    }
    const std::string note = restText(value.rest);
    if (columnsOf(value.text) + 1 + columnsOf(note) <= roomAt(column)) {
        output_.write(styleOf(kind), value.text);
        output_.write(Style::Quiet, " " + note + "\n");
        return;
    }
    text(styleOf(kind), value.text, column);
    output_.fill(column);
    text(Style::Quiet, note, column);
}

void TreeLines::failure(std::size_t depth, const std::string& text, const TreePlace& /*place*/) {
    depth_ = depth;
    output_.fill(margin());
    output_.write(Style::Bad, text);
    output_.write("\n");
}

void TreeLines::note(const std::string& text) {
    output_.fill(offsets_ ? OffsetColumns : 0);
    output_.write(Style::Bad, text);
    output_.write("\n");
}

} // namespace derview
