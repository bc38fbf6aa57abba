#include "names.h"

#include <algorithm>
#include <iterator>

namespace notation {
namespace {

// Those that a name of the notation can be: lower-case, `null`, which reads as one, and `m`, the
// presence bits of a record.
const char* const reserved[] = {
    "alignas",   "alignof",  "and",      "asm",      "auto",     "bitand",   "bitor",   "bool",
    "break",     "case",     "catch",    "char",     "class",    "compl",    "concept", "const",
    "constexpr", "continue", "decltype", "default",  "delete",   "do",       "double",  "else",
    "enum",      "explicit", "export",   "extern",   "false",    "float",    "for",     "friend",
    "goto",      "if",       "inline",   "int",      "long",     "m",        "mutable", "namespace",
    "new",       "noexcept", "not",      "null",     "nullptr",  "operator", "or",      "private",
    "protected", "public",   "register", "requires", "return",   "short",    "signed",  "sizeof",
    "static",    "struct",   "switch",   "template", "this",     "throw",    "true",    "try",
    "typedef",   "typeid",   "typename", "union",    "unsigned", "using",    "virtual", "void",
    "volatile",  "while",    "xor"};

} // namespace

std::string cppName(const std::string& name) {
    std::string result = name;
    std::replace(result.begin(), result.end(), '-', '_');
    return result;
}

std::string memberName(const std::string& name) {
    const std::string result = cppName(name);
    const bool taken =
        std::find(std::begin(reserved), std::end(reserved), result) != std::end(reserved);
    return taken ? result + "_" : result;
}

std::string valueMemberName(const std::string& name) {
    const bool taken = name == "types" || name == "sets" || name == "objects" || name == "builtin";
    return taken ? name + "_" : memberName(name);
}

std::string inlineTypeName(const std::string& parent, const std::string& element) {
    return parent + "_" + cppName(element);
}

std::string sharedListName(const std::string& element, bool set) {
    return (set ? "_SetOf" : "_SeqOf") + element;
}

std::string objectTypeName(const std::string& object, const std::string& field) {
    return "_" + object + "_" + field;
}

} // namespace notation
