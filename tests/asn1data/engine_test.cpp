#include <string>

#include <gtest/gtest.h>

#include <brevantis/asn1/asn1data/family.h>
#include <brevantis/asn1/runtime/tag_length.h>
#include <shapes/shapes.h>

#include "shapes_types.h"
#include "support/coding.h"
#include "support/counting_allocator.h"
#include "support/mutation.h"

// The rules of the type family on a module that holds each shape once: octets in, status, octets
// out.

namespace {

using namespace asn1data;
using namespace shapes;
using tests::fromHex;
using tests::Octets;
using tests::toHex;

/// What a decoded message is encoded as.
constexpr const char* Same = "same";

struct Row {
    const char* name;
    const TypeDescription& type;
    const char* message;
    int status;
    const char* encoded; ///< after decoding: Same or octets; null where decoding fails
};

std::ostream& operator<<(std::ostream& out, const Row& row) {
    return out << row.name;
}

const Row rows[] = {
    // Elements without a tag of their own
    {"all optional elements absent", types::Optionals, "30 03 01 01 FF", 0, Same},
    {"first optional element present", types::Optionals, "30 06 02 01 05 01 01 FF", 0, Same},
    {"optional NULL", types::Optionals, "30 05 05 00 01 01 00", 0, Same},
    {"optional CHOICE told by its alternatives", types::Optionals, "30 06 80 01 00 01 01 FF", 0,
     Same},
    {"constructed string as optional element", types::Optionals,
     "30 0A 24 80 04 01 41 00 00 01 01 FF", 0, "30 06 04 01 41 01 01 FF"},
    {"failure inside an optional element is no absence", types::Optionals,
     "30 0A 02 05 00 00 00 00 01 01 01 FF", ASN1S_VALUE_TOO_BIG, nullptr},
    {"failure inside an optional CHOICE is no absence", types::Optionals, "30 06 8D 01 09 01 01 FF",
     ASN1S_INVALID_ENUM, nullptr},
    {"element out of order", types::Optionals, "30 06 01 01 FF 02 01 05", ASN1S_EXTRA_ELEMENT,
     nullptr},
    {"content ends before a mandatory element", types::Optionals, "30 03 02 01 05",
     ASN1S_MISSING_ELEMENT, nullptr},
    {"no content at all", types::Optionals, "30 00", ASN1S_MISSING_ELEMENT, nullptr},
    {"outer form bit does not count", types::Optionals, "10 03 01 01 FF", 0, "30 03 01 01 FF"},
    {"other outer tag", types::Optionals, "31 03 01 01 FF", ASN1S_TAG_NOT_FOUND, nullptr},
    {"indefinite form stops at its end", types::Optionals, "30 80 01 01 FF 00 00", 0,
     "30 03 01 01 FF"},
    {"wrong tag of a mandatory element", types::Inner, "30 06 0C 01 05 06 01 2A",
     ASN1S_TAG_NOT_FOUND, nullptr},
    {"one element missing behind another", types::Inner, "30 03 02 01 05", ASN1S_MISSING_ELEMENT,
     nullptr},
    {"element behind the last", types::Inner, "30 08 02 01 05 06 01 2A 05 00", ASN1S_EXTRA_ELEMENT,
     nullptr},

    // Tags of elements
    {"IMPLICIT on a scalar", types::Tagged, "30 06 80 01 05 9E 01 FF", 0, Same},
    {"EXPLICIT on a scalar", types::Tagged, "30 08 A1 03 02 01 05 9E 01 FF", 0, Same},
    {"EXPLICIT tag in primitive form", types::Tagged, "30 08 81 03 02 01 05 9E 01 FF", 0,
     "30 08 A1 03 02 01 05 9E 01 FF"},
    {"IMPLICIT on a CHOICE wraps it", types::Tagged, "30 08 A6 03 80 01 FF 9E 01 FF", 0, Same},
    {"EXPLICIT open type", types::Tagged, "30 07 AA 02 05 00 9E 01 FF", 0, Same},
    {"APPLICATION and PRIVATE", types::Tagged, "30 0B 4C 01 41 ED 03 04 01 42 9E 01 FF", 0, Same},
    {"IMPLICIT takes the place of an own tag", types::Tagged, "30 08 AE 03 02 01 07 9E 01 FF", 0,
     Same},
    {"EXPLICIT stands around an own tag", types::Tagged,
     "30 0C AF 07 A2 05 30 03 02 01 07 9E 01 FF", 0, Same},
    {"other context tag for a mandatory element", types::Tagged, "30 03 9D 01 FF",
     ASN1S_TAG_NOT_FOUND, nullptr},
    {"length of an explicit tag beyond the message", types::Tagged, "30 05 A1 82 02 01 05",
     ASN1S_INVALID_LENGTH, nullptr},

    // Tags of types
    {"own IMPLICIT tag", types::ImplicitSequence, "A1 03 02 01 07", 0, Same},
    {"own EXPLICIT tag", types::ExplicitSequence, "A2 05 30 03 02 01 07", 0, Same},
    {"own EXPLICIT tag over another type", types::ExplicitSequence, "A2 05 31 03 02 01 07",
     ASN1S_TAG_NOT_FOUND, nullptr},
    {"own tag of a list", types::ImplicitList, "A3 00", 0, Same},
    {"own EXPLICIT tag of a list that must not be empty", types::ExplicitList, "A4 02 30 00",
     ASN1S_CONSTRAINT_VIOLATION, nullptr},
    {"own tag of a CHOICE", types::TaggedChoice, "65 03 02 01 07", 0, Same},
    {"no alternative under the own tag", types::TaggedChoice, "65 02 05 00", ASN1S_INVALID_CHOICE,
     nullptr},
    {"own tag of a string", types::ImplicitText, "87 01 41", 0, Same},
    {"own tag of a string, constructed", types::ImplicitText, "A7 03 04 01 41", 0, "87 01 41"},

    // DEFAULT
    {"defaults left out", types::Defaults, "30 02 04 00", 0, Same},
    {"FALSE written out", types::Defaults, "30 05 01 01 00 04 00", 0, "30 02 04 00"},
    {"TRUE in another octet", types::Defaults, "30 05 01 01 01 04 00", 0, "30 05 01 01 FF 04 00"},
    {"FALSE against a default of TRUE", types::Defaults, "30 05 80 01 00 04 00", 0, Same},
    {"INTEGER default written out", types::Defaults, "30 05 02 01 01 04 00", 0, "30 02 04 00"},
    {"default of a long INTEGER, not minimal", types::Defaults, "30 06 82 02 00 01 04 00", 0,
     "30 02 04 00"},
    {"negative default", types::Defaults, "30 06 83 02 FF 7F 04 00", 0, "30 02 04 00"},
    {"beside the negative default", types::Defaults, "30 06 83 02 FF 7E 04 00", 0, Same},
    {"default of an ENUMERATED", types::Defaults, "30 05 0A 01 02 04 00", 0, "30 02 04 00"},

    // Ranges
    {"unnamed value inside an ENUMERATED's range", types::Colour, "0A 01 03", 0, Same},
    {"below an ENUMERATED's range", types::Colour, "0A 01 00", ASN1S_INVALID_ENUM, nullptr},
    {"above an ENUMERATED's range", types::Colour, "0A 01 05", ASN1S_INVALID_ENUM, nullptr},
    {"negative ENUMERATED", types::FromZero, "0A 01 FF", ASN1S_INVALID_ENUM, nullptr},
    {"upper end of a value range", types::Small, "02 02 01 00", 0, Same},
    {"above a value range", types::Small, "02 02 01 01", ASN1S_CONSTRAINT_VIOLATION, nullptr},
    {"second range of two", types::Ranged, "02 01 0A", 0, Same},
    {"between two ranges", types::Ranged, "02 01 06", ASN1S_CONSTRAINT_VIOLATION, nullptr},
    {"characters count, not octets", types::ShortUtf8, "0C 08 C3 A9 C3 A9 C3 A9 C3 A9", 0, Same},
    {"one character too many", types::ShortUtf8, "0C 05 61 62 63 64 65", ASN1S_CONSTRAINT_VIOLATION,
     nullptr},
    {"text that is no UTF-8 fits no size", types::ShortUtf8, "0C 01 80", ASN1S_CONSTRAINT_VIOLATION,
     nullptr},
    {"wide text too long", types::ShortBmp, "1E 0A 00 61 00 61 00 61 00 61 00 61",
     ASN1S_CONSTRAINT_VIOLATION, nullptr},
    {"empty list where one element is due", types::RecordList, "30 00", ASN1S_CONSTRAINT_VIOLATION,
     nullptr},

    // SET
    {"members in order", types::Members, "31 05 A0 03 13 01 41", 0, Same},
    {"members out of order", types::Members, "31 08 81 01 05 A0 03 13 01 41", 0,
     "31 08 A0 03 13 01 41 81 01 05"},
    {"member twice", types::Members, "31 0A A0 03 13 01 41 A0 03 13 01 42",
     ASN1S_DUPLICATE_SET_MEMBER, nullptr},
    {"unknown member", types::Members, "31 08 A0 03 13 01 41 89 01 00", ASN1S_UNKNOWN_SET_MEMBER,
     nullptr},
    {"mandatory member missing", types::Members, "31 03 81 01 05", ASN1S_MISSING_ELEMENT, nullptr},
    {"member's size", types::Members, "31 04 A0 02 13 00", ASN1S_CONSTRAINT_VIOLATION, nullptr},

    // CHOICE
    {"alternative by value", types::Choice, "81 01 05", 0, Same},
    {"alternative with nothing in it", types::Choice, "88 00", 0, Same},
    {"alternative by pointer", types::Choice, "A9 06 02 01 05 06 01 2A", 0, Same},
    {"alternative under a further tag", types::Choice, "AB 05 65 03 02 01 07", 0, Same},
    {"open alternative", types::Choice, "AC 02 05 00", 0, Same},
    {"alternative's own range", types::Choice, "8E 02 01 01", ASN1S_CONSTRAINT_VIOLATION, nullptr},
    {"alternative's size", types::Choice, "83 00", ASN1S_CONSTRAINT_VIOLATION, nullptr},
    {"alternative in the other form", types::Choice, "A5 03 04 01 41", ASN1S_INVALID_CHOICE,
     nullptr},
    {"no such alternative", types::Choice, "8F 00", ASN1S_INVALID_CHOICE, nullptr},
    {"alternative that is a CHOICE", types::Plain, "65 03 02 01 07", 0, Same},
    {"alternative that is a list", types::Plain, "31 03 02 01 05", 0, Same},

    // Lists and arrays
    {"SET OF sorted on the way out", types::RecordSet,
     "31 10 30 06 02 01 02 06 01 2A 30 06 02 01 01 06 01 2A", 0,
     "31 10 30 06 02 01 01 06 01 2A 30 06 02 01 02 06 01 2A"},
    {"SET OF in an array sorted", types::OidArray, "31 06 06 01 2B 06 01 2A", 0,
     "31 06 06 01 2A 06 01 2B"},
    {"array over its size", types::NumberArray, "30 0C 02 01 01 02 01 02 02 01 03 02 01 04",
     ASN1S_CONSTRAINT_VIOLATION, nullptr},
    {"fixed array over its capacity", types::FixedNumbers,
     "31 0C 02 01 01 02 01 02 02 01 03 02 01 04", ASN1S_EXTRA_ELEMENT, nullptr},
    {"fixed array below its size", types::FixedTexts, "30 00", ASN1S_CONSTRAINT_VIOLATION, nullptr},
    {"array with a broken element", types::NumberArray, "30 05 02 01 01 02 7F", ASN1S_END_OF_BUFFER,
     nullptr},

    // Strings of a capacity
    {"octets below their size", types::FourOctets, "04 03 01 02 03", ASN1S_CONSTRAINT_VIOLATION,
     nullptr},
    {"octets beyond the capacity", types::FourOctets, "04 05 01 02 03 04 05", ASN1S_STRING_OVERFLOW,
     nullptr},
    {"first of two sizes", types::EightOrSixteenOctets, "04 08 01 02 03 04 05 06 07 08", 0, Same},
    {"between two sizes", types::EightOrSixteenOctets, "04 09 01 02 03 04 05 06 07 08 09",
     ASN1S_CONSTRAINT_VIOLATION, nullptr},
    {"bits up to the capacity", types::NineBits, "03 03 07 FF 80", 0, Same},
    {"bits beyond it in the same octets", types::NineBits, "03 03 00 FF FF", 0, Same},
    {"bits in a further octet", types::NineBits, "03 04 00 FF FF FF", ASN1S_STRING_OVERFLOW,
     nullptr},

    // Types that step over the end of their indefinite forms
    {"every constructed form indefinite", types::Streamed,
     "30 80 06 01 2A A0 80 24 80 04 01 41 00 00 00 00 A1 80 30 80 04 01 42 00 00 00 00 "
     "A2 80 30 80 04 01 43 00 00 00 00 00 00",
     0, "30 16 06 01 2A A0 03 04 01 41 A1 05 30 03 04 01 42 A2 05 30 03 04 01 43"},
    {"indefinite string behind an IMPLICIT tag closes itself", types::Streamed,
     "30 80 06 01 2A A4 80 04 01 41 00 00 00 00", 0, "30 06 06 01 2A 84 01 41"},
    {"outermost end missing", types::Streamed, "30 80 06 01 2A", ASN1S_INVALID_LENGTH, nullptr},
    {"end of an explicit tag missing", types::Streamed,
     "30 80 06 01 2A A0 80 24 80 04 01 41 00 00 83 01 41 00 00", ASN1S_INVALID_LENGTH, nullptr},
    {"end of an inner list missing", types::Streamed, "30 80 06 01 2A A1 80 30 80 04 01 42 00 00",
     ASN1S_INVALID_LENGTH, nullptr},

    // Extension markers
    {"unknown elements kept", types::Extended, "30 09 06 01 2A 05 00 30 02 05 00", 0, Same},
    {"unknown elements where none are kept", types::Marked, "30 05 06 01 2A 05 00",
     ASN1S_EXTRA_ELEMENT, nullptr},

    // Open values
    {"known kind", types::Open, "30 0D 06 03 2A 03 01 30 06 02 01 05 06 01 2A", 0, Same},
    {"known kind, tolerated form brought to DER", types::Open,
     "30 0E 06 03 2A 03 01 30 07 02 02 00 05 06 01 2A", 0,
     "30 0D 06 03 2A 03 01 30 06 02 01 05 06 01 2A"},
    {"known kind with another type's value", types::Open, "30 08 06 03 2A 03 01 02 01 05",
     ASN1S_TAG_NOT_FOUND, nullptr},
    {"unknown kind kept as it came", types::Open, "30 0A 06 03 2A 03 63 02 03 00 00 05", 0, Same},
    {"known kind without a value", types::Open, "30 05 06 03 2A 03 01", ASN1S_MISSING_ELEMENT,
     nullptr},
    {"known kind, value cut off", types::Open, "30 06 06 03 2A 03 01 30", ASN1S_END_OF_BUFFER,
     nullptr},
    {"optional value absent", types::OptionalOpen, "30 05 06 03 2A 03 07", 0, Same},
    {"kind without a type", types::OptionalOpen, "30 07 06 03 2A 03 08 05 00", 0, Same},
    {"kind with NULL", types::Open, "30 07 06 03 2A 03 03 05 00", 0, Same},
    {"list of known values", types::OpenList, "30 0D 06 03 2A 03 02 31 06 0C 01 41 0C 01 42", 0,
     Same},
    {"second of a list of known values wrong", types::OpenList,
     "30 0D 06 03 2A 03 02 31 06 0C 01 41 04 01 42", ASN1S_TAG_NOT_FOUND, nullptr},
    {"value in an OCTET STRING", types::Contained,
     "30 0F 06 03 2A 03 01 04 08 30 06 02 01 05 06 01 2A", 0, Same},
    {"empty OCTET STRING of a known kind", types::Contained, "30 07 06 03 2A 03 01 04 00", 0, Same},
    {"OCTET STRING longer than its value", types::Contained,
     "30 11 06 03 2A 03 01 04 0A 30 06 02 01 05 06 01 2A 05 00", 0,
     "30 0F 06 03 2A 03 01 04 08 30 06 02 01 05 06 01 2A"},
    {"OCTET STRING shorter than its value", types::Contained, "30 0A 06 03 2A 03 01 04 03 30 06 02",
     ASN1S_INVALID_LENGTH, nullptr},
    {"no known kinds at all", types::Unknown, "30 07 06 03 2A 03 01 05 00", 0, Same},
};

class EngineRows : public testing::TestWithParam<Row> {};

TEST_P(EngineRows, DecodeThenEncode) {
    const Row& row = GetParam();
    const Octets octets = fromHex(row.message);
    tests::Reader reader(octets);
    ASSERT_GE(
        xd_setp(reader, reader->buffer.data, static_cast<int>(octets.size()), nullptr, nullptr),
        ASN1S_INVALID_LENGTH);
    void* value = family::newRecord(reader, row.type);
    EXPECT_EQ(family::decode(reader, row.type, value, ASN1TagExplicit, 0), row.status);
    EXPECT_EQ(reader.recorded(), row.status) << "the first failure is the one recorded";
    EXPECT_EQ(reader->nestingDepth, 0);
    if (row.encoded != nullptr) {
        tests::Writer writer;
        EXPECT_GT(family::encode(writer, row.type, value, ASN1TagExplicit), 0);
        EXPECT_EQ(writer.hex(), row.encoded == Same ? toHex(octets) : row.encoded);
    }
    family::release(reader, row.type, value);
}

INSTANTIATE_TEST_SUITE_P(Engine, EngineRows, testing::ValuesIn(rows));

/// A message of the given depth: each level inside the one before.
Octets nested(int depth, const std::string& innermost, const std::string& around) {
    Octets message = fromHex(innermost);
    const Octets prefix = fromHex(around);
    for (int i = 0; i < depth; ++i) {
        Octets outer = prefix;
        // Lengths up to a few thousand: always the form with two length octets.
        outer.insert(outer.end(), message.begin(), message.end());
        const auto size = outer.size();
        const unsigned char header[] = {0x30, 0x82, static_cast<unsigned char>(size >> 8),
                                        static_cast<unsigned char>(size & 0xFF)};
        outer.insert(outer.begin(), std::begin(header), std::end(header));
        message = outer;
    }
    return message;
}

TEST(EngineNesting, OpenValuesInsideEachOtherEndAtTheLimit) {
    for (const auto& [depth, status] : {std::pair{63, 0}, {64, 0}, {65, -12}, {2000, -12}}) {
        // Kind 1.2.3.6 holds a value of its own type; the innermost kind is unknown.
        const Octets message = nested(depth, "30 07 06 03 2A 03 63 05 00", "06 03 2A 03 06");
        tests::Reader reader(message);
        ASN1T_Open value;
        ASSERT_EQ(xd_setp(reader, reader->buffer.data, static_cast<int>(message.size()), nullptr,
                          nullptr),
                  0);
        EXPECT_EQ(asn1D_Open(reader, &value, ASN1TagExplicit, 0), status) << depth;
        EXPECT_EQ(reader->nestingDepth, 0);
        if (status == 0) {
            tests::Context copies;
            ASN1T_Open copied;
            asn1Copy_Open(copies, &value, &copied);
            EXPECT_EQ(copies->errInfo.status, 0);
            EXPECT_EQ(xe_setp(copies, nullptr, 0), 0);
            EXPECT_GT(asn1E_Open(copies, &copied, ASN1TagExplicit), 0);
            asn1Free_Open(copies, &copied);
        }
        asn1Free_Open(reader, &value);
    }
}

TEST(EngineNesting, ValuesThatContainTheirOwnTypeAreLimitedBothWays) {
    // A chain made by hand may be longer than any decoder would make it, even endless.
    tests::Writer writer;
    ASN1T_Chain endless;
    endless.t = 2;
    endless.u.next = &endless;
    EXPECT_EQ(asn1E_Chain(writer, &endless, ASN1TagExplicit), ASN1S_NO_MEMORY);
    ASN1T_Chain copied;
    asn1Copy_Chain(writer, &endless, &copied);
    EXPECT_EQ(writer.recorded(), ASN1S_NO_MEMORY);
    EXPECT_EQ(writer->nestingDepth, 0);
    endless.t = 0;
}

struct EncodeRow {
    const char* name;
    int (*encode)(ASN1CTXT*);
    int status;
};

std::ostream& operator<<(std::ostream& out, const EncodeRow& row) {
    return out << row.name;
}

const EncodeRow encodeRows[] = {
    {"selector 0",
     [](ASN1CTXT* ctxt) {
         ASN1T_Choice value;
         return asn1E_Choice(ctxt, &value, ASN1TagExplicit);
     },
     ASN1S_INVALID_CHOICE},
    {"selector past the last alternative",
     [](ASN1CTXT* ctxt) {
         ASN1T_Choice value;
         value.t = 99;
         return asn1E_Choice(ctxt, &value, ASN1TagExplicit);
     },
     ASN1S_INVALID_CHOICE},
    {"selected pointer null",
     [](ASN1CTXT* ctxt) {
         ASN1T_Choice value;
         value.t = 10;
         value.u.inner = nullptr;
         return asn1E_Choice(ctxt, &value, ASN1TagExplicit);
     },
     ASN1S_BAD_VALUE},
    {"text null",
     [](ASN1CTXT* ctxt) {
         ASN1T_Utf8 value = nullptr;
         return asn1E_Utf8(ctxt, &value, ASN1TagExplicit);
     },
     ASN1S_BAD_VALUE},
    {"constrained text null",
     [](ASN1CTXT* ctxt) {
         ASN1T_ShortUtf8 value = nullptr;
         return asn1E_ShortUtf8(ctxt, &value, ASN1TagExplicit);
     },
     ASN1S_BAD_VALUE},
    {"value null", [](ASN1CTXT* ctxt) { return asn1E_Inner(ctxt, nullptr, ASN1TagExplicit); },
     ASN1S_BAD_VALUE},
    {"identifier without arcs",
     [](ASN1CTXT* ctxt) {
         ASN1T_Inner value;
         return asn1E_Inner(ctxt, &value, ASN1TagExplicit);
     },
     ASN1S_INVALID_OBJID},
    {"more octets claimed than the record holds",
     [](ASN1CTXT* ctxt) {
         ASN1T_UncopiedOctets value;
         value.numocts = 3;
         return asn1E_UncopiedOctets(ctxt, &value, ASN1TagExplicit);
     },
     ASN1S_CONSTRAINT_VIOLATION},
    {"more bits claimed than the record holds",
     [](ASN1CTXT* ctxt) {
         ASN1T_NineBits value;
         value.numbits = 17;
         return asn1E_NineBits(ctxt, &value, ASN1TagExplicit);
     },
     ASN1S_STRING_OVERFLOW},
    {"more elements claimed than the record holds",
     [](ASN1CTXT* ctxt) {
         ASN1T_FixedNumbers value;
         value.n = 4;
         return asn1E_FixedNumbers(ctxt, &value, ASN1TagExplicit);
     },
     ASN1S_EXTRA_ELEMENT},
    {"elements claimed but not there",
     [](ASN1CTXT* ctxt) {
         ASN1T_NumberArray value;
         value.n = 2;
         return asn1E_NumberArray(ctxt, &value, ASN1TagExplicit);
     },
     ASN1S_BAD_VALUE},
    {"bits claimed but not there count as absent",
     [](ASN1CTXT* ctxt) {
         ASN1T_Bits value = {};
         value.numbits = 5;
         return asn1E_Bits(ctxt, &value, ASN1TagExplicit);
     },
     0},
};

class EngineEncodeRows : public testing::TestWithParam<EncodeRow> {};

TEST_P(EngineEncodeRows, GiveTheirStatus) {
    tests::Writer writer;
    EXPECT_EQ(GetParam().encode(writer), GetParam().status);
    EXPECT_EQ(writer.recorded(), GetParam().status);
}

INSTANTIATE_TEST_SUITE_P(Engine, EngineEncodeRows, testing::ValuesIn(encodeRows));

/// A message with open values in every place, lists and texts: each kind of allocation.
const char* const richMessage =
    "30 2A 06 03 2A 03 06 30 23 06 03 2A 03 06 30 1C 06 03 2A 03 05 A9 15 02 01 05 06 10 "
    "2A 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F 10 11";

TEST(EngineMemory, EveryAllocationMayFail) {
    const struct {
        const TypeDescription& type;
        const char* message;
    } messages[] = {
        {types::Open, richMessage},
        {types::OpenList, "30 0D 06 03 2A 03 02 31 06 0C 01 42 0C 01 41"},
        {types::Contained, "30 10 06 03 2A 03 01 04 09 30 07 02 02 00 05 06 01 2A"},
        {types::Optionals,
         "30 16 04 02 41 42 03 02 00 FF 0C 01 41 30 06 02 01 05 06 01 2A 01 01 FF"},
        {types::RecordSet, "31 10 30 06 02 01 02 06 01 2A 30 06 02 01 01 06 01 2A"},
        {types::TextArray, "30 06 0C 01 41 0C 01 42"},
        {types::Extended, "30 09 06 01 2A 05 00 30 02 05 00"},
    };
    for (const auto& [type, text] : messages) {
        SCOPED_TRACE(text);
        const Octets octets = fromHex(text);
        tests::CountingAllocator allocator;
        for (long allowed = 0;; ++allowed) {
            SCOPED_TRACE(allowed);
            tests::CountingAllocator::neverFail();
            const long before = tests::CountingAllocator::live();
            int status = 0;
            {
                tests::Reader reader(octets);
                tests::Context copies;
                void* value = family::newRecord(reader, type);
                void* copied = family::newRecord(copies, type);
                ASSERT_EQ(xd_setp(reader, reader->buffer.data, static_cast<int>(octets.size()),
                                  nullptr, nullptr),
                          0);
                tests::CountingAllocator::failAfter(allowed);
                status = family::decode(reader, type, value, ASN1TagExplicit, 0);
                if (status == 0) {
                    family::copy(copies, type, value, copied);
                    status = copies->errInfo.status;
                }
                if (status == 0) {
                    status = xe_setp(copies, nullptr, 0);
                }
                if (status == 0) {
                    const int count = family::encode(copies, type, copied, ASN1TagExplicit);
                    status = count > 0 ? 0 : count;
                }
                // Whatever was reached can be given back.
                family::release(copies, type, copied);
                family::release(reader, type, value);
            }
            EXPECT_EQ(tests::CountingAllocator::live(), before);
            if (status == 0) {
                EXPECT_GT(allowed, 2);
                break;
            }
            ASSERT_EQ(status, ASN1S_NO_MEMORY);
        }
    }
}

TEST(EngineMemory, WithoutCopyingTheMessageIsNeverFreed) {
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const Octets octets = fromHex(row.message);
        tests::Reader reader(octets);
        rtCtxtSetFlag(reader, ASN1F_NO_COPY);
        xd_setp(reader, reader->buffer.data, static_cast<int>(octets.size()), nullptr, nullptr);
        void* value = family::newRecord(reader, row.type);
        EXPECT_EQ(family::decode(reader, row.type, value, ASN1TagExplicit, 0), row.status);
        if (row.status == 0) {
            tests::Writer writer;
            EXPECT_GT(family::encode(writer, row.type, value, ASN1TagExplicit), 0);
            if (row.encoded != nullptr) {
                EXPECT_EQ(writer.hex(), row.encoded == Same ? toHex(octets) : row.encoded);
            }
        }
        family::release(reader, row.type, value);
    }
}

TEST(EngineMutation, EveryOctetOfEveryRowMayBeAnything) {
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const Octets octets = fromHex(row.message);
        const auto attempt = [&](const Octets& message) {
            tests::Reader reader(message);
            void* value = family::newRecord(reader, row.type);
            xd_setp(reader, reader->buffer.data, static_cast<int>(message.size()), nullptr,
                    nullptr);
            const int status = family::decode(reader, row.type, value, ASN1TagExplicit, 0);
            EXPECT_LE(status, 0);
            if (status == 0) {
                tests::Writer writer;
                family::encode(writer, row.type, value, ASN1TagExplicit);
                tests::Context copies;
                void* copied = family::newRecord(copies, row.type);
                family::copy(copies, row.type, value, copied);
                family::release(copies, row.type, copied);
            }
            EXPECT_EQ(reader->nestingDepth, 0);
            family::release(reader, row.type, value);
        };
        for (std::size_t i = 0; i < octets.size(); ++i) {
            // A size of 0 would state none at all.
            if (i != 0) {
                attempt(Octets(octets.begin(), octets.begin() + static_cast<std::ptrdiff_t>(i)));
            }
            for (int octet = 0; octet < 256; ++octet) {
                Octets changed = octets;
                changed[i] = static_cast<unsigned char>(octet);
                attempt(changed);
            }
        }
    }
}

TEST(EngineOpenValue, TypedFormGoesOutAndTheRawOctetsStay) {
    ASN1T_Inner inner;
    inner.a = 5;
    const unsigned arcs[] = {1, 2, 3, 1};
    inner.b = ASN1TObjId(2, arcs);
    ASN1T_Open value;
    value.kind = ASN1TObjId(4, arcs);
    value.value.decoded = &inner;
    {
        tests::Writer writer;
        EXPECT_EQ(asn1E_Open(writer, &value, ASN1TagExplicit), 15);
        EXPECT_EQ(writer.hex(), "30 0D 06 03 2A 03 01 30 06 02 01 05 06 01 2A");
    }
    // Nothing in the value depends on a context that it was encoded with.
    EXPECT_EQ(value.value.data, nullptr);
    inner.a = 6;
    tests::Writer writer;
    EXPECT_EQ(asn1E_Open(writer, &value, ASN1TagExplicit), 15);
    EXPECT_EQ(writer.hex(), "30 0D 06 03 2A 03 01 30 06 02 01 06 06 01 2A");

    EXPECT_EQ(asn1ETC_Open(writer, &value), 0);
    ASSERT_EQ(value.value.numocts, 8u);
    EXPECT_EQ(toHex(value.value.data, 8), "30 06 02 01 06 06 01 2A");
    EXPECT_EQ(writer.hex(), "30 0D 06 03 2A 03 01 30 06 02 01 06 06 01 2A") << "left as found";
}

TEST(EngineOpenValue, FailureLeavesTheContextOnTheInnerOctets) {
    const Octets octets = fromHex("30 08 06 03 2A 03 01 02 01 05");
    tests::Reader reader(octets);
    ASSERT_EQ(xd_setp(reader, reader->buffer.data, 10, nullptr, nullptr), 0);
    ASN1T_Open value;
    ASSERT_EQ(asn1D_Open(reader, &value, ASN1TagExplicit, 0), ASN1S_TAG_NOT_FOUND);
    EXPECT_EQ(reader->buffer.data, value.value.data);
    EXPECT_EQ(reader.position(), 0u);
    EXPECT_NE(value.value.decoded, nullptr);
    asn1Free_Open(reader, &value);
}

} // namespace
