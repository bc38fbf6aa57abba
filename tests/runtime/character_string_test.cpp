#include <brevantis/asn1/runtime/character_string.h>

#include <gtest/gtest.h>

#include "support/counting_allocator.h"
#include "support/row_reader.h"

namespace {

using namespace tests;

constexpr ASN1TAG utf8String = 12;
constexpr ASN1TAG bmpString = 30;
constexpr ASN1TAG universalString = 28;

TEST(CharacterString, DecodesEightBits) {
    forEachRow("character_string.txt", "eight bits", [&](const DataRow& row) {
        RowReader reader(row);
        rtCtxtSetFlag(reader, ASN1F_NO_COPY); // does not matter here
        char* text = nullptr;
        const int status =
            xd_charstr(reader, &text, ASN1TagExplicit, row.number<ASN1TAG>("tag"), 0);
        reader.expect(status);
        EXPECT_EQ(status, reader.recorded());
        EXPECT_STREQ(row.text("text"), text);
    });
}

TEST(CharacterString, DecodesWideCharacters) {
    forEachRow("character_string.txt", "sixteen bits", [&](const DataRow& row) {
        RowReader reader(row);
        Asn116BitCharString value{9, nullptr};
        const int status = xd_16BitCharStr(reader, &value, ASN1TagExplicit, bmpString, 0);
        reader.expect(status);
        EXPECT_EQ(status, reader.recorded());
        EXPECT_EQ(row.numbers("characters"),
                  std::vector<unsigned>(value.data, value.data + value.nchars));
    });
    Reader reader("1C 0B 00 01 F6 00 FF FF FF FF 01 02 03");
    Asn132BitCharString value{9, nullptr};
    EXPECT_EQ(0, xd_32BitCharStr(reader, &value, ASN1TagExplicit, universalString, 0));
    ASSERT_EQ(2u, value.nchars);
    EXPECT_EQ(0x1F600u, value.data[0]);
    EXPECT_EQ(0xFFFFFFFFu, value.data[1]);
    EXPECT_EQ(-5, xd_32BitCharStr(reader, &value, ASN1TagImplicit, universalString, -4));
}

TEST(CharacterString, Encodes) {
    Writer writer;
    EXPECT_EQ(-18, xe_charstr(writer, nullptr, ASN1TagExplicit, utf8String));
    EXPECT_EQ(-18, xe_16BitCharStr(writer, nullptr, ASN1TagExplicit, bmpString));
    EXPECT_EQ(-18, xe_32BitCharStr(writer, nullptr, ASN1TagExplicit, universalString));
    Asn116BitCharString lost{2, nullptr};
    EXPECT_EQ(-18, xe_16BitCharStr(writer, &lost, ASN1TagExplicit, bmpString));
    EXPECT_EQ("", writer.hex());

    unsigned short narrow[] = {0x41, 0x20AC};
    Asn116BitCharString bmp{2, narrow};
    unsigned int wide[] = {0x1F600};
    Asn132BitCharString universal{1, wide};
    Asn132BitCharString none{0, nullptr};
    EXPECT_EQ(4, xe_charstr(writer, "AB", ASN1TagExplicit, utf8String));
    EXPECT_EQ(2, xe_charstr(writer, "", ASN1TagExplicit, 0x8000000A));
    EXPECT_EQ(6, xe_16BitCharStr(writer, &bmp, ASN1TagExplicit, bmpString));
    EXPECT_EQ(4, xe_32BitCharStr(writer, &universal, ASN1TagImplicit, universalString));
    EXPECT_EQ(2, xe_32BitCharStr(writer, &none, ASN1TagExplicit, universalString));
    EXPECT_EQ("1C 00 00 01 F6 00 1E 04 00 41 20 AC 8A 00 0C 02 41 42", writer.hex());

    bmp.nchars = 0x40000000; // twice as many octets exceed any count; none of them is read
    EXPECT_EQ(-1, xe_16BitCharStr(writer, &bmp, ASN1TagExplicit, bmpString));
    bmp.nchars = 2;
    unsigned char small[4];
    ASSERT_EQ(0, xe_setp(writer, small, sizeof small));
    EXPECT_EQ(-1, xe_16BitCharStr(writer, &bmp, ASN1TagExplicit, bmpString));
}

TEST(CharacterString, GrowsTheBufferOnce) {
    CountingAllocator allocator;
    std::vector<unsigned short> characters(200000);
    for (std::size_t i = 0; i < characters.size(); ++i) {
        characters[i] = static_cast<unsigned short>(i * 7);
    }
    Asn116BitCharString value{static_cast<unsigned>(characters.size()), characters.data()};
    Writer writer;
    const long calls = CountingAllocator::calls();
    const int count = xe_16BitCharStr(writer, &value, ASN1TagExplicit, bmpString);
    EXPECT_EQ(400005, count);
    EXPECT_EQ(calls + 1, CountingAllocator::calls());

    Reader reader(fromHex(writer.hex()));
    Asn116BitCharString copy;
    EXPECT_EQ(0, xd_16BitCharStr(reader, &copy, ASN1TagExplicit, bmpString, 0));
    EXPECT_EQ(characters, std::vector<unsigned short>(copy.data, copy.data + copy.nchars));
}

} // namespace
