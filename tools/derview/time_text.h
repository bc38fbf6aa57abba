#ifndef DERVIEW_TIME_TEXT_H
#define DERVIEW_TIME_TEXT_H

#include <brevantis/asn1/text/value.h>

#include "octets.h"

namespace derview {

/// A Time for readers, as "2026-11-21 13:33:06 UTC".
/// @return nothing for a text that is none
std::optional<std::string> timeText(const asn1data::WalkElement& element);

} // namespace derview

#endif
