#ifndef BREVANTIS_ASN1_TEXT_JSON_JSON_TEXTS_H
#define BREVANTIS_ASN1_TEXT_JSON_JSON_TEXTS_H

#include <string_view>
#include <vector>

namespace asn1text {

/// The JSON values that a text consists of, one behind another: objects of derview, a line each or
/// not. Where an object or a string is not closed the last one goes up to the end of the text.
std::vector<std::string_view> jsonValues(std::string_view text);

} // namespace asn1text

#endif
