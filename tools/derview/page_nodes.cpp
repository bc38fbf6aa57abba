#include "page_nodes.h"

#include <charconv>

#include <brevantis/asn1/text/pem.h>

namespace derview {

namespace {

/// What separates the parts of a key; no text of a shape has it, for it would be escaped.
constexpr char Separator = '\0';

/// Longer texts hardly come again.
constexpr std::size_t LongestKnown = 256;

/// What page.js goes by.
int flagsOf(const PageNode& node) {
    return (node.container ? 1 : 0) | (node.text ? 2 : 0) | (node.assembled ? 4 : 0) |
           static_cast<int>(node.hex) << 3 | (node.inner ? 32 : 0);
}

} // namespace

void PageNodes::begin(std::size_t offset) {
    open_.clear();
    message_ = {};
    expected_ = offset;
    count_ = 0;
    octets_.clear();
}

void PageNodes::number(std::size_t number) {
    for (; number >= 0x80; number >>= 7) {
        octets_.push_back(static_cast<unsigned char>(number | 0x80));
    }
    octets_.push_back(static_cast<unsigned char>(number));
}

void PageNodes::numberPlaces(PageNode& node) {
    if (node.name.size() < 3 || node.name[0] != '[') {
        return;
    }
    unsigned place = 0;
    const char* const end = node.name.data() + node.name.size();
    if (std::from_chars(node.name.data() + 1, end, place).ptr + 1 != end) {
        return;
    }
    unsigned& next = (open_.empty() ? message_ : open_.back()).next;
    if (place == next) {
        node.name = "[]";
    }
    next = place + 1;
}

unsigned PageNodes::shapeOf(const PageNode& node) {
    std::string key = node.name;
    for (const std::string& choice : node.choices) {
        (key += Separator) += choice;
    }
    for (const std::string_view part :
         {std::string_view(node.type), std::string_view(node.style)}) {
        ((key += Separator) += Separator) += part;
    }
    (key += Separator) += std::to_string(node.header) + " " + std::to_string(flagsOf(node));
    const auto [place, isNew] =
        shapes_.try_emplace(std::move(key), static_cast<unsigned>(shapes_.size()));
    if (isNew) {
        newShapes_.push_back(node);
    }
    return place->second;
}

void PageNodes::addText(std::string&& text) {
    if (text.size() <= LongestKnown) {
        const auto [place, isNew] = known_.try_emplace(text, texts_);
        if (!isNew) {
            number(place->second + 1);
            return;
        }
    }
    ++texts_;
    newTexts_.push_back(std::move(text));
    number(0);
}

void PageNodes::add(PageNode node) {
    numberPlaces(node);
    const std::size_t shape = shapeOf(node) + std::size_t{1};
    number(shape << 1 | (node.offset != expected_ ? 1 : 0));
    if (node.offset > expected_) {
        number((node.offset - expected_) << 1);
    } else if (node.offset < expected_) {
        number((expected_ - node.offset - 1) << 1 | 1);
    }
    number(node.contents);
    if (node.text) {
        addText(std::move(*node.text));
    }
    ++count_;
    expected_ = node.offset + node.header;
    if (node.container) {
        open_.push_back({expected_ + node.contents, 0});
    } else {
        expected_ += node.contents;
    }
}

void PageNodes::leave() {
    octets_.push_back(0);
    expected_ = open_.back().end;
    open_.pop_back();
}

void PageNodes::write(asn1text::JsonStream& json) {
    json.key("shapes");
    json.beginArray();
    for (const PageNode& shape : newShapes_) {
        json.beginArray();
        json.string(shape.name);
        json.beginArray();
        for (const std::string& choice : shape.choices) {
            json.string(choice);
        }
        json.end();
        json.string(shape.type);
        json.string(shape.style);
        json.number(static_cast<long long>(shape.header));
        json.number(flagsOf(shape));
        json.end();
    }
    json.end();
    newShapes_.clear();
    json.key("texts");
    json.beginArray();
    for (const std::string& text : newTexts_) {
        json.string(text);
    }
    json.end();
    newTexts_.clear();
    json.key("count");
    json.number(static_cast<long long>(count_));
    json.key("nodes");
    json.string(pem::encodeBase64(octets_));
}

} // namespace derview
