#ifndef DERVIEW_LINT_H
#define DERVIEW_LINT_H

#include <functional>
#include <string>
#include <utility>

#include <brevantis/asn1/asn1data/walk.h>
#include <brevantis/asn1/asn1data/walk_rules.h>

#include "octets.h"

namespace derview {

/// Something in a message that the Distinguished Encoding Rules do not allow.
struct LintFinding {
    unsigned offset;
    bool assembled; ///< as in WalkElement
    std::string path;
    const char* what;
    const char* clause; ///< of X.690
};

/// Compares what a walk reports with the Distinguished Encoding Rules (X.690, 8, 10 and 11).
/// DEFAULT values are known where the type's description tells them.
class Lint : public asn1data::WalkVisitor {
public:
    using Report = std::function<void(const LintFinding&)>;

    Lint(Octets message, Report report)
        : order_(message.data(), message.size()), report_(std::move(report)) {}

    asn1data::WalkAction enter(const asn1data::WalkElement& element) override;
    asn1data::WalkAction leave(const asn1data::WalkElement& element) override;
    asn1data::WalkAction primitive(const asn1data::WalkElement& element) override;

private:
    /// @param entered other values are reported of it
    void look(const asn1data::WalkElement& element, bool entered);
    /// Looks at the identifier and length octets of an element and of the EXPLICIT tags around it.
    void lookAtHeaders(const asn1data::WalkElement& element, bool entered);
    void lookAtValue(const asn1data::WalkElement& element);
    void lookAtBits(const asn1data::WalkElement& element);
    /// Looks at octets of no known type: headers, and the values of universal tags.
    void lookAtRaw(const asn1data::WalkElement& element);
    void report(const asn1data::WalkElement& element, const char* what, const char* clause);

    asn1data::MemberOrder order_;
    asn1data::ContentsEnd ends_;
    Report report_;
};

} // namespace derview

#endif
