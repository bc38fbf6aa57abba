#include "type_printer.h"

#include <iterator>
#include <string>
#include <string_view>

#include <brevantis/asn1/text/names.h>

namespace derview {

using asn1data::TypeDescription;

namespace {

constexpr std::size_t NameColumns = 42;

bool hasStandard(const TypeDescription& type) {
    return type.standard != nullptr && *type.standard != '\0';
}

std::string identifierOf(const asn1data::ObjectDescription& object) {
    ASN1OBJID identifier{};
    for (unsigned i = 0; i < object.arcCount && i < std::size(identifier.subid); ++i) {
        identifier.subid[identifier.numids++] = object.arcs[i];
    }
    return dottedText(identifier);
}

void describeObjects(Output& output, const asn1data::ObjectSetDescription& objects) {
    output.write("\n");
    output.write(Style::Quiet, std::string("-- ") + objects.name + " (" + objects.objectClass +
                                   "): what the identifier selects\n");
    for (unsigned i = 0; i < objects.count; ++i) {
        const asn1data::ObjectDescription& object = objects.objects[i];
        const std::string_view name = object.name;
        output.write("--   ");
        output.write(Style::Name, name);
        output.fill(name.size() < NameColumns - 5 ? NameColumns - 5 - name.size() : 1);
        output.write(object.type != nullptr ? object.type->name : "no value");
        output.write(Style::Quiet, "  " + identifierOf(object) + "\n");
    }
}

} // namespace

void listTypes(Output& output, const asn1data::TypeRange& types) {
    for (const TypeDescription* const type : types) {
        const std::string_view name = type->name;
        output.write(Style::Name, name);
        if (hasStandard(*type)) {
            output.fill(name.size() < NameColumns - 2 ? NameColumns - name.size() : 2);
            output.write(Style::Quiet, type->standard);
        }
        output.write("\n");
    }
}

void describeType(Output& output, const TypeDescription& type) {
    if (hasStandard(type)) {
        output.write(Style::Quiet, std::string("-- ") + type.standard + "\n");
    }
    output.write(Style::Name, type.name);
    output.write(" ::= ");
    output.write(type.notation != nullptr ? type.notation : type.name);
    output.write("\n");
    if (type.table != nullptr) {
        describeObjects(output, *type.table->objects);
    }
}

} // namespace derview
