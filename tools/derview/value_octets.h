#ifndef DERVIEW_VALUE_OCTETS_H
#define DERVIEW_VALUE_OCTETS_H

#include <cstddef>
#include <string>

#include <brevantis/asn1/asn1data/walk.h>

#include "octets.h"

namespace derview {

/// The octets of a value without headers, those of segments put together.
/// @param limit octets at most
/// @param store holds them when they come from segments
Octets valueOctets(const asn1data::WalkElement& element, std::size_t limit, OctetStore& store);

/// Two hexadecimal digits an octet.
std::string hexText(Octets octets);

} // namespace derview

#endif
