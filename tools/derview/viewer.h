#ifndef DERVIEW_VIEWER_H
#define DERVIEW_VIEWER_H

#include "arguments.h"
#include "message.h"
#include "output.h"
#include "progress.h"
#include "recode.h"
#include "type_recognition.h"

namespace derview {

/// Shows messages, or one element of each, in the format that is asked for.
class Viewer {
public:
    Viewer(Output& output, Progress& progress, const Arguments& arguments, std::size_t width)
        : output_(output), progress_(progress), arguments_(arguments), width_(width) {}

    /// @return whether the message decodes and nothing is wrong with it
    bool show(const Message& message, const Recognition& recognition);

private:
    /// The part of a message that is shown.
    struct View {
        const Message& message;
        const Recognition& recognition;
        const asn1data::ElementSpan* span; ///< null for the whole message
    };

    bool showTree(const View& view);
    bool showJson(const View& view);
    bool showDer(const View& view);
    /// Goes through the part with a visitor.
    asn1data::WalkResult walk(const View& view, asn1data::WalkVisitor& visitor);
    void writeHeading(const View& view);
    bool showRaw(const Message& message, const asn1data::ElementSpan& span);
    bool tellMissing(const Message& message, const asn1data::ElementSpan& span);
    /// Tells something that does not belong on standard output.
    void tell(const Message& message, const std::string& text);

    Output& output_;
    Progress& progress_;
    const Arguments& arguments_;
    std::size_t width_;
    std::size_t shown_ = 0;
    Recoder recoder_;
};

} // namespace derview

#endif
