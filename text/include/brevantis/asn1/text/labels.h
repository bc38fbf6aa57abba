#ifndef BREVANTIS_ASN1_TEXT_LABELS_H
#define BREVANTIS_ASN1_TEXT_LABELS_H

#include <string>
#include <vector>

#include <brevantis/asn1/asn1data/walk.h>
#include <brevantis/asn1/text/export.h>

/// @file
/// What elements are called in a text.

namespace asn1text {

/// What an element is called in the element around it.
struct Label {
    std::string name; ///< "issuer", "[3]", "addition[0]"; empty for the message itself
    /// Names of the alternatives and of the object that it is: "rdnSequence", "keyUsage".
    std::vector<std::string> choices;
};

/// Keeps what a visitor has entered, so that it can tell what it comes across.
class BREVANTIS_ASN1_TEXT_API Labels {
public:
    /// @throws std::bad_alloc
    Label labelOf(const asn1data::WalkElement& element) const;

    /// An element is entered: what follows is in it.
    void enter(const asn1data::WalkElement& element);
    /// Ends the element that was entered last.
    void leave() { entered_.pop_back(); }
    /// Elements that are entered.
    std::size_t depth() const { return entered_.size(); }
    /// The type of the element around; null for the message itself.
    const asn1data::TypeDescription* container() const;

private:
    struct Entered {
        const asn1data::TypeDescription* type;
        bool encapsulates;
    };
    std::vector<Entered> entered_;
};

/// A type as it is shown: its name, or the notation's for a type that has no name of its own.
BREVANTIS_ASN1_TEXT_API std::string typeText(const asn1data::TypeDescription& type);

/// Whether values of a type are lists.
BREVANTIS_ASN1_TEXT_API bool isList(const asn1data::TypeDescription& type);

} // namespace asn1text

#endif
