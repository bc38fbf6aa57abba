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

/// Stores an element where findIdentifier found one of its identifier, or at the end.
template <class List>
void store(List& list, typename List::iterator place, const typename List::value_type& element) {
    if (place != list.end()) {
        *place = element;
    } else {
        list.push_back(element);
    }
}

/// Takes away what findIdentifier found, if anything.
template <class List>
void eraseFound(List& list, typename List::iterator place) {
    if (place != list.end()) {
        list.erase(place);
    }
}

} // namespace Brevantis::ASN1

#endif
