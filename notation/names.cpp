#include "names.h"

#include <algorithm>
#include <iterator>

namespace notation {
namespace {

// Names that a member or a value cannot have.
const char* const reserved[] = {
    // Keywords of C++, those of C++20 among them.
    "alignas",
    "alignof",
    "and",
    "and_eq",
    "asm",
    "auto",
    "bitand",
    "bitor",
    "bool",
    "break",
    "case",
    "catch",
    "char",
    "char16_t",
    "char32_t",
    "char8_t",
    "class",
    "co_await",
    "co_return",
    "co_yield",
    "compl",
    "concept",
    "const",
    "const_cast",
    "consteval",
    "constexpr",
    "constinit",
    "continue",
    "decltype",
    "default",
    "delete",
    "do",
    "double",
    "dynamic_cast",
    "else",
    "enum",
    "explicit",
    "export",
    "extern",
    "false",
    "float",
    "for",
    "friend",
    "goto",
    "if",
    "inline",
    "int",
    "long",
    "mutable",
    "namespace",
    "new",
    "noexcept",
    "not",
    "not_eq",
    "nullptr",
    "operator",
    "or",
    "or_eq",
    "private",
    "protected",
    "public",
    "register",
    "reinterpret_cast",
    "requires",
    "return",
    "short",
    "signed",
    "sizeof",
    "static",
    "static_assert",
    "static_cast",
    "struct",
    "switch",
    "template",
    "this",
    "thread_local",
    "throw",
    "true",
    "try",
    "typedef",
    "typeid",
    "typename",
    "union",
    "unsigned",
    "using",
    "virtual",
    "void",
    "volatile",
    "wchar_t",
    "while",
    "xor",
    "xor_eq",
    // Macros of usual headers and compilers.
    "alloca",
    "assert",
    "errno",
    "i386",
    "linux",
    "major",
    "makedev",
    "minor",
    "mips",
    "offsetof",
    "setjmp",
    "sigsetjmp",
    "sparc",
    "stderr",
    "stdin",
    "stdout",
    "sun",
    "unix",
    "va_arg",
    "va_copy",
    "va_end",
    "va_start",
    // What records have themselves, and what reads as one of those.
    "m",
    "null",
    "ownerContext",
};

// Classes have capitals alone, as the macros of usual headers have.
const char* const reservedClasses[] = {"DOMAIN", "EOF",      "HUGE", "INFINITY",
                                       "NAN",    "OVERFLOW", "SING", "UNDERFLOW"};

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
    const bool taken = name == "types" || name == "sets" || name == "objects" ||
                       name == "builtin" || name == "std" || name == "asn1data";
    return taken ? name + "_" : memberName(name);
}

std::string className(const std::string& name) {
    const bool taken = std::find(std::begin(reservedClasses), std::end(reservedClasses), name) !=
                       std::end(reservedClasses);
    return taken ? name + "_" : cppName(name);
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
