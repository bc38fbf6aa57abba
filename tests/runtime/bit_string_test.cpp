#include <brevantis/asn1/runtime/bit_string.h>

#include <gtest/gtest.h>

#include "support/row_reader.h"

namespace {

using namespace tests;

TEST(BitString, Decodes) {
    forEachRow("bit_string.txt", "decoded", [&](const DataRow& row) {
        for (const bool noCopy : {false, true}) {
            RowReader reader(row);
            rtCtxtSetFlag(reader, noCopy ? ASN1F_NO_COPY : 0);
            const unsigned char* data = nullptr;
            unsigned numbits = 99;
            const bool decoded =
                reader.expect(xd_bitstr(reader, &data, &numbits, ASN1TagExplicit, 0));
            EXPECT_EQ(row.number<unsigned>("numbits"), numbits);
            if (!decoded) {
                continue;
            }
            const char* octets = row.text("octets");
            EXPECT_EQ(octets == nullptr, data == nullptr);
            EXPECT_EQ(octets != nullptr ? octets : "", toHex(data, (numbits + 7) / 8));
            if (noCopy && row["message"][0] == '0' && numbits != 0) {
                EXPECT_EQ(reader->buffer.data + 3, data);
            }
        }
    });
}

TEST(BitString, DecodesIntoABuffer) {
    forEachRow("bit_string.txt", "decoded into a buffer", [&](const DataRow& row) {
        RowReader reader(row);
        auto numbits = row.number<unsigned>("capacity");
        const auto buffer = std::make_unique<unsigned char[]>(numbits != 0 ? (numbits + 7) / 8 : 8);
        reader.expect(xd_bitstr_s(reader, buffer.get(), &numbits,
                                  row.number<ASN1TagType>("tagging"), row.number("length")));
        EXPECT_EQ(row.number<unsigned>("numbits"), numbits);
    });
}

TEST(BitString, Encodes) {
    const Octets bits = fromHex("AB CD");
    Writer writer;
    EXPECT_EQ(5, xe_bitstr(writer, bits.data(), 12, ASN1TagExplicit));
    EXPECT_EQ("03 03 04 AB CD", writer.hex()) << "unused bits go out as they are";
    EXPECT_EQ(4, xe_bitstr(writer, bits.data(), 8, ASN1TagExplicit));
    EXPECT_EQ(3, xe_bitstr(writer, bits.data(), 9, ASN1TagImplicit));
    EXPECT_EQ(0, xe_bitstr(writer, nullptr, 8, ASN1TagExplicit)) << "absent";
    EXPECT_EQ(1, xe_bitstr(writer, nullptr, 0, ASN1TagImplicit));
    EXPECT_EQ(3, xe_bitstr(writer, bits.data(), 0, ASN1TagExplicit));
    EXPECT_EQ("03 01 00 00 07 AB CD 03 02 00 AB 03 03 04 AB CD", writer.hex());
    unsigned char small[3];
    ASSERT_EQ(0, xe_setp(writer, small, sizeof small));
    EXPECT_EQ(-1, xe_bitstr(writer, bits.data(), 16, ASN1TagImplicit)) << "no room for the count";
}

} // namespace
