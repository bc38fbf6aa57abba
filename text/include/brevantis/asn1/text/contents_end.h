#ifndef BREVANTIS_ASN1_TEXT_CONTENTS_END_H
#define BREVANTIS_ASN1_TEXT_CONTENTS_END_H

#include <cstddef>
#include <vector>

#include <brevantis/asn1/asn1data/walk.h>
#include <brevantis/asn1/text/export.h>

namespace asn1text {

/// Keeps where the contents of the elements around end: a header may promise more octets than the
/// values take, or fewer, and the decoder does not mind.
class BREVANTIS_ASN1_TEXT_API ContentsEnd {
public:
    /// Octets between the end of the last value in an element and the end of its contents.
    struct Gap {
        long long octets = 0;   ///< below 0 when the values reach beyond the contents
        std::size_t offset = 0; ///< where the last value ends, as in WalkElement
        std::size_t hidden = 0; ///< `octets` behind the typed value in an OCTET STRING
    };

    void enter(const asn1data::WalkElement& element);
    void primitive(const asn1data::WalkElement& element);
    /// @return no octets either where the element is of indefinite length, or the last one in it
    ///         is and the element is no OCTET STRING
    Gap leave(const asn1data::WalkElement& element);

private:
    struct Reached {
        std::size_t offset;
        bool known;
    };
    void reach(const Reached& end);

    std::vector<Reached> reached_; ///< in each of the elements that are entered
};

} // namespace asn1text

#endif
