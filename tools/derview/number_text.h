#ifndef DERVIEW_NUMBER_TEXT_H
#define DERVIEW_NUMBER_TEXT_H

#include <optional>

#include <brevantis/asn1/asn1data/walk.h>

#include "cut_text.h"

namespace derview {

/// An INTEGER in contents octets: whether it is below zero, and the octets of its magnitude without
/// leading zeros.
struct Magnitude {
    bool negative = false;
    OctetStore octets;

    /// The number, where it lies within plus or minus @p largest.
    std::optional<long long> within(long long largest) const;
};

/// @param isUnsigned the octets are a magnitude as they stand
Magnitude magnitudeOf(Octets octets, bool isUnsigned);

/// A Number, with its name if it has one.
std::string numberText(const asn1data::WalkElement& element);

/// A BigNumber: in decimal where it is small, else in hexadecimal digits as far as they fit.
ValueText bigNumberText(const asn1data::WalkElement& element, std::size_t room);

} // namespace derview

#endif
