#ifndef DERVIEW_MEMBER_ORDER_H
#define DERVIEW_MEMBER_ORDER_H

#include <vector>

#include <brevantis/asn1/asn1data/walk.h>

#include "octets.h"

namespace derview {

/// Watches the order of members that DER sorts: those of a SET by their tags (X.690, 10.3), those
/// of a SET OF by their encodings (11.6). What lies in octets that were put together is left out.
class MemberOrder {
public:
    /// @param message all of it; it outlives the object
    explicit MemberOrder(Octets message) : message_(message) {}

    void enter(const asn1data::WalkElement& element);
    void leave() { containers_.pop_back(); }

    /// Whether an element belongs in front of the one before it; to be asked once of each element,
    /// before it is entered.
    bool isOutOfOrder(const asn1data::WalkElement& element);
    /// Whether the element around is a SET OF.
    bool inSetOf() const { return !containers_.empty() && containers_.back().setOf; }

private:
    struct Container {
        bool setOf;
        bool set;
        Octets last;      ///< the member before, of a SET OF
        unsigned lastTag; ///< of the member before, of a SET
    };

    Octets message_;
    std::vector<Container> containers_;
};

/// Whether an element holds just the DEFAULT value of its declaration (X.690, 11.5).
bool holdsDefault(const asn1data::WalkElement& element);

} // namespace derview

#endif
