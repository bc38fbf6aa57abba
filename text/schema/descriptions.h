#ifndef BREVANTIS_ASN1_TEXT_SCHEMA_DESCRIPTIONS_H
#define BREVANTIS_ASN1_TEXT_SCHEMA_DESCRIPTIONS_H

#include <map>
#include <string>

#include <brevantis/asn1/asn1data/describe.h>
#include <notation/model.h>
#include <notation/record_layout.h>

#include "arena.h"

namespace asn1text {

/// What the parts of records take in this program.
notation::Platform thisPlatform();

/// Makes the tables that generated code has of a model, in an arena. The compiler's emitters write
/// the same as text.
class Descriptions {
public:
    /// @param model laid out; not needed any more once all is described
    explicit Descriptions(Arena& arena) : arena_(arena) {}

    /// @param name what the type is called
    /// @throws ArenaFull, std::bad_alloc, as everything here
    void add(const notation::Type& type, const std::string& name);
    void add(const notation::ObjectSet& set);

    /// Describes all that was added: types and sets name each other.
    void describe();

    asn1data::IdentifierDescription describe(const notation::Identifier& identifier);

    const asn1data::TypeDescription* of(const notation::Type& type) const;
    const asn1data::ObjectSetDescription* of(const notation::ObjectSet& set) const;

private:
    void describe(const notation::Type& type, asn1data::TypeDescription& description);
    void describe(const notation::ObjectSet& set, asn1data::ObjectSetDescription& description);
    const asn1data::ElementDescription* elements(const notation::Type& type);
    const asn1data::TableConstraint* table(const notation::Type& type);
    const asn1data::NamedNumber* names(const notation::Type& type);
    asn1data::Constraint constraint(const std::vector<notation::Range>& ranges);
    asn1data::ObjectIndex index(const asn1data::ObjectDescription* objects, unsigned count);

    Arena& arena_;
    std::map<const notation::Type*, asn1data::TypeDescription*> types_;
    std::map<const notation::ObjectSet*, asn1data::ObjectSetDescription*> sets_;
};

} // namespace asn1text

#endif
