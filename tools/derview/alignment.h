#ifndef DERVIEW_ALIGNMENT_H
#define DERVIEW_ALIGNMENT_H

#include <cstddef>
#include <cstdint>
#include <vector>

namespace derview {

/// What a list has in the place of what another has.
struct Counterparts {
    enum : std::size_t { None = static_cast<std::size_t>(-1) };

    std::size_t one;   ///< index, or None
    std::size_t other; ///< index, or None
    bool moved;        ///< behind something that it stood in front of
};

/// Members of two lists side by side. Those with the same key belong together, the first with the
/// first where there are several; as many as can keep their order are told as not moved. Time and
/// memory are those of sorting.
/// @param one   keys of the members
/// @return every member once: those of the first list in their order but for the ones that moved,
///         and what only the second list has where it stands there
std::vector<Counterparts> align(const std::vector<std::uint64_t>& one,
                                const std::vector<std::uint64_t>& other);

} // namespace derview

#endif
