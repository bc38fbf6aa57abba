#include "plain_tree.h"

#include <algorithm>
#include <climits>

#include <brevantis/asn1/runtime/header.h>

#include <brevantis/asn1/text/sct.h>

#include "escape.h"
#include "raw_value.h"

namespace derview {

namespace {

/// Elements inside each other beyond which nobody reads a tree.
constexpr std::size_t Deepest = 200;

bool isVisible(Octets octets) {
    constexpr std::size_t fewest = 4; // fewer are visible by chance
    return octets.size() >= fewest &&
           std::all_of(octets.begin(), octets.end(),
                       [](unsigned char octet) { return octet >= 0x20 && octet < 0x7F; });
}

/// What is inside an OCTET STRING or a BIT STRING, or a tagged one, if that is elements.
Octets insideOf(const PlainElement& element) {
    constexpr unsigned bitString = 3;
    constexpr unsigned octetString = 4;
    const bool bits = element.tagClass == 0 && element.number == bitString;
    if (bits && (element.contents.empty() || element.contents[0] != 0)) {
        return {};
    }
    const Octets octets = element.contents.subspan(bits ? 1 : 0);
    const bool holds = bits || element.tagClass != 0 || element.number == octetString;
    return holds && holdElements(octets) ? octets : Octets();
}

} // namespace

TreePlace PlainTree::inside(const PlainElement& element, Octets octets, const TreePlace& place) {
    return {place.offset + static_cast<std::size_t>(octets.data() - element.octets.data()), 0, 0,
            place.assembled};
}

bool PlainTree::write(Octets octets, std::size_t depth, const TreePlace& place) {
    TreePlace next = place;
    bool good = true;
    while (!octets.empty()) {
        const std::optional<PlainElement> element =
            depth < Deepest ? firstElement(octets) : std::nullopt;
        if (!element) {
            writeCut(octets, depth, next);
            return false;
        }
        next.headerLength = element->header;
        next.contentLength =
            element->indefinite ? -1 : static_cast<long long>(element->contents.size());
        good = writeValue(*element, lines_.begin(depth, next), depth, next) && good;
        octets = octets.subspan(element->octets.size());
        next.offset += element->octets.size();
    }
    return good;
}

/// Writes octets that do not begin with a whole element: what is there of it, or digits.
void PlainTree::writeCut(Octets octets, std::size_t depth, TreePlace place) {
    PlainElement element;
    ASN1Header header;
    const auto count = static_cast<unsigned>(std::min<std::size_t>(octets.size(), INT_MAX));
    const bool usual = (octets[0] & 0xE0) == 0x20 || (octets[0] & 0xE0) == 0xA0;
    const bool begins =
        depth < Deepest && usual && rtReadHeader(octets.data(), count, &header) == 0;
    if (!begins) {
        place.headerLength = 0;
        place.contentLength = static_cast<long long>(octets.size());
        writeDigits(octets, lines_.prefix("octets", lines_.begin(depth, place)));
        return;
    }
    element.octets = octets.first(header.size);
    element.tagClass = octets[0] >> 6;
    element.number = header.tag & 0x1FFFFFFF;
    place.headerLength = header.size;
    place.contentLength = header.length == ASN1IndefiniteLength ? -1 : header.length;
    const Octets contents = octets.subspan(header.size);
    lines_.text(Style::Quiet, tagText(element) + ", not whole", lines_.begin(depth, place));
    place.offset += header.size;
    write(contents, depth + 1, place);
}

bool PlainTree::writeValue(const PlainElement& element, std::size_t column, std::size_t depth,
                           const TreePlace& place) {
    if (!element.constructed) {
        writePrimitive(element, column, depth, place);
        return true;
    }
    lines_.text(Style::Quiet, tagText(element) + (element.contents.empty() ? " (empty)" : ""),
                column);
    return write(element.contents, depth + 1, inside(element, element.contents, place));
}

/// Writes timestamps of logs, which are no elements.
bool PlainTree::writeTimestamps(const PlainElement& element, std::size_t column, std::size_t depth,
                                const TreePlace& place) {
    const auto timestamps = readTimestamps(element.contents);
    if (!timestamps) {
        return false;
    }
    lines_.text(Style::Quiet, tagText(element) + ", signed certificate timestamps", column);
    for (const SignedTimestamp& timestamp : *timestamps) {
        const auto line = [&](const char* name, Style style, const std::string& text,
                              Octets octets) {
            TreePlace own = inside(element, octets, place);
            own.contentLength = static_cast<long long>(octets.size());
            const std::size_t start = lines_.begin(depth + 1, own);
            lines_.text(style, text,
                        lines_.name(name, std::string_view("extensions").size(), start));
        };
        constexpr std::size_t timeSize = 8;
        line("log", Style::Hex, hexText(timestamp.log), timestamp.log);
        line("time", Style::Number, timeText(timestamp), {timestamp.log.end(), timeSize});
        if (!timestamp.extensions.empty()) {
            line("extensions", Style::Hex, hexText(timestamp.extensions), timestamp.extensions);
        }
        line("signature", Style::Hex, algorithmText(timestamp) + " " + hexText(timestamp.value),
             timestamp.value);
    }
    return true;
}

/// The value of an element of a built-in type; that of an ENUMERATED is read as an INTEGER.
std::optional<RawValue> PlainTree::valueOf(const PlainElement& element, std::size_t room) const {
    constexpr unsigned enumerated = 10;
    constexpr unsigned char integer = 2;
    if (element.tagClass != 0 || element.number != enumerated || element.octets.size() > room) {
        return rawValueText(element.octets, room, names_);
    }
    OctetStore octets(element.octets.begin(), element.octets.end());
    octets[0] = integer;
    return rawValueText(octets, room, names_);
}

void PlainTree::writePrimitive(const PlainElement& element, std::size_t column, std::size_t depth,
                               const TreePlace& place) {
    const std::string tag = tagText(element);
    if (element.tagClass == 0 && writeTimestamps(element, column, depth, place)) {
        return;
    }
    if (const Octets octets = insideOf(element); !octets.empty()) {
        lines_.text(Style::Quiet, tag, column);
        write(octets, depth + 1, inside(element, octets, place));
        return;
    }
    const std::size_t room = lines_.full() ? Endless : lines_.roomAt(column + tag.size() + 2);
    const std::optional<RawValue> value = valueOf(element, room);
    if (value && value->kind == ValueKind::Null) {
        lines_.text(Style::Plain, "NULL", column);
        return;
    }
    column = lines_.prefix(tag, column);
    if (value && !(lines_.full() && value->kind == ValueKind::OctetString)) {
        lines_.value(value->kind, value->value, column);
    } else if (element.tagClass != 0 && isVisible(element.contents)) {
        const EscapedText text = escape(element.contents, CharacterCoding::Latin1,
                                        lines_.full() ? Endless : lines_.roomAt(column + 24));
        lines_.value(ValueKind::Text, {"\"" + text.text + "\"", text.rest}, column);
    } else {
        writeDigits(element.contents, column);
    }
}

void PlainTree::writeDigits(Octets octets, std::size_t column) {
    if (octets.empty()) {
        lines_.text(Style::Hex, "(empty)", column);
    } else if (lines_.full()) {
        lines_.octets(octets, column);
    } else {
        lines_.value(ValueKind::Raw, cutHex("", octets, octets.size(), lines_.roomAt(column)),
                     column);
    }
}

} // namespace derview
