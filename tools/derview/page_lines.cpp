#include "page_lines.h"

#include <algorithm>
#include <functional>
#include <utility>

#include <brevantis/asn1/text/elements.h>

#include "escape.h"

namespace derview {

namespace {

const char* className(Style style) {
    switch (style) {
    case Style::Number:
        return "number";
    case Style::Text:
        return "text";
    case Style::Hex:
        return "hex";
    case Style::Bad:
        return "bad";
    default:
        return "plain";
    }
}

/// A text that is not too long for a line. All of it stands among the octets.
std::string cutText(std::string_view text, std::size_t most) {
    if (text.size() <= most) {
        return std::string(text);
    }
    std::size_t size = 0;
    for (std::size_t next = 0; next <= most; next += firstUnit(text.substr(next)).size) {
        size = next;
    }
    return std::string(text.substr(0, size)) + " …";
}

} // namespace

void PageLines::begin(Octets octets, Octets walked, std::size_t offset, bool whole) {
    whole_ = whole;
    header_ = 0;
    octets_ = octets;
    walked_ = walked;
    first_ = offset;
    line_.reset();
    depth_ = 0;
    depths_.clear();
    nodes_.begin(offset);
}

void PageLines::flush(std::size_t depth) {
    if (line_) {
        PageNode line = *std::exchange(line_, std::nullopt);
        line.container = depth > depth_;
        if (line.container && whole_ && depth_ == 0 && line.offset == first_ && !line.assembled) {
            header_ = line.header;
            whole_ = false;
        } else {
            if (line.container) {
                depths_.push_back(depth_);
            }
            nodes_.add(std::move(line));
        }
    }
    while (!depths_.empty() && depths_.back() >= depth) {
        depths_.pop_back();
        nodes_.leave();
    }
    depth_ = depth;
}

std::size_t PageLines::contentsOf(const TreePlace& place) const {
    if (place.contentLength >= 0) {
        return static_cast<std::size_t>(place.contentLength);
    }
    const std::size_t begin = place.offset - first_;
    if (place.assembled || place.offset < first_ || begin >= octets_.size()) {
        return 0;
    }
    const Octets rest = octets_.subspan(begin);
    const std::optional<PlainElement> element = firstElement(rest);
    const std::size_t size = element ? element->octets.size() : rest.size();
    return size > place.headerLength ? size - place.headerLength : 0;
}

std::size_t PageLines::begin(std::size_t depth, const TreePlace& place) {
    flush(depth);
    PageNode& line = line_.emplace();
    line.offset = place.offset;
    line.header = place.headerLength;
    line.contents = contentsOf(place);
    line.assembled = place.assembled;
    line.inner = place.inner;
    return 0;
}

std::size_t PageLines::name(std::string_view name, std::size_t /*columns*/, std::size_t column) {
    line_->name = name;
    return column;
}

std::size_t PageLines::prefix(std::string_view text, std::size_t column) {
    line_->choices.emplace_back(text);
    return column;
}

void PageLines::text(Style style, std::string_view text, std::size_t /*column*/) {
    line_->style = className(style);
    if (style == Style::Quiet) {
        line_->type = text;
    } else {
        line_->text = cutText(text, Room);
    }
}

void PageLines::value(ValueKind kind, const ValueText& value, std::size_t /*column*/) {
    line_->style = className(styleOf(kind));
    const std::size_t digits =
        kind == ValueKind::Bits ? value.text.find("bits ") : std::string::npos;
    if (digits != std::string::npos && value.rest == 0 && !line_->assembled &&
        value.text.size() - digits - 5 == 2 * (line_->contents - 1)) {
        line_->text = value.text.substr(0, digits + 4);
        line_->hex = PageHex::Bits;
        return;
    }
    line_->text = cutText(value.text, Room) + (value.rest != 0 ? " " + restText(value.rest) : "");
}

std::optional<std::size_t> PageLines::offsetOf(Octets octets) const {
    for (const Octets all : {octets_, walked_}) {
        const std::less_equal<> atMost;
        if (atMost(all.data(), octets.data()) &&
            atMost(octets.data() + octets.size(), all.data() + all.size())) {
            return first_ + static_cast<std::size_t>(octets.data() - all.data());
        }
    }
    return std::nullopt;
}

void PageLines::octets(Octets octets, std::size_t /*column*/) {
    line_->style = className(Style::Hex);
    const std::optional<std::size_t> offset = offsetOf(octets);
    const std::size_t contents = line_->offset + line_->header;
    const std::size_t end = contents + line_->contents;
    if (offset && *offset + octets.size() == end && !line_->assembled) {
        if (*offset == contents || *offset == contents + 1 || *offset == line_->offset) {
            line_->hex = *offset == contents        ? PageHex::Contents
                         : *offset == line_->offset ? PageHex::Whole
                                                    : PageHex::Bits;
            return;
        }
    }
    const ValueText text = cutHex("", octets, octets.size(), Room);
    line_->text = text.text + (text.rest != 0 ? " " + restText(text.rest) : "");
}

void PageLines::failure(std::size_t depth, const std::string& text, const TreePlace& place) {
    begin(depth, place);
    this->text(Style::Bad, text, 0);
}

void PageLines::note(const std::string& text) {
    failure(0, text, {first_ + std::min(octets_.size(), walked_.size()), 0, 0, false});
}

void PageLines::write(asn1text::JsonStream& json) {
    flush(0);
    json.key("header");
    json.number(static_cast<long long>(header_));
    nodes_.write(json);
}

} // namespace derview
