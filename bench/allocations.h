#ifndef BENCH_ALLOCATIONS_H
#define BENCH_ALLOCATIONS_H

#include <cstddef>

namespace bench {

/// What a piece of work asked of the allocator: malloc and its relatives, those of every library in
/// the process and of operator new.
struct Allocations {
    std::size_t calls = 0;  ///< that returned a block, resizing included
    std::size_t octets = 0; ///< asked for in all
    std::size_t peak = 0;   ///< most octets alive at once of those, as the allocator rounds them
    /// Octets that were not given back. Negative when blocks from before went.
    std::ptrdiff_t left = 0;
};

/// Starts counting from nothing. One thread only.
void startCounting() noexcept;
/// Ends it.
Allocations stopCounting() noexcept;

} // namespace bench

#endif
