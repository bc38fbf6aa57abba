#include "remarks.h"

#include "builtin_types.h"

namespace notation {

const std::vector<RemarkKind>& remarkKinds() {
    static const std::vector<RemarkKind> kinds = {
        {"value", "HOLDING", "INTEGER", "held as " + variantsText("INTEGER")},
        {"storage", "array", "SEQUENCE OF, SET OF", "a count and a pointer to an array"},
        {"storage", "fixed", "SEQUENCE OF, SET OF", "an array in the record"},
        {"capacity", "N", "strings, storage fixed", "N octets, bits or elements in the record"},
        {"end-of-contents", "", "constructed types", "the end of an indefinite form may follow"},
        {"no-copy", "", "any type", "has no deep copy"},
        {"name", "N", "a type in place", "the name of the type"},
        {"shared", "", "SEQUENCE OF, SET OF",
         "another name for the list that all plain ones share"},
        {"template", "", "type assignment", "stands in place wherever it is named"},
        {"keep-extensions", "N", "... of a SEQUENCE", "unknown elements are kept in the member N"},
        {"ambiguous", "", "CHOICE, element", "may begin as another does; order decides"},
        {"standard", "TEXT", "module, assignment", "where the type is published"},
    };
    return kinds;
}

} // namespace notation
