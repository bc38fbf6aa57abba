#include <cstring>
#include <map>

#include <gtest/gtest.h>

#include <shapes/shapes.h>

#include "shapes_types.h"

// What the rules of naming, tagging and storage make of a module that has every shape once.

namespace {

using namespace asn1data;
namespace types = shapes::types;

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

using Octets = std::vector<unsigned>;

// Measured on an object, so that the table's own way to the offset is not asked again.
template <class Record, class Member>
unsigned offsetIn(Member Record::*member) {
    const Record record;
    const auto* start = reinterpret_cast<const unsigned char*>(&record);
    return static_cast<unsigned>(reinterpret_cast<const unsigned char*>(&(record.*member)) - start);
}

TEST(Descriptions, OwnTags) {
    struct Row {
        const TypeDescription& type;
        ASN1TAG tag;
        ASN1TAG outerTag;
        Octets identifiers;
    };
    const Row rows[] = {
        {types::Flag, 0x01, 0, {0x01}},
        {types::Utf8, 0x0C, 0, {0x0C, 0x2C}},
        {types::Bits, 0x03, 0, {0x03, 0x23}},
        {types::Inner, 0x20000010, 0, {0x10, 0x30}},
        {types::RecordSet, 0x20000011, 0, {0x11, 0x31}},
        {types::ImplicitSequence, 0xA0000001, 0, {0x81, 0xA1}},
        {types::ExplicitSequence, 0x20000010, 0xA0000002, {0x82, 0xA2}},
        {types::ImplicitList, 0xA0000003, 0, {0x83, 0xA3}},
        {types::ExplicitList, 0x20000010, 0xA0000004, {0x84, 0xA4}},
        {types::ImplicitSet, 0xA0000006, 0, {0x86, 0xA6}},
        {types::ImplicitText, 0x80000007, 0, {0x87, 0xA7}},
        {types::TaggedName, 0xA0000008, 0, {0x88, 0xA8}},
        {types::TaggedChoice, 0, 0x60000005, {0x45, 0x65}},
        // In a CHOICE the whole octet counts, an alternative's own tag included.
        {types::Plain, 0, 0, {0x04, 0x13, 0x1E, 0x30, 0x31, 0x65}},
        {types::Chain, 0, 0, {0x05, 0xA0}},
        // Hoisted types take the tag that stood on the element.
        {types::OwnTags_inPlace, 0x20000010, 0xA0000014, {0x94, 0xB4}},
        {types::OwnTags_inPlaceChoice, 0, 0xA0000015, {0x95, 0xB5}},
        {types::Lists_sized, 0xA0000001, 0, {0x81, 0xA1}},
        {types::Lists_numbers, 0xA0000002, 0, {0x82, 0xA2}},
        {types::NamedList, 0xA0000003, 0, {0x83, 0xA3}},
        {types::Fixed_flags, 0x80000000, 0, {0x80, 0xA0}},
        {types::Nested_deep, 0xA0000000, 0, {0x80, 0xA0}},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(row.type.tag, row.tag) << row.type.name;
        EXPECT_EQ(row.type.outerTag, row.outerTag) << row.type.name;
        EXPECT_EQ(octets(row.type.identifiers), row.identifiers) << row.type.name;
    }
    EXPECT_EQ(octets(types::Any.identifiers).size(), 255u);
    EXPECT_FALSE(types::Any.identifiers.contains(0));
}

TEST(Descriptions, ElementTags) {
    struct Row {
        const char* name;
        ASN1TAG tag;
        Tagging tagging;
    };
    const Row rows[] = {
        {"implicitScalar", 0x80000000, Tagging::Implicit},
        {"explicitScalar", 0xA0000001, Tagging::Explicit},
        {"implicitText", 0x80000002, Tagging::Implicit},
        {"implicitRecord", 0xA0000004, Tagging::Implicit},
        {"explicitRecord", 0xA0000005, Tagging::Explicit},
        {"implicitChoice", 0xA0000006, Tagging::Explicit}, // a CHOICE has no tag to give up
        {"explicitChoice", 0xA0000007, Tagging::Explicit},
        {"implicitList", 0xA0000008, Tagging::Implicit},
        {"explicitOpen", 0xA000000A, Tagging::Explicit},
        {"implicitNull", 0x8000000B, Tagging::Implicit},
        {"application", 0x4000000C, Tagging::Implicit},
        {"private_", 0xE000000D, Tagging::Explicit},
        {"implicitOwn", 0xA000000E, Tagging::Implicit},
        {"explicitOwn", 0xA000000F, Tagging::Explicit},
        {"required", 0x8000001E, Tagging::Implicit},
    };
    for (const Row& row : rows) {
        const ElementDescription& found = element(types::Tagged, row.name);
        EXPECT_EQ(found.tag, row.tag) << row.name;
        EXPECT_EQ(found.tagging, row.tagging) << row.name;
    }
    // A shared list leaves the tag on the element; a hoisted one takes it along.
    EXPECT_EQ(element(types::Lists, "alike").tag, 0xA0000000u);
    EXPECT_EQ(element(types::Lists, "sized").tag, 0u);
}

TEST(Descriptions, NamesOfTypesInPlace) {
    const std::pair<const ElementDescription&, const TypeDescription&> rows[] = {
        {element(types::Lists, "plain"), types::_SeqOfInner},
        {element(types::Lists, "alike"), types::_SeqOfInner},
        {element(types::Lists, "set"), types::_SetOfInner},
        {element(types::Lists, "records"), types::_SeqOfLists_records_element},
        {element(types::Lists, "sized"), types::Lists_sized},
        {element(types::Lists, "numbers"), types::Lists_numbers},
        {element(types::Lists, "named"), types::NamedList},
        {element(types::Fixed, "key"), types::Fixed_key},
        {element(types::Numbers, "colour"), types::Numbers_colour},
        {element(types::Numbers, "version"), types::Numbers_version},
        {element(types::Nested, "deep"), types::Nested_deep},
        {element(types::OpenList, "values"), types::OpenList_values},
        {element(types::Open, "value"), builtin::typedOpenType},
        {element(types::Unknown, "value"), builtin::typedOpenType},
        {element(types::Tagged, "explicitOpen"), builtin::openType},
        {element(types::Strings, "bmp"), builtin::bmpString},
    };
    for (const auto& [found, expected] : rows) {
        EXPECT_EQ(found.type, &expected) << found.name << " is a " << found.type->name;
    }
    EXPECT_EQ(types::_SeqOfLists_records_element.element, &types::Lists_records_element);
    EXPECT_STREQ(types::Nothing_.name, "Nothing_");
    EXPECT_EQ(types::_looseList_Value.element, &types::Inner);
    EXPECT_EQ(types::OtherName.aliasOf, &types::Inner);
    EXPECT_EQ(types::OtherName.elements, types::Inner.elements);
}

TEST(Descriptions, StorageAndSizes) {
    struct Row {
        const TypeDescription& type;
        Shape shape;
        std::size_t valueSize;
        unsigned capacity;
        bool holdsMemory;
    };
    const Row rows[] = {
        {types::Signed, Shape::Integer, sizeof(int), 0, false},
        {types::Unsigned, Shape::Unsigned, sizeof(unsigned), 0, false},
        {types::Small, Shape::Unsigned16, sizeof(unsigned short), 0, false},
        {types::Big, Shape::BigInteger, sizeof(char*), 0, false},
        {types::Magnitude, Shape::BigUnsigned, sizeof(char*), 0, false},
        {types::Utf8, Shape::Text, sizeof(char*), 0, true},
        {types::ShortBmp, Shape::Text16, sizeof(Asn116BitCharString), 0, true},
        {types::FourOctets, Shape::FixedOctetString, sizeof(unsigned) + 4, 4, false},
        {types::NineBits, Shape::FixedBitString, sizeof(unsigned) + 4, 9, false},
        {types::NumberList, Shape::List, sizeof(shapes::ASN1T_NumberList), 0, true},
        {types::NumberArray, Shape::Array, sizeof(shapes::ASN1T_NumberArray), 0, true},
        {types::FixedTexts, Shape::FixedArray, sizeof(shapes::ASN1T_FixedTexts), 4, true},
        {types::FixedNumbers, Shape::FixedArray, 4 * sizeof(unsigned), 3, false},
        {types::FixedRecords, Shape::FixedArray, sizeof(shapes::ASN1T_FixedRecords), 2, false},
        {types::Inner, Shape::Sequence, sizeof(shapes::ASN1T_Inner), 0, false},
        {types::Extended, Shape::Sequence, sizeof(shapes::ASN1T_Extended), 0, true},
        {types::Marked, Shape::Sequence, sizeof(shapes::ASN1T_Marked), 0, false},
        {types::Numbers, Shape::Sequence, sizeof(shapes::ASN1T_Numbers), 0, false},
        {types::Chain, Shape::Choice, sizeof(shapes::ASN1T_Chain), 0, true},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(row.type.shape, row.shape) << row.type.name;
        EXPECT_EQ(row.type.valueSize, row.valueSize) << row.type.name;
        EXPECT_EQ(row.type.capacity, row.capacity) << row.type.name;
        EXPECT_EQ(row.type.holdsMemory, row.holdsMemory) << row.type.name;
    }
    EXPECT_EQ(types::Extended.extensionOffset, offsetIn(&shapes::ASN1T_Extended::unknown));
    EXPECT_EQ(types::Marked.extensionOffset, unsigned{NoOffset});
    EXPECT_TRUE(types::Streamed.stepsOverEndOfContents);
    EXPECT_TRUE(types::StreamedPart.stepsOverEndOfContents);
    EXPECT_FALSE(types::Inner.stepsOverEndOfContents);
    EXPECT_FALSE(types::Uncopied.copyable);
    EXPECT_FALSE(types::UncopiedOctets.copyable);
    EXPECT_TRUE(types::OidArray.setOf);
    EXPECT_FALSE(types::TextArray.setOf);
}

TEST(Descriptions, Constraints) {
    struct Row {
        const Constraint& constraint;
        const char* found;
        const char* parameter;
        std::vector<std::pair<long long, long long>> ranges;
    };
    const auto of = [](const ElementDescription& row) { return row.parameter; };
    const ElementDescription& number = element(types::Constrained, "number");
    const ElementDescription& wide = element(types::Constrained, "wide");
    const ElementDescription& octetRow = element(types::Constrained, "octets");
    const ElementDescription& bits = element(types::Constrained, "bits");
    const ElementDescription& again = element(types::Constrained, "again");
    const ElementDescription& text = element(types::Choice, "text");
    const ElementDescription& pointer = element(types::Choice, "wide");
    constexpr long long max = 0xFFFFFFFFll;
    const Row rows[] = {
        {types::Small.constraint, types::Small.parameter, "*pvalue", {{0, 256}}},
        {types::Ranged.constraint, types::Ranged.parameter, "*pvalue", {{-5, 5}, {10, 10}}},
        {types::Colour.constraint, types::Colour.parameter, "*pvalue", {{1, 4}}},
        {types::FromZero.constraint, types::FromZero.parameter, "*pvalue", {{0, 2}}},
        {types::ShortOctets.constraint, types::ShortOctets.parameter, "pvalue->numocts", {{1, 4}}},
        {types::EightOrSixteenOctets.constraint,
         types::EightOrSixteenOctets.parameter,
         "pvalue->numocts",
         {{8, 8}, {16, 16}}},
        {types::FewBits.constraint, types::FewBits.parameter, "pvalue->numbits", {{1, max}}},
        {types::ShortUtf8.constraint, types::ShortUtf8.parameter, "*pvalue", {{1, 4}}},
        {types::ShortBmp.constraint, types::ShortBmp.parameter, "pvalue->nchars", {{1, 4}}},
        {types::RecordList.constraint, types::RecordList.parameter, "pvalue->count", {{1, 3}}},
        {types::NumberArray.constraint, types::NumberArray.parameter, "pvalue->n", {{0, 3}}},
        {types::Magnitude.constraint, types::Magnitude.parameter, "*pvalue", {}},
        {number.constraint, of(number), "pvalue->number", {{1, max}}},
        {wide.constraint, of(wide), "pvalue->wide.nchars", {{1, 4}}},
        {octetRow.constraint, of(octetRow), "pvalue->octets.numocts", {{2, 2}}},
        {bits.constraint, of(bits), "pvalue->bits.numbits", {{8, 16}}},
        {again.constraint, of(again), "pvalue->again", {{2, 4}}},
        {text.constraint, of(text), "pvalue->u.text", {{1, 4}}},
        {pointer.constraint, of(pointer), "pvalue->u.wide->nchars", {{1, 4}}},
    };
    for (const Row& row : rows) {
        std::vector<std::pair<long long, long long>> ranges;
        for (unsigned i = 0; i < row.constraint.count; ++i) {
            ranges.emplace_back(row.constraint.ranges[i].lower, row.constraint.ranges[i].upper);
        }
        EXPECT_EQ(ranges, row.ranges) << row.parameter;
        EXPECT_STREQ(row.found, row.parameter);
    }
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

} // namespace
