#include <brevantis/asn1/text/pem.h>

#include <algorithm>
#include <utility>

#include "value/blanks.h"

namespace asn1text::pem {
namespace {

constexpr std::string_view BeginMark = "-----BEGIN ";
constexpr std::string_view EndMark = "-----END ";
constexpr std::string_view MarkTail = "-----";

bool startsWith(std::string_view text, std::string_view start) {
    return text.substr(0, start.size()) == start;
}

/// Takes the lines off a text one by one, whether they end as on Unix, Windows or old Mac systems,
/// or with the escapes that stand for that in a string of JSON or of a language.
class Lines {
public:
    explicit Lines(std::string_view text) : rest_(text) {}

    bool next(std::string_view& line) {
        if (rest_.empty()) {
            return false;
        }
        const std::size_t end = endOfLine();
        line = rest_.substr(0, end);
        ended_ = end != std::string_view::npos;
        const bool escaped = ended_ && rest_[end] == '\\';
        number_ += escaped_ ? 0 : 1;
        escaped_ = escaped;
        if (!ended_) {
            rest_ = {};
        } else {
            rest_.remove_prefix(end + (escaped || startsWith(rest_.substr(end), "\r\n") ? 2 : 1));
        }
        line = line.substr(0, line.find_last_not_of(Blanks) + 1);
        return true;
    }
    std::size_t number() const { return number_; }
    bool ended() const { return ended_; }

private:
    std::size_t endOfLine() const {
        std::size_t end = rest_.find_first_of("\r\n\\");
        while (end != std::string_view::npos && rest_[end] == '\\' &&
               rest_.substr(end + 1, 1) != "n" && rest_.substr(end + 1, 1) != "r") {
            end = rest_.find_first_of("\r\n\\", end + 1);
        }
        return end;
    }

    std::string_view rest_;
    std::size_t number_ = 0;
    bool ended_ = true;
    bool escaped_ = false; ///< the line before ended with an escape
};

/// Whether what stands in front of a BEGIN line quotes it: blanks, marks of a mail or of a comment,
/// the beginning of a string.
bool isQuote(std::string_view prefix) {
    const std::string_view last = prefix.substr(0, prefix.find_last_not_of(" \t") + 1);
    return last.empty() ||
           std::string_view("\"'`>|#*/:=;%").find(last.back()) != std::string_view::npos;
}

/// A line of a block that is quoted, in a mail or a string, or indented.
/// @param prefix what stands in front of the block's BEGIN line
std::string_view unquoted(std::string_view line, std::string_view prefix) {
    if (!prefix.empty() && startsWith(line, prefix)) {
        line.remove_prefix(prefix.size());
    }
    const std::size_t first = line.find_first_not_of(" \t\"'`>");
    line.remove_prefix(std::min(first, line.size()));
    // The marks end with hyphens, and base64 with none of these but "+".
    const std::size_t last = line.find_last_not_of("\"'`,;)]}<>\\ \t");
    return line.substr(0, last + 1);
}

/// Finds the label in "-----BEGIN label-----".
bool readLabel(std::string_view line, std::string_view mark, std::string_view& label) {
    label = line.substr(mark.size());
    if (label.size() < MarkTail.size() ||
        label.substr(label.size() - MarkTail.size()) != MarkTail) {
        return false;
    }
    label.remove_suffix(MarkTail.size());
    return true;
}

int base64Digit(char c) {
    if (c >= 'A' && c <= 'Z') {
        return c - 'A';
    }
    if (c >= 'a' && c <= 'z') {
        return c - 'a' + 26;
    }
    if (c >= '0' && c <= '9') {
        return c - '0' + 52;
    }
    if (c == '+') {
        return 62;
    }
    return c == '/' ? 63 : -1;
}

/// Collects the blocks while the lines go by.
class Collector {
public:
    void begin(std::string_view line, std::size_t number) {
        if (open_) {
            close("the block is not closed: another one begins in it");
        }
        std::string_view label;
        const bool whole = readLabel(line, BeginMark, label);
        current_ = {std::string(label), {}, number, nullptr};
        text_.clear();
        open_ = true;
        if (!whole) {
            close("the BEGIN line is damaged");
        }
    }
    void end(std::string_view line, std::size_t number) {
        std::string_view label;
        const bool whole = readLabel(line, EndMark, label);
        if (!open_) {
            current_ = {std::string(label), {}, number, nullptr};
            close("the block has an END line, but no BEGIN line");
        } else if (!whole) {
            close("the block is cut short: its END line is damaged");
        } else if (label != current_.label) {
            close("the labels of the BEGIN and the END line differ");
        } else {
            close(decodeBase64(text_, current_.octets));
        }
    }
    void add(std::string_view line) {
        // Key files of old carry header lines in the block (RFC 1421, section 4.4).
        if (open_ && line.find(':') == std::string_view::npos) {
            for (const char character : line) { // "\/" stands for "/" in JSON
                text_.append(character != '\\' ? 1 : 0, character);
            }
        }
    }
    std::vector<Block> finish() {
        if (open_) {
            close("the block is cut short: the file ends in it");
        }
        return std::move(blocks_);
    }

private:
    void close(const char* problem) {
        current_.problem = problem;
        if (problem != nullptr) {
            current_.octets.clear();
        }
        blocks_.push_back(std::move(current_));
        open_ = false;
    }

    std::vector<Block> blocks_;
    Block current_{};
    std::string text_;
    bool open_ = false;
};

} // namespace

const char* decodeBase64(std::string_view text, std::vector<unsigned char>& octets) {
    unsigned bits = 0;
    int held = 0;
    std::size_t padding = 0;
    std::size_t characters = 0;
    for (char c : text) {
        if (Blanks.find(c) != std::string_view::npos) {
            continue;
        }
        ++characters;
        if (c == '=') {
            ++padding;
            continue;
        }
        const int digit = base64Digit(c);
        if (digit < 0) {
            return "a character is not base64";
        }
        if (padding != 0) {
            return "base64 goes on behind its padding";
        }
        bits = (bits << 6 | static_cast<unsigned>(digit)) & 0xFFFF;
        held += 6;
        if (held >= 8) {
            held -= 8;
            octets.push_back(static_cast<unsigned char>(bits >> held & 0xFF));
        }
    }
    if (characters % 4 != 0 || padding > 2) {
        return "base64 is cut short";
    }
    // RFC 4648, section 3.5: what a writer leaves over must be zero, else something is damaged.
    if ((bits & ((1u << held) - 1u)) != 0) {
        return "base64 ends in stray bits";
    }
    return nullptr;
}

bool isPem(std::string_view file) {
    // An encoded SEQUENCE may hold such a text inside. Its length octet tells it from text.
    if (file.size() >= 2 && file[0] == '\x30' &&
        (static_cast<unsigned char>(file[1]) & 0x80) != 0) {
        return false;
    }
    return file.find(BeginMark) != std::string_view::npos ||
           file.find(EndMark) != std::string_view::npos;
}

std::vector<Block> read(std::string_view file) {
    constexpr std::string_view ByteOrderMark = "\xEF\xBB\xBF";
    if (startsWith(file, ByteOrderMark)) {
        file.remove_prefix(ByteOrderMark.size());
    }
    Collector collector;
    Lines lines(file);
    std::string_view line;
    std::string_view prefix;
    while (lines.next(line)) {
        if (const std::size_t mark = line.find(BeginMark);
            mark != std::string_view::npos && isQuote(line.substr(0, mark))) {
            prefix = line.substr(0, mark);
        }
        line = unquoted(line, prefix);
        // A file can also end inside a BEGIN line.
        const bool cutBegin =
            !lines.ended() && line.size() > MarkTail.size() && startsWith(BeginMark, line);
        if (startsWith(line, BeginMark)) {
            collector.begin(line, lines.number());
        } else if (cutBegin) {
            collector.begin(BeginMark, lines.number());
        } else if (startsWith(line, EndMark)) {
            collector.end(line, lines.number());
        } else {
            collector.add(line);
        }
    }
    return collector.finish();
}

std::string encodeBase64(Octets octets) {
    constexpr char digits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    text.reserve((octets.size() + 2) / 3 * 4);
    for (std::size_t place = 0; place < octets.size(); place += 3) {
        const std::size_t count = std::min<std::size_t>(octets.size() - place, 3);
        unsigned group = 0;
        for (std::size_t i = 0; i < 3; ++i) {
            group = group << 8 | (i < count ? octets[place + i] : 0U);
        }
        for (std::size_t i = 0; i < 4; ++i) {
            text += i <= count ? digits[group >> (18 - 6 * i) & 0x3F] : '=';
        }
    }
    return text;
}

std::string write(std::string_view label, Octets octets) {
    constexpr std::size_t lineSize = 64;
    const std::string digits = encodeBase64(octets);
    std::string text = std::string(BeginMark) + std::string(label) + "-----\n";
    for (std::size_t place = 0; place < digits.size(); place += lineSize) {
        text += digits.substr(place, lineSize) + "\n";
    }
    return text + std::string(EndMark) + std::string(label) + "-----\n";
}

} // namespace asn1text::pem
