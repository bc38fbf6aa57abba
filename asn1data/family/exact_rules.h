#ifndef BREVANTIS_ASN1DATA_FAMILY_EXACT_RULES_H
#define BREVANTIS_ASN1DATA_FAMILY_EXACT_RULES_H

#include <vector>

#include "octets.h"

// What a record has to be able to hold of the elements that a walk reports, for the message to come
// out of it again as it went in.

namespace asn1data::family {

/// What is wrong with an element.
struct Inexactness {
    const char* what; ///< in English; null when nothing is
    int status;
};

class ExactRules {
public:
    /// @param message all of it; it outlives the object
    explicit ExactRules(Octets message) : end_(message.end()) {}

    /// An element that is entered.
    Inexactness enter(const WalkElement& element);
    /// The same when it is not gone through after all.
    void skip(const WalkElement& element);
    Inexactness leave(const WalkElement& element);
    Inexactness primitive(const WalkElement& element);

private:
    /// An element that has been entered: what is in it has to fill it, each octet once. Open values
    /// are reported late, so this is told by sums.
    struct Container {
        std::size_t left;          ///< octets of contents that no element has taken
        const unsigned char* last; ///< behind the last of the contents
        const unsigned char* reached;
        const unsigned char* end; ///< behind the octets that it lies in
    };

    const unsigned char* endOf(const WalkElement& element) const;
    /// @param size receives what the whole element takes
    Inexactness lookAtHeaders(const WalkElement& element, std::size_t& size) const;
    Inexactness lookAtWhole(const WalkElement& element);
    void take(const WalkElement& element, std::size_t size);

    const unsigned char* end_;
    std::vector<Container> containers_;
};

} // namespace asn1data::family

#endif
