#include <algorithm>
#include <set>

#include "emitter.h"
#include <notation/names.h>

// The source of a module: constant tables and one-line members.

namespace asn1gen {
namespace {

std::string hex(unsigned value, int digits) {
    static const char* const digit = "0123456789ABCDEF";
    std::string text;
    for (int i = digits - 1; i >= 0; --i) {
        text += digit[value >> (4 * i) & 0xFu];
    }
    return "0x" + text;
}

std::string tagText(unsigned tag) {
    return tag == 0 ? "0" : hex(tag, 8) + "u";
}

std::string boundText(long long bound) {
    return bound == 0xFFFFFFFFll ? "Max"
           : bound < 0           ? "Minus" + std::to_string(-bound)
                                 : std::to_string(bound);
}

// Equal ranges share a constant, named by what it says.
std::string rangeName(const std::vector<Range>& ranges) {
    std::string name = "from";
    for (const Range& range : ranges) {
        name +=
            (name == "from" ? "" : "or") + boundText(range.lower) + "to" + boundText(range.upper);
    }
    return name;
}

std::string constraintText(const std::vector<Range>& ranges, const std::string& engine) {
    return ranges.empty() ? engine + "unconstrained" : engine + "within(" + rangeName(ranges) + ")";
}

// A table that names a description of the library gets it when the program starts.
std::string constant(bool lookedUp) {
    return lookedUp ? "const " : "constexpr ";
}

std::string truth(bool value) {
    return value ? "true" : "false";
}

// The octets of beginsWith, empty when it is any.
std::vector<std::string> identifierList(const Octets& octets) {
    std::vector<std::string> items;
    for (unsigned octet = 0; octets.count() < 255 && octet < 256; ++octet) {
        if (octets.test(octet)) {
            items.push_back(hex(octet, 2));
        }
    }
    return items;
}

/// Asserts at compile time that two types are one.
void sameType(Writer& out, const std::string& first, const std::string& second) {
    out.line("static_assert(std::is_same_v<" + first + ",");
    out.line("                             " + second + ">);");
}

enum : std::ptrdiff_t { OctetsOfLine = 12 };

constexpr const char* IdentifierConstant = R"(

const ASN1OBJID $name = {$count, {$arcs}};
)";

constexpr const char* ElementRow = R"(
    {"$member", &$type,
     $offset,
     $tag, $tagging, $presence, $bit, $indirect, $octet,
     $constraint, "$parameter", $number, $text, $matched},
)";

constexpr const char* RecordCopy = R"(
$T::$T($C& control) {
    control.getCopy(this);
}
)";

constexpr const char* RecordDestructor = R"(
$T::~$T() {
    ${family}destroy(*this, types::$X);
}
)";

} // namespace

std::string Emitter::privateHeader(const File& file) {
    Writer out;
    opening(out, file);
    openGuard(out, output_.nameSpace + "_" + file.node->stem + "_TYPES_H");
    out.line("#include <brevantis/asn1/asn1data/describe.h>");
    const std::string data = engine("");
    for (const Part& part : partsOf({file.modules.begin(), file.modules.end()})) {
        const auto section = [&](const char* name, const std::vector<std::string>& lines) {
            if (lines.empty()) {
                return;
            }
            out.line();
            out.line("namespace " + spaceName(part.space) + "::" + name + " {");
            for (const std::string& line : lines) {
                out.line(line);
            }
            out.line("} // namespace " + spaceName(part.space) + "::" + name);
        };
        std::vector<std::string> types;
        std::vector<std::string> sets;
        std::vector<std::string> objects;
        for (const Module* module : part.modules) {
            for (const Type* type : module->types) {
                types.push_back("extern const " + data + "TypeDescription " + type->name + ";");
                if (type->aliasOf == nullptr && !type->elements.empty()) {
                    types.push_back("extern const " + data + "ElementDescription " + type->name +
                                    "_elements[" + std::to_string(type->elements.size()) + "];");
                }
                if (type->aliasOf == nullptr && !type->names.empty()) {
                    types.push_back("extern const " + data + "NamedNumber " + type->name +
                                    "_names[" + std::to_string(type->names.size()) + "];");
                }
                if (type->table) {
                    types.push_back("extern const " + data + "TableConstraint " + type->name +
                                    "_table;");
                }
            }
            for (const ObjectSet* set : module->sets) {
                sets.push_back("extern const " + data + "ObjectSetDescription " + set->name + ";");
            }
            for (const Object* object : module->objects) {
                objects.push_back("extern const unsigned " + object->name + "_arcs[" +
                                  std::to_string(object->arcs.size()) + "];");
            }
        }
        section("types", types);
        section("sets", sets);
        section("objects", objects);
    }
    out.line();
    out.line("#endif");
    return out.text();
}

void Emitter::sourceIncludes(Writer& out, const File& file) {
    out.line("#include " + include(file));
    out.line();
    out.line("#include <cstddef>");
    out.line("#include <type_traits>");
    std::set<std::string> publicHeaders = {"<brevantis/asn1/asn1data/family.h>",
                                           "<brevantis/asn1/asn1data/generated.h>",
                                           "<brevantis/asn1/asn1data/object.h>"};
    std::set<std::string> privateHeaders = {file.node->stem};
    const auto usesModule = [&](const Module* other, bool complete) {
        const File& home = *fileOf_.at(other);
        if (&home == &file) {
            return;
        }
        if (!home.ofLibrary) {
            privateHeaders.insert(home.node->stem);
        }
        if (complete) {
            publicHeaders.insert(include(home));
        }
    };
    const auto uses = [&](const Type* type, bool complete) {
        if (type != nullptr && !type->builtin) {
            usesModule(type->module, complete);
        }
    };
    for (const Module* module : file.modules) {
        for (const Type* type : module->types) {
            uses(type->aliasOf, true);
            for (const Type* target = type; target->aliasOf != nullptr; target = target->aliasOf) {
                uses(target->aliasOf, false);
            }
            uses(type->target().element, false);
            for (const Element& element : type->elements) {
                uses(element.type, true);
            }
            uses(type->element, true);
            if (type->table) {
                usesModule(type->table->set->module, false);
            }
        }
        for (const Object* object : module->objects) {
            uses(object->type, true);
        }
        for (const ObjectSet* set : module->sets) {
            for (const Object* object : set->objects) {
                uses(object->type, false);
                usesModule(object->module, true);
            }
        }
    }
    out.line();
    for (const std::string& name : publicHeaders) {
        out.line("#include " + name);
    }
    out.line();
    for (const std::string& name : privateHeaders) {
        out.line("#include \"" + name + "_types.h\"");
    }
}

void Emitter::identifierConstants(Writer& out, const Module& module) {
    std::set<std::string> defined;
    for (const Identifier& identifier : module.identifiers) {
        // A copy of one that is there already; any other would be copied before it has its value.
        if (defined.count(identifier.copyOf) != 0) {
            out.line();
            out.line("const ASN1OBJID " + identifier.name + " = " + identifier.copyOf + ";");
        } else {
            out.lines(IdentifierConstant, {{"name", identifier.name},
                                           {"count", std::to_string(identifier.arcs.size())},
                                           {"arcs", arcsText(identifier.arcs, ", ")}});
        }
        defined.insert(identifier.name);
    }
}

std::string Emitter::source(const File& file) {
    Writer out;
    opening(out, file);
    sourceIncludes(out, file);
    for (const Part& part : partsOf({file.modules.begin(), file.modules.end()})) {
        here_ = part.space;
        out.line();
        out.line("namespace " + spaceName(part.space) + " {");
        bool any = false;
        for (const Module* module : part.modules) {
            identifierConstants(out, *module);
            any = any || !module->types.empty();
        }
        if (any) {
            rangeConstants(out, part.modules);
            out.line();
            out.line("namespace types {");
            for (const Module* module : part.modules) {
                for (const Type* type : module->types) {
                    elementTable(out, *type);
                    nameTable(out, *type);
                    tableConstraint(out, *type);
                    description(out, *type);
                }
            }
            out.line();
            out.line("} // namespace types");
        }
        for (const Type* type : inOrderOfUse(part.modules)) {
            recordDefinitions(out, *type);
            controlDefinitions(out, *type);
            functionDefinitions(out, *type);
        }
        for (const Module* module : part.modules) {
            for (const ObjectClass* objectClass : module->classes) {
                objectClassDefinitions(out, *objectClass);
            }
            for (const Object* object : module->objects) {
                objectDefinitions(out, *object);
            }
            for (const ObjectSet* set : module->sets) {
                objectSetDefinitions(out, *set);
            }
        }
        out.line();
        out.line("} // namespace " + spaceName(part.space));
    }
    here_.clear();
    return out.text();
}

void Emitter::rangeConstants(Writer& out, const Modules& modules) {
    std::map<std::string, std::vector<Range>> constants;
    const auto add = [&constants](const std::vector<Range>& ranges) {
        if (!ranges.empty()) {
            constants.emplace(rangeName(ranges), ranges);
        }
    };
    for (const Module* module : modules) {
        for (const Type* type : module->types) {
            add(type->constraint);
            for (const Element& element : type->elements) {
                add(element.constraint);
            }
        }
    }
    if (constants.empty()) {
        return;
    }
    out.line();
    out.line("namespace {");
    for (const auto& [name, ranges] : constants) {
        std::vector<std::string> items;
        for (const Range& range : ranges) {
            items.push_back("{" + std::to_string(range.lower) + ", " + std::to_string(range.upper) +
                            "}");
        }
        out.line("constexpr " + engine("ValueRange ") + name + "[] = {" + joined(items) + "};");
    }
    out.line("} // namespace");
}

void Emitter::elementTable(Writer& out, const Type& type) {
    if (type.aliasOf != nullptr || type.elements.empty()) {
        return;
    }
    const std::string record = recordName(type);
    const std::string data = engine("");
    const bool choice = type.shape == Shape::Choice;
    out.line();
    if (type.hasPresence()) {
        const auto bits =
            std::count_if(type.elements.begin(), type.elements.end(), [](const Element& element) {
                return element.presence == Presence::Optional;
            });
        const std::string words = bits > 32 ? std::to_string((bits + 31) / 32) + " * " : "";
        out.line("static_assert(sizeof(" + record + "::m) == " + words + "sizeof(unsigned));");
    }
    if (choice) {
        sameType(out, "decltype(" + record + "::t)", "unsigned");
    }
    for (const Element& element : type.elements) {
        if (element.type->shape == Shape::Null) {
            continue;
        }
        const Type& target = element.type->target();
        const std::string expected =
            (target.builtin || target.hasRecord() ? valueName(target) : scalarName(target.shape)) +
            (choice && element.type->isIndirect() ? "*" : "");
        sameType(out, "decltype(" + record + (choice ? "::U::" : "::") + element.member + ")",
                 expected);
    }
    const bool lookedUp =
        std::any_of(type.elements.begin(), type.elements.end(),
                    [](const Element& element) { return isOfLibrary(*element.type); });
    out.line(constant(lookedUp) + data + "ElementDescription " + type.name + "_elements[] = {");
    for (const Element& element : type.elements) {
        static const char* const taggings[] = {"Untagged", "Implicit", "Explicit"};
        static const char* const presences[] = {"Mandatory", "Optional", "Default"};
        const bool null = element.type->shape == Shape::Null;
        const std::string offset = choice ? "offsetof(" + record + ", u)"
                                   : null ? "0"
                                          : "offsetof(" + record + ", " + element.member + ")";
        out.lines(
            ElementRow,
            {{"member", element.member},
             {"type", element.type->builtin ? data + descriptorName(*element.type)
                                            : tableName(*element.type)},
             {"offset", offset},
             {"tag", tagText(element.tag)},
             {"tagging", data + "Tagging::" + taggings[static_cast<int>(element.tagging)]},
             {"presence", data + "Presence::" + presences[static_cast<int>(element.presence)]},
             {"bit", std::to_string(element.presenceBit)},
             {"indirect", truth(choice && element.type->isIndirect())},
             {"octet",
              std::to_string(element.tagging == Tagging::Untagged ? 0
                                                                  : identifierOctet(element.tag))},
             {"constraint", constraintText(element.constraint, data)},
             {"parameter", element.parameter},
             {"number", std::to_string(element.defaultNumber)},
             {"text", element.defaultText ? "\"" + *element.defaultText + "\"" : "nullptr"},
             {"matched", tagText(element.matchTag())}});
    }
    out.line("};");
}

void Emitter::nameTable(Writer& out, const Type& type) {
    if (type.aliasOf != nullptr || type.names.empty()) {
        return;
    }
    std::vector<std::string> items;
    for (const NamedNumber& named : type.names) {
        items.push_back("{\"" + named.name + "\", " + std::to_string(named.number) + "}");
    }
    out.line();
    out.line("constexpr " + engine("NamedNumber ") + type.name + "_names[] = {");
    out.items(items, 4);
    out.line("};");
}

void Emitter::tableConstraint(Writer& out, const Type& type) {
    if (!type.table) {
        return;
    }
    static const char* const kinds[] = {"OpenType", "OpenTypes", "OctetString"};
    const Table& table = *type.table;
    const Element& value = type.elements[table.value];
    const std::string record = recordName(type);
    const std::string data = engine("");
    const bool optional = value.presence == Presence::Optional;
    const std::string slot = value.member + (table.kind == Table::OctetString ? "Typed" : "");
    out.line();
    const bool lookedUp = table.set->module->ofLibrary;
    out.line(constant(lookedUp) + data + "TableConstraint " + type.name + "_table = {");
    out.line("    " +
             (lookedUp ? "&asn1data::librarySet(\"" + table.set->name + "\")"
                       : "&" + from(table.set->module, "sets::" + table.set->name)) +
             ",");
    out.line("    " + data + "OpenValue::" + kinds[table.kind] + ",");
    out.line("    offsetof(" + record + ", " + type.elements[table.identifier].member + "),");
    out.line("    offsetof(" + record + ", " + value.member + "),");
    out.line("    offsetof(" + record + ", " + slot + "),");
    out.line("    " + (optional ? "offsetof(" + record + ", m)" : data + "NoOffset") + ",");
    out.line("    " + std::to_string(value.presenceBit) + ",");
    out.line("};");
}

void Emitter::description(Writer& out, const Type& type) {
    const Type& target = type.target();
    const std::string record = recordName(type);
    const std::string data = engine("");
    // A list begins with its count, and has no other member to be found.
    const std::string content = traitsOf(type.shape).dataName;
    const std::string count = content.empty() ? "" : traitsOf(type.shape).countName;
    const auto offset = [&record](const std::string& member) {
        return member.empty() ? "0" : "offsetof(" + record + ", " + member + ")";
    };
    out.line();
    if (type.shape == Shape::List && type.aliasOf == nullptr) {
        out.line("static_assert(std::is_base_of_v<ASN1TPDUSeqOfList, " + record + ">);");
    }
    if (type.isRepeated() && type.shape != Shape::List && type.aliasOf == nullptr) {
        const Type& element = type.element->target();
        const std::string held =
            element.builtin || element.hasRecord() ? valueName(element) : scalarName(element.shape);
        sameType(
            out, "decltype(" + record + "::elem)",
            held + (type.shape == Shape::Array ? "*" : "[" + std::to_string(type.capacity) + "]"));
    }
    if (!type.hasRecord() && type.aliasOf == nullptr) {
        sameType(out, record, scalarName(type.shape));
    }
    const bool lookedUp =
        isOfLibrary(target) || (target.element != nullptr && isOfLibrary(*target.element));
    out.line(constant(lookedUp) + data + "TypeDescription " + type.name + " = {");
    const auto row = [&out](const char* field, const std::string& value) {
        out.line("    /*" + std::string(field) + "=*/" + value + ",");
    };
    row("name", "\"" + calledName(type) + "\"");
    const std::vector<std::string> notation = literalLines(type.notation);
    if (notation.size() == 1 && notation.front().size() < 80) {
        row("notation", notation.front());
    } else {
        out.line("    /*notation=*/");
        for (const std::string& text : notation) {
            out.line("    " + text + (&text == &notation.back() ? "," : ""));
        }
    }
    row("standard", literalLines(type.standard).front());
    row("shape", data + "Shape::" + traitsOf(type.shape).name);
    row("setOf", truth(type.setOf));
    row("stepsOverEndOfContents", truth(type.stepsOverEndOfContents));
    row("closesRecursion", truth(type.closesRecursion));
    row("holdsMemory", truth(type.holdsMemory));
    row("copyable", truth(type.copyable));
    row("tag", tagText(type.tag));
    row("outerTag", tagText(type.outerTag));
    row("valueSize", "sizeof(" + record + ")");
    row("countOffset", offset(count));
    row("dataOffset", offset(content));
    row("capacity", std::to_string(type.capacity));
    row("presenceOffset", type.hasPresence() ? offset("m") : data + "NoOffset");
    row("extensionOffset",
        target.extensionMember.empty() ? data + "NoOffset" : offset(target.extensionMember));
    const std::vector<std::string> octets = identifierList(type.identifiers);
    if (octets.empty()) {
        row("identifiers", data + "beginsWithAny()");
    } else if (octets.size() <= OctetsOfLine) {
        row("identifiers", data + "beginsWith({" + joined(octets) + "})");
    } else {
        out.line("    /*identifiers=*/" + data + "beginsWith({");
        for (auto start = octets.begin(); start != octets.end();) {
            const auto end = start + std::min<std::ptrdiff_t>(OctetsOfLine, octets.end() - start);
            out.line("        " + joined({start, end}) + (end == octets.end() ? "})," : ","));
            start = end;
        }
    }
    row("elements", target.elements.empty() ? "nullptr" : tableName(target, "_elements"));
    row("elementCount", std::to_string(target.elements.size()));
    row("mandatoryCount", std::to_string(target.mandatoryCount()));
    row("constraint", constraintText(type.constraint, data));
    row("parameter", "\"" + type.parameter() + "\"");
    row("element", target.element == nullptr ? "nullptr"
                   : target.element->builtin ? "&" + data + descriptorName(*target.element)
                                             : "&" + tableName(*target.element));
    row("aliasOf", type.aliasOf == nullptr ? "nullptr" : "&" + tableName(*type.aliasOf));
    row("table",
        target.table ? (isOfLibrary(target) ? "" : "&") + tableName(target, "_table") : "nullptr");
    row("names", target.names.empty() ? "nullptr" : tableName(target, "_names"));
    row("nameCount", std::to_string(target.names.size()));
    row("road", data + "roadOf(" + data + "Shape::" + traitsOf(type.shape).name + ", " +
                    tagText(type.tag) + ", " + tagText(type.outerTag) + ", " +
                    truth(type.closesRecursion) + ")");
    row("identifier", std::to_string(identifierOctet(type.tag)));
    row("hasDefaults", truth(std::any_of(target.elements.begin(), target.elements.end(),
                                         [](const Element& element) {
                                             return element.presence == Presence::Default;
                                         })));
    out.line("};");
}

void Emitter::recordDefinitions(Writer& out, const Type& type) {
    if (!type.ownsContext()) {
        return;
    }
    const Values values = namesOf(type);
    out.line();
    if (type.copyable) {
        out.lines(RecordCopy, values);
    }
    out.lines(RecordDestructor, values);
}

} // namespace asn1gen
