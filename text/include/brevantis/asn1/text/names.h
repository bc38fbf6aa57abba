#ifndef BREVANTIS_ASN1_TEXT_NAMES_H
#define BREVANTIS_ASN1_TEXT_NAMES_H

#include <map>
#include <string>
#include <string_view>

#include <brevantis/asn1/runtime/object_identifier.h>
#include <brevantis/asn1/text/export.h>

/// @file
/// Object identifiers as text: dots, and the names of the catalogue's constants and of further
/// well-known identifiers (text/names/names.txt).

namespace asn1text {

/// "1.2.840.113549"
/// @throws std::bad_alloc
BREVANTIS_ASN1_TEXT_API std::string dottedText(const ASN1OBJID& identifier);

/// Reads the dotted form: at least two arcs, the first of them 0, 1 or 2, the second below 40 under
/// 0 and 1.
/// @param identifier receives the arcs; undefined after a failure
/// @return whether it is one, within ASN1MaxSubIds arcs of 32 bits
BREVANTIS_ASN1_TEXT_API bool readDotted(std::string_view text, ASN1OBJID& identifier) noexcept;

/// The name of an identifier, that of the catalogue's constant if there is one.
/// @return a constant text; null when it has none
BREVANTIS_ASN1_TEXT_API const char* identifierName(const ASN1OBJID& identifier) noexcept;

/// Where the name of an identifier comes from.
/// @return a constant text as "RFC 5480"; null when it has no name, or a constant's of the
/// catalogue
BREVANTIS_ASN1_TEXT_API const char* identifierSource(const ASN1OBJID& identifier) noexcept;

/// Finds an identifier by a name, also where the same arcs have several.
/// @param identifier receives the arcs
/// @return whether there is one
BREVANTIS_ASN1_TEXT_API bool findIdentifier(std::string_view name, ASN1OBJID& identifier) noexcept;

/// Names of identifiers: one's own, and behind them those of the library.
class BREVANTIS_ASN1_TEXT_API IdentifierNames {
public:
    /// Those of the library alone.
    static const IdentifierNames& ofLibrary() noexcept;

    /// Adds a name, in front of those that the identifier or the name has already.
    /// @throws std::bad_alloc
    void add(const ASN1OBJID& identifier, std::string_view name);

    /// Adds the names of a configuration file of the program dumpasn1: for each identifier a line
    /// "OID = 2 5 29 14" (its arcs, or its encoding in hexadecimal digits, "06 03 55 1D 0E") and a
    /// line "Description = name", on which arcs may stand in parentheses; other lines between them
    /// and comments behind "#" are passed over.
    /// @return nothing, or what is wrong: "line 7: no object identifier"
    /// @throws std::bad_alloc
    std::string read(std::string_view configuration);

    /// @return a text that lives as long as the object; null when the identifier has no name
    /// @throws std::bad_alloc
    const char* nameOf(const ASN1OBJID& identifier) const;

    /// @return whether the name has an identifier
    bool find(std::string_view name, ASN1OBJID& identifier) const;

private:
    std::map<std::string, std::string, std::less<>> names_; ///< by the dotted form
    std::map<std::string, std::string, std::less<>> dots_;  ///< by the name
};

} // namespace asn1text

#endif
