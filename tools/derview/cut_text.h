#ifndef DERVIEW_CUT_TEXT_H
#define DERVIEW_CUT_TEXT_H

#include <cstddef>
#include <string>

#include "octets.h"

namespace derview {

/// A value on one line.
struct ValueText {
    std::string text;     ///< fit for a terminal
    std::size_t rest = 0; ///< octets that are left out at its end
};

/// Columns of values that are never cut below what can be told.
constexpr std::size_t SmallestRoom = 16;

/// "… 12 more octets"
std::string restText(std::size_t octets);

/// Digits as far as they fit; the rest is counted.
/// @param octets the first ones of @p total, at least as many as fit
ValueText cutHex(const std::string& prefix, Octets octets, std::size_t total, std::size_t room);

} // namespace derview

#endif
