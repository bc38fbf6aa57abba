#ifndef BREVANTIS_ASN1DATA_FAMILY_DER_RULES_H
#define BREVANTIS_ASN1DATA_FAMILY_DER_RULES_H

#include <vector>

#include <brevantis/asn1/asn1data/reading_policy.h>

#include "octets.h"

// What the Distinguished Encoding Rules ask of the elements that a walk reports.

namespace asn1data::family {

/// Keeps where the contents of the elements around end: a header may promise more octets than the
/// values take, or fewer, and the decoder does not mind.
class ContentsEnd {
public:
    /// Octets between the end of the last value in an element and the end of its contents.
    struct Gap {
        long long octets = 0;   ///< below 0 when the values reach beyond the contents
        std::size_t offset = 0; ///< where the last value ends, as in WalkElement
        std::size_t hidden = 0; ///< `octets` behind the typed value in an OCTET STRING
    };

    void enter(const WalkElement& element);
    void primitive(const WalkElement& element);
    /// @return no octets either where the element is of indefinite length, or the last one in it
    ///         is and the element is no OCTET STRING
    Gap leave(const WalkElement& element);

private:
    struct Reached {
        std::size_t offset;
        bool known;
    };
    void reach(const Reached& end);

    std::vector<Reached> reached_; ///< in each of the elements that are entered
};

/// Watches the order of members that DER sorts: those of a SET by their tags (X.690, 10.3), those
/// of a SET OF by their encodings (11.6). What lies in octets that were put together is left out.
class MemberOrder {
public:
    /// @param message all of it; it outlives the object
    explicit MemberOrder(Octets message) : message_(message) {}

    void enter(const WalkElement& element);
    void leave() { containers_.pop_back(); }

    /// Whether an element belongs in front of the one before it; to be asked once of each element,
    /// before it is entered.
    bool isOutOfOrder(const WalkElement& element);
    /// Whether the element around is a SET OF.
    bool inSetOf() const { return !containers_.empty() && containers_.back().setOf; }

private:
    struct Container {
        bool setOf;
        bool set;
        Octets last;     ///< the member before, of a SET OF
        ASN1TAG lastTag; ///< of the member before, of a SET
    };

    Octets message_;
    std::vector<Container> containers_;
};

} // namespace asn1data::family

#endif
