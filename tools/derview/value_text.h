#ifndef DERVIEW_VALUE_TEXT_H
#define DERVIEW_VALUE_TEXT_H

#include <brevantis/asn1/asn1data/walk.h>
#include <brevantis/asn1/text/names.h>

#include "cut_text.h"

namespace derview {

/// The value of a primitive on one line.
/// @param room columns that the text should keep to; only strings and big numbers are ever cut
/// @param names of identifiers
ValueText
valueText(const asn1data::WalkElement& element, std::size_t room,
          const asn1text::IdentifierNames& names = asn1text::IdentifierNames::ofLibrary());

} // namespace derview

#endif
