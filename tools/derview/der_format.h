#ifndef DERVIEW_DER_FORMAT_H
#define DERVIEW_DER_FORMAT_H

#include <vector>

#include <brevantis/asn1/asn1data/walk_rules.h>

#include "format.h"
#include "recode.h"

namespace derview {

/// Writes messages encoded again, whole ones only. Everything else is told on standard error.
class DerFormat : public Format {
public:
    explicit DerFormat(const FormatContext& context)
        : output_(context.output), diagnostics_(context.diagnostics) {}

    void begin(const View& view) override;
    asn1data::WalkAction enter(const asn1data::WalkElement& element) override;
    asn1data::WalkAction leave(const asn1data::WalkElement& element) override;
    asn1data::WalkAction primitive(const asn1data::WalkElement& element) override;
    void missing(const asn1data::WalkResult& walked) override;
    void error(const asn1data::WalkFailure& failure) override;
    void trailing(const Leftover& left) override { trailing_ = left.count; }
    bool end() override;

protected:
    /// Writes a message that was encoded again.
    virtual void write(const View& view, Octets encoded);

    Output& output_;

private:
    void refuse(const std::string& text);

    Diagnostics& diagnostics_;
    Recoder recoder_;
    const View* view_ = nullptr;
    asn1data::ContentsEnd ends_;
    /// What to tell of octets that get lost: those behind the typed values in OCTET STRINGs.
    std::vector<std::string> losses_;
    std::size_t trailing_ = 0;
    bool refused_ = false;
};

/// The same as blocks of PEM.
class PemFormat : public DerFormat {
public:
    using DerFormat::DerFormat;

protected:
    void write(const View& view, Octets encoded) override;
};

} // namespace derview

#endif
