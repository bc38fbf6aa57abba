#ifndef BREVANTIS_ASN1_TEXT_INNER_TYPES_H
#define BREVANTIS_ASN1_TEXT_INNER_TYPES_H

#include <string>
#include <vector>

#include <brevantis/asn1/asn1data/walk.h>
#include <brevantis/asn1/text/export.h>
#include <brevantis/asn1/text/octets.h>

/// @file
/// What stands in octets that the type of a message leaves unopened: keys, certificates that are
/// kept for their signature, the contents of a PFX.

namespace asn1text {

/// What octets hold.
struct InnerType {
    const asn1data::TypeDescription* type =
        nullptr;     ///< null when it is not known, or they are none
    std::string key; ///< the size of a key in its own terms: "RSA 2048 bits"; empty without one
};

/// Watches a walk, in order to tell what is in the values that it comes across.
class BREVANTIS_ASN1_TEXT_API InnerTypes {
public:
    /// @throws std::bad_alloc
    void enter(const asn1data::WalkElement& element);
    /// Ends the element that was entered last.
    void leave();
    /// An element without others in it, before `find` is asked for it.
    void primitive(const asn1data::WalkElement& element);

    /// @param element a primitive, as reported
    /// @param contents its octets: those of a string, or a whole element
    /// @throws std::bad_alloc
    InnerType find(const asn1data::WalkElement& element, Octets contents) const;

private:
    /// An algorithm, as names.
    struct Algorithm {
        const char* name = nullptr;
        const char* parameter = nullptr; ///< of an identifier that is its parameter
    };
    struct Entered {
        Algorithm own;   ///< that it tells
        Algorithm inner; ///< that the element in it told last
    };
    std::vector<Entered> entered_;
};

} // namespace asn1text

#endif
