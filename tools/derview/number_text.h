#ifndef DERVIEW_NUMBER_TEXT_H
#define DERVIEW_NUMBER_TEXT_H

#include <brevantis/asn1/asn1data/walk.h>

#include "cut_text.h"

namespace derview {

/// A Number, with its name if it has one.
std::string numberText(const asn1data::WalkElement& element);

/// A BigNumber: in decimal where it is small, else in hexadecimal digits as far as they fit.
ValueText bigNumberText(const asn1data::WalkElement& element, std::size_t room);

/// A number in the other form than bigNumberText has it: in decimal digits, or in hexadecimal ones.
/// @return nothing for a number of more than 64 octets
std::string otherFormText(const asn1data::WalkElement& element);

} // namespace derview

#endif
