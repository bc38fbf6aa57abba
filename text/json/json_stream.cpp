#include <brevantis/asn1/text/json_stream.h>

#include <algorithm>
#include <charconv>

#include <brevantis/asn1/text/characters.h>

namespace asn1text {

namespace {

constexpr std::size_t PieceSize = std::size_t{1} << 14;
constexpr char HexDigits[] = "0123456789abcdef";

} // namespace

Sink::~Sink() = default;

void JsonStream::put(std::string_view text) {
    pending_ += text;
    if (pending_.size() >= PieceSize) {
        flush();
    }
}

void JsonStream::flush() {
    if (!pending_.empty()) {
        sink_.write(pending_);
        pending_.clear();
    }
}

void JsonStream::finish() {
    put("\n");
    flush();
}

void JsonStream::breakLine() {
    if (layout_ == JsonLayout::Indented) {
        put("\n");
        pending_.append(open_.size() * 2, ' ');
    }
}

void JsonStream::separate() {
    if (keyed_ || open_.empty()) {
        keyed_ = false;
        return;
    }
    if (!open_.back().empty) {
        put(",");
    }
    open_.back().empty = false;
    breakLine();
}

void JsonStream::begin(char opening, char closing) {
    separate();
    put(std::string_view(&opening, 1));
    open_.push_back({closing, true});
}

void JsonStream::end() {
    const Open last = open_.back();
    open_.pop_back();
    if (!last.empty) {
        breakLine();
    }
    put(std::string_view(&last.closing, 1));
}

void JsonStream::endTo(std::size_t depth) {
    while (open_.size() > depth) {
        end();
    }
}

void JsonStream::key(std::string_view name) {
    string(name);
    put(layout_ == JsonLayout::OneLine ? ":" : ": ");
    keyed_ = true;
}

void JsonStream::literal(std::string_view json) {
    separate();
    put(json);
}

void JsonStream::number(long long number) {
    char text[24];
    const std::to_chars_result result = std::to_chars(text, text + sizeof text, number);
    literal(std::string_view(text, static_cast<std::size_t>(result.ptr - text)));
}

void JsonStream::escape(std::uint32_t unit) {
    const char text[] = {'\\',
                         'u',
                         HexDigits[unit >> 12 & 0xF],
                         HexDigits[unit >> 8 & 0xF],
                         HexDigits[unit >> 4 & 0xF],
                         HexDigits[unit & 0xF]};
    put(std::string_view(text, sizeof text));
}

void JsonStream::character(std::uint32_t code) {
    if (code >= 0x20 && code < 0x7F && code != '"' && code != '\\') {
        const char plain = static_cast<char>(code);
        put(std::string_view(&plain, 1));
        return;
    }
    switch (code) {
    case '"':
        return put("\\\"");
    case '\\':
        return put("\\\\");
    case '\b':
        return put("\\b");
    case '\f':
        return put("\\f");
    case '\n':
        return put("\\n");
    case '\r':
        return put("\\r");
    case '\t':
        return put("\\t");
    default:
        break;
    }
    if (code < 0x10000) {
        return escape(code);
    }
    escape(0xD800 + ((code - 0x10000) >> 10));
    escape(0xDC00 + (code & 0x3FF));
}

void JsonStream::openString() {
    separate();
    put("\"");
}

void JsonStream::closeString() {
    put("\"");
}

void JsonStream::string(std::string_view utf8) {
    openString();
    const void* const start = utf8.data();
    for (Octets rest(static_cast<const unsigned char*>(start), utf8.size()); !rest.empty();) {
        constexpr std::uint32_t replacement = 0xFFFD;
        const Character next = characterAt(rest, CharacterCoding::Utf8);
        character(next.code != NoCharacter ? next.code : replacement);
        rest = rest.subspan(next.size);
    }
    closeString();
}

void JsonStream::stringOrNull(const char* utf8) {
    if (utf8 != nullptr) {
        string(utf8);
    } else {
        literal("null");
    }
}

void JsonStream::hexDigits(Octets octets) {
    while (!octets.empty()) {
        const std::size_t size = std::min(octets.size(), PieceSize / 2);
        for (const unsigned char octet : octets.first(size)) {
            pending_ += HexDigits[octet >> 4];
            pending_ += HexDigits[octet & 0xFu];
        }
        octets = octets.subspan(size);
        if (pending_.size() >= PieceSize) {
            flush();
        }
    }
}

void JsonStream::hex(Octets octets) {
    openString();
    hexDigits(octets);
    closeString();
}

} // namespace asn1text
