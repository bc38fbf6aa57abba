#ifndef DERVIEW_JSON_FORMAT_H
#define DERVIEW_JSON_FORMAT_H

#include <optional>

#include <brevantis/asn1/text/json_writer.h>

#include "format.h"

namespace derview {

/// Writes each message as one JSON object, as docs/derview-json.md tells it.
class JsonFormat : public Format {
public:
    explicit JsonFormat(const FormatContext& context)
        : json_(context.output,
                context.arguments.lines ? JsonLayout::OneLine : JsonLayout::Indented),
          names_(context.arguments.names) {}

    void begin(const View& view) override;
    bool plain() override;
    asn1data::WalkAction enter(const asn1data::WalkElement& element) override {
        return value_->enter(element);
    }
    asn1data::WalkAction leave(const asn1data::WalkElement& element) override {
        return value_->leave(element);
    }
    asn1data::WalkAction primitive(const asn1data::WalkElement& element) override {
        return value_->primitive(element);
    }
    void missing(const asn1data::WalkResult& walked) override;
    void error(const asn1data::WalkFailure& failure) override;
    void trailing(const Leftover& left) override;
    bool end() override;

private:
    /// Ends the value that the message has come to so far.
    void endValue();
    void writeError(const asn1data::WalkFailure& failure);

    JsonStream json_;
    const IdentifierNames& names_;
    const View* view_ = nullptr;
    std::optional<JsonWriter> value_; ///< while its message is gone through
    bool hasTrailing_ = false;        ///< behind the typed value in an OCTET STRING
};

} // namespace derview

#endif
