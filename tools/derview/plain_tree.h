#ifndef DERVIEW_PLAIN_TREE_H
#define DERVIEW_PLAIN_TREE_H

#include <brevantis/asn1/text/elements.h>
#include <brevantis/asn1/text/names.h>

#include "raw_value.h"
#include "tree_lines.h"

namespace derview {

/// Writes octets of no known type as elements, by their tags, lengths and contents.
class PlainTree {
public:
    PlainTree(TreeLines& lines, const IdentifierNames& names) : lines_(lines), names_(names) {}

    /// Writes octets as elements, one behind another; what is none is written in digits.
    /// @param depth of their lines
    /// @param place of the first octet: its offset, and whether that is one in assembled octets
    /// @return whether all of it is elements, to the innermost one
    bool write(Octets octets, std::size_t depth, const TreePlace& place);

    /// Writes an element whose line has begun.
    /// @return whether what is in it is elements
    bool writeValue(const PlainElement& element, std::size_t column, std::size_t depth,
                    const TreePlace& place);

private:
    void writePrimitive(const PlainElement& element, std::size_t column, std::size_t depth,
                        const TreePlace& place);
    bool writeTimestamps(const PlainElement& element, std::size_t column, std::size_t depth,
                         const TreePlace& place);
    void writeCut(Octets octets, std::size_t depth, TreePlace place);
    std::optional<RawValue> valueOf(const PlainElement& element, std::size_t room) const;
    void writeDigits(Octets octets, std::size_t column);
    /// Where octets inside an element stand.
    static TreePlace inside(const PlainElement& element, Octets octets, const TreePlace& place);

    TreeLines& lines_;
    const IdentifierNames& names_;
};

/// The room for a value that is not to be cut.
constexpr std::size_t Endless = static_cast<std::size_t>(-1);

} // namespace derview

#endif
