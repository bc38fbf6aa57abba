#ifndef BREVANTIS_ASN1_TEXT_VALUE_BLANKS_H
#define BREVANTIS_ASN1_TEXT_VALUE_BLANKS_H

#include <string_view>

// What separates words in the texts that messages and names are read from.

namespace asn1text {

inline constexpr std::string_view Blanks = " \t\r\n\v\f";

/// A text without the blanks around it.
inline std::string_view trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(Blanks);
    return first == std::string_view::npos
               ? std::string_view()
               : text.substr(first, text.find_last_not_of(Blanks) + 1 - first);
}

} // namespace asn1text

#endif
