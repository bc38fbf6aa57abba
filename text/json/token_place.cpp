#include "token_place.h"

#include <algorithm>

namespace asn1text {

void TokenPlace::next() {
    // The parser may have looked at one octet behind the token before.
    const char* const end = text_.data() + text_.size();
    token_ = tokenEnd_ != nullptr ? tokenEnd_ : text_.data();
    if (tokenEnd_ == nullptr && text_.substr(0, 3) == "\xEF\xBB\xBF") {
        token_ += 3;
    }
    while (token_ != end && std::string_view(" \t\r\n,:").find(*token_) != std::string_view::npos) {
        ++token_;
    }
    tokenEnd_ = token_;
    // Strings end with a quote that no backslash stands in front of, everything else where it is
    // told; an octet that was read too early belongs to the next token.
    if (token_ == end) {
        return;
    }
    if (*token_ == '"') {
        ++tokenEnd_;
        while (tokenEnd_ < end && *tokenEnd_ != '"') {
            tokenEnd_ += *tokenEnd_ == '\\' && tokenEnd_ + 1 < end ? 2 : 1;
        }
        tokenEnd_ += tokenEnd_ < end ? 1 : 0;
        return;
    }
    if (std::string_view("{}[]").find(*token_) != std::string_view::npos) {
        ++tokenEnd_;
        return;
    }
    while (tokenEnd_ != end &&
           std::string_view(" \t\r\n,:{}[]\"").find(*tokenEnd_) == std::string_view::npos) {
        ++tokenEnd_;
    }
}

void TokenPlace::locate(JsonFailure& failure) const {
    failure.offset = static_cast<std::size_t>(token_ - text_.data());
    const std::string_view before = text_.substr(0, failure.offset);
    failure.line = 1 + static_cast<std::size_t>(std::count(before.begin(), before.end(), '\n'));
    const std::size_t lineStart = before.rfind('\n');
    failure.column = before.size() - (lineStart != std::string_view::npos ? lineStart + 1 : 0) + 1;
}

} // namespace asn1text
