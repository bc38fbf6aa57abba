#include <brevantis/asn1/runtime/object_identifier_coding.h>

#include <algorithm>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "support/row_reader.h"

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
    forEachRow("object_identifier_coding.txt", "decoded", [&](const DataRow& row) {
        RowReader reader(row);
        ASN1OBJID value = {};
        const int status = xd_objid(reader, &value, ASN1TagExplicit, 0);
        reader.expect(status);
        EXPECT_EQ(status, reader.recorded());
        EXPECT_EQ(row.numbers("arcs"), arcsOf(value));
    });
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

TEST(ObjectIdentifierCoding, Encodes) {
    forEachRow("object_identifier_coding.txt", "encoded", [&](const DataRow& row) {
        ASN1OBJID value = identifierOf(row.numbers("arcs"));
        Writer writer;
        const int count = xe_objid(writer, &value, ASN1TagExplicit);
        EXPECT_EQ(row["message"], writer.hex());
        EXPECT_EQ(writer.hex().empty() ? -4 : static_cast<int>(fromHex(writer.hex()).size()),
                  count);
        EXPECT_EQ(0, writer.recorded());
    });
    Writer writer;
    EXPECT_EQ(-4, xe_objid(writer, nullptr, ASN1TagExplicit));
    ASN1OBJID value = identifierOf(Arcs(129, 1));
    EXPECT_EQ(-4, xe_objid(writer, &value, ASN1TagExplicit));
    value = identifierOf({1, 2, 840});
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
