#ifndef DERVIEW_JSON_WRITER_H
#define DERVIEW_JSON_WRITER_H

#include <brevantis/asn1/asn1data/walk.h>

#include "contents_end.h"
#include "json_stream.h"
#include "labels.h"

namespace derview {

/// Writes what a walk reports as one JSON value, as docs/derview-json.md tells it.
class JsonWriter : public asn1data::WalkVisitor {
public:
    explicit JsonWriter(JsonStream& json) : json_(json) {}

    asn1data::WalkAction enter(const asn1data::WalkElement& element) override;
    asn1data::WalkAction leave(const asn1data::WalkElement& element) override;
    asn1data::WalkAction primitive(const asn1data::WalkElement& element) override;

    /// Whether anything was reported.
    bool wroteAnything() const { return wrote_; }
    /// Whether octets stand behind the typed value in an OCTET STRING, which are counted only.
    bool hidesOctets() const { return hidesOctets_; }

private:
    /// Writes the key of an element and opens an object for each choice in it.
    void beginElement(const asn1data::WalkElement& element);
    void writeValue(const asn1data::WalkElement& element);

    JsonStream& json_;
    Labels labels_;
    ContentsEnd ends_;
    bool hidesOctets_ = false;
    std::vector<std::size_t> depths_; ///< of the JSON in front of each element that is entered
    bool wrote_ = false;
};

} // namespace derview

#endif
