#include <brevantis/asn1/runtime/character_string.h>

#include <gtest/gtest.h>

#include "support/coding.h"
#include "support/counting_allocator.h"
#include "support/mutation.h"

namespace {

using namespace tests;

constexpr ASN1TAG utf8String = 12;
constexpr ASN1TAG bmpString = 30;
constexpr ASN1TAG universalString = 28;

TEST(CharacterString, DecodesEightBits) {
    struct Row {
        const char* name;
        const char* message;
        ASN1TAG tag;
        int status;
        int recorded;
        unsigned position;
        const char* text; ///< null: none is given
    };
    const Row rows[] = {
        {"primitive", "0C 02 41 42", utf8String, 0, 0, 4, "AB"},
        {"empty", "0C 00", utf8String, 0, 0, 2, ""},
        {"an embedded NUL ends what is seen", "0C 03 41 00 42", utf8String, 0, 0, 5, "A"},
        {"segments are OCTET STRINGs", "2C 06 04 01 41 04 01 42", utf8String, 0, 0, 8, "AB"},
        {"indefinite", "2C 80 04 01 41 00 00", utf8String, 0, 0, 7, "A"},
        {"indefinite, nothing but an empty segment", "2C 80 04 00 00 00", utf8String, -5, -5, 2,
         ""},
        {"constructed, empty segment", "2C 02 04 00", utf8String, 0, 0, 4, ""},
        {"context tag", "81 01 41", 0x80000001u, 0, 0, 3, "A"},
        {"constructed context tag", "A1 03 04 01 41", 0x80000001u, 0, 0, 5, "A"},
        {"another tag", "13 01 41", utf8String, -3, -3, 0, nullptr},
        {"segment of its own tag", "2C 80 0C 01 41 00 00", utf8String, -21, -21, 4, nullptr},
        {"cut off", "0C 03 41 42", utf8String, -2, -2, 2, ""},
        {"second segment bad", "2C 06 04 01 41 05 01 42", utf8String, -3, -3, 5, "A"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        Reader reader(row.message);
        rtCtxtSetFlag(reader, ASN1F_NO_COPY); // does not matter here
        char* text = nullptr;
        EXPECT_EQ(row.status, xd_charstr(reader, &text, ASN1TagExplicit, row.tag, 0));
        EXPECT_EQ(row.recorded, reader.recorded());
        EXPECT_EQ(row.position, reader.position());
        EXPECT_STREQ(row.text, text);
    }
}

TEST(CharacterString, DecodesWideCharacters) {
    struct Row {
        const char* name;
        const char* message;
        int status;
        std::vector<unsigned> characters;
    };
    const Row rows16[] = {
        {"two", "1E 04 00 41 20 AC", 0, {0x41, 0x20AC}},
        {"odd octet", "1E 03 00 41 20", 0, {0x41}},
        {"empty", "1E 00", 0, {}},
        {"indefinite, split inside a character",
         "3E 80 04 01 00 04 03 41 20 AC 00 00",
         0,
         {0x41, 0x20AC}},
        {"another tag", "1C 00", -3, {}},
        {"cut off", "1E 04 00 41", -2, {}},
        {"indefinite on a primitive form", "1E 80 00 00", -5, {}},
    };
    for (const Row& row : rows16) {
        SCOPED_TRACE(row.name);
        Reader reader(row.message);
        Asn116BitCharString value{9, nullptr};
        EXPECT_EQ(row.status, xd_16BitCharStr(reader, &value, ASN1TagExplicit, bmpString, 0));
        EXPECT_EQ(row.status, reader.recorded());
        EXPECT_EQ(row.characters, std::vector<unsigned>(value.data, value.data + value.nchars));
    }
    Reader reader("1C 0B 00 01 F6 00 FF FF FF FF 01 02 03");
    Asn132BitCharString value{9, nullptr};
    EXPECT_EQ(0, xd_32BitCharStr(reader, &value, ASN1TagExplicit, universalString, 0));
    ASSERT_EQ(2u, value.nchars);
    EXPECT_EQ(0x1F600u, value.data[0]);
    EXPECT_EQ(0xFFFFFFFFu, value.data[1]);
    EXPECT_EQ(-5, xd_32BitCharStr(reader, &value, ASN1TagImplicit, universalString, -4));
}

TEST(CharacterString, StaysInsideAnyInput) {
    for (const char* message : {"1E 04 00 41 20 AC", "3E 80 04 01 00 04 03 41 20 AC 00 00",
                                "3E 08 04 02 00 41 04 02 20 AC"}) {
        forEachMutation(fromHex(message), [](const Octets& octets) {
            for (const int flags : {0, ASN1F_INDEF_MESSAGE | ASN1F_LENGTH_UNCHECKED}) {
                SCOPED_TRACE(toHex(octets));
                Reader reader(octets);
                rtCtxtSetFlag(reader, flags);
                char* text = nullptr;
                const int status = xd_charstr(reader, &text, ASN1TagExplicit, bmpString, 0);
                EXPECT_LE(reader.position(), octets.size());
                EXPECT_TRUE(status == 0 ? text != nullptr : status < 0);
                EXPECT_LE(text != nullptr ? std::strlen(text) : 0, octets.size());

                Reader again(octets);
                rtCtxtSetFlag(again, flags);
                Asn116BitCharString value{9, nullptr};
                EXPECT_LE(xd_16BitCharStr(again, &value, ASN1TagExplicit, bmpString, 0), 0);
                EXPECT_LE(again.position(), octets.size());
                EXPECT_LE(value.nchars, octets.size() / 2);
            }
        });
    }
}

TEST(CharacterString, ReportsMissingMemory) {
    CountingAllocator allocator;
    for (const char* message : {"1E 00", "1E 02 00 41"}) {
        Reader reader(message);
        CountingAllocator::failAfter(0);
        char* text = nullptr;
        EXPECT_EQ(-12, xd_charstr(reader, &text, ASN1TagExplicit, bmpString, 0));
        EXPECT_EQ(-12, reader.recorded());
        CountingAllocator::neverFail();
    }
    Reader reader("1E 02 00 41");
    CountingAllocator::failAfter(0);
    Asn116BitCharString value;
    EXPECT_EQ(-12, xd_16BitCharStr(reader, &value, ASN1TagExplicit, bmpString, 0));
    EXPECT_EQ(-12, reader.recorded());
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
