#include <brevantis/asn1/runtime/octet_string.h>

#include <gtest/gtest.h>

#include "support/coding.h"
#include "support/counting_allocator.h"
#include "support/mutation.h"

namespace {

using namespace tests;

struct DecodeRow {
    const char* name;
    const char* message;
    int status;
    unsigned position;
    const char* octets;
};

const DecodeRow decodeRows[] = {
    {"primitive", "04 03 01 02 03", 0, 5, "01 02 03"},
    {"empty", "04 00", 0, 2, ""},
    {"length longer than needed", "04 82 00 01 07", 0, 5, "07"},
    {"octets behind it stay", "04 01 07 05 00", 0, 3, "07"},
    {"indefinite", "24 80 04 01 41 04 01 42 00 00", 0, 10, "41 42"},
    {"indefinite without segments", "24 80 00 00", 0, 4, ""},
    {"indefinite, empty segment", "24 80 04 00 04 01 41 00 00", 0, 9, "41"},
    {"constructed", "24 06 04 01 41 04 01 42", 0, 8, "41 42"},
    {"constructed, empty", "24 00", 0, 2, ""},
    {"another tag", "05 00", -3, 0, nullptr},
    {"no octet", "", -3, 0, nullptr},
    {"tag alone", "04", -2, 1, nullptr},
    {"indefinite on a primitive form", "04 80 00 00", -5, 2, nullptr},
    {"five length octets", "04 85 00 00 00 00 01 07", -5, 2, nullptr},
    {"long length past the end", "04 81 80 01", -5, 3, nullptr},
    {"short length past the end", "04 02 01", -2, 2, nullptr},
    {"nested in an indefinite form", "24 80 24 80 04 01 41 00 00 00 00", -21, 4, nullptr},
    {"nested in a definite form", "24 04 24 02 04 00", -3, 2, nullptr},
    {"no end-of-contents", "24 80 04 01 41", -2, 5, nullptr},
    {"end-of-contents with a long length", "24 80 04 01 41 00 81 00", -3, 5, nullptr},
    {"segments past the length", "24 05 04 01 41 04 01 42", -5, 8, nullptr},
    {"segments short of the length", "24 07 04 01 41 04 01 42", -5, 8, nullptr},
    {"segment of another tag", "24 05 04 01 41 05 00", -3, 5, nullptr},
    {"segment larger than the string", "24 03 04 7F 41", -17, 4, nullptr},
    {"segments larger than the room left", "24 09 04 04 01 02 03 04 04 06 05 06 07 08 09 0A", -17,
     10, nullptr},
    {"segment header cut off", "24 04 04 01 41 04", -2, 6, nullptr},
};

TEST(OctetString, Decodes) {
    for (const DecodeRow& row : decodeRows) {
        for (const bool noCopy : {false, true}) {
            SCOPED_TRACE(row.name);
            Reader reader(row.message);
            rtCtxtSetFlag(reader, noCopy ? ASN1F_NO_COPY : 0);
            const unsigned char* data = nullptr;
            unsigned count = 99;
            EXPECT_EQ(row.status, xd_octstr(reader, &data, &count, ASN1TagExplicit, 0));
            EXPECT_EQ(row.status, reader.recorded());
            EXPECT_EQ(row.position, reader.position());
            if (row.status != 0) {
                EXPECT_EQ(0u, count);
                continue;
            }
            EXPECT_EQ(toHex(fromHex(row.octets)), toHex(data, count));
            ASSERT_NE(nullptr, data);
            const bool inMessage = noCopy && row.message[0] == '0';
            if (inMessage) {
                EXPECT_EQ(reader->buffer.data + row.position - count, data);
            }
        }
    }
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
    struct Row {
        const char* name;
        const char* message;
        ASN1TagType tagging;
        bool constructed;
        int length;
        unsigned capacity;
        int status;
        int recorded;
        const char* octets;
    };
    const Row rows[] = {
        {"fits", "04 03 01 02 03", ASN1TagExplicit, true, 0, 3, 0, 0, "01 02 03"},
        {"too large", "04 03 01 02 03", ASN1TagExplicit, false, 0, 2, -17, -17, nullptr},
        {"constructed tag", "24 03 04 01 41", ASN1TagExplicit, false, 0, 9, -3, -3, nullptr},
        {"indefinite", "04 80 00 00", ASN1TagExplicit, false, 0, 9, -5, -5, nullptr},
        {"length cut off: the caller's", "04", ASN1TagExplicit, false, 0, 9, 0, -2, ""},
        {"length cut off: the caller's is too much", "04", ASN1TagExplicit, false, 1, 9, -2, -2,
         nullptr},
        {"length malformed: the caller's", "04 85 07", ASN1TagExplicit, false, 1, 9, 0, -5, "07"},
        {"segments", "04 01 41 04 01 42", ASN1TagImplicit, true, 6, 6, 0, 0, "41 42"},
        {"capacity counts segment headers", "04 01 41 04 01 42", ASN1TagImplicit, true, 6, 5, -17,
         -17, nullptr},
        {"negative length", "41", ASN1TagImplicit, false, -9999, 9, -5, -5, nullptr},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        Reader reader(row.message);
        rtCtxtSetFlag(reader, row.constructed ? ASN1F_CONSTRUCTED : 0);
        const auto buffer = std::make_unique<unsigned char[]>(row.capacity);
        unsigned size = row.capacity;
        EXPECT_EQ(row.status, xd_octstr_s(reader, buffer.get(), &size, row.tagging, row.length));
        EXPECT_EQ(row.recorded, reader.recorded());
        if (row.status == 0) {
            EXPECT_EQ(toHex(fromHex(row.octets)), toHex(buffer.get(), size));
        }
    }
}

TEST(OctetString, StaysInsideAnyInput) {
    for (const char* message :
         {"04 03 01 02 03", "24 80 04 01 41 04 01 42 00 00", "24 08 04 02 41 43 04 02 42 44"}) {
        forEachMutation(fromHex(message), [](const Octets& octets) {
            for (const int flags : {0, +ASN1F_NO_COPY, +ASN1F_LENGTH_UNCHECKED,
                                    ASN1F_INDEF_MESSAGE | ASN1F_LENGTH_UNCHECKED}) {
                SCOPED_TRACE(toHex(octets));
                Reader reader(octets);
                rtCtxtSetFlag(reader, flags);
                const unsigned char* data = nullptr;
                unsigned count = 0;
                const int status = xd_octstr(reader, &data, &count, ASN1TagExplicit, 0);
                EXPECT_LE(status, 0);
                EXPECT_LE(reader.position(), octets.size());
                EXPECT_LE(count, octets.size());
                toHex(data, count); // every octet can be read

                Reader again(octets);
                rtCtxtSetFlag(again, flags | ASN1F_CONSTRUCTED);
                const auto buffer = std::make_unique<unsigned char[]>(4);
                count = 4;
                xd_octstr_s(again, buffer.get(), &count, ASN1TagImplicit, 4);
                EXPECT_LE(again.position(), octets.size());
                EXPECT_LE(count, 4u);
            }
        });
    }
}

TEST(OctetString, ReportsMissingMemory) {
    CountingAllocator allocator;
    for (const char* message : {"04 01 41", "24 80 04 01 41 00 00"}) {
        Reader reader(message);
        CountingAllocator::failAfter(0);
        const unsigned char* data = nullptr;
        unsigned count = 0;
        EXPECT_EQ(-12, xd_octstr(reader, &data, &count, ASN1TagExplicit, 0));
        EXPECT_EQ(-12, reader.recorded());
        CountingAllocator::neverFail();
    }
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
