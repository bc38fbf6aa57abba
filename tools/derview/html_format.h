#ifndef DERVIEW_HTML_FORMAT_H
#define DERVIEW_HTML_FORMAT_H

#include "page_lines.h"
#include "tree_format.h"

namespace derview {

/// Writes one page for all messages, which needs nothing but a browser. The tree of a message
/// stands in a block of data in it, and so do its octets; the script of the page makes text of
/// them.
class HtmlFormat : public TreeFormat {
public:
    explicit HtmlFormat(const FormatContext& context)
        : TreeFormat(context, lines_), diagnostics_(context.diagnostics), lines_(context.output) {}

    bool takes(const View& view) override;
    void begin(const View& view) override;
    bool end() override;
    void finish() override;

protected:
    void writeHeading() override {}

private:
    void writeBlock();

    Diagnostics& diagnostics_;
    PageLines lines_;
    std::size_t total_ = 0; ///< octets of all messages in the page
    Octets octets_;         ///< of the message that are in the page
};

} // namespace derview

#endif
