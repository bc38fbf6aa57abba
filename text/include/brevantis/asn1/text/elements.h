#ifndef BREVANTIS_ASN1_TEXT_ELEMENTS_H
#define BREVANTIS_ASN1_TEXT_ELEMENTS_H

#include <cstddef>
#include <optional>
#include <string>

#include <brevantis/asn1/asn1data/describe.h>
#include <brevantis/asn1/text/export.h>
#include <brevantis/asn1/text/octets.h>

/// @file
/// Elements of no known type, by their tags, lengths and contents (X.690, 8.1).

namespace asn1text {

/// An element that octets begin with.
struct PlainElement {
    Octets octets;          ///< all of it, end-of-contents included
    std::size_t header = 0; ///< octets of identifier and length
    Octets contents;        ///< without end-of-contents
    unsigned tagClass = 0;  ///< 0 universal, 1 application, 2 context-specific, 3 private
    unsigned number = 0;    ///< of the tag
    /// Whether its contents are elements, by bit 6 of the first identifier octet.
    bool constructed = false;
    bool indefinite = false; ///< its length
};

/// The element that octets begin with.
/// @return nothing when none ends in them; end-of-contents octets are none
BREVANTIS_ASN1_TEXT_API std::optional<PlainElement> firstElement(Octets octets) noexcept;

/// What a tag is called: "SEQUENCE", "[0]", "[APPLICATION 3]".
/// @throws std::bad_alloc
BREVANTIS_ASN1_TEXT_API std::string tagText(const PlainElement& element);

/// The built-in type that a universal tag stands for, as far as the library reads values of it;
/// null for any other, and for a string in constructed form.
BREVANTIS_ASN1_TEXT_API const asn1data::TypeDescription*
builtinType(const PlainElement& element) noexcept;

/// Whether octets are elements one behind another, and what is in the constructed ones is.
BREVANTIS_ASN1_TEXT_API bool areElements(Octets octets) noexcept;

/// Whether octets look like elements one behind another and nothing else: all that they are made of
/// ends where it should, and has tags and contents that are met. Octets of another kind hardly ever
/// do.
BREVANTIS_ASN1_TEXT_API bool holdElements(Octets octets) noexcept;

} // namespace asn1text

#endif
