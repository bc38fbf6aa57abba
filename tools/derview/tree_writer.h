#ifndef DERVIEW_TREE_WRITER_H
#define DERVIEW_TREE_WRITER_H

#include <string>

#include <brevantis/asn1/asn1data/walk.h>

#include "contents_end.h"
#include "labels.h"
#include "output.h"
#include "value_text.h"

namespace derview {

/// How a tree is written.
struct TreeOptions {
    std::size_t width = 80; ///< columns
    bool offsets = false;   ///< in front of each line: offset, octets of header and of contents
    bool full = false;      ///< nothing is cut; long values go on in further lines
};

/// Writes what a walk reports as a tree, a line an element.
class TreeWriter : public asn1data::WalkVisitor {
public:
    TreeWriter(Output& output, const TreeOptions& options) : output_(output), options_(options) {}

    asn1data::WalkAction enter(const asn1data::WalkElement& element) override;
    asn1data::WalkAction leave(const asn1data::WalkElement& element) override;
    asn1data::WalkAction primitive(const asn1data::WalkElement& element) override;

    /// Tells a failure at the place where the tree ends.
    void writeFailure(const std::string& text);
    /// Tells something about the message behind its tree.
    void writeNote(const std::string& text);

    /// Whether octets stand behind the typed value in an OCTET STRING, which the tree notes only.
    bool hidesOctets() const { return hidesOctets_; }

private:
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
    TreeOptions options_;
    Labels labels_;
    ContentsEnd ends_;
    bool hidesOctets_ = false;
};

} // namespace derview

#endif
