#ifndef DERVIEW_LINT_H
#define DERVIEW_LINT_H

#include <functional>
#include <utility>

#include <brevantis/asn1/asn1data/reading_policy.h>

#include "octets.h"

namespace derview {

/// Tells everything in a message that the Distinguished Encoding Rules do not allow.
class Lint : public asn1data::DerVisitor {
public:
    using Report = std::function<void(const asn1data::Deviation&)>;

    Lint(Octets message, Report report)
        : DerVisitor(message.data(), message.size()), report_(std::move(report)) {}

    asn1data::WalkAction deviates(const asn1data::Deviation& deviation) override {
        report_(deviation);
        return asn1data::WalkAction::Continue;
    }

private:
    Report report_;
};

} // namespace derview

#endif
