#ifndef DERVIEW_VALUE_TREE_H
#define DERVIEW_VALUE_TREE_H

#include <cstdint>
#include <vector>

#include <brevantis/asn1/asn1data/walk.h>
#include <brevantis/asn1/asn1data/walk_rules.h>

namespace derview {

/// An element of a message that is compared. A large list has many of them: what can be had by
/// another walk is not kept.
struct TreeNode {
    std::uint64_t digest; ///< the same for the same values, however they are encoded
    std::uint64_t label;  ///< what leads here from the element around, but for numbers
    const asn1data::TypeDescription* type; ///< null for an addition
    std::uint32_t next;                    ///< index behind everything inside
    bool container;
    bool complete; ///< its end was reached
};

/// The elements of a message in the order of a walk, each in front of what is inside. Nodes of two
/// trees of one process can be compared.
class ValueTree {
public:
    using Index = std::uint32_t;

    const TreeNode& operator[](Index index) const { return nodes_[index]; }
    Index size() const { return static_cast<Index>(nodes_.size()); }
    std::vector<Index> children(Index index) const;
    /// A value, or an element without any.
    bool isLeaf(Index index) const {
        return nodes_[index].complete && nodes_[index].next == index + 1;
    }
    std::size_t countLeaves(Index index) const;

private:
    friend class TreeBuilder;
    std::vector<TreeNode> nodes_;
};

/// Makes a tree of what a walk reports.
class TreeBuilder : public asn1data::WalkVisitor {
public:
    asn1data::WalkAction enter(const asn1data::WalkElement& element) override;
    asn1data::WalkAction leave(const asn1data::WalkElement& element) override;
    asn1data::WalkAction primitive(const asn1data::WalkElement& element) override;

    /// The tree, when the walk is over.
    ValueTree take();

private:
    struct Open {
        ValueTree::Index node;
        const asn1data::WalkStep* step;
        std::uint64_t digest;
    };

    TreeNode& add(const asn1data::WalkElement& element, std::uint64_t digest);
    void close(bool complete);
    void join(const TreeNode& node);

    ValueTree tree_;
    std::vector<Open> open_;
    asn1data::ContentsEnd ends_;
};

/// The octets behind the typed value in an OCTET STRING, as an element of their own.
/// @param store holds the octets of a string in segments
asn1data::WalkElement hiddenElement(const asn1data::WalkElement& element, std::size_t hidden,
                                    std::vector<unsigned char>& store);

} // namespace derview

#endif
