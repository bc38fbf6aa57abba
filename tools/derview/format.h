#ifndef DERVIEW_FORMAT_H
#define DERVIEW_FORMAT_H

#include <memory>
#include <span>
#include <string>

#include <brevantis/asn1/text/recognition.h>

#include "arguments.h"
#include "diagnostics.h"
#include "message.h"

namespace derview {

/// What is written of an input: a message, or one element of it.
struct View {
    const Message& message;
    const Recognition& recognition;
    const asn1data::ElementSpan* span = nullptr; ///< of the element; null for the whole message
    const std::string* path = nullptr;           ///< of the element, as given
    /// What the decoder makes of a whole message that is cut short; null for any other.
    const asn1data::WalkResult* cut = nullptr;

    const asn1data::TypeDescription& type() const { return *recognition.type; }
    std::size_t size() const { return span != nullptr ? span->size : message.octets.size(); }
};

/// A format that messages are written in. For each of them `begin` is called; then, as a walk comes
/// across them, `enter`, `leave` and `primitive`, and `fault` if it asks for that, or `plain` for a
/// message of no known type; then what applies of `missing`, `error` and `trailing`; then `end`.
/// What a view refers to lives until then.
class Format : public asn1data::WalkVisitor {
public:
    /// Whether a message can be written in this format. What is against it has been told, and
    /// nothing else is called for that message.
    virtual bool takes(const View& /*view*/) { return true; }
    virtual void begin(const View& view) = 0;
    /// The message is of no known type.
    /// @return whether it is sound
    virtual bool plain() { return false; }
    /// The message is cut short. Its walk went on with zeros, up to the first value that is not
    /// wholly there or to a failure in front of it.
    virtual void missing(const asn1data::WalkResult& walked) = 0;
    /// The walk failed.
    virtual void error(const asn1data::WalkFailure& failure) = 0;
    /// Octets are left over behind what was written.
    virtual void trailing(const Leftover& left) = 0;
    /// @return false when the format itself found something wrong with the message
    virtual bool end() = 0;
    /// There are no more messages.
    virtual void finish() {}
};

/// What a format writes to and goes by.
struct FormatContext {
    Output& output;
    Diagnostics& diagnostics;
    const Arguments& arguments;
    std::size_t width; ///< columns
};

/// A format by its name, and which options it takes.
struct FormatDescription {
    const char* name; ///< on the command line
    /// One format serves all messages, one after another.
    std::unique_ptr<Format> (*make)(const FormatContext& context);
    bool takesLayout; ///< --offsets and --full
    bool takesLines;  ///< --lines
    bool showsPlain;  ///< messages of no known type
    bool encodes;     ///< whole messages, encoded again
    bool isOctets;    ///< not for a terminal
};

/// All formats, the usual one first.
std::span<const FormatDescription> allFormats();

} // namespace derview

#endif
