#ifndef DERVIEW_LIST_FORMAT_H
#define DERVIEW_LIST_FORMAT_H

#include <string>
#include <vector>

#include <brevantis/asn1/text/names.h>

#include "format.h"

namespace derview {

/// Writes a line a message: its type, the subject or the issuer, the serial number, the time that
/// it is good for; of one element, a line for each element in it.
class ListFormat : public Format {
public:
    explicit ListFormat(const FormatContext& context)
        : output_(context.output), diagnostics_(context.diagnostics),
          names_(context.arguments.names), fingerprint_(context.arguments.fingerprint) {}

    void begin(const View& view) override;
    bool plain() override;
    asn1data::WalkAction enter(const asn1data::WalkElement& element) override;
    asn1data::WalkAction leave(const asn1data::WalkElement& element) override;
    asn1data::WalkAction primitive(const asn1data::WalkElement& element) override;
    void missing(const asn1data::WalkResult& walked) override;
    void error(const asn1data::WalkFailure& failure) override;
    void trailing(const Leftover& left) override;
    bool end() override;

private:
    bool listsElements() const { return view_->span != nullptr; }
    /// Takes a value for the line of the message if it is one that is told there.
    void take(std::string_view name, const std::string& text);
    std::string nameOf(const asn1data::WalkElement& element) const;
    void addObject(const asn1data::WalkElement& element, bool isPrimitive);
    void writeEntry(std::string_view label);

    Output& output_;
    Diagnostics& diagnostics_;
    const IdentifierNames& names_;
    bool fingerprint_;
    const View* view_ = nullptr;
    std::size_t depth_ = 0;
    std::string subject_;
    std::string issuer_;
    std::string serialNumber_;
    std::string from_;
    std::string until_;
    std::string problem_;
    std::string entry_;      ///< of a list, as far as it has been read
    std::string label_;      ///< of that entry
    std::string identifier_; ///< of the value that follows, as long as nothing says more
};

} // namespace derview

#endif
