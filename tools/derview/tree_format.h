#ifndef DERVIEW_TREE_FORMAT_H
#define DERVIEW_TREE_FORMAT_H

#include <string>

#include <brevantis/asn1/asn1data/walk_rules.h>
#include <brevantis/asn1/text/labels.h>
#include <brevantis/asn1/text/value.h>

#include "cut_text.h"
#include "format.h"

namespace derview {

/// Writes messages as trees, a line an element.
class TreeFormat : public Format {
public:
    explicit TreeFormat(const FormatContext& context)
        : output_(context.output), width_(context.width), names_(context.arguments.names),
          offsets_(context.arguments.offsets), full_(context.arguments.full) {}

    void begin(const View& view) override;
    asn1data::WalkAction enter(const asn1data::WalkElement& element) override;
    asn1data::WalkAction leave(const asn1data::WalkElement& element) override;
    asn1data::WalkAction primitive(const asn1data::WalkElement& element) override;

    void missing(const asn1data::WalkResult& walked) override;
    void error(const asn1data::WalkFailure& failure) override;
    void trailing(const Leftover& left) override;
    bool end() override { return !hidesOctets_; }

private:
    void writeHeading();
    /// Tells a failure at the place where the tree ends.
    void writeFailure(const std::string& text);
    /// Tells something about the message behind its tree.
    void writeNote(const std::string& text);
    /// Writes what stands in front of the value.
    /// @return the column that the value begins at
    std::size_t writeLabel(const asn1data::WalkElement& element);
    void writeValue(const asn1data::WalkElement& element, std::size_t column);
    void writeText(ValueKind kind, const ValueText& value, std::size_t column);
    /// Goes on in further lines where the first one is full.
    void writeOctets(Octets octets, std::size_t column);
    void writeWrapped(Style style, std::string_view text, std::size_t column);
    std::size_t roomAt(std::size_t column) const;
    /// Goes on in the next line, further to the left, where a text has too little room.
    /// @param columns that the text takes, or that it needs at least
    /// @return the column to write at
    std::size_t findRoom(std::size_t column, std::size_t columns);
    std::size_t margin() const;

    Output& output_;
    std::size_t width_; ///< columns
    const IdentifierNames& names_;
    bool offsets_;      ///< in front of each line: offset, octets of header and of contents
    bool full_;         ///< nothing is cut; long values go on in further lines
    bool first_ = true; ///< no message has been written yet
    const View* view_ = nullptr;
    Labels labels_;
    asn1data::ContentsEnd ends_;
    bool hidesOctets_ = false; ///< behind the typed value in an OCTET STRING, and noted only
};

} // namespace derview

#endif
