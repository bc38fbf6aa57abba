#ifndef DERVIEW_TIME_TEXT_H
#define DERVIEW_TIME_TEXT_H

#include <optional>
#include <string>
#include <string_view>

#include <brevantis/asn1/asn1data/walk.h>

namespace derview {

/// A UTCTime or GeneralizedTime in the form of ISO 8601, as "2026-11-21T13:33:06Z"; years of two
/// digits below 50 are of this century (RFC 5280, 4.1.2.5.1).
/// @return nothing for a text that is none
std::optional<std::string> isoTime(std::string_view text, bool generalized);
/// The same of a Time.
std::optional<std::string> isoTime(const asn1data::WalkElement& element);

/// A Time for readers, as "2026-11-21 13:33:06 UTC".
/// @return nothing for a text that is none
std::optional<std::string> timeText(const asn1data::WalkElement& element);

} // namespace derview

#endif
