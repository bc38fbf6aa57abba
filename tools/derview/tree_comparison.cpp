#include "tree_comparison.h"

#include <algorithm>

#include <brevantis/asn1/text/value.h>

#include "octets.h"

namespace derview {

using asn1data::ShapeKind;
using asn1data::TypeDescription;

namespace {

/// What the members of an element are told apart by.
enum class Likeness {
    Place,    ///< their names in a record
    FirstOne, ///< what they begin with
    Value
};

Likeness likenessIn(const TypeDescription* type) {
    if (type == nullptr || kindOf(type->shape) != ShapeKind::Repeated) {
        return Likeness::Place;
    }
    const TypeDescription& member = *type->element;
    if (kindOf(member.shape) != ShapeKind::Record || member.elementCount == 0 ||
        !asn1data::isPrimitive(member.elements[0].type->shape)) {
        return Likeness::Value;
    }
    const ValueKind first = valueKind(*member.elements[0].type);
    return first == ValueKind::Identifier || first == ValueKind::BigNumber ? Likeness::FirstOne
                                                                           : Likeness::Value;
}

std::vector<std::uint64_t> keysOf(const ValueTree& tree, const std::vector<ValueTree::Index>& all,
                                  Likeness likeness) {
    std::vector<std::uint64_t> keys;
    keys.reserve(all.size());
    for (const ValueTree::Index index : all) {
        const TreeNode& node = tree[index];
        const bool hasFirst = node.next > index + 1;
        keys.push_back(likeness == Likeness::Place                  ? node.label
                       : likeness == Likeness::FirstOne && hasFirst ? tree[index + 1].digest
                                                                    : node.digest);
    }
    return keys;
}

bool isAlone(const Counterparts& member) {
    return member.one == Counterparts::None || member.other == Counterparts::None;
}

/// Takes members that are alone, between others that are not, for each other.
/// @param alike whether two can be: the index of one in each list
template <class Alike>
void pairUp(std::vector<Counterparts>& members, Alike alike) {
    for (std::size_t begin = 0; begin < members.size();) {
        std::size_t end = begin;
        std::vector<std::size_t> added;
        for (; end < members.size() && (isAlone(members[end]) || members[end].moved); ++end) {
            if (members[end].one == Counterparts::None) {
                added.push_back(end);
            }
        }
        auto next = added.begin();
        for (std::size_t i = begin; i < end && next != added.end(); ++i) {
            Counterparts& member = members[i];
            if (member.other == Counterparts::None && alike(member.one, members[*next].other)) {
                member.other = members[*next].other;
                members[*next++] = {Counterparts::None, Counterparts::None, false};
            }
        }
        begin = std::max(end, begin + 1);
    }
    members.erase(std::remove_if(members.begin(), members.end(),
                                 [](const Counterparts& member) {
                                     return member.one == Counterparts::None &&
                                            member.other == Counterparts::None;
                                 }),
                  members.end());
}

} // namespace

void TreeComparison::run() {
    if (one_.size() == 0 || other_.size() == 0) {
        skipped_ = one_.size() != 0 ? one_.countLeaves(0) : 0;
        skipped_ += other_.size() != 0 ? other_.countLeaves(0) : 0;
    } else if (one_[0].label == other_[0].label) {
        compare(0, 0);
    } else { // of a CHOICE
        differences_.push_back({Difference::Changed, 0, 0});
    }
}

void TreeComparison::compare(Index one, Index other) {
    const TreeNode& a = one_[one];
    const TreeNode& b = other_[other];
    if (a.type == b.type && a.container && b.container) {
        if (a.digest != b.digest || !a.complete || !b.complete) {
            compareInside(one, other);
        }
    } else if (a.type != b.type || a.digest != b.digest) {
        differences_.push_back({Difference::Changed, one, other});
    }
}

void TreeComparison::compareInside(Index one, Index other) {
    const TypeDescription* const type = one_[one].type;
    const Likeness likeness = likenessIn(type);
    const bool anyOrder = likeness == Likeness::Place || type->setOf;
    const Indexes ofOne = one_.children(one);
    const Indexes ofOther = other_.children(other);
    std::vector<Counterparts> members =
        align(keysOf(one_, ofOne, likeness), keysOf(other_, ofOther, likeness));
    if (likeness == Likeness::Value) {
        pairUp(members, [&](std::size_t a, std::size_t b) {
            return one_[ofOne[a]].label == other_[ofOther[b]].label;
        });
    }
    leaveOut(members, ofOne, !one_[one].complete, ofOther, !other_[other].complete);
    for (const Counterparts& member : members) {
        if (member.other == Counterparts::None) {
            differences_.push_back({Difference::Removed, ofOne[member.one], 0});
        } else if (member.one == Counterparts::None) {
            differences_.push_back({Difference::Added, 0, ofOther[member.other]});
        } else {
            if (member.moved && !anyOrder) {
                differences_.push_back(
                    {Difference::Moved, ofOne[member.one], ofOther[member.other]});
            }
            compare(ofOne[member.one], ofOther[member.other]);
        }
    }
}

/// Where one element breaks off, what only the other one has behind the last member of both is not
/// compared.
void TreeComparison::leaveOut(std::vector<Counterparts>& members, const Indexes& one,
                              bool oneBreaksOff, const Indexes& other, bool otherBreaksOff) {
    if (!oneBreaksOff && !otherBreaksOff) {
        return;
    }
    auto tail = members.end();
    while (tail != members.begin() && isAlone(*(tail - 1))) {
        --tail;
    }
    const auto behind = std::remove_if(tail, members.end(), [&](const Counterparts& member) {
        const bool onlyOne = member.other == Counterparts::None;
        if (onlyOne ? !otherBreaksOff : !oneBreaksOff) {
            return false;
        }
        skipped_ +=
            onlyOne ? one_.countLeaves(one[member.one]) : other_.countLeaves(other[member.other]);
        return true;
    });
    members.erase(behind, members.end());
}

} // namespace derview
