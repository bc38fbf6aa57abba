#include "alignment.h"

#include <algorithm>
#include <utility>

namespace derview {

namespace {

using Keys = std::vector<std::uint64_t>;
constexpr std::size_t None = Counterparts::None;

/// A part of a list.
struct Range {
    std::size_t begin;
    std::size_t end;
};

std::vector<std::size_t> sortedByKey(const Keys& keys, const Range& range) {
    std::vector<std::size_t> order;
    order.reserve(range.end - range.begin);
    for (std::size_t i = range.begin; i < range.end; ++i) {
        order.push_back(i);
    }
    std::sort(order.begin(), order.end(), [&keys](std::size_t a, std::size_t b) {
        return keys[a] != keys[b] ? keys[a] < keys[b] : a < b;
    });
    return order;
}

/// For each member of a part of the first list the one of the second with the same key.
std::vector<std::size_t> partners(const Keys& one, const Range& ofOne, const Keys& other,
                                  const Range& ofOther) {
    std::vector<std::size_t> found(ofOne.end - ofOne.begin, None);
    const std::vector<std::size_t> left = sortedByKey(one, ofOne);
    const std::vector<std::size_t> right = sortedByKey(other, ofOther);
    for (std::size_t i = 0, j = 0; i < left.size() && j < right.size();) {
        const std::uint64_t key = one[left[i]];
        const std::uint64_t otherKey = other[right[j]];
        if (key == otherKey) {
            found[left[i] - ofOne.begin] = right[j];
        }
        i += key <= otherKey ? 1 : 0;
        j += otherKey <= key ? 1 : 0;
    }
    return found;
}

/// Which of the pairs make the longest part that is in order on both sides.
std::vector<bool> inOrder(const std::vector<std::size_t>& partner) {
    std::vector<std::size_t> last;                         // of a part that long, the lowest end
    std::vector<std::size_t> before(partner.size(), None); // in the part that ends here
    for (std::size_t i = 0; i < partner.size(); ++i) {
        if (partner[i] == None) {
            continue;
        }
        const auto place = std::lower_bound(
            last.begin(), last.end(), partner[i],
            [&partner](std::size_t end, std::size_t other) { return partner[end] < other; });
        before[i] = place == last.begin() ? None : *(place - 1);
        if (place == last.end()) {
            last.push_back(i);
        } else {
            *place = i;
        }
    }
    std::vector<bool> kept(partner.size());
    for (std::size_t i = last.empty() ? None : last.back(); i != None; i = before[i]) {
        kept[i] = true;
    }
    return kept;
}

} // namespace

std::vector<Counterparts> align(const Keys& one, const Keys& other) {
    // Most of two lists is the same, and in the same order.
    const std::size_t shorter = std::min(one.size(), other.size());
    std::size_t front = 0;
    while (front < shorter && one[front] == other[front]) {
        ++front;
    }
    std::size_t back = 0;
    while (back < shorter - front && one[one.size() - 1 - back] == other[other.size() - 1 - back]) {
        ++back;
    }
    const Range ofOne{front, one.size() - back};
    const Range ofOther{front, other.size() - back};
    const std::vector<std::size_t> partner = partners(one, ofOne, other, ofOther);
    const std::vector<bool> kept = inOrder(partner);
    std::vector<bool> isPartner(ofOther.end - ofOther.begin);
    for (const std::size_t index : partner) {
        if (index != None) {
            isPartner[index - front] = true;
        }
    }

    std::vector<Counterparts> all;
    all.reserve(one.size() + other.size() / 8);
    for (std::size_t i = 0; i < front; ++i) {
        all.push_back({i, i, false});
    }
    std::size_t next = ofOther.begin;
    const auto addOther = [&](std::size_t end) {
        for (; next < end; ++next) {
            if (!isPartner[next - front]) {
                all.push_back({None, next, false});
            }
        }
    };
    for (std::size_t i = ofOne.begin; i < ofOne.end; ++i) {
        const std::size_t found = partner[i - front];
        if (kept[i - front]) {
            addOther(found);
        }
        all.push_back({i, found, found != None && !kept[i - front]});
    }
    addOther(ofOther.end);
    for (std::size_t i = 0; i < back; ++i) {
        all.push_back({ofOne.end + i, ofOther.end + i, false});
    }
    return all;
}

} // namespace derview
