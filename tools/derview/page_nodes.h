#ifndef DERVIEW_PAGE_NODES_H
#define DERVIEW_PAGE_NODES_H

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <brevantis/asn1/text/json_stream.h>

#include "octets.h"

namespace derview {

/// Which octets of an element a page shows as its value.
enum class PageHex : unsigned char {
    None,
    Contents,
    Bits, ///< its contents behind the octet that counts unused bits
    Whole ///< its header too
};

/// A line of a page's tree: an element, or something that is told of octets.
struct PageNode {
    std::string name;
    std::vector<std::string> choices;
    std::string type;
    const char* style = ""; ///< class of its value
    PageHex hex = PageHex::None;
    bool container = false; ///< lines follow in it, up to the call of `leave`
    bool assembled = false; ///< its place is none in the message
    bool inner = false;     ///< no path of the message leads to it
    std::size_t offset = 0;
    std::size_t header = 0;   ///< octets of it
    std::size_t contents = 0; ///< octets of them, end-of-contents included
    std::optional<std::string> text;
};

/// Collects the lines of a page's tree in little memory: what many of them have in common stands in
/// a table, and so do texts that come again. Both go on from message to message of a page.
///
/// Each line takes a few octets, all of them numbers of seven bits an octet, low ones first, the
/// high bit telling that the number goes on:
///  - twice the place of its shape in the table, from 1, and 1 more where an offset follows
///  - the difference of its offset to where the line before ends, or its contents begin; twice, and
///    for one below 0 the complement of that
///  - the octets of its contents
///  - where its shape tells of a text: the place of the text in the table, from 1, or 0 for the
///  next
///    one that has not been used yet
/// A 0 in place of a shape is the end of a container. The name "[]" stands for the next place in
/// the list around.
class PageNodes {
public:
    /// Begins a message whose elements begin at an offset.
    void begin(std::size_t offset);
    void add(PageNode node);
    /// Ends the container that was added last and has not ended.
    void leave();
    /// How many containers have not ended.
    std::size_t depth() const { return open_.size(); }

    /// Writes the keys of the message, and what the tables have got since the last one.
    void write(asn1text::JsonStream& json);

private:
    struct Open {
        std::size_t end; ///< offset behind it
        unsigned next;   ///< place of the next one in a list
    };

    void number(std::size_t number);
    void numberPlaces(PageNode& node);
    unsigned shapeOf(const PageNode& node);
    void addText(std::string&& text);

    std::unordered_map<std::string, unsigned> shapes_;
    std::unordered_map<std::string, unsigned> known_; ///< places of short texts
    std::vector<PageNode> newShapes_;
    std::vector<std::string> newTexts_;
    unsigned texts_ = 0;
    std::vector<Open> open_;
    Open message_{};
    std::size_t expected_ = 0; ///< offset of the next line
    std::size_t count_ = 0;    ///< lines of the message
    OctetStore octets_;        ///< what is written of them
};

} // namespace derview

#endif
