#include <brevantis/asn1/runtime/octet_string.h>

#include <gtest/gtest.h>

#include "support/counting_allocator.h"
#include "support/row_reader.h"

namespace {

using namespace tests;

TEST(OctetString, Decodes) {
    forEachRow("octet_string.txt", "decoded", [&](const DataRow& row) {
        for (const bool noCopy : {false, true}) {
            RowReader reader(row);
            rtCtxtSetFlag(reader, noCopy ? ASN1F_NO_COPY : 0);
            const unsigned char* data = nullptr;
            unsigned count = 99;
            const int status = xd_octstr(reader, &data, &count, ASN1TagExplicit, 0);
            EXPECT_EQ(status, reader.recorded());
            if (!reader.expect(status)) {
                EXPECT_EQ(0u, count);
                continue;
            }
            EXPECT_EQ(row["octets"], toHex(data, count));
            ASSERT_NE(nullptr, data);
            if (noCopy && row["message"][0] == '0') {
                EXPECT_EQ(reader->buffer.data + reader.position() - count, data);
            }
        }
    });
}

TEST(OctetString, TakesTheLengthOfTheCaller) {
    Reader reader("41 42 43");
    const unsigned char* data = nullptr;
    unsigned count = 0;
    EXPECT_EQ(0, xd_octstr(reader, &data, &count, ASN1TagImplicit, 2));
    EXPECT_EQ("41 42", toHex(data, count));
    EXPECT_EQ(-5, xd_octstr(reader, &data, &count, ASN1TagImplicit, -1));

    // A caller that took the tag for primitive, yet hands on an indefinite length.
    Reader odd("04 01 41 00 00");
    EXPECT_EQ(-17, xd_octstr(odd, &data, &count, ASN1TagImplicit, ASN1IndefiniteLength));
}

TEST(OctetString, DecodesIntoABuffer) {
    forEachRow("octet_string.txt", "decoded into a buffer", [&](const DataRow& row) {
        RowReader reader(row);
        auto size = row.number<unsigned>("capacity");
        const auto buffer = std::make_unique<unsigned char[]>(size);
        if (reader.expect(xd_octstr_s(reader, buffer.get(), &size,
                                      row.number<ASN1TagType>("tagging"), row.number("length")))) {
            EXPECT_EQ(row["octets"], toHex(buffer.get(), size));
        }
    });
}

TEST(OctetString, AllocatesNothingWithoutACopy) {
    CountingAllocator allocator;
    Reader reader("04 01 41");
    rtCtxtSetFlag(reader, ASN1F_NO_COPY);
    const long calls = CountingAllocator::calls();
    const unsigned char* data = nullptr;
    unsigned count = 0;
    EXPECT_EQ(0, xd_octstr(reader, &data, &count, ASN1TagExplicit, 0));
    EXPECT_EQ(calls, CountingAllocator::calls());
}

TEST(OctetString, Encodes) {
    const Octets octets = fromHex("01 02 03");
    Writer writer;
    EXPECT_EQ(5, xe_octstr(writer, octets.data(), 3, ASN1TagExplicit));
    EXPECT_EQ(3, xe_octstr(writer, octets.data(), 3, ASN1TagImplicit));
    EXPECT_EQ(2, xe_octstr(writer, nullptr, 7, ASN1TagExplicit));
    EXPECT_EQ(0, xe_octstr(writer, octets.data(), 0, ASN1TagImplicit));
    EXPECT_EQ("04 00 01 02 03 04 03 01 02 03", writer.hex());
    // More than a count can say; the last one would read as an indefinite length.
    for (const unsigned count : {0x80000000u, 0xFFFFFFFFu, 0xFFFFD8F1u}) {
        EXPECT_EQ(-12, xe_octstr(writer, octets.data(), count, ASN1TagExplicit));
    }
    unsigned char small[4];
    ASSERT_EQ(0, xe_setp(writer, small, sizeof small));
    EXPECT_EQ(-1, xe_octstr(writer, octets.data(), 3, ASN1TagExplicit));
}

} // namespace
