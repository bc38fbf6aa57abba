#ifndef DERVIEW_VIEWER_H
#define DERVIEW_VIEWER_H

#include <memory>

#include "format.h"
#include "progress.h"

namespace derview {

/// Shows messages, or one element of each, in the format that is asked for.
class Viewer {
public:
    Viewer(const FormatContext& context, Progress& progress);

    /// @param recognition without a type for a message to be shown by its tags alone
    /// @return whether the message decodes and nothing is wrong with it
    bool show(const Message& message, const Recognition& recognition);

    /// There are no more messages.
    void finish() { format_->finish(); }

private:
    bool showPlain(const Message& message, const Recognition& recognition);
    bool showElement(const Message& message, const Recognition& recognition);
    bool write(const View& view);
    /// Goes through what is shown.
    asn1data::WalkResult walk(const View& view);
    bool writeRaw(const Message& message, const asn1data::ElementSpan& span);
    bool tellPath(const Message& message, const Recognition& recognition);
    bool tellMissing(const Message& message, const asn1data::TypeDescription& type,
                     const asn1data::ElementSpan& span);

    Output& output_;
    Diagnostics& diagnostics_;
    Progress& progress_;
    const Arguments& arguments_;
    std::unique_ptr<Format> format_;
};

} // namespace derview

#endif
