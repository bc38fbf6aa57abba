#ifndef DERVIEW_PADDED_OCTETS_H
#define DERVIEW_PADDED_OCTETS_H

#include <cstddef>

#include "octets.h"

namespace derview {

/// Octets with zeros behind them, which take no memory until somebody reads them. With them a
/// message that was cut short can be gone through up to where it ends, although its first header
/// promises more.
class PaddedOctets {
public:
    /// @param size octets in all; without the address space for them there are none
    PaddedOctets(Octets octets, std::size_t size);
    ~PaddedOctets();
    PaddedOctets(const PaddedOctets&) = delete;
    PaddedOctets& operator=(const PaddedOctets&) = delete;

    Octets octets() const { return octets_; }

private:
    void* mapping_;
    Octets octets_;
};

} // namespace derview

#endif
