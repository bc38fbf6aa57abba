#include "builtin_types.h"

#include <algorithm>

namespace notation {

const std::vector<BuiltinType>& builtinTypes() {
    static const std::vector<BuiltinType> types = [] {
        std::vector<BuiltinType> rows;
        const auto named = [&rows](const char* constant, const char* notation) {
            std::find_if(rows.begin(), rows.end(), [constant](const BuiltinType& row) {
                return row.constant == constant;
            })->notations.emplace_back(notation);
        };
#define BREVANTIS_BUILTIN_TYPE(constant, notation, variant, shape, tag, storage)                   \
    rows.push_back({#constant, {notation}, variant, Shape::shape, tag, #storage});
#define BREVANTIS_BUILTIN_NAME(constant, notation) named(#constant, notation);
#include <brevantis/asn1/asn1data/builtin_types.inc>
        return rows;
    }();
    return types;
}

std::vector<const BuiltinType*> heldAs(const std::string& notation) {
    std::vector<const BuiltinType*> rows;
    for (const BuiltinType& row : builtinTypes()) {
        if (row.notations.front() == notation && !row.variant.empty()) {
            rows.push_back(&row);
        }
    }
    return rows;
}

std::string variantsText(const std::string& notation) {
    const std::vector<const BuiltinType*> rows = heldAs(notation);
    std::string text;
    for (const BuiltinType* row : rows) {
        text += (text.empty() ? "" : row == rows.back() ? " or " : ", ") + row->variant;
    }
    return text;
}

std::string builtinKey(const std::string& notation, const std::string& variant) {
    return variant.empty() ? notation : notation + " " + variant;
}

} // namespace notation
