#ifndef BREVANTIS_NOTATION_PRINTER_H
#define BREVANTIS_NOTATION_PRINTER_H

#include <string>

#include "ast.h"

/// @file
/// From the parsed notation back to text, evenly laid out.

namespace notation {

enum : unsigned { DeepestPrinted = 16 };

/// @param depth levels of elements that are shown; those further in are left out
/// @return the type as the right-hand side of an assignment, lines parted by '\n'
std::string printType(const TypeNode& type, unsigned depth = DeepestPrinted);

/// @return an element without its comma, as it stands in a SEQUENCE; several lines when its type is
///         described in place
std::string printComponent(const ComponentNode& component, unsigned depth = DeepestPrinted);

std::string printValue(const ValueNode& value);

} // namespace notation

#endif
