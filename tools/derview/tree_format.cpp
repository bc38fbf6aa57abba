#include "tree_format.h"

#include <algorithm>
#include <cstdio>
#include <limits>

#include <brevantis/asn1/text/value.h>

#include "escape.h"
#include "failure_text.h"
#include "raw_value.h"
#include "value_text.h"

namespace derview {

using asn1data::WalkAction;
using asn1data::WalkElement;

namespace {

constexpr std::size_t IndentStep = 2;
constexpr std::size_t OffsetColumns = 22;
/// Longer names push their own value to the right, not those of their neighbours.
constexpr std::size_t LongestAligned = 26;
/// Columns below which a value is better off in a line of its own.
constexpr std::size_t LeastRoom = 16;

/// Columns for the names of the elements of a type.
std::size_t nameColumns(const asn1data::TypeDescription* container) {
    if (container == nullptr) {
        return 0;
    }
    if (isList(*container)) {
        return 3;
    }
    std::size_t columns = 0;
    for (unsigned i = 0; i < container->elementCount; ++i) {
        const std::size_t length = std::string_view(container->elements[i].name).size();
        columns = std::max(columns, length <= LongestAligned ? length : 0);
    }
    return columns;
}

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

/// Octets of an escaped text that fit in a line: behind a blank if there is one near the end, and
/// whole characters and escapes.
std::size_t sizeOfLine(std::string_view text, std::size_t room) {
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

std::string offsetText(const WalkElement& element) {
    const std::string contents = element.contentLength == ASN1IndefiniteLength
                                     ? "indef"
                                     : std::to_string(element.contentLength);
    char text[64];
    std::snprintf(text, sizeof text, "%c%9u %2u+%-7s ", element.assembled ? '~' : ' ',
                  element.offset, element.headerLength, contents.c_str());
    return text;
}

} // namespace

std::size_t TreeFormat::margin() const {
    return (offsets_ ? OffsetColumns : 0) + labels_.depth() * IndentStep;
}

std::size_t TreeFormat::writeLabel(const WalkElement& element) {
    if (offsets_) {
        output_.write(Style::Quiet, offsetText(element));
    }
    output_.fill(labels_.depth() * IndentStep);
    const Label label = labels_.labelOf(element);
    std::size_t column = margin();
    if (!label.name.empty()) {
        output_.write(Style::Name, label.name);
        const std::size_t columns =
            std::max(nameColumns(labels_.container()), label.name.size()) + 2;
        output_.fill(columns - label.name.size());
        column += columns;
    }
    for (const std::string& choice : label.choices) {
        column = findRoom(column, choice.size() + 1);
        output_.write(Style::Quiet, choice + ": ");
        column += choice.size() + 2;
    }
    return column;
}

std::size_t TreeFormat::roomAt(std::size_t column) const {
    return width_ > column + LeastRoom ? width_ - column : LeastRoom;
}

std::size_t TreeFormat::findRoom(std::size_t column, std::size_t columns) {
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

void TreeFormat::writeWrapped(Style style, std::string_view text, std::size_t column) {
    const std::size_t room = roomAt(column);
    for (bool first = true; first || !text.empty(); first = false) {
        const std::size_t size = sizeOfLine(text, room);
        output_.fill(first ? 0 : column);
        output_.write(style, text.substr(0, size));
        output_.write("\n");
        text.remove_prefix(size);
    }
}

void TreeFormat::writeOctets(Octets octets, std::size_t column) {
    const std::size_t room = roomAt(column) / 2;
    for (bool first = true; !octets.empty(); first = false) {
        const std::size_t size = std::min(octets.size(), room);
        output_.fill(first ? 0 : column);
        output_.write(Style::Hex, hexText(octets.first(size)));
        output_.write("\n");
        octets = octets.subspan(size);
    }
}

void TreeFormat::writeValue(const WalkElement& element, std::size_t column) {
    constexpr std::size_t endless = std::numeric_limits<std::size_t>::max();
    const ValueKind kind = valueKind(element);
    column = findRoom(column,
                      std::min(columnsOf(valueText(element, LeastRoom, names_).text), LeastRoom));
    const std::size_t room = full_ ? endless : roomAt(column);
    if (kind == ValueKind::Raw) {
        if (const auto known = rawValueText(element, room, names_)) {
            if (known->kind != ValueKind::Null) {
                output_.write(Style::Quiet, known->typeName + ": ");
                column = findRoom(column + known->typeName.size() + 2,
                                  std::min(columnsOf(known->value.text), LeastRoom));
            }
            writeText(known->kind, known->value, column);
            return;
        }
    }
    const bool isOctets = kind == ValueKind::OctetString || kind == ValueKind::Raw;
    if (full_ && isOctets && element.value.octetCount != 0) {
        OctetStore store;
        writeOctets(valueOctets(element, endless, store), column);
        return;
    }
    // A digest or a serial number is worth a second line.
    constexpr std::size_t neverCut = 66;
    const ValueText value = valueText(element, std::max(room, neverCut), names_);
    writeText(kind, value.rest == 0 ? value : valueText(element, room, names_), column);
}

void TreeFormat::writeText(ValueKind kind, const ValueText& value, std::size_t column) {
    if (value.rest == 0) {
        writeWrapped(styleOf(kind), value.text, column);
        return;
    }
    const std::string note = restText(value.rest);
    if (columnsOf(value.text) + 1 + columnsOf(note) <= roomAt(column)) {
        output_.write(styleOf(kind), value.text);
        output_.write(Style::Quiet, " " + note + "\n");
        return;
    }
    writeWrapped(styleOf(kind), value.text, column);
    output_.fill(column);
    writeWrapped(Style::Quiet, note, column);
}

WalkAction TreeFormat::enter(const WalkElement& element) {
    ends_.enter(element);
    if (labels_.depth() == 0 && !offsets_) {
        // The heading above has told all about the message.
        labels_.enter(element);
        return WalkAction::Continue;
    }
    const std::string text =
        typeText(*element.type) + (element.contentLength == 0 ? " (empty)" : "");
    const std::size_t column = writeLabel(element);
    writeWrapped(Style::Quiet, text, findRoom(column, text.size()));
    labels_.enter(element);
    return WalkAction::Continue;
}

WalkAction TreeFormat::leave(const WalkElement& element) {
    const asn1data::ContentsEnd::Gap gap = ends_.leave(element);
    if (gap.hidden != 0) {
        hidesOctets_ = true;
        writeFailure(octetsText(gap.hidden) + " behind the value not shown");
    }
    labels_.leave();
    return WalkAction::Continue;
}

WalkAction TreeFormat::primitive(const WalkElement& element) {
    ends_.primitive(element);
    writeValue(element, writeLabel(element));
    return WalkAction::Continue;
}

void TreeFormat::writeHeading() {
    const Message& message = view_->message;
    if (!first_) {
        output_.write("\n");
    }
    first_ = false;
    output_.write(Style::Heading, message.place + ": " + view_->type().name);
    std::string more = ", ";
    if (view_->span != nullptr) {
        const std::string& path = *view_->path;
        more += (path.empty() ? "the message" : escapeName(path)) + " at offset " +
                std::to_string(view_->span->offset) + ", " + octetsText(view_->size());
    } else {
        more += octetsText(view_->size()) + ", " + view_->recognition.reason;
    }
    output_.write(Style::Quiet, more);
    output_.write("\n");
}

void TreeFormat::begin(const View& view) {
    view_ = &view;
    labels_ = {};
    ends_ = {};
    hidesOctets_ = false;
    writeHeading();
    if (view.cut != nullptr && view.cut->status != 0) {
        writeFailure(errorText(view.cut->failure));
    }
}

void TreeFormat::missing(const asn1data::WalkResult& walked) {
    const Message& message = view_->message;
    if (walked.stopped || walked.failure.offset >= message.octets.size()) {
        writeFailure("the message ends here: " + missingText(message));
    } else if (walked.status != 0) {
        error(walked.failure);
    }
}

void TreeFormat::error(const asn1data::WalkFailure& failure) {
    const Message& message = view_->message;
    writeFailure(errorText(failure));
    if (!failure.assembled && failure.offset < message.octets.size()) {
        writeNote(octetsText(message.octets.size() - failure.offset) + " from offset " +
                  std::to_string(failure.offset) + " on not shown");
    }
}

void TreeFormat::trailing(const Leftover& left) {
    writeNote(trailingText(left.count) + " from offset " + std::to_string(left.offset) + " on");
}

void TreeFormat::writeFailure(const std::string& text) {
    output_.fill(margin());
    output_.write(Style::Bad, text);
    output_.write("\n");
}

void TreeFormat::writeNote(const std::string& text) {
    output_.fill(offsets_ ? OffsetColumns : 0);
    output_.write(Style::Bad, text);
    output_.write("\n");
}

} // namespace derview
