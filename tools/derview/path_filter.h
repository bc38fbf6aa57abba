#ifndef DERVIEW_PATH_FILTER_H
#define DERVIEW_PATH_FILTER_H

#include <brevantis/asn1/asn1data/walk.h>
#include <brevantis/asn1/text/path_at.h>

#include "octets.h"

namespace derview {

/// Lets one element of a message through to another visitor, and steps over the others.
class PathFilter : public asn1data::WalkVisitor {
public:
    /// @param span the element, as findElement found it
    PathFilter(const asn1data::ElementSpan& span, asn1data::WalkVisitor& visitor)
        : first_(span.offset), end_(span.offset + span.size), visitor_(visitor) {}

    asn1data::WalkAction enter(const asn1data::WalkElement& element) override;
    asn1data::WalkAction leave(const asn1data::WalkElement& element) override;
    asn1data::WalkAction primitive(const asn1data::WalkElement& element) override;
    asn1data::WalkAction fault(const asn1data::WalkFault& fault) override;
    asn1data::WalkInterest interest() const override { return visitor_.interest(); }

private:
    bool begins(const asn1data::WalkElement& element) const {
        return !element.assembled && element.offset == first_;
    }

    unsigned first_;
    unsigned end_;
    unsigned depth_ = 0; ///< elements entered, from the one that is let through on
    asn1data::WalkVisitor& visitor_;
};

/// Stops a walk at the first value that is not wholly there.
class EndFilter : public asn1data::WalkVisitor {
public:
    /// @param end offset behind the last octet that is there
    EndFilter(std::size_t end, asn1data::WalkVisitor& visitor) : end_(end), visitor_(visitor) {}

    asn1data::WalkAction enter(const asn1data::WalkElement& element) override;
    asn1data::WalkAction leave(const asn1data::WalkElement& element) override;
    asn1data::WalkAction primitive(const asn1data::WalkElement& element) override;
    asn1data::WalkAction fault(const asn1data::WalkFault& fault) override;
    asn1data::WalkInterest interest() const override { return visitor_.interest(); }

private:
    std::size_t end_;
    asn1data::WalkVisitor& visitor_;
};

} // namespace derview

#endif
