#ifndef DERVIEW_NODE_TEXTS_H
#define DERVIEW_NODE_TEXTS_H

#include <string>
#include <vector>

#include <brevantis/asn1/asn1data/walk.h>
#include <brevantis/asn1/asn1data/walk_rules.h>
#include <brevantis/asn1/text/names.h>

#include "value_tree.h"

namespace derview {

/// Where a node of a tree stands and what it is, on one line.
struct NodeText {
    std::string path;
    std::string text; ///< the value, or names and values of what is inside, as many as fit
};

/// Tells of a few nodes what they are, by going through the message once more.
class NodeTexts : public asn1data::WalkVisitor {
public:
    /// @param tree of the message
    /// @param wanted indexes of nodes, ascending; one that has others inside is told by its path
    /// alone
    /// @param room columns that a text should keep to
    NodeTexts(const ValueTree& tree, std::vector<ValueTree::Index> wanted, std::size_t room,
              const asn1text::IdentifierNames& names)
        : tree_(tree), wanted_(std::move(wanted)), texts_(wanted_.size()), room_(room),
          names_(names) {}

    asn1data::WalkAction enter(const asn1data::WalkElement& element) override;
    asn1data::WalkAction leave(const asn1data::WalkElement& element) override;
    asn1data::WalkAction primitive(const asn1data::WalkElement& element) override;

    /// The text of a node that was wanted, when the walk is over.
    const NodeText& of(ValueTree::Index node) const;

private:
    bool isWanted(ValueTree::Index node) const {
        return next_ < wanted_.size() && wanted_[next_] == node;
    }
    void addValue(const asn1data::WalkElement& element, const std::string& name);
    void take(ValueTree::Index node, const asn1data::WalkElement& element, bool behind);
    void finish();

    const ValueTree& tree_;
    std::vector<ValueTree::Index> wanted_;
    std::vector<NodeText> texts_;
    std::size_t room_;
    const asn1text::IdentifierNames& names_;
    asn1data::ContentsEnd ends_;
    ValueTree::Index index_ = 0; ///< of the element that comes next
    std::size_t next_ = 0;       ///< wanted one that is told of now, or next
    unsigned inside_ = 0;        ///< elements entered, from the one that is told of on
    std::size_t leftOut_ = 0;    ///< values that did not fit
};

} // namespace derview

#endif
