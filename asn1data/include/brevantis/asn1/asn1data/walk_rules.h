#ifndef BREVANTIS_ASN1_ASN1DATA_WALK_RULES_H
#define BREVANTIS_ASN1_ASN1DATA_WALK_RULES_H

#include <cstddef>
#include <vector>

#include <brevantis/asn1/asn1data/walk.h>
#include <brevantis/asn1/export.h>

/// @file
/// For visitors that compare a message with what an encoder would write (X.690, 10 and 11): where
/// contents end, in which order members stand, and which values are a DEFAULT. Each object is shown
/// the elements that its visitor is shown.

namespace asn1data {

/// Keeps where the contents of the elements around end: a header may promise more octets than the
/// values take, or fewer, and the decoder does not mind.
class BREVANTIS_ASN1_API ContentsEnd {
public:
    /// Octets between the end of the last value in an element and the end of its contents.
    struct Gap {
        long long octets = 0;   ///< below 0 when the values reach beyond the contents
        std::size_t offset = 0; ///< where the last value ends, as in WalkElement
        std::size_t hidden = 0; ///< `octets` behind the typed value in an OCTET STRING
    };

    /// @throws std::bad_alloc
    void enter(const WalkElement& element);
    /// An element without others in it: nothing is entered.
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
class BREVANTIS_ASN1_API MemberOrder {
public:
    /// @param message all of it; it outlives the object
    MemberOrder(const unsigned char* message, std::size_t size) noexcept : end_(message + size) {}

    /// @throws std::bad_alloc
    void enter(const WalkElement& element);
    /// Ends the element that was entered last.
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
        const unsigned char* last; ///< the member before, of a SET OF
        std::size_t lastSize;
        ASN1TAG lastTag; ///< of the member before, of a SET
    };

    const unsigned char* end_; ///< of the message
    std::vector<Container> containers_;
};

/// Whether an element holds just the DEFAULT value of its declaration (X.690, 11.5).
BREVANTIS_ASN1_API bool holdsDefault(const WalkElement& element);

} // namespace asn1data

#endif
