#include "descriptions.h"

#include <algorithm>
#include <type_traits>

#include <brevantis/asn1/asn1data/generated.h>
#include <brevantis/asn1/runtime/context.h>
#include <brevantis/asn1/runtime/list.h>
#include <brevantis/asn1/runtime/value_types.h>
#include <notation/builtin_types.h>

namespace asn1text {

using asn1data::ElementDescription;
using asn1data::NoOffset;
using asn1data::ObjectDescription;
using asn1data::ObjectIndex;
using asn1data::ObjectSetDescription;
using asn1data::TableConstraint;
using asn1data::TypeDescription;
using asn1data::ValueRange;

namespace {

template <class Value>
constexpr notation::Extent extentOf() {
    if constexpr (std::is_void_v<Value>) {
        return {0, 1};
    } else {
        return {sizeof(Value), alignof(Value)};
    }
}

/// A type that the notation brings along.
const TypeDescription* builtinType(const std::string& constant) {
    static const std::map<std::string, const TypeDescription*> types = {
#define BREVANTIS_BUILTIN_TYPE(constant, notation, variant, shape, tag, storage)                   \
    {#constant, &asn1data::builtin::constant},
#include <brevantis/asn1/asn1data/builtin_types.inc>
    };
    return types.at(constant);
}

asn1data::IdentifierSet identifiersOf(const notation::Octets& octets) {
    if (octets.count() >= 255) {
        return asn1data::beginsWithAny();
    }
    asn1data::IdentifierSet set{};
    for (unsigned octet = 0; octet < 256; ++octet) {
        if (octets.test(octet)) {
            set.bits[octet >> 6] |= 1ULL << (octet & 63);
        }
    }
    return set;
}

} // namespace

notation::Platform thisPlatform() {
    notation::Platform platform;
#define BREVANTIS_BUILTIN_TYPE(constant, notation, variant, shape, tag, storage)                   \
    platform.builtins.push_back(extentOf<storage>());
#include <brevantis/asn1/asn1data/builtin_types.inc>
    platform.word = extentOf<unsigned>();
    platform.pointer = extentOf<void*>();
    platform.context = extentOf<ASN1ContextRef>();
    platform.list = extentOf<Asn1RTDList>();
    platform.slot = extentOf<Asn1TObject>();
    return platform;
}

void Descriptions::add(const notation::Type& type, const std::string& name) {
    auto* const description = arena_.array<TypeDescription>(1);
    description->name = arena_.text(name);
    types_.emplace(&type, description);
}

void Descriptions::add(const notation::ObjectSet& set) {
    sets_.emplace(&set, arena_.array<ObjectSetDescription>(1));
}

void Descriptions::describe() {
    for (const auto& [set, description] : sets_) {
        describe(*set, *description);
    }
    for (const auto& [type, description] : types_) {
        if (type->aliasOf == nullptr) {
            describe(*type, *description);
        }
    }
    // Other names have the tables of what they name.
    for (const auto& [type, description] : types_) {
        if (type->aliasOf != nullptr) {
            describe(*type, *description);
        }
    }
}

asn1data::IdentifierDescription Descriptions::describe(const notation::Identifier& identifier) {
    auto* const id = arena_.array<ASN1OBJID>(1);
    id->numids = static_cast<unsigned>(identifier.arcs.size());
    std::copy(identifier.arcs.begin(), identifier.arcs.end(), id->subid);
    return {arena_.text(identifier.name), id};
}

const TypeDescription* Descriptions::of(const notation::Type& type) const {
    return type.builtin ? builtinType(type.name) : types_.at(&type);
}

const ObjectSetDescription* Descriptions::of(const notation::ObjectSet& set) const {
    return sets_.at(&set);
}

void Descriptions::describe(const notation::Type& type, TypeDescription& description) {
    description.notation = arena_.text(type.notation);
    description.standard = arena_.text(type.standard);
    description.shape = type.shape;
    description.setOf = type.setOf;
    description.stepsOverEndOfContents = type.stepsOverEndOfContents;
    description.closesRecursion = type.closesRecursion;
    description.holdsMemory = type.holdsMemory;
    description.copyable = type.copyable;
    description.tag = type.tag;
    description.outerTag = type.outerTag;
    description.valueSize = type.extent.size;
    description.countOffset = type.countOffset;
    description.dataOffset = type.dataOffset;
    description.capacity = type.capacity;
    description.presenceOffset = type.hasPresence() ? type.presenceOffset : NoOffset;
    description.extensionOffset =
        type.target().extensionMember.empty() ? NoOffset : type.extensionOffset;
    description.identifiers = identifiersOf(type.identifiers);
    description.constraint = constraint(type.constraint);
    description.parameter = arena_.text(type.parameter());
    description.road = asn1data::roadOf(type.shape, type.tag, type.outerTag, type.closesRecursion);
    description.identifier = notation::identifierOctet(type.tag);
    if (type.aliasOf != nullptr) {
        description.aliasOf = of(*type.aliasOf);
    }
    const notation::Type& target = type.target();
    if (&target != &type && !target.builtin) {
        const TypeDescription& named = *of(target);
        description.elements = named.elements;
        description.elementCount = named.elementCount;
        description.mandatoryCount = named.mandatoryCount;
        description.element = named.element;
        description.table = named.table;
        description.names = named.names;
        description.nameCount = named.nameCount;
        description.hasDefaults = named.hasDefaults;
        return;
    }
    description.elements = elements(type);
    description.elementCount = static_cast<unsigned>(type.elements.size());
    description.mandatoryCount = type.mandatoryCount();
    description.element = type.element == nullptr ? nullptr : of(*type.element);
    description.table = table(type);
    description.names = names(type);
    description.nameCount = static_cast<unsigned>(type.names.size());
    description.hasDefaults = std::any_of(
        type.elements.begin(), type.elements.end(), [](const notation::Element& element) {
            return element.presence == notation::Presence::Default;
        });
}

const ElementDescription* Descriptions::elements(const notation::Type& type) {
    const bool choice = type.shape == asn1data::Shape::Choice;
    auto* const table = arena_.array<ElementDescription>(type.elements.size());
    auto* row = table;
    for (const notation::Element& element : type.elements) {
        row->name = arena_.text(element.member);
        row->type = of(*element.type);
        row->offset = element.offset;
        row->tag = element.tag;
        row->tagging = static_cast<asn1data::Tagging>(element.tagging);
        row->presence = static_cast<asn1data::Presence>(element.presence);
        row->presenceBit = static_cast<unsigned char>(element.presenceBit);
        row->indirect = choice && element.type->isIndirect();
        row->identifier = element.tagging == notation::Tagging::Untagged
                              ? static_cast<unsigned char>(0)
                              : notation::identifierOctet(element.tag);
        row->constraint = constraint(element.constraint);
        row->parameter = arena_.text(element.parameter);
        row->defaultNumber = element.defaultNumber;
        row->defaultText = element.defaultText ? arena_.text(*element.defaultText) : nullptr;
        row->matchTag = element.matchTag();
        ++row;
    }
    return table;
}

const TableConstraint* Descriptions::table(const notation::Type& type) {
    if (!type.table) {
        return nullptr;
    }
    const notation::Table& bound = *type.table;
    const notation::Element& value = type.elements[bound.value];
    auto* const table = arena_.array<TableConstraint>(1);
    table->objects = of(*bound.set);
    table->value = static_cast<asn1data::OpenValue>(bound.kind);
    table->identifierOffset = type.elements[bound.identifier].offset;
    table->valueOffset = value.offset;
    table->slotOffset =
        bound.kind == notation::Table::OctetString ? value.slotOffset : value.offset;
    table->presenceOffset =
        value.presence == notation::Presence::Optional ? type.presenceOffset : NoOffset;
    table->presenceBit = static_cast<unsigned char>(value.presenceBit);
    return table;
}

const asn1data::NamedNumber* Descriptions::names(const notation::Type& type) {
    auto* const table = arena_.array<asn1data::NamedNumber>(type.names.size());
    auto* row = table;
    for (const notation::NamedNumber& named : type.names) {
        *row++ = {arena_.text(named.name), named.number};
    }
    return table;
}

asn1data::Constraint Descriptions::constraint(const std::vector<notation::Range>& ranges) {
    auto* const table = arena_.array<ValueRange>(ranges.size());
    auto* row = table;
    for (const notation::Range& range : ranges) {
        *row++ = {range.lower, range.upper};
    }
    return {table, static_cast<unsigned>(ranges.size())};
}

void Descriptions::describe(const notation::ObjectSet& set, ObjectSetDescription& description) {
    description.name = arena_.text(set.name);
    description.objectClass = arena_.text(set.objectClass->name);
    auto* const table = arena_.array<ObjectDescription>(set.objects.size());
    auto* row = table;
    for (const notation::Object* object : set.objects) {
        auto* const arcs = arena_.array<unsigned>(object->arcs.size());
        std::copy(object->arcs.begin(), object->arcs.end(), arcs);
        *row++ = {arena_.text(object->name), arcs, static_cast<unsigned>(object->arcs.size()),
                  object->type == nullptr ? nullptr : of(*object->type)};
    }
    description.objects = table;
    description.count = static_cast<unsigned>(set.objects.size());
    description.index = index(table, description.count);
}

ObjectIndex Descriptions::index(const ObjectDescription* objects, unsigned count) {
    if (count == 0) {
        return {};
    }
    unsigned places = 4;
    while (places / 2 < count) {
        places *= 2;
    }
    return asn1data::chainObjects(objects, count, arena_.array<unsigned>(places),
                                  arena_.array<unsigned>(count), places);
}

} // namespace asn1text
