#ifndef BREVANTIS_ASN1_TEXT_SCHEMA_H
#define BREVANTIS_ASN1_TEXT_SCHEMA_H

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <brevantis/asn1/asn1data/describe.h>
#include <brevantis/asn1/text/export.h>

/// @file
/// Types of modules that are read at run time: from ASN.1 notation (X.680 to X.683, and what X.208
/// had) to descriptions that `asn1data::family`, walks, JSON and everything else that goes by a
/// description takes like those of the catalogue.

namespace asn1text {

/// A file of modules.
struct SchemaText {
    std::string name; ///< as messages show it
    std::string text; ///< one module or several
};

/// Something to say about a module.
struct SchemaMessage {
    std::string file;     ///< the SchemaText::name
    unsigned line = 0;    ///< from 1; 0 where it is about the modules as a whole
    unsigned column = 0;  ///< in octets, from 1; 0 as for the line
    bool warning = false; ///< it was read, though otherwise than it stands
    std::string sentence; ///< in English; starts in lower case and has no full stop
};

/// The whole message: "own.asn1:3:9: error: type 'Nmae' is neither defined nor imported."
/// @throws std::bad_alloc
BREVANTIS_ASN1_TEXT_API std::string messageText(const SchemaMessage& message);

/// What modules may take. While texts are read, some hundred times their size is in use.
struct SchemaLimits {
    std::size_t textSize = std::size_t{4} << 20;  ///< octets of all texts
    std::size_t memory = std::size_t{256} << 20;  ///< octets of the descriptions
    std::size_t valueSize = std::size_t{1} << 20; ///< octets of a record, what hangs from it apart
    std::size_t depth = 256;                      ///< types in each other, recursion apart
};

/// The types of modules that were read together. All descriptions, and every text in them, live as
/// long as this object; the heap that values lie on can be freed after it. It does not change any
/// more: any thread may use it.
///
///     std::vector<SchemaMessage> messages;
///     const auto schema = readSchema({{"own.asn1", text}}, messages);
///     const asn1data::TypeDescription* const type = schema->findType("Own-Message");
///     writeJson(*type, octets, sink);
class BREVANTIS_ASN1_TEXT_API Schema {
public:
    Schema(const Schema&) = delete;
    Schema& operator=(const Schema&) = delete;
    ~Schema();

    /// All types, sorted by name: those of the assignments, and those that are described in place,
    /// which are called as in generated code, `Outer_element`. Types that share their name with one
    /// of another module are called `Module.Type`.
    asn1data::TypeRange types() const noexcept;

    /// Finds a type by what it is called, or by `Module.Type`. Hyphens may stand as underscores.
    /// @return null when there is none, or when modules share the name
    /// @throws std::bad_alloc
    const asn1data::TypeDescription* findType(std::string_view name) const;

    /// All object sets, sorted by name.
    asn1data::ObjectSetRange objectSets() const noexcept;

    /// Identifiers that the modules give names, sorted by their arcs.
    asn1data::IdentifierRange identifiers() const noexcept;

private:
    friend class SchemaReader;
    struct Tables;
    explicit Schema(std::unique_ptr<Tables> tables) noexcept;

    std::unique_ptr<Tables> tables_;
};

/// Reads modules that belong together, in any order. Records of their types are laid out as a
/// compiler lays out the generated ones.
/// @param messages receives what there is to say, in the order of the text
/// @return null when a message is an error
/// @throws std::bad_alloc
BREVANTIS_ASN1_TEXT_API std::unique_ptr<const Schema>
readSchema(const std::vector<SchemaText>& texts, std::vector<SchemaMessage>& messages,
           const SchemaLimits& limits = {});

} // namespace asn1text

#endif
