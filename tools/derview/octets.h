#ifndef DERVIEW_OCTETS_H
#define DERVIEW_OCTETS_H

#include <span>
#include <vector>

namespace derview {

/// Octets of a message, which outlive the view.
using Octets = std::span<const unsigned char>;
/// Octets that stand for themselves.
using OctetStore = std::vector<unsigned char>;

} // namespace derview

#endif
