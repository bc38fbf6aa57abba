#ifndef DERVIEW_JSON_FORMAT_H
#define DERVIEW_JSON_FORMAT_H

#include "contents_end.h"
#include "format.h"
#include "json_stream.h"
#include "labels.h"

namespace derview {

/// Writes each message as one JSON object, as docs/derview-json.md tells it.
class JsonFormat : public Format {
public:
    explicit JsonFormat(const FormatContext& context)
        : json_(context.output, context.arguments.lines) {}

    void begin(const View& view) override;
    asn1data::WalkAction enter(const asn1data::WalkElement& element) override;
    asn1data::WalkAction leave(const asn1data::WalkElement& element) override;
    asn1data::WalkAction primitive(const asn1data::WalkElement& element) override;
    void missing(const asn1data::WalkResult& walked) override;
    void error(const asn1data::WalkFailure& failure) override;
    void trailing(const Leftover& left) override;
    bool end() override;

private:
    /// Ends the value that the message has come to so far.
    void endValue();
    void writeError(const asn1data::WalkFailure& failure);
    /// Writes the key of an element and opens an object for each choice in it.
    void beginElement(const asn1data::WalkElement& element);
    void writeValue(const asn1data::WalkElement& element);

    JsonStream json_;
    const View* view_ = nullptr;
    Labels labels_;
    ContentsEnd ends_;
    bool hidesOctets_ = false; ///< behind the typed value in an OCTET STRING, and counted only
    std::vector<std::size_t> depths_; ///< of the JSON in front of each element that is entered
    bool wrote_ = false;              ///< anything of the value
};

} // namespace derview

#endif
