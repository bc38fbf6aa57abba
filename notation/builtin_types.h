#ifndef BREVANTIS_NOTATION_BUILTIN_TYPES_H
#define BREVANTIS_NOTATION_BUILTIN_TYPES_H

#include <string>
#include <vector>

#include "model.h"

/// @file
/// The types that the notation brings along, from the list that the engine works from.

namespace notation {

struct BuiltinType {
    std::string constant;               ///< in the namespace `builtin` of the descriptions
    std::vector<std::string> notations; ///< names in the notation, the usual one first
    std::string variant;                ///< value of the remark that chooses it, or empty
    Shape shape;
    unsigned tag;        ///< universal number, 0 for an open type
    std::string storage; ///< in C++
};

/// All of them, in the order of the list.
const std::vector<BuiltinType>& builtinTypes();

/// Those of a notation that a remark chooses, in this order.
std::vector<const BuiltinType*> heldAs(const std::string& notation);
/// Their remarks, as "signed32, unsigned32 or magnitude".
std::string variantsText(const std::string& notation);

/// Key of a built-in type in Model::builtins.
std::string builtinKey(const std::string& notation, const std::string& variant = {});

} // namespace notation

#endif
