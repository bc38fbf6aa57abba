#ifndef DERVIEW_STRING_TEXT_H
#define DERVIEW_STRING_TEXT_H

#include <brevantis/asn1/asn1data/walk.h>

#include "cut_text.h"

namespace derview {

/// A Text, escaped and in quotes.
ValueText characterText(const asn1data::WalkElement& element, std::size_t room);

/// Bits: their names where they have names, else digits.
ValueText bitText(const asn1data::WalkElement& element, std::size_t room);

/// Octets in digits.
ValueText octetText(const asn1data::WalkElement& element, std::size_t room);

} // namespace derview

#endif
