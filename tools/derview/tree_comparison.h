#ifndef DERVIEW_TREE_COMPARISON_H
#define DERVIEW_TREE_COMPARISON_H

#include <vector>

#include "alignment.h"
#include "value_tree.h"

namespace derview {

/// What two messages have in each other's place.
struct Difference {
    enum Kind : unsigned char { Changed, Removed, Added, Moved };

    Kind kind;
    ValueTree::Index one;   ///< not of what was added
    ValueTree::Index other; ///< not of what was removed
};

/// Compares two trees by what their elements are, not where they stand: members of lists that an
/// identifier or a number of any size begins with go by that (extensions, attributes, entries of a
/// revocation list), all others by their values; what is left over between members that are the
/// same is taken for changed, as far as it goes.
class TreeComparison {
public:
    TreeComparison(const ValueTree& one, const ValueTree& other) : one_(one), other_(other) {}

    void run();
    /// In the order of the first message; what only the second one has stands where it stands
    /// there.
    const std::vector<Difference>& differences() const { return differences_; }
    /// Values that might have a counterpart behind the damage of the other message.
    std::size_t skipped() const { return skipped_; }

private:
    using Index = ValueTree::Index;
    using Indexes = std::vector<Index>;

    void compare(Index one, Index other);
    void compareInside(Index one, Index other);
    void leaveOut(std::vector<Counterparts>& members, const Indexes& one, bool oneBreaksOff,
                  const Indexes& other, bool otherBreaksOff);

    const ValueTree& one_;
    const ValueTree& other_;
    std::vector<Difference> differences_;
    std::size_t skipped_ = 0;
};

} // namespace derview

#endif
