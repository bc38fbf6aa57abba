#ifndef BENCH_ALLOCATIONS_H
#define BENCH_ALLOCATIONS_H

#include <cstddef>

namespace bench {

/// What a piece of work asked of the allocator: malloc and its relatives, those of every library in
/// the process and of operator new; and of the system, by mmap.
struct Allocations {
    std::size_t calls = 0;  ///< that returned a block, resizing included
    std::size_t octets = 0; ///< asked for in all
    std::size_t peak = 0;   ///< most octets alive at once of those, as the allocator rounds them
};

/// Starts counting from nothing. One thread only.
void startCounting() noexcept;
/// Ends it.
Allocations stopCounting() noexcept;

/// Puts the allocator in order before something is measured: pieces that others left in it would
/// scatter the blocks to come, and hide from a child process what it takes.
void giveBackFreeMemory() noexcept;

} // namespace bench

#endif
