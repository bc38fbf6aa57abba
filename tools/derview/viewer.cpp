#include "viewer.h"

#include <cstdio>

#include "contents_end.h"
#include "failure_text.h"
#include "json_writer.h"
#include "path_filter.h"
#include "tree_writer.h"

namespace derview {

using asn1data::ElementSpan;
using asn1data::WalkResult;

namespace {

/// A text from the command line as valid UTF-8.
std::string givenText(const std::string& text) {
    const void* const start = text.data();
    return toUtf8({static_cast<const unsigned char*>(start), text.size()}, CharacterCoding::Utf8);
}

void writeError(JsonStream& json, const asn1data::WalkFailure& failure) {
    json.key("error");
    json.beginObject();
    json.key("status");
    json.number(failure.status);
    json.key("name");
    json.string(rtStatusName(failure.status));
    json.key("offset");
    json.number(failure.offset);
    json.key("path");
    json.string(failure.path);
    json.key("expected");
    json.string(expectedText(failure));
    json.key("found");
    json.string(foundText(failure));
    json.end();
}

/// Finds the octets that a message loses when it is encoded again: those behind the typed values in
/// its OCTET STRINGs.
class HiddenOctets : public asn1data::WalkVisitor {
public:
    asn1data::WalkAction enter(const asn1data::WalkElement& element) override {
        ends_.enter(element);
        return asn1data::WalkAction::Continue;
    }
    asn1data::WalkAction leave(const asn1data::WalkElement& element) override {
        if (const std::size_t hidden = ends_.leave(element).hidden; hidden != 0) {
            places.push_back(asn1data::pathText(*element.step) + ": " + octetsText(hidden) +
                             " behind the value left out");
        }
        return asn1data::WalkAction::Continue;
    }
    asn1data::WalkAction primitive(const asn1data::WalkElement& element) override {
        ends_.primitive(element);
        return asn1data::WalkAction::Continue;
    }

    std::vector<std::string> places; ///< what to tell of each

private:
    ContentsEnd ends_;
};

} // namespace

bool Viewer::show(const Message& message, const Recognition& recognition) {
    const View whole{message, recognition, nullptr};
    if (!arguments_.path) {
        switch (arguments_.format) {
        case Format::Json:
            return showJson(whole);
        case Format::Der:
            return showDer(whole);
        case Format::Tree:
            break;
        }
        return showTree(whole);
    }
    const Octets octets = message.shown;
    const ElementSpan span = asn1data::findElement(*recognition.type, octets.data(), octets.size(),
                                                   arguments_.path->c_str());
    if (span.status != 0 || span.offset + std::size_t{span.size} > message.octets.size()) {
        return tellMissing(message, span);
    }
    if (arguments_.raw) {
        return showRaw(message, span);
    }
    const View part{message, recognition, &span};
    return arguments_.format == Format::Json ? showJson(part) : showTree(part);
}

void Viewer::tell(const Message& message, const std::string& text) {
    progress_.clear();
    output_.flush();
    std::fprintf(stderr, "%s: %s\n", message.place.c_str(), text.c_str());
}

bool Viewer::showRaw(const Message& message, const ElementSpan& span) {
    output_.writeOctets({span.data, span.size});
    if (message.trailing != 0) {
        tell(message, trailingText(message.trailing));
    }
    return message.trailing == 0;
}

bool Viewer::tellMissing(const Message& message, const ElementSpan& span) {
    const std::string path = "'" + escapeName(*arguments_.path) + "'";
    const bool reachesEnd = span.status == 0 || span.failure.offset >= message.octets.size();
    if (message.missing() != 0 && reachesEnd) {
        tell(message, "the message is cut short in front of the end of " + path);
    } else if (span.failure.status != 0) {
        tell(message, std::string("error in front of ") + path + ", " +
                          rtStatusName(span.failure.status) + " at " + placeText(span.failure) +
                          ": " + reasonText(span.failure));
    } else if (span.status == ASN1S_INVALID_PARAMETER) {
        tell(message, path + " is no path");
    } else if (span.status == ASN1S_NOT_SUPPORTED) {
        tell(message, path + " lies in an OCTET STRING that comes in segments");
    } else {
        tell(message, "there is no " + path);
    }
    return false;
}

WalkResult Viewer::walk(const View& view, asn1data::WalkVisitor& visitor) {
    const Octets octets = view.message.shown;
    ProgressVisitor counted(progress_, visitor);
    if (view.span == nullptr) {
        EndFilter whole(view.message.octets.size(), counted);
        const bool cut = view.message.missing() != 0;
        return asn1data::walk(*view.recognition.type, octets.data(), octets.size(),
                              cut ? static_cast<asn1data::WalkVisitor&>(whole) : counted);
    }
    PathFilter filter(*view.span, counted);
    return asn1data::walk(*view.recognition.type, octets.data(), octets.size(), filter);
}

void Viewer::writeHeading(const View& view) {
    const Message& message = view.message;
    if (shown_++ != 0) {
        output_.write("\n");
    }
    output_.write(Style::Heading, message.place + ": " + view.recognition.type->name);
    std::string more = ", ";
    if (view.span != nullptr) {
        const std::string& path = *arguments_.path;
        more += (path.empty() ? "the message" : escapeName(path)) + " at offset " +
                std::to_string(view.span->offset) + ", " + octetsText(view.span->size);
    } else {
        more += octetsText(message.octets.size()) + ", " + view.recognition.reason;
    }
    output_.write(Style::Quiet, more);
    output_.write("\n");
}

bool Viewer::showTree(const View& view) {
    const Message& message = view.message;
    const bool cut = view.span == nullptr && message.missing() != 0;
    writeHeading(view);
    TreeWriter tree(output_, {width_, arguments_.offsets, arguments_.full});
    if (cut) {
        const WalkResult decoded = decoderResult(message, *view.recognition.type);
        if (decoded.status != 0) {
            tree.writeFailure(errorText(decoded.failure));
        }
    }
    const WalkResult result = walk(view, tree);
    const asn1data::WalkFailure& failure = result.failure;
    if (cut && (result.stopped || failure.offset >= message.octets.size())) {
        tree.writeFailure("the message ends here: " + missingText(message));
    } else if (result.status != 0) {
        tree.writeFailure(errorText(failure));
        const std::size_t left = message.octets.size() - failure.offset;
        if (!failure.assembled && failure.offset < message.octets.size()) {
            tree.writeNote(octetsText(left) + " from offset " + std::to_string(failure.offset) +
                           " on not shown");
        }
    }
    const Leftover left = message.leftover(result);
    if (left.count != 0) {
        tree.writeNote(trailingText(left.count) + " from offset " + std::to_string(left.offset) +
                       " on");
    }
    return result.status == 0 && left.count == 0 && !cut && !tree.hidesOctets();
}

bool Viewer::showJson(const View& view) {
    const Message& message = view.message;
    JsonStream json(output_, arguments_.lines);
    json.beginObject();
    json.key("file");
    json.string(givenText(message.file));
    json.key("message");
    json.number(static_cast<long long>(message.number));
    if (!message.label.empty()) {
        json.key("label");
        json.string(message.label);
    }
    json.key("type");
    json.string(view.recognition.type->name);
    json.key("recognised");
    json.string(view.recognition.reason);
    if (view.span != nullptr) {
        json.key("path");
        json.string(givenText(*arguments_.path));
        json.key("offset");
        json.number(view.span->offset);
    }
    json.key("size");
    json.number(
        static_cast<long long>(view.span != nullptr ? view.span->size : message.octets.size()));
    json.key("value");
    JsonWriter writer(json);
    const WalkResult result = walk(view, writer);
    if (!writer.wroteAnything()) {
        json.literal("null");
    }
    json.endTo(1);
    const bool cut = view.span == nullptr && message.missing() != 0;
    if (cut) {
        const WalkResult decoded = decoderResult(message, *view.recognition.type);
        if (decoded.status != 0) {
            writeError(json, decoded.failure);
        }
        json.key("missing");
        json.number(static_cast<long long>(message.missing()));
    } else if (result.status != 0) {
        writeError(json, result.failure);
    }
    const std::size_t left = message.leftover(result).count;
    if (left != 0) {
        json.key("trailing");
        json.number(static_cast<long long>(left));
    }
    json.end();
    json.finish();
    return result.status == 0 && left == 0 && !cut && !writer.hidesOctets();
}

bool Viewer::showDer(const View& view) {
    const Message& message = view.message;
    const asn1data::TypeDescription& type = *view.recognition.type;
    HiddenOctets hidden;
    const WalkResult decoded =
        asn1data::walk(type, message.octets.data(), message.octets.size(), hidden);
    if (decoded.status != 0) {
        tell(message, std::string(type.name) + " " + errorText(decoded.failure));
        return false;
    }
    if (message.missing() != 0) {
        tell(message, std::string(type.name) + " cut short: " + missingText(message));
        return false;
    }
    if (const int status = recoder_.recode(type, message.octets); status != 0) {
        tell(message, std::string(type.name) + " error " + statusText(status) + " in encoding");
        return false;
    }
    output_.writeOctets(recoder_.encoded());
    for (const std::string& place : hidden.places) {
        tell(message, place);
    }
    const std::size_t left = message.leftover(decoded).count;
    if (left != 0) {
        tell(message, trailingText(left));
    }
    return left == 0 && hidden.places.empty();
}

} // namespace derview
