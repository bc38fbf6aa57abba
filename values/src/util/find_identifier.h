#ifndef BREVANTIS_ASN1_VALUES_UTIL_FIND_IDENTIFIER_H
#define BREVANTIS_ASN1_VALUES_UTIL_FIND_IDENTIFIER_H

#include <algorithm>
#include <functional>
#include <string_view>

namespace Brevantis::ASN1 {

/// The first element of a list with an identifier, compared as text.
/// @param identifier the getter of the elements' identifiers
/// @param oid dotted text; null stands for the empty text
/// @return its position, or the end
template <class List, class Identifier>
auto findIdentifier(List& list, Identifier identifier, const char* oid) {
    const std::string_view wanted(oid != nullptr ? oid : "");
    return std::find_if(list.begin(), list.end(), [&](const auto& element) {
        return std::invoke(identifier, element) == wanted;
    });
}

} // namespace Brevantis::ASN1

#endif
