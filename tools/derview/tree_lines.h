#ifndef DERVIEW_TREE_LINES_H
#define DERVIEW_TREE_LINES_H

#include <string>
#include <string_view>

#include <brevantis/asn1/text/value.h>

#include "cut_text.h"
#include "output.h"

namespace derview {

/// Where an element stands in the message.
struct TreePlace {
    std::size_t offset;
    std::size_t headerLength;
    long long contentLength; ///< below 0 for an indefinite length
    bool assembled;          ///< as in WalkElement
    bool inner = false;      ///< in a value that the type of the message leaves unopened
};

/// The colour of a value.
Style styleOf(ValueKind kind);

/// The lines of a tree: margins, names, and values that are cut or go on in further lines.
class TreeLines {
public:
    /// @param width columns
    /// @param offsets in front of each line: offset, octets of header and of contents
    /// @param full nothing is cut; long values go on in further lines
    TreeLines(Output& output, std::size_t width, bool offsets, bool full)
        : output_(output), width_(width), offsets_(offsets), full_(full) {}

    virtual ~TreeLines() = default;
    TreeLines(const TreeLines&) = delete;
    TreeLines& operator=(const TreeLines&) = delete;

    bool offsets() const { return offsets_; }
    bool full() const { return full_; }

    /// Begins the line of an element.
    /// @return the column to write at
    virtual std::size_t begin(std::size_t depth, const TreePlace& place);
    /// Writes a name, and blanks up to where the names beside it end.
    virtual std::size_t name(std::string_view name, std::size_t columns, std::size_t column);
    /// Writes what stands in front of a value, as "utf8String: ".
    virtual std::size_t prefix(std::string_view text, std::size_t column);
    /// Writes a text and ends the line.
    virtual void text(Style style, std::string_view text, std::size_t column);
    virtual void value(ValueKind kind, const ValueText& value, std::size_t column);
    /// Writes octets in digits, all of them, and ends the line.
    virtual void octets(Octets octets, std::size_t column);
    /// Tells what is wrong, at a depth of the tree.
    /// @param place that it is about
    virtual void failure(std::size_t depth, const std::string& text, const TreePlace& place);
    /// Tells something about the message behind its tree.
    virtual void note(const std::string& text);

    /// Columns for a value.
    std::size_t roomAt(std::size_t column) const;
    /// Where a value goes that needs so many columns at least: here, or in the next line.
    virtual std::size_t findRoom(std::size_t column, std::size_t columns);

    /// Columns below which a value is better off in a line of its own.
    static constexpr std::size_t LeastRoom = 16;

private:
    std::size_t margin() const;

    Output& output_;
    std::size_t width_;
    bool offsets_;
    bool full_;
    std::size_t depth_ = 0; ///< of the line that was begun last
};

} // namespace derview

#endif
