#include <algorithm>
#include <random>

#include <gtest/gtest.h>

#include "tools/derview/alignment.h"

namespace {

using derview::align;
using derview::Counterparts;
using Keys = std::vector<std::uint64_t>;

/// The length of the longest common subsequence, the slow way.
std::size_t longestCommon(const Keys& one, const Keys& other) {
    std::vector<std::size_t> row(other.size() + 1);
    for (const std::uint64_t key : one) {
        std::size_t diagonal = 0;
        for (std::size_t j = 0; j < other.size(); ++j) {
            const std::size_t above = row[j + 1];
            row[j + 1] = key == other[j] ? diagonal + 1 : std::max(row[j], above);
            diagonal = above;
        }
    }
    return row.back();
}

TEST(Alignment, HasEachMemberOnceAndMovesAsFewAsCanBe) {
    std::mt19937 random(1);
    for (unsigned run = 0; run < 2000; ++run) {
        const bool distinct = run % 2 == 0;
        Keys one(random() % 12);
        Keys other;
        for (std::uint64_t& key : one) {
            key = distinct ? static_cast<std::uint64_t>(&key - one.data()) : random() % 4;
            if (random() % 4 != 0) {
                other.push_back(key);
            }
        }
        for (unsigned changes = random() % 4; changes-- > 0 && !other.empty();) {
            std::swap(other[random() % other.size()], other[random() % other.size()]);
            other.insert(other.begin() + static_cast<std::ptrdiff_t>(random() % other.size()),
                         100 + changes);
        }
        std::vector<unsigned> ofOne(one.size());
        std::vector<unsigned> ofOther(other.size());
        std::size_t kept = 0;
        std::size_t lastOne = 0;
        std::size_t lastOther = 0;
        for (const Counterparts& pair : align(one, other)) {
            const bool both = pair.one != Counterparts::None && pair.other != Counterparts::None;
            if (pair.one != Counterparts::None) {
                ++ofOne.at(pair.one);
                EXPECT_GE(pair.one + 1, lastOne) << "members of the first list in their order";
                lastOne = pair.one + 1;
            }
            if (pair.other != Counterparts::None) {
                ++ofOther.at(pair.other);
            }
            if (both) {
                EXPECT_EQ(one[pair.one], other[pair.other]);
            }
            if (pair.other != Counterparts::None && !pair.moved) {
                EXPECT_GE(pair.other + 1, lastOther) << "and of the second, unless they moved";
                lastOther = pair.other + 1;
                kept += both ? 1 : 0;
            }
        }
        EXPECT_EQ(std::count(ofOne.begin(), ofOne.end(), 1U), std::ptrdiff_t(one.size()));
        EXPECT_EQ(std::count(ofOther.begin(), ofOther.end(), 1U), std::ptrdiff_t(other.size()));
        if (distinct) {
            EXPECT_EQ(kept, longestCommon(one, other));
        }
        ASSERT_FALSE(HasFailure()) << "run " << run;
    }
}

} // namespace
