#include "viewer.h"

#include <brevantis/asn1/runtime/status.h>

#include "escape.h"
#include "failure_text.h"
#include "header.h"
#include "path_filter.h"
#include "path_hint.h"

namespace derview {

using asn1data::ElementSpan;
using asn1data::WalkResult;

Viewer::Viewer(const FormatContext& context, Progress& progress)
    : output_(context.output), diagnostics_(context.diagnostics), progress_(progress),
      arguments_(context.arguments), format_(arguments_.format->make(context)) {}

bool Viewer::showPlain(const Message& message, const Recognition& recognition) {
    const View view{message, recognition};
    if (!format_->takes(view)) {
        return false;
    }
    format_->begin(view);
    bool good = format_->plain();
    if (message.trailing != 0) {
        format_->trailing({message.trailing, message.offset + message.octets.size()});
        good = false;
    }
    return format_->end() && good;
}

bool Viewer::show(const Message& message, const Recognition& recognition) {
    if (recognition.type == nullptr) {
        return showPlain(message, recognition);
    }
    if (arguments_.path) {
        return showElement(message, recognition);
    }
    if (arguments_.atOffset) {
        return tellPath(message, recognition);
    }
    if (message.missing() == 0) {
        return write({message, recognition});
    }
    const WalkResult cut = decoderResult(message, *recognition.type);
    return write({message, recognition, nullptr, nullptr, &cut});
}

bool Viewer::showElement(const Message& message, const Recognition& recognition) {
    const std::string& path = *arguments_.path;
    const ElementSpan span = asn1data::findElement(*recognition.type, message.shown.data(),
                                                   message.shown.size(), path.c_str());
    if (span.status != 0 || span.offset + std::size_t{span.size} > message.octets.size()) {
        return tellMissing(message, *recognition.type, span);
    }
    return arguments_.raw ? writeRaw(message, span) : write({message, recognition, &span, &path});
}

bool Viewer::write(const View& view) {
    if (!format_->takes(view)) {
        return false;
    }
    format_->begin(view);
    const WalkResult walked = walk(view);
    if (view.cut != nullptr) {
        format_->missing(walked);
    } else if (walked.status != 0) {
        format_->error(walked.failure);
    }
    for (const std::string& text : toleratedTexts(view.message, view.type())) {
        diagnostics_.tell(view.message, text);
    }
    const Leftover left = view.message.leftover(walked);
    if (left.count != 0) {
        format_->trailing(left);
    }
    const bool good = format_->end();
    return good && walked.status == 0 && left.count == 0 && view.cut == nullptr;
}

WalkResult Viewer::walk(const View& view) {
    const Octets octets = view.message.shown;
    const asn1data::ReadingPolicy& policy = view.message.policy;
    ProgressVisitor counted(progress_, *format_);
    if (view.span != nullptr) {
        PathFilter filter(*view.span, counted);
        return asn1data::walk(view.type(), octets.data(), octets.size(), filter, policy);
    }
    if (view.cut != nullptr) {
        EndFilter whole(view.message.octets.size(), counted);
        return asn1data::walk(view.type(), octets.data(), octets.size(), whole, policy);
    }
    return asn1data::walk(view.type(), octets.data(), octets.size(), counted, policy);
}

namespace {

/// The octets of an element without its header, and without the end-of-contents octets.
Octets contentsOf(const ElementSpan& span) {
    const std::size_t header = span.contentOffset - span.offset;
    const std::size_t size = span.contentLength == ASN1IndefiniteLength
                                 ? span.size - header - EndOfContentsSize
                                 : static_cast<std::size_t>(span.contentLength);
    return {span.data + header, size};
}

} // namespace

bool Viewer::tellPath(const Message& message, const Recognition& recognition) {
    const std::size_t offset = *arguments_.atOffset;
    PathAtOffset finder(offset);
    if (offset < message.octets.size()) {
        asn1data::walk(*recognition.type, message.shown.data(), message.shown.size(), finder,
                       message.policy);
    }
    if (!finder.found) {
        diagnostics_.tell(message,
                          "no element that can be read has the octet " + std::to_string(offset));
        return false;
    }
    output_.write(Style::Heading, message.place + ": ");
    output_.write((finder.path.empty() ? "(the message)" : escapeName(finder.path)) + "\n");
    return true;
}

bool Viewer::writeRaw(const Message& message, const ElementSpan& span) {
    output_.writeOctets(arguments_.contents ? contentsOf(span) : Octets(span.data, span.size));
    if (message.trailing != 0) {
        diagnostics_.tell(message, trailingText(message.trailing));
    }
    return message.trailing == 0;
}

bool Viewer::tellMissing(const Message& message, const asn1data::TypeDescription& type,
                         const ElementSpan& span) {
    const std::string path = "'" + escapeName(*arguments_.path) + "'";
    const bool reachesEnd = span.status == 0 || span.failure.offset >= message.octets.size();
    if (message.missing() != 0 && reachesEnd) {
        diagnostics_.tell(message, "the message is cut short in front of the end of " + path);
    } else if (span.failure.status != 0) {
        diagnostics_.tell(message, std::string("error in front of ") + path + ", " +
                                       rtStatusName(span.failure.status) + " at " +
                                       placeText(span.failure) + ": " + reasonText(span.failure));
    } else if (span.status == ASN1S_INVALID_PARAMETER) {
        diagnostics_.tell(message, path + " is no path");
    } else if (span.status == ASN1S_NOT_SUPPORTED) {
        diagnostics_.tell(message, path + " lies in an OCTET STRING that comes in segments");
    } else {
        diagnostics_.tell(message,
                          "there is no " + path + pathHint(message, type, *arguments_.path));
    }
    return false;
}

} // namespace derview
