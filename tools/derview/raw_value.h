#ifndef DERVIEW_RAW_VALUE_H
#define DERVIEW_RAW_VALUE_H

#include <optional>

#include <brevantis/asn1/text/names.h>
#include <brevantis/asn1/text/value.h>

#include "cut_text.h"

namespace derview {

/// The value of an element whose type only its tag tells.
struct RawValue {
    ValueKind kind;
    ValueText value;
};

/// Reads an unknown element as the primitive that its universal tag stands for.
/// @param element whole
/// @param room columns
/// @return nothing when it is none, or not a well-formed one
std::optional<RawValue> rawValueText(Octets element, std::size_t room,
                                     const IdentifierNames& names);

} // namespace derview

#endif
