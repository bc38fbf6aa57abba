#include <brevantis/asn1/runtime/bit_string.h>

#include <gtest/gtest.h>

#include "support/coding.h"
#include "support/counting_allocator.h"
#include "support/mutation.h"

namespace {

using namespace tests;

TEST(BitString, Decodes) {
    struct Row {
        const char* name;
        const char* message;
        int status;
        int recorded;
        unsigned position;
        unsigned numbits;
        const char* octets;
    };
    const Row rows[] = {
        {"unused bits stay as sent", "03 03 04 AB CD", 0, 0, 5, 12, "AB CD"},
        {"whole octets", "03 02 00 AB", 0, 0, 4, 8, "AB"},
        {"empty", "03 01 00", 0, 0, 3, 0, nullptr},
        {"without a count of unused bits", "03 00", 0, 0, 2, 0, nullptr},
        {"unused bits of nothing", "03 01 01", -5, 0, 2, 0, nullptr},
        {"eight unused bits", "03 02 08 FF", -18, 0, 0, 0, nullptr},
        {"content cut off", "03 01", -2, 0, 2, 0, nullptr},
        {"bits cut off", "03 05 00 FF", -2, 0, 0, 0, nullptr},
        {"another tag", "04 01 00", -3, -3, 0, 0, nullptr},
        {"no octet", "", -3, -3, 0, 0, nullptr},
        {"indefinite on a primitive form", "03 80 00 00", -5, -5, 2, 0, nullptr},
        {"one segment", "23 04 03 02 04 C0", 0, 0, 6, 4, "C0"},
        {"the first count of two stays", "23 08 03 02 00 AB 03 02 04 C0", 0, 0, 10, 20, "00 AB C0"},
        {"the same, indefinite", "23 80 03 02 00 AB 03 02 04 C0 00 00", 0, 0, 12, 20, "00 AB C0"},
        {"indefinite without segments", "23 80 00 00", 0, 0, 4, 0, nullptr},
        {"indefinite, empty value", "23 80 03 01 00 00 00", -5, 0, 2, 0, nullptr},
        {"constructed, empty value", "23 03 03 01 00", 0, 0, 5, 0, ""},
        {"constructed, unused bits of nothing", "23 03 03 01 05", -5, 0, 5, 0, nullptr},
        {"last segment empty", "23 02 03 00", -5, -5, 4, 0, nullptr},
        {"nine unused bits in a segment", "23 04 03 02 09 C0", -18, 0, 6, 0, nullptr},
        {"a nested segment is data", "23 06 23 04 03 02 00 AB", 0, 0, 8, 21, "02 00 AB"},
        {"a nested segment of no definite length", "23 06 23 80 03 00 00 00", -5, -5, 4, 0,
         nullptr},
        {"segment of another tag", "23 07 03 02 00 C0 04 01 00", -3, -3, 6, 0, nullptr},
        {"segment of another tag, indefinite", "23 80 04 01 00 00 00", -21, -21, 4, 0, nullptr},
        {"segments past the length", "23 03 03 02 00 C0", -5, -5, 6, 0, nullptr},
        {"segments short of the length", "23 05 03 02 00 C0", -5, -5, 6, 0, nullptr},
        {"segment cut off", "23 06 03 04 00 C0", -2, -2, 4, 0, nullptr},
        {"segment larger than the room", "23 04 03 7F 00 C0", -17, -17, 4, 0, nullptr},
        {"no end-of-contents", "23 80 03 02 00 C0", -2, -2, 6, 0, nullptr},
    };
    for (const Row& row : rows) {
        for (const bool noCopy : {false, true}) {
            SCOPED_TRACE(row.name);
            Reader reader(row.message);
            rtCtxtSetFlag(reader, noCopy ? ASN1F_NO_COPY : 0);
            const unsigned char* data = nullptr;
            unsigned numbits = 99;
            EXPECT_EQ(row.status, xd_bitstr(reader, &data, &numbits, ASN1TagExplicit, 0));
            EXPECT_EQ(row.recorded, reader.recorded());
            EXPECT_EQ(row.numbits, numbits);
            if (row.position != 0) {
                EXPECT_EQ(row.position, reader.position());
            }
            if (row.status == 0) {
                EXPECT_EQ(row.octets == nullptr, data == nullptr);
                EXPECT_EQ(row.octets != nullptr ? row.octets : "", toHex(data, (numbits + 7) / 8));
            }
            if (noCopy && row.status == 0 && row.message[0] == '0' && numbits != 0) {
                EXPECT_EQ(reader->buffer.data + 3, data);
            }
        }
    }
}

TEST(BitString, DecodesIntoABuffer) {
    struct Row {
        const char* name;
        const char* message;
        ASN1TagType tagging;
        bool constructed;
        int length;
        unsigned capacity; ///< bits
        int status;
        int recorded;
        unsigned position;
        unsigned numbits;
    };
    const Row rows[] = {
        {"fits", "03 03 04 AB CD", ASN1TagExplicit, true, 0, 12, 0, 0, 5, 12},
        {"too large", "03 03 04 AB CD", ASN1TagExplicit, false, 0, 8, -17, 0, 3, 8},
        {"no limit", "03 03 04 AB CD", ASN1TagExplicit, false, 0, 0, 0, 0, 5, 12},
        {"constructed tag", "23 03 03 01 00", ASN1TagExplicit, false, 0, 12, -3, -3, 0, 12},
        {"indefinite", "03 80 00 00", ASN1TagExplicit, false, 0, 12, -5, 0, 2, 12},
        {"empty", "03 01 00", ASN1TagExplicit, false, 0, 12, 0, 0, 3, 0},
        {"unused bits of nothing", "03 01 01", ASN1TagExplicit, false, 0, 12, -5, 0, 3, 0},
        {"without a count of unused bits", "03 00", ASN1TagExplicit, false, 0, 12, 0, 0, 2, 0},
        {"tag alone", "03", ASN1TagExplicit, false, 0, 12, -2, -2, 1, 12},
        {"end-of-contents stays", "03 02 04 A0 00 00", ASN1TagImplicit, true, -9999, 16, 0, 0, 4,
         4},
        {"last segment found by the capacity", "03 02 04 A0 00 00", ASN1TagImplicit, true, -9999, 8,
         0, 0, 4, 4},
        {"one segment too many", "03 02 00 A0 03 02 00 A0", ASN1TagImplicit, true, 8, 8, -17, -17,
         6, 8},
        {"count of unused bits cut off", "03 02", ASN1TagImplicit, true, 2, 8, -2, -2, 2, 8},
        {"no segments", "", ASN1TagImplicit, true, 0, 8, 0, 0, 0, 0},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        Reader reader(row.message);
        rtCtxtSetFlag(reader, row.constructed ? ASN1F_CONSTRUCTED : 0);
        const auto buffer =
            std::make_unique<unsigned char[]>(row.capacity != 0 ? (row.capacity + 7) / 8 : 8);
        unsigned numbits = row.capacity;
        EXPECT_EQ(row.status, xd_bitstr_s(reader, buffer.get(), &numbits, row.tagging, row.length));
        EXPECT_EQ(row.recorded, reader.recorded());
        EXPECT_EQ(row.position, reader.position());
        EXPECT_EQ(row.numbits, numbits);
    }
}

TEST(BitString, StaysInsideAnyInput) {
    for (const char* message : {"03 03 04 AB CD", "23 80 03 02 00 AB 03 02 04 C0 00 00",
                                "23 08 03 02 00 AB 03 02 04 C0", "23 06 23 04 03 02 00 AB"}) {
        forEachMutation(fromHex(message), [](const Octets& octets) {
            for (const int flags : {0, +ASN1F_NO_COPY, +ASN1F_LENGTH_UNCHECKED,
                                    ASN1F_INDEF_MESSAGE | ASN1F_LENGTH_UNCHECKED}) {
                SCOPED_TRACE(toHex(octets));
                Reader reader(octets);
                rtCtxtSetFlag(reader, flags);
                const unsigned char* data = nullptr;
                unsigned numbits = 0;
                EXPECT_LE(xd_bitstr(reader, &data, &numbits, ASN1TagExplicit, 0), 0);
                EXPECT_LE(reader.position(), octets.size());
                EXPECT_LE(numbits, octets.size() * 8);
                toHex(data, (numbits + 7) / 8);

                for (const int length : {4, +ASN1IndefiniteLength}) {
                    Reader again(octets);
                    rtCtxtSetFlag(again, flags | ASN1F_CONSTRUCTED);
                    const auto buffer = std::make_unique<unsigned char[]>(3);
                    numbits = 24;
                    xd_bitstr_s(again, buffer.get(), &numbits, ASN1TagImplicit, length);
                    EXPECT_LE(again.position(), octets.size());
                    EXPECT_LE(numbits, 24u);
                }
            }
        });
    }
}

TEST(BitString, ReportsMissingMemory) {
    CountingAllocator allocator;
    Reader reader("03 02 00 41");
    CountingAllocator::failAfter(0);
    const unsigned char* data = nullptr;
    unsigned numbits = 0;
    EXPECT_EQ(-12, xd_bitstr(reader, &data, &numbits, ASN1TagExplicit, 0));
    EXPECT_EQ(-12, reader.recorded());
    reader->buffer.byteIndex = 0;
    rtCtxtSetFlag(reader, ASN1F_NO_COPY);
    EXPECT_EQ(0, xd_bitstr(reader, &data, &numbits, ASN1TagExplicit, 0)); // allocates nothing
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
