#ifndef DERVIEW_PAGE_LINES_H
#define DERVIEW_PAGE_LINES_H

#include <optional>
#include <vector>

#include "page_nodes.h"
#include "tree_lines.h"

namespace derview {

/// The lines of a tree as the nodes of a page. A value that stands in the message as it is shown is
/// taken from there.
class PageLines : public TreeLines {
public:
    explicit PageLines(Output& output) : TreeLines(output, Room, true, true) {}

    /// Begins a message.
    /// @param octets that the page shows of it
    /// @param walked what is gone through; the octets at its beginning are the same
    /// @param offset of the first of both
    /// @param whole a container that begins there is the message, which has a line already
    void begin(Octets octets, Octets walked, std::size_t offset, bool whole);
    /// Writes the keys of the message's lines.
    void write(asn1text::JsonStream& json);

    std::size_t begin(std::size_t depth, const TreePlace& place) override;
    std::size_t name(std::string_view name, std::size_t columns, std::size_t column) override;
    std::size_t prefix(std::string_view text, std::size_t column) override;
    void text(Style style, std::string_view text, std::size_t column) override;
    void value(ValueKind kind, const ValueText& value, std::size_t column) override;
    void octets(Octets octets, std::size_t column) override;
    void failure(std::size_t depth, const std::string& text, const TreePlace& place) override;
    void note(const std::string& text) override;
    std::size_t findRoom(std::size_t column, std::size_t /*columns*/) override { return column; }

private:
    static constexpr std::size_t Room = 4096; ///< columns

    /// Adds the line that has ended, now that it is known whether others are in it.
    void flush(std::size_t depth);
    /// Offset of octets in the message, if they stand in it.
    std::optional<std::size_t> offsetOf(Octets octets) const;
    std::size_t contentsOf(const TreePlace& place) const;

    PageNodes nodes_;
    Octets octets_;
    Octets walked_;
    std::size_t first_ = 0;
    bool whole_ = false;
    std::size_t header_ = 0;          ///< octets of the message's own
    std::optional<PageNode> line_;    ///< the last one
    std::size_t depth_ = 0;           ///< of it
    std::vector<std::size_t> depths_; ///< of those around it
};

} // namespace derview

#endif
