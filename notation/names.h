#ifndef BREVANTIS_NOTATION_NAMES_H
#define BREVANTIS_NOTATION_NAMES_H

#include <string>

/// @file
/// From names of the notation to names in C++.

namespace notation {

/// Hyphens become underscores.
std::string cppName(const std::string& name);

/// The same for a member or a value, clear of keywords and macros.
std::string memberName(const std::string& name);

/// The same for a value, an object or a set, clear of the namespaces of the tables as well.
std::string valueMemberName(const std::string& name);

/// The same for an information object class, clear of macros.
std::string className(const std::string& name);

/// Name of a type that an element describes in place.
std::string inlineTypeName(const std::string& parent, const std::string& element);

/// Name of the type that all plain lists of one element type share.
std::string sharedListName(const std::string& element, bool set);

/// Name of a value type that an object describes in place.
std::string objectTypeName(const std::string& object, const std::string& field);

} // namespace notation

#endif
