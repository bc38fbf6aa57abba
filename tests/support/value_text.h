#ifndef TESTS_SUPPORT_VALUE_TEXT_H
#define TESTS_SUPPORT_VALUE_TEXT_H

#include <cstddef>
#include <string>
#include <vector>

#include <brevantis/asn1/asn1data/describe.h>

#include "support/hex.h"

namespace tests {

/// What of a value goes into its text.
enum class ValueDetail {
    Meaning, ///< members of a SET OF in any order; an open value by its typed form, if it has one
    Everything
};

/// A value as text: "{name 'A', numbers {1; 2; }, }". Equal texts mean equal values.
std::string valueText(const asn1data::TypeDescription& type, const void* value,
                      ValueDetail detail = ValueDetail::Everything);

/// Whether two values mean the same.
bool equalValues(const asn1data::TypeDescription& type, const void* a, const void* b);

/// Whether a value is told by a number: BOOLEAN, ENUMERATED, INTEGER in a machine word.
inline bool isNumeric(asn1data::Shape shape) {
    const asn1data::ShapeKind kind = asn1data::kindOf(shape);
    return kind == asn1data::ShapeKind::Boolean || kind == asn1data::ShapeKind::Number;
}

// How the parts of such a text are written.

/// "3: 01 02 03", or "20: 01 02 03" of as many bits.
inline std::string octetsText(std::size_t count, const unsigned char* octets, std::size_t size) {
    return std::to_string(count) + ": " + (size != 0 ? toHex(octets, size) : "");
}

/// Numbers of arcs or characters: "2.5.29.15.".
template <class Number>
std::string numbersText(const Number* numbers, std::size_t count) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
        text += std::to_string(numbers[i]) + ".";
    }
    return text;
}

inline std::string membersText(const std::vector<std::string>& members) {
    std::string text = "{";
    for (const std::string& member : members) {
        text += member + "; ";
    }
    return text + "}";
}

} // namespace tests

#endif
