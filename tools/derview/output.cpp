#include "output.h"

#include <cstdio>

namespace derview {

namespace {

constexpr std::size_t PieceSize = 1 << 16;

/// Select Graphic Rendition parameters (ECMA-48, 8.3.117). Only the eight basic colours and
/// brightness, so that every colour scheme keeps them readable.
const char* renditionOf(Style style) {
    switch (style) {
    case Style::Heading:
        return "1";
    case Style::Name:
        return "36";
    case Style::Quiet:
        return "2";
    case Style::Number:
        return "33";
    case Style::Text:
        return "32";
    case Style::Hex:
        return "35";
    case Style::Good:
        return "32";
    case Style::Bad:
        return "1;31";
    case Style::Plain:
        break;
    }
    return nullptr;
}

} // namespace

void Output::write(std::string_view text) {
    pending_ += text;
    if (pending_.size() >= PieceSize) {
        flush();
    }
}

void Output::write(Style style, std::string_view text) {
    const char* const rendition = colored_ ? renditionOf(style) : nullptr;
    if (rendition == nullptr || text.empty()) {
        write(text);
        return;
    }
    write("\x1B[");
    write(rendition);
    write("m");
    write(text);
    write("\x1B[0m");
}

void Output::fill(std::size_t columns) {
    pending_.append(columns, ' ');
}

void Output::dropBlanks() {
    pending_.erase(pending_.find_last_not_of(' ') + 1);
}

void Output::writeOctets(Octets octets) {
    flush();
    failed_ = failed_ || std::fwrite(octets.data(), 1, octets.size(), stdout) != octets.size();
}

void Output::flush() {
    if (!pending_.empty()) {
        failed_ =
            failed_ || std::fwrite(pending_.data(), 1, pending_.size(), stdout) != pending_.size();
        pending_.clear();
    }
    failed_ = std::fflush(stdout) != 0 || failed_;
}

} // namespace derview
