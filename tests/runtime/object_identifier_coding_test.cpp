#include <brevantis/asn1/runtime/object_identifier_coding.h>

#include <algorithm>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "support/coding.h"
#include "support/mutation.h"

namespace {

using namespace tests;
using Arcs = std::vector<unsigned>;

ASN1OBJID identifierOf(const Arcs& arcs) {
    ASN1OBJID value = {};
    value.numids = static_cast<unsigned>(arcs.size());
    std::copy_n(arcs.begin(), std::min<std::size_t>(arcs.size(), ASN1MaxSubIds), value.subid);
    return value;
}

Arcs arcsOf(const ASN1OBJID& value) {
    return Arcs(value.subid, value.subid + std::min<unsigned>(value.numids, ASN1MaxSubIds));
}

TEST(ObjectIdentifierCoding, Decodes) {
    struct Row {
        const char* name;
        const char* message;
        int status;
        int recorded;
        unsigned position;
        Arcs arcs;
    };
    const Row rows[] = {
        {"one number", "06 01 2A", 0, 0, 3, {1, 2}},
        {"last number below the split", "06 01 4F", 0, 0, 3, {1, 39}},
        {"first number above the split", "06 01 50", 0, 0, 3, {2, 0}},
        {"first number of two octets", "06 02 88 37", 0, 0, 4, {2, 999}},
        {"many numbers", "06 06 2A 86 48 86 F7 0D", 0, 0, 8, {1, 2, 840, 113549}},
        {"unfinished number", "06 01 88", 0, 0, 3, {0, 8}},
        {"padded number", "06 03 2A 80 05", 0, 0, 5, {1, 2, 5}},
        {"more than 32 bits", "06 06 2A 90 80 80 80 05", 0, 0, 8, {1, 2, 5}},
        {"no content", "06 00", -5, -5, 2, {}},
        {"indefinite length", "06 80 2A 00 00", -5, -5, 2, {}},
        {"constructed", "26 01 2A", -3, -3, 0, {}},
        {"no octet", "", -3, -3, 0, {}},
        {"tag alone", "06", -2, -2, 1, {}},
        {"cut off", "06 05 2A", -2, -2, 2, {}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        Reader reader(row.message);
        ASN1OBJID value = {};
        EXPECT_EQ(row.status, xd_objid(reader, &value, ASN1TagExplicit, 0));
        EXPECT_EQ(row.recorded, reader.recorded());
        EXPECT_EQ(row.position, reader.position());
        EXPECT_EQ(row.arcs, arcsOf(value));
    }
}

TEST(ObjectIdentifierCoding, HoldsTheLimitOfArcs) {
    for (const unsigned numbers : {127u, 128u, 1000u}) {
        Reader reader(Octets(numbers, 0x2A));
        // A guard behind the record shows a write past the array.
        struct {
            ASN1OBJID value;
            unsigned guard;
        } record = {{}, 0x5A5A5A5A};
        const int status =
            xd_objid(reader, &record.value, ASN1TagImplicit, static_cast<int>(numbers));
        EXPECT_EQ(numbers == 127 ? 0 : -4, status);
        EXPECT_EQ(0, reader.recorded());
        EXPECT_EQ(128u, record.value.numids);
        EXPECT_EQ(127u, reader.position());
        EXPECT_EQ(42u, record.value.subid[127]);
        EXPECT_EQ(0x5A5A5A5Au, record.guard);
    }
}

TEST(ObjectIdentifierCoding, StaysInsideAnyInput) {
    forEachMutation(fromHex("06 06 2A 86 48 86 F7 0D"), [](const Octets& octets) {
        for (const int flags : {0, ASN1F_INDEF_MESSAGE | ASN1F_LENGTH_UNCHECKED}) {
            Reader reader(octets);
            rtCtxtSetFlag(reader, flags);
            ASN1OBJID value = {};
            EXPECT_LE(xd_objid(reader, &value, ASN1TagExplicit, 0), 0);
            EXPECT_LE(reader.position(), octets.size());
        }
    });
}

TEST(ObjectIdentifierCoding, Encodes) {
    struct Row {
        Arcs arcs;
        const char* message; ///< null: refused
    };
    const Row rows[] = {
        {{1, 2, 840, 113549}, "06 06 2A 86 48 86 F7 0D"},
        {{2, 999}, "06 02 88 37"},
        {{0, 39}, "06 01 27"},
        {{2, 40}, "06 01 78"},
        {{2, 0xFFFFFFFF}, "06 05 90 80 80 80 4F"},
        {{2, 0xFFFFFFAF}, "06 05 8F FF FF FF 7F"},
        {{1, 2, 0xFFFFFFFF, 0}, "06 07 2A 8F FF FF FF 7F 00"},
        {{}, nullptr},
        {{1}, nullptr},
        {{0, 40}, nullptr},
        {{1, 40}, nullptr},
        {{3, 1}, nullptr},
        {Arcs(129, 1), nullptr},
    };
    for (const Row& row : rows) {
        ASN1OBJID value = identifierOf(row.arcs);
        Writer writer;
        const int count = xe_objid(writer, &value, ASN1TagExplicit);
        EXPECT_EQ(row.message != nullptr ? row.message : "", writer.hex());
        EXPECT_EQ(row.message != nullptr ? static_cast<int>(fromHex(row.message).size()) : -4,
                  count);
        EXPECT_EQ(0, writer.recorded());
    }
    Writer writer;
    EXPECT_EQ(-4, xe_objid(writer, nullptr, ASN1TagExplicit));
    ASN1OBJID value = identifierOf({1, 2, 840});
    EXPECT_EQ(3, xe_objid(writer, &value, ASN1TagImplicit));
    unsigned char small[3];
    ASSERT_EQ(0, xe_setp(writer, small, sizeof small));
    EXPECT_EQ(-1, xe_objid(writer, &value, ASN1TagExplicit));
}

TEST(ObjectIdentifierCoding, RoundTripsRandomArcs) {
    std::mt19937 random(20240229);
    for (int round = 0; round < 2000; ++round) {
        Arcs arcs = {static_cast<unsigned>(random() % 3), static_cast<unsigned>(random() % 40)};
        while (arcs.size() < 2 + random() % 127 && arcs.size() < ASN1MaxSubIds) {
            arcs.push_back(static_cast<unsigned>(random() >> random() % 32));
        }
        ASN1OBJID value = identifierOf(arcs);
        Writer writer;
        const int count = xe_objid(writer, &value, ASN1TagExplicit);
        ASSERT_GT(count, 0);
        Reader reader(fromHex(writer.hex()));
        ASN1OBJID copy = {};
        ASSERT_EQ(0, xd_objid(reader, &copy, ASN1TagExplicit, 0));
        ASSERT_EQ(arcs, arcsOf(copy));
        ASSERT_EQ(static_cast<unsigned>(count), reader.position());
    }
}

} // namespace
