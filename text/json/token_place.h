#ifndef BREVANTIS_ASN1_TEXT_JSON_TOKEN_PLACE_H
#define BREVANTIS_ASN1_TEXT_JSON_TOKEN_PLACE_H

#include <string_view>

#include <brevantis/asn1/text/json_reader.h>

namespace asn1text {

/// Where the token stands that the parser told of last: the parser itself tells no places, so that
/// its tokens are found once more.
class TokenPlace {
public:
    explicit TokenPlace(std::string_view text) : text_(text), token_(text.data()) {}

    /// Goes to the next token.
    void next();
    std::string_view text() const { return text_; }
    std::string_view token() const {
        return {token_, static_cast<std::size_t>(tokenEnd_ - token_)};
    }
    /// Tells offset, line and column of the token.
    void locate(JsonFailure& failure) const;

private:
    std::string_view text_;
    const char* token_;
    const char* tokenEnd_ = nullptr;
};

} // namespace asn1text

#endif
