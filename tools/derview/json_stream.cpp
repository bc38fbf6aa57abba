#include "json_stream.h"

#include <algorithm>

#include <nlohmann/json.hpp>

#include "value_octets.h"

namespace derview {

void JsonStream::breakLine() {
    if (!compact_) {
        output_.write("\n");
        output_.fill(open_.size() * 2);
    }
}

void JsonStream::separate() {
    if (keyed_ || open_.empty()) {
        keyed_ = false;
        return;
    }
    if (!open_.back().empty) {
        output_.write(",");
    }
    open_.back().empty = false;
    breakLine();
}

void JsonStream::begin(char opening, char closing) {
    separate();
    output_.write(std::string_view(&opening, 1));
    open_.push_back({closing, true});
}

void JsonStream::end() {
    const Open last = open_.back();
    open_.pop_back();
    if (!last.empty) {
        breakLine();
    }
    output_.write(std::string_view(&last.closing, 1));
}

void JsonStream::endTo(std::size_t depth) {
    while (open_.size() > depth) {
        end();
    }
}

void JsonStream::key(std::string_view name) {
    string(name);
    output_.write(compact_ ? ":" : ": ");
    keyed_ = true;
}

void JsonStream::literal(std::string_view json) {
    separate();
    output_.write(json);
}

void JsonStream::string(std::string_view utf8) {
    using Json = nlohmann::json;
    constexpr bool asciiOnly = true;
    literal(Json(utf8).dump(-1, ' ', asciiOnly, Json::error_handler_t::replace));
}

void JsonStream::stringOrNull(const char* utf8) {
    if (utf8 != nullptr) {
        string(utf8);
    } else {
        literal("null");
    }
}

void JsonStream::hex(Octets octets) {
    constexpr std::size_t piece = 1 << 14;
    literal("\"");
    while (!octets.empty()) {
        const std::size_t size = std::min(octets.size(), piece);
        output_.write(hexText(octets.first(size)));
        octets = octets.subspan(size);
    }
    output_.write("\"");
}

} // namespace derview
