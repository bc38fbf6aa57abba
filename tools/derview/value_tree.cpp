#include "value_tree.h"

#include <limits>

#include <brevantis/asn1/text/octets.h>
#include <brevantis/asn1/text/value.h>

#include "keyed_digest.h"
#include "octets.h"

namespace derview {

using asn1data::WalkAction;
using asn1data::WalkElement;
using asn1data::WalkStep;

namespace {

constexpr std::size_t Endless = std::numeric_limits<std::size_t>::max();

/// The names of a description are the same texts for all messages, so that their places will do.
std::uint64_t labelOf(const WalkStep* step, const WalkStep* around) {
    KeyedDigest label;
    for (; step != nullptr && step != around; step = step->outer) {
        label.add(static_cast<std::uint64_t>(step->kind));
        label.add(reinterpret_cast<std::uintptr_t>(step->name));
    }
    return label.value();
}

/// Of octets that are the same when the values are.
std::uint64_t digestOf(const WalkElement& element) {
    KeyedDigest digest;
    if (element.value.identifier != nullptr) {
        for (unsigned i = 0; i < element.value.identifier->numids; ++i) {
            digest.add(element.value.identifier->subid[i]);
        }
    } else if (element.value.octets != nullptr || element.segmented) {
        OctetStore store;
        const Octets octets = valueOctets(element, Endless, store);
        digest.add(element.value.bitCount % 8);
        digest.add(octets.data(), octets.size());
    } else {
        digest.add(static_cast<std::uint64_t>(element.value.number));
    }
    return digest.value();
}

} // namespace

std::vector<ValueTree::Index> ValueTree::children(Index index) const {
    std::vector<Index> all;
    for (Index child = index + 1; child < nodes_[index].next; child = nodes_[child].next) {
        all.push_back(child);
    }
    return all;
}

std::size_t ValueTree::countLeaves(Index index) const {
    std::size_t count = 0;
    for (Index i = index; i < nodes_[index].next; ++i) {
        count += isLeaf(i) ? 1U : 0U;
    }
    return count;
}

TreeNode& TreeBuilder::add(const WalkElement& element, std::uint64_t digest) {
    const WalkStep* const around = open_.empty() ? nullptr : open_.back().step;
    const auto behind = static_cast<ValueTree::Index>(tree_.nodes_.size() + 1);
    tree_.nodes_.push_back(
        {digest, labelOf(element.step, around), element.type, behind, false, true});
    return tree_.nodes_.back();
}

/// Makes a node part of what is told of the element around.
void TreeBuilder::join(const TreeNode& node) {
    if (open_.empty()) {
        return;
    }
    Open& around = open_.back();
    const asn1data::TypeDescription* const type = tree_.nodes_[around.node].type;
    KeyedDigest digest;
    digest.add(node.label);
    digest.add(node.digest);
    if (type != nullptr && type->setOf) { // in any order
        around.digest += digest.value();
    } else {
        digest.add(around.digest);
        around.digest = digest.value();
    }
}

void TreeBuilder::close(bool complete) {
    const Open open = open_.back();
    open_.pop_back();
    TreeNode& node = tree_.nodes_[open.node];
    node.digest = open.digest;
    node.next = static_cast<ValueTree::Index>(tree_.nodes_.size());
    node.complete = complete;
    join(node);
}

WalkAction TreeBuilder::enter(const WalkElement& element) {
    ends_.enter(element);
    add(element, 0).container = true;
    open_.push_back({tree_.size() - 1, element.step, 0});
    return WalkAction::Continue;
}

WalkAction TreeBuilder::leave(const WalkElement& element) {
    if (const std::size_t hidden = ends_.leave(element).hidden; hidden != 0) {
        OctetStore store;
        join(add(element, digestOf(hiddenElement(element, hidden, store))));
    }
    close(true);
    return WalkAction::Continue;
}

WalkAction TreeBuilder::primitive(const WalkElement& element) {
    ends_.primitive(element);
    join(add(element, digestOf(element)));
    return WalkAction::Continue;
}

ValueTree TreeBuilder::take() {
    while (!open_.empty()) {
        close(false);
    }
    return std::move(tree_);
}

WalkElement hiddenElement(const WalkElement& element, std::size_t hidden, OctetStore& store) {
    WalkElement behind = element;
    behind.value.octets = valueOctets(element, Endless, store).last(hidden).data();
    behind.value.octetCount = static_cast<unsigned>(hidden);
    behind.segmented = false;
    return behind;
}

} // namespace derview
