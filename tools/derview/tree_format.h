#ifndef DERVIEW_TREE_FORMAT_H
#define DERVIEW_TREE_FORMAT_H

#include <memory>
#include <string>

#include <brevantis/asn1/asn1data/walk_rules.h>
#include <brevantis/asn1/text/inner_types.h>
#include <brevantis/asn1/text/labels.h>
#include <brevantis/asn1/text/value.h>

#include "format.h"
#include "plain_tree.h"
#include "tree_lines.h"

namespace derview {

/// Writes messages as trees, a line an element.
class TreeFormat : public Format {
public:
    explicit TreeFormat(const FormatContext& context)
        : TreeFormat(context, std::make_unique<TreeLines>(context.output, context.width,
                                                          context.arguments.offsets,
                                                          context.arguments.full)) {}

    void begin(const View& view) override;
    bool plain() override;
    asn1data::WalkInterest interest() const override { return {true, true, true}; }
    asn1data::WalkAction enter(const asn1data::WalkElement& element) override;
    asn1data::WalkAction leave(const asn1data::WalkElement& element) override;
    asn1data::WalkAction primitive(const asn1data::WalkElement& element) override;
    asn1data::WalkAction fault(const asn1data::WalkFault& fault) override;

    void missing(const asn1data::WalkResult& walked) override;
    void error(const asn1data::WalkFailure& failure) override;
    void trailing(const Leftover& left) override;
    bool end() override { return !hidesOctets_; }

protected:
    /// @param lines what the tree is written with; they outlive the object
    TreeFormat(const FormatContext& context, TreeLines& lines)
        : output_(context.output), names_(context.arguments.names), lines_(lines),
          plain_(lines, names_), fingerprint_(context.arguments.fingerprint) {}

    virtual void writeHeading();
    /// "FILE: Certificate", and what is told behind it.
    std::string headingText() const;
    std::string headingRest() const;
    const View& view() const { return *view_; }

    Output& output_;

private:
    TreeFormat(const FormatContext& context, std::unique_ptr<TreeLines> lines)
        : TreeFormat(context, *lines) {
        own_ = std::move(lines);
    }
    /// Writes what stands in front of the value.
    /// @return the column that the value begins at
    std::size_t writeLabel(const asn1data::WalkElement& element);
    void writeValue(const asn1data::WalkElement& element, std::size_t column);
    /// Writes what is inside a value in lines of its own.
    /// @return whether there is something that is told so
    bool writeInside(const asn1data::WalkElement& element, std::size_t column);
    /// Writes a name in one line.
    /// @return whether it could be
    bool writeName(const asn1data::WalkElement& element);
    /// Columns for the names of the elements in the one around.
    std::size_t nameColumns();
    void writeKey(const asn1data::WalkElement& element, std::size_t column);
    void openInside(const asn1data::TypeDescription& type, Octets octets, const TreePlace& place);
    void reach(const asn1data::WalkElement& element, bool entered);
    void writeRest();
    std::size_t depth() const { return outerDepth_ + labels_.depth(); }

    const IdentifierNames& names_;
    TreeLines& lines_;
    std::unique_ptr<TreeLines> own_;
    PlainTree plain_;
    bool fingerprint_;
    bool first_ = true; ///< no message has been written yet
    const View* view_ = nullptr;
    Labels labels_;
    asn1data::ContentsEnd ends_;
    InnerTypes types_;
    std::size_t outerDepth_ = 0; ///< of the value that what is walked stands in
    std::size_t shift_ = 0;      ///< from its offsets to those of the message
    bool faulted_ = false;       ///< the walk has told a fault
    bool hidesOctets_ = false;   ///< behind the typed value in an OCTET STRING, and noted only
    std::size_t reached_ = 0;    ///< octets of the message that have been shown
    const asn1data::TypeDescription* container_ = nullptr; ///< that `columns_` is about
    std::size_t columns_ = 0;
};

} // namespace derview

#endif
