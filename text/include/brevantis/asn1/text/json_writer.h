#ifndef BREVANTIS_ASN1_TEXT_JSON_WRITER_H
#define BREVANTIS_ASN1_TEXT_JSON_WRITER_H

#include <vector>

#include <brevantis/asn1/asn1data/reading_policy.h>
#include <brevantis/asn1/asn1data/walk.h>
#include <brevantis/asn1/asn1data/walk_rules.h>
#include <brevantis/asn1/text/export.h>
#include <brevantis/asn1/text/json_stream.h>
#include <brevantis/asn1/text/labels.h>
#include <brevantis/asn1/text/names.h>

/// @file
/// Messages as JSON, in the form that docs/derview-json.md tells.

namespace asn1text {

/// Writes what a walk comes across as one JSON value, while it goes on. What it keeps grows with
/// the depth of the message alone.
class BREVANTIS_ASN1_TEXT_API JsonWriter : public asn1data::WalkVisitor {
public:
    /// @param json receives the value where it stands
    /// @param names of identifiers; they outlive the object
    explicit JsonWriter(JsonStream& json,
                        const IdentifierNames& names = IdentifierNames::ofLibrary())
        : json_(json), names_(names), depth_(json.depth()) {}

    asn1data::WalkAction enter(const asn1data::WalkElement& element) override;
    asn1data::WalkAction leave(const asn1data::WalkElement& element) override;
    asn1data::WalkAction primitive(const asn1data::WalkElement& element) override;

    /// Ends what a walk has left open; where nothing was written, the value is null. To be called
    /// once the walk is over.
    void end();
    /// Whether octets stand behind a typed value in an OCTET STRING, which are no part of it.
    bool hasTrailing() const { return hasTrailing_; }

private:
    /// Writes the key of an element and opens an object for each choice in it.
    void beginElement(const asn1data::WalkElement& element);
    void writeValue(const asn1data::WalkElement& element);
    void writeTrailing(const asn1data::WalkElement& element, std::size_t count);

    JsonStream& json_;
    const IdentifierNames& names_;
    std::size_t depth_; ///< of the JSON around
    Labels labels_;
    asn1data::ContentsEnd ends_;
    bool hasTrailing_ = false;
    std::vector<std::size_t> depths_; ///< of the JSON in front of each element that is entered
    bool wrote_ = false;              ///< anything of the value
};

/// Writes a message as JSON.
/// @param type what the message is
/// @param message at most 0x7FFFFFFF octets
/// @param sink receives the text piece by piece, a line end behind it
/// @param policy how the message is read
/// @param names of identifiers
/// @return how the walk ended: after a failure the text goes as far as the message could be read,
///         and is whole JSON
/// @throws std::bad_alloc, and what the sink throws
BREVANTIS_ASN1_TEXT_API asn1data::WalkResult
writeJson(const asn1data::TypeDescription& type, Octets message, Sink& sink,
          JsonLayout layout = JsonLayout::Indented, const asn1data::ReadingPolicy& policy = {},
          const IdentifierNames& names = IdentifierNames::ofLibrary());

/// Writes a record as JSON, by encoding it and writing the message.
/// @param value the record that @p type describes, not changed
/// @return 0; or the negative status of the encoder, and then nothing was written
/// @throws std::bad_alloc, and what the sink throws
BREVANTIS_ASN1_TEXT_API int writeJson(const asn1data::TypeDescription& type, const void* value,
                                      Sink& sink, JsonLayout layout = JsonLayout::Indented);

} // namespace asn1text

#endif
