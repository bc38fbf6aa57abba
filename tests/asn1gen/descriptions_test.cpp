#include <cstring>
#include <map>
#include <stdexcept>

#include <gtest/gtest.h>

#include <brevantis/asn1/asn1data.h>
#include <shapes/shapes.h>

#include "shapes_types.h"
#include "support/data_file.h"
#include "support/shapes_catalogue.h"

// What the rules of naming, tagging and storage make of a module that has every shape once.

namespace {

using namespace asn1data;
using tests::DataRow;
namespace types = shapes::types;

/// The type that a column of a row names.
const TypeDescription& typeOf(const DataRow& row, const char* column = "type") {
    const TypeDescription* found = shapes::findType(row.text(column));
    return found != nullptr ? *found : throw std::runtime_error("no type " + row[column]);
}

const ElementDescription& element(const TypeDescription& type, const char* name) {
    for (unsigned i = 0; i < type.elementCount; ++i) {
        if (std::strcmp(type.elements[i].name, name) == 0) {
            return type.elements[i];
        }
    }
    ADD_FAILURE() << type.name << " has no " << name;
    return type.elements[0];
}

std::vector<unsigned> octets(const IdentifierSet& set) {
    std::vector<unsigned> result;
    for (unsigned octet = 0; octet < 256; ++octet) {
        if (set.contains(static_cast<unsigned char>(octet))) {
            result.push_back(octet);
        }
    }
    return result;
}

// Measured on an object, so that the table's own way to the offset is not asked again.
template <class Record, class Member>
unsigned offsetIn(Member Record::*member) {
    const Record record;
    const auto* start = reinterpret_cast<const unsigned char*>(&record);
    return static_cast<unsigned>(reinterpret_cast<const unsigned char*>(&(record.*member)) - start);
}

TEST(Descriptions, OwnTags) {
    tests::forEachRow("shapes.txt", "own tags", [&](const DataRow& row) {
        const TypeDescription& type = typeOf(row);
        EXPECT_EQ(type.tag, row.number<ASN1TAG>("tag"));
        EXPECT_EQ(type.outerTag, row.number<ASN1TAG>("outer tag"));
        EXPECT_EQ(octets(type.identifiers), row.numbers("identifier octets"));
    });
    EXPECT_EQ(octets(types::Any.identifiers).size(), 255u);
    EXPECT_FALSE(types::Any.identifiers.contains(0));
}

TEST(Descriptions, ElementTags) {
    tests::forEachRow("shapes.txt", "element tags", [&](const DataRow& row) {
        const ElementDescription& found = element(types::Tagged, row.text("element of Tagged"));
        EXPECT_EQ(found.tag, row.number<ASN1TAG>("tag"));
        EXPECT_EQ(found.tagging,
                  row["tagging"] == "explicit" ? Tagging::Explicit : Tagging::Implicit);
    });
    // A shared list leaves the tag on the element; a hoisted one takes it along.
    EXPECT_EQ(element(types::Lists, "alike").tag, 0xA0000000u);
    EXPECT_EQ(element(types::Lists, "sized").tag, 0u);
}

TEST(Descriptions, NamesOfTypesInPlace) {
    tests::forEachRow("shapes.txt", "types in place", [&](const DataRow& row) {
        EXPECT_EQ(element(typeOf(row, "record"), row.text("element")).type, &typeOf(row));
    });
    EXPECT_EQ(element(types::Open, "value").type, &builtin::typedOpenType);
    EXPECT_EQ(element(types::Unknown, "value").type, &builtin::typedOpenType);
    EXPECT_EQ(element(types::Tagged, "explicitOpen").type, &builtin::openType);
    EXPECT_EQ(element(types::Strings, "bmp").type, &builtin::bmpString);
    EXPECT_EQ(types::_SeqOfLists_records_element.element, &types::Lists_records_element);
    EXPECT_STREQ(types::Nothing_.name, "Nothing_");
    EXPECT_EQ(types::_looseList_Value.element, &types::Inner);
    EXPECT_EQ(types::OtherName.aliasOf, &types::Inner);
    EXPECT_EQ(types::OtherName.elements, types::Inner.elements);
}

TEST(Descriptions, Storage) {
    EXPECT_EQ(types::Extended.extensionOffset, offsetIn(&shapes::ASN1T_Extended::unknown));
    EXPECT_EQ(types::Marked.extensionOffset, unsigned{NoOffset});
    EXPECT_TRUE(types::Extended.holdsMemory && types::Chain.holdsMemory && types::Utf8.holdsMemory);
    EXPECT_TRUE(types::NumberArray.holdsMemory && types::FixedTexts.holdsMemory);
    EXPECT_FALSE(types::FixedNumbers.holdsMemory || types::FixedRecords.holdsMemory);
    EXPECT_FALSE(types::Inner.holdsMemory || types::Big.holdsMemory || types::NineBits.holdsMemory);
    EXPECT_TRUE(types::Streamed.stepsOverEndOfContents);
    EXPECT_TRUE(types::StreamedPart.stepsOverEndOfContents);
    EXPECT_FALSE(types::Inner.stepsOverEndOfContents);
    EXPECT_FALSE(types::Uncopied.copyable);
    EXPECT_FALSE(types::UncopiedOctets.copyable);
    EXPECT_TRUE(types::OidArray.setOf);
    EXPECT_FALSE(types::TextArray.setOf);
}

std::string textOf(const Constraint& constraint) {
    std::string text;
    for (unsigned i = 0; i < constraint.count; ++i) {
        const ValueRange& range = constraint.ranges[i];
        text += (i != 0 ? " or " : "") + std::to_string(range.lower) + ".." +
                (range.upper == 0xFFFFFFFF ? "MAX" : std::to_string(range.upper));
    }
    return text;
}

TEST(Descriptions, Constraints) {
    tests::forEachRow("shapes.txt", "constraints", [&](const DataRow& row) {
        const TypeDescription& type = typeOf(row);
        const bool own = row["element"].empty();
        const ElementDescription* in = own ? nullptr : &element(type, row.text("element"));
        EXPECT_EQ(textOf(own ? type.constraint : in->constraint), row["ranges"]);
        EXPECT_EQ(own ? type.parameter : in->parameter, row["parameter"]);
    });
}

TEST(Descriptions, PresenceAndDefaults) {
    const std::map<std::string, std::pair<long long, const char*>> defaults = {
        {"off", {0, nullptr}},       {"on", {1, nullptr}}, {"number", {1, nullptr}},
        {"unsigned_", {7, nullptr}}, {"big", {0, "1"}},    {"negative", {0, "-129"}},
        {"colour", {2, nullptr}}};
    EXPECT_EQ(types::Defaults.elementCount, defaults.size() + 1);
    EXPECT_EQ(types::Defaults.mandatoryCount, 1u);
    EXPECT_EQ(types::Defaults.presenceOffset, unsigned{NoOffset});
    for (const auto& [name, expected] : defaults) {
        const ElementDescription& found = element(types::Defaults, name.c_str());
        EXPECT_EQ(found.presence, Presence::Default) << name;
        EXPECT_EQ(found.defaultNumber, expected.first) << name;
        EXPECT_STREQ(found.defaultText, expected.second) << name;
    }
    for (unsigned i = 0; i + 1 < types::Optionals.elementCount; ++i) {
        EXPECT_EQ(types::Optionals.elements[i].presence, Presence::Optional);
        EXPECT_EQ(types::Optionals.elements[i].presenceBit, i);
    }
    // The bits as the compiler lays them out are the bits that the table numbers.
    shapes::ASN1T_Optionals value;
    unsigned presence = 0;
    value.m.bitsPresent = 1;
    std::memcpy(&presence, &value.m, sizeof(presence));
    EXPECT_EQ(presence, 1u << element(types::Optionals, "bits").presenceBit);
    EXPECT_EQ(types::Optionals.presenceOffset, offsetIn(&shapes::ASN1T_Optionals::m));
}

TEST(Descriptions, OpenValues) {
    const TableConstraint& open = *types::Open.table;
    EXPECT_EQ(open.value, OpenValue::OpenType);
    EXPECT_EQ(open.identifierOffset, offsetIn(&shapes::ASN1T_Open::kind));
    EXPECT_EQ(open.valueOffset, offsetIn(&shapes::ASN1T_Open::value));
    EXPECT_EQ(open.slotOffset, open.valueOffset);
    EXPECT_EQ(open.presenceOffset, unsigned{NoOffset});
    const TableConstraint& optional = *types::OptionalOpen.table;
    EXPECT_EQ(optional.presenceOffset, offsetIn(&shapes::ASN1T_OptionalOpen::m));
    EXPECT_EQ(types::OpenList.table->value, OpenValue::OpenTypes);
    const TableConstraint& contained = *types::OptionalContained.table;
    EXPECT_EQ(contained.value, OpenValue::OctetString);
    EXPECT_EQ(contained.valueOffset, offsetIn(&shapes::ASN1T_OptionalContained::value));
    EXPECT_EQ(contained.slotOffset, offsetIn(&shapes::ASN1T_OptionalContained::valueTyped));
    EXPECT_EQ(types::Open_elements[0].offset, open.identifierOffset);

    const ObjectSetDescription& kinds = shapes::sets::Kinds;
    ASSERT_EQ(kinds.count, 7u);
    EXPECT_STREQ(kinds.objectClass, "KIND");
    EXPECT_STREQ(kinds.objects[6].name, "kindTwice");
    EXPECT_EQ(kinds.objects[0].type, &types::Inner);
    EXPECT_EQ(kinds.objects[1].type, &builtin::utf8String);
    EXPECT_EQ(kinds.objects[2].type, &builtin::null);
    EXPECT_EQ(kinds.objects[3].type, &types::_kindOctets_Value);
    const std::vector<unsigned> arcs(kinds.objects[3].arcs,
                                     kinds.objects[3].arcs + kinds.objects[3].arcCount);
    EXPECT_EQ(arcs, (std::vector<unsigned>{1, 2, 3, 4}));
    EXPECT_EQ(shapes::sets::LooseKinds.objects[1].type, nullptr);
    EXPECT_EQ(shapes::sets::NoKinds.count, 0u);
}

// Every way from a type back to itself leads over one that is marked.
void walk(const TypeDescription& type, std::vector<const TypeDescription*>& path) {
    for (std::size_t i = path.size(); i-- > 0;) {
        if (path[i] == &type) {
            bool marked = false;
            for (std::size_t k = i; k < path.size(); ++k) {
                marked = marked || path[k]->closesRecursion;
            }
            EXPECT_TRUE(marked) << type.name;
            return;
        }
    }
    path.push_back(&type);
    for (unsigned i = 0; i < type.elementCount; ++i) {
        walk(*type.elements[i].type, path);
    }
    if (type.element != nullptr) {
        walk(*type.element, path);
    }
    path.pop_back();
}

TEST(Descriptions, RecursionIsMarked) {
    std::vector<const TypeDescription*> path;
    walk(types::Tree, path);
    walk(types::Chain, path);
    walk(types::Nested, path);
    EXPECT_TRUE(types::Tree.closesRecursion || types::_SeqOfTree.closesRecursion);
    EXPECT_TRUE(types::Chain.closesRecursion);
    EXPECT_FALSE(types::Nested.closesRecursion);
    EXPECT_FALSE(types::Open.closesRecursion);
}

TEST(Descriptions, TypesAndSetsAreSortedAndFound) {
    const TypeRange types = allTypes();
    for (std::size_t i = 0; i < types.size(); ++i) {
        EXPECT_EQ(findType(types[i].name), &types[i]);
        EXPECT_TRUE(i == 0 || std::string(types[i - 1].name) < types[i].name);
    }
    for (const char* name : {"", "Certificat", "Certificatf", "zzz", "ASN1T_Certificate"}) {
        EXPECT_EQ(findType(name), nullptr) << name;
    }
    std::string previous;
    for (const ObjectSetDescription* objects : allObjectSets()) {
        EXPECT_LT(previous, objects->name);
        previous = objects->name;
    }
    EXPECT_FALSE(previous.empty());
    EXPECT_STREQ(findType("DistinguishedName")->aliasOf->name, "RDNSequence");
}

} // namespace
