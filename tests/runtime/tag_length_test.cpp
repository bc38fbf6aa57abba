#include <brevantis/asn1/runtime/tag_length.h>

#include <algorithm>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "support/coding.h"
#include "support/counting_allocator.h"
#include "support/heap_copy.h"

namespace {

using tests::Context;
using tests::CountingAllocator;
using tests::HeapCopy;
using tests::Octets;
using tests::Reader;
using tests::Writer;

constexpr unsigned noBound = 0x7FFFFFFF;

/// Flags of a message of definite and of indefinite length; the bound holds in both.
constexpr unsigned short messageKinds[] = {0, ASN1F_INDEF_MESSAGE};

TEST(TagLength, ReadsTags) {
    const struct {
        const char* name;
        const char* hex;
        int status;
        ASN1TAG tag;
        unsigned position;
    } rows[] = {
        {"universal primitive", "02", 0, 0x00000002, 1},
        {"universal constructed", "30", 0, 0x20000010, 1},
        {"context 0 constructed", "A0", 0, 0xA0000000, 1},
        {"private 30 primitive", "DE", 0, 0xC000001E, 1},
        {"end-of-contents", "00", 0, 0, 1},
        {"long form", "7F 81 1F", 0, 0x6000009F, 3},
        {"long form of a small number", "1F 05", 0, 5, 2},
        {"leading zeros up to nine octets", "1F 80 80 80 80 80 80 80 80 05", 0, 5, 10},
        {"nine octets and more to come", "1F 80 80 80 80 80 80 80 80 85 00", ASN1S_BAD_TAG, 0, 10},
        {"largest number", "DF 81 FF FF FF 7F", 0, 0xDFFFFFFF, 6},
        {"one too big at the fifth octet", "1F 82 80 80 80 00", ASN1S_BAD_TAG, 0, 6},
        {"too big before its last octet", "1F 82 80 80 80 80 00", ASN1S_BAD_TAG, 0, 6},
        {"bit 32 is lost", "1F 90 80 80 80 07", 0, 7, 6},
        {"nothing", "", ASN1S_END_OF_BUFFER, 0, 0},
        {"cut off", "1F 82 80", ASN1S_END_OF_BUFFER, 0, 3},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        // The form flag follows a tag that was read and stays as it was after a failure.
        for (const unsigned before : {0U, unsigned{ASN1F_CONSTRUCTED}}) {
            Reader reader(row.hex);
            reader->flags = static_cast<unsigned short>(before);
            ASN1TAG tag = 0x12345678;
            EXPECT_EQ(xd_tag(reader, &tag), row.status);
            EXPECT_EQ(tag, row.tag);
            EXPECT_EQ(reader.position(), row.position);
            EXPECT_EQ(reader.recorded(), 0);
            const bool constructed = (row.tag & ASN1TagConstructed) != 0;
            EXPECT_EQ(reader->flags,
                      row.status != 0 ? before : (constructed ? ASN1F_CONSTRUCTED : 0));
        }
    }
}

TEST(TagLength, ReadsLengths) {
    constexpr unsigned short unchecked = ASN1F_LENGTH_UNCHECKED;
    constexpr unsigned short indefinite = ASN1F_INDEF_MESSAGE;
    const struct {
        const char* name;
        const char* hex;
        unsigned short flags;
        int status;
        int length;
        unsigned position;
    } rows[] = {
        {"zero", "00", 0, 0, 0, 1},
        {"short form, not compared", "7F", 0, 0, 127, 1},
        {"indefinite", "80", 0, 0, ASN1IndefiniteLength, 1},
        {"long form that fits", "81 02 AA AA", 0, 0, 2, 2},
        {"long form one octet too long", "81 03 AA AA", 0, ASN1S_INVALID_LENGTH, 3, 2},
        {"not minimal", "82 00 01 AA", 0, 0, 1, 3},
        {"four octets, not minimal", "84 00 00 00 01 AA", 0, 0, 1, 5},
        {"five octets", "85 00 00 00 00 01 AA", 0, ASN1S_INVALID_LENGTH, 0, 1},
        {"reserved first octet", "FF", 0, ASN1S_INVALID_LENGTH, 0, 1},
        {"negative", "84 FF FF FF FF", 0, ASN1S_INVALID_LENGTH, -1, 5},
        {"negative, unchecked", "84 FF FF FF FF", unchecked, 0, -1, 5},
        {"beyond the buffer, unchecked", "84 7F FF FF FF", unchecked, 0, 0x7FFFFFFF, 5},
        {"beyond, in an indefinite message", "82 01 00", indefinite, ASN1S_INVALID_LENGTH, 256, 3},
        {"the number of the indefinite form", "84 FF FF D8 F1", 0, 0, ASN1IndefiniteLength, 5},
        {"nothing", "", 0, ASN1S_END_OF_BUFFER, 0, 0},
        {"cut off", "82 00", 0, ASN1S_END_OF_BUFFER, 0, 2},
        {"cut off in an indefinite message", "83 00 00", indefinite, ASN1S_END_OF_BUFFER, 0, 3},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Reader reader(row.hex);
        reader->flags = row.flags;
        int length = 77;
        EXPECT_EQ(xd_len(reader, &length), row.status);
        EXPECT_EQ(length, row.length);
        EXPECT_EQ(reader.position(), row.position);
        EXPECT_EQ(reader.recorded(), row.status);
    }
}

TEST(TagLength, HeaderReturnsToItsStartUnlessAdvanced) {
    const struct {
        const char* name;
        const char* hex;
        unsigned short flags;
        int status;
        int recorded;
        unsigned advanced; ///< position with ASN1MatchAdvance
        unsigned returned; ///< position without
    } rows[] = {
        {"short", "02 01 05", 0, 0, 0, 2, 0},
        {"short, contents beyond the buffer", "02 05", 0, 0, 0, 2, 0},
        {"long tag and length", "BF 1F 81 01 00", 0, 0, 0, 4, 0},
        {"indefinite constructed", "24 80", 0, 0, 0, 2, 0},
        {"indefinite primitive", "04 80", 0, ASN1S_INVALID_LENGTH, 0, 2, 2},
        {"number too big", "1F 82 80 80 80 00", 0, ASN1S_BAD_TAG, 0, 6, 0},
        {"malformed length", "24 85", 0, ASN1S_INVALID_LENGTH, ASN1S_INVALID_LENGTH, 2, 0},
        {"no length", "24", 0, ASN1S_END_OF_BUFFER, 0, 1, 0},
        {"no length, indefinite message", "24", ASN1F_INDEF_MESSAGE, ASN1S_END_OF_BUFFER, 0, 1, 0},
        {"closed message", "02 01 05", ASN1F_INDEF_MESSAGE | ASN1F_LAST_EOC, ASN1S_END_OF_BUFFER, 0,
         0, 0},
        {"the closing flag alone", "02 01 05", ASN1F_LAST_EOC, 0, 0, 2, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        for (const int matchFlags : {0, int{ASN1MatchAdvance}}) {
            Reader reader(row.hex);
            reader->flags = row.flags;
            ASN1TAG tag = 0;
            int length = 0;
            EXPECT_EQ(xd_tag_len(reader, &tag, &length, matchFlags), row.status);
            EXPECT_EQ(reader.recorded(), row.recorded);
            EXPECT_EQ(reader.position(), matchFlags == 0 ? row.returned : row.advanced);
            if (matchFlags == 0 && row.returned == 0) {
                EXPECT_EQ(reader->flags, row.flags);
            }
        }
    }
}

TEST(TagLength, EndOfBufferSavesThePositionInIndefiniteMessagesOnly) {
    for (const bool indefinite : {false, true}) {
        Reader reader("02 01 05");
        reader->flags = indefinite ? ASN1F_INDEF_MESSAGE : 0;
        reader->buffer.byteIndex = 3;
        reader->savedInfo.byteIndex = 1;
        ASN1TAG tag = 0;
        int length = 0;
        EXPECT_EQ(xd_tag_len(reader, &tag, &length, 0), ASN1S_END_OF_BUFFER);
        EXPECT_EQ(reader->savedInfo.byteIndex, indefinite ? 3U : 1U);
        EXPECT_EQ(reader.position(), 3U);
    }
}

TEST(TagLength, EveryTruncationOfAHeaderEndsTheBuffer) {
    const Octets header = tests::fromHex("BF 83 FF 7F 84 00 00 00 00");
    for (std::size_t count = 0; count < header.size(); ++count) {
        for (const unsigned short flags : messageKinds) {
            SCOPED_TRACE(count);
            Reader reader(Octets(header.begin(), header.begin() + static_cast<long>(count)));
            reader->flags = flags;
            ASN1TAG tag = 0;
            int length = 0;
            EXPECT_EQ(xd_tag_len(reader, &tag, &length, 0), ASN1S_END_OF_BUFFER);
            // Only the octets behind a first length octet are recorded by the one who misses them.
            EXPECT_EQ(reader.recorded(), count > 4 ? ASN1S_END_OF_BUFFER : 0);
            EXPECT_EQ(reader.position(), 0U);
        }
    }
}

TEST(TagLength, BindsAMessageToItsFirstElement) {
    constexpr unsigned short unchecked = ASN1F_LENGTH_UNCHECKED;
    constexpr unsigned short indefinite = ASN1F_INDEF_MESSAGE;
    const struct {
        const char* name;
        const char* hex;
        int msgLen;
        unsigned short before;
        int status;
        int length;
        unsigned size;
        unsigned position;
        unsigned short after;
    } rows[] = {
        {"whole", "30 03 02 01 05", 5, 0, 0, 5, 5, 0, ASN1F_CONSTRUCTED},
        {"octets behind are cut", "04 01 AA FF FF", 5, 0, 0, 3, 3, 0, 0},
        {"old flags go", "04 00", 2, indefinite | ASN1F_LAST_EOC, 0, 2, 2, 0, 0},
        {"unknown size", "04 01 AA FF FF", 0, 0, 0, 3, 3, 0, 0},
        {"unknown size, the longest", "04 84 7F FF FF F9", -1, 0, 0, 0x7FFFFFFF, noBound, 0, 0},
        {"unknown size, too long", "04 84 7F FF FF FA", 0, 0, ASN1S_INVALID_LENGTH, 77, noBound, 0,
         0},
        {"indefinite", "30 80 02 01 05 00 00", 7, 0, 0, ASN1IndefiniteLength, 7, 0,
         indefinite | ASN1F_CONSTRUCTED},
        {"indefinite, unknown size", "30 80 00 00", 0, 0, 0, ASN1IndefiniteLength, noBound, 0,
         indefinite | ASN1F_CONSTRUCTED},
        {"indefinite primitive", "04 80", 2, 0, ASN1S_INVALID_LENGTH, 77, 2, 0, 0},
        {"short form too long", "04 03 AA", 3, 0, ASN1S_INVALID_LENGTH, 5, 3, 0, 0},
        {"long form too long", "04 81 03 AA", 4, 0, ASN1S_INVALID_LENGTH, 77, 4, 0, 0},
        {"too long, unchecked", "04 81 03 AA", 4, unchecked, 0, 6, 4, 0, unchecked},
        {"negative, unchecked", "04 84 FF FF FF 00", 6, unchecked, 0, -250, 6, 0, unchecked},
        {"cut off", "04", 1, 0, ASN1S_END_OF_BUFFER, 77, 1, 1, 0},
        {"number too big", "1F 82 80 80 80 00 00", 7, 0, ASN1S_BAD_TAG, 77, 7, 6, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const HeapCopy message(row.hex);
        Context context;
        context->flags = row.before;
        int length = 77;
        EXPECT_EQ(xd_setp(context, message.data(), row.msgLen, nullptr, &length), row.status);
        EXPECT_EQ(length, row.length);
        EXPECT_EQ(context->buffer.size, row.size);
        EXPECT_EQ(context->buffer.byteIndex, row.position);
        EXPECT_EQ(context->flags, row.after);
        EXPECT_EQ(xd_setp(context, message.data(), row.msgLen, nullptr, nullptr), row.status);
    }
}

TEST(TagLength, BindingWithoutAMessageReadsNothing) {
    Context context;
    ASN1TAG tag = 77;
    EXPECT_EQ(xd_setp(context, nullptr, 8, &tag, nullptr), ASN1S_END_OF_BUFFER);
    EXPECT_EQ(xd_setp(context, nullptr, 0, &tag, nullptr), ASN1S_NO_MEMORY);
    EXPECT_EQ(tag, 77U);
    ASN1CTXT unset{};
    const HeapCopy message("04 00");
    EXPECT_EQ(xd_setp(&unset, message.data(), 2, &tag, nullptr), ASN1S_NOT_INITIALISED);
    EXPECT_EQ(xe_setp(&unset, message.data(), 2), ASN1S_NOT_INITIALISED);
}

TEST(TagLength, WritesHeaders) {
    const struct {
        ASN1TAG tag;
        int length;
        int result;
        const char* hex;
    } rows[] = {
        {0x02, 0, 2, "02 00"},
        {0xA0000000, 127, 129, "A0 7F"},
        {0x20000010, 128, 131, "30 81 80"},
        {0x20000010, 255, 258, "30 81 FF"},
        {0x20000010, 256, 260, "30 82 01 00"},
        {0x1E, 0x10000, 0x10005, "1E 83 01 00 00"},
        {0x1F, 0, 3, "1F 1F 00"},
        {0x9F, 0, 4, "1F 81 1F 00"},
        {0xDFFFFFFF, 0x7FFFFF00, 0x7FFFFF0B, "DF 81 FF FF FF 7F 84 7F FF FF 00"},
        {0x20000010, ASN1IndefiniteLength, 2, "30 80"},
        {0x02, ASN1S_INVALID_LENGTH, ASN1S_INVALID_LENGTH, ""},
        {0x02, 0x7FFFFFF9, 0x7FFFFFFF, "02 84 7F FF FF F9"},
        {0x02, 0x7FFFFFFA, ASN1S_BUFFER_OVERFLOW, "02 84 7F FF FF FA"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.hex);
        Writer writer;
        EXPECT_EQ(xe_tag_len(writer, row.tag, row.length), row.result);
        EXPECT_EQ(writer.hex(), row.hex);
    }
}

TEST(TagLength, WritesNumbersAndLengthsAlone) {
    Writer writer;
    EXPECT_EQ(xe_len(writer, -5), 0);
    EXPECT_EQ(xe_len(writer, 0x7FFFFFFF), 5);
    EXPECT_EQ(xe_identifier(writer, 0), 1);
    EXPECT_EQ(xe_identifier(writer, 127), 1);
    EXPECT_EQ(xe_identifier(writer, 128), 2);
    EXPECT_EQ(xe_identifier(writer, 0xFFFFFFFF), 5);
    EXPECT_EQ(writer.hex(), "8F FF FF FF 7F 81 00 7F 00 84 7F FF FF FF");
}

TEST(TagLength, HeadersReadBack) {
    const unsigned numbers[] = {0,      1,      30,       31,        127,        128,
                                0x3FFF, 0x4000, 0x1FFFFF, 0x0FFFFFF, 0x10000000, 0x1FFFFFFF};
    const int lengths[] = {0, 127, 128, 255, 256, 0xFFFF, 0x10000, 0xFFFFFF, 0x1000000, 0x7FFFF000};
    for (const unsigned number : numbers) {
        for (const int length : lengths) {
            for (ASN1TAG leading = 0; leading < 8; ++leading) {
                Writer writer;
                const ASN1TAG tag = leading << 29 | number;
                ASSERT_GT(xe_tag_len(writer, tag, length), 0);
                Reader reader(writer.hex());
                reader->flags = ASN1F_LENGTH_UNCHECKED;
                ASN1TAG tagRead = 0;
                int lengthRead = 0;
                ASSERT_EQ(xd_tag_len(reader, &tagRead, &lengthRead, ASN1MatchAdvance), 0);
                EXPECT_EQ(tagRead, tag);
                EXPECT_EQ(lengthRead, length);
                EXPECT_EQ(reader.position(), reader->buffer.size);
            }
        }
    }
}

TEST(TagLength, AFixedBufferKeepsItsLastOctetFree) {
    // Room for every number of octets of a long and of a short header, and for none at all.
    const struct {
        ASN1TAG tag;
        int length;
        unsigned headerSize;
    } rows[] = {{0x9F, 256, 6}, {0x04, 5, 2}};
    for (const auto& row : rows) {
        for (unsigned size = 0; size <= row.headerSize + 1; ++size) {
            SCOPED_TRACE(size);
            const HeapCopy block(Octets(size, 0xEE));
            Context context;
            EXPECT_EQ(xe_setp(context, block.data(), size), size == 0 ? ASN1S_BUFFER_OVERFLOW : 0);
            const int whole = row.length + static_cast<int>(row.headerSize);
            EXPECT_EQ(xe_tag_len(context, row.tag, row.length),
                      size > row.headerSize ? whole : ASN1S_BUFFER_OVERFLOW);
            EXPECT_EQ(context->buffer.byteIndex, 0U);
            EXPECT_EQ(context->errInfo.status, 0);
            EXPECT_EQ(xe_memcpy(context, "x", 1), ASN1S_BUFFER_OVERFLOW);
            EXPECT_EQ(xe_getp(context), block.data());
            if (size != 0) {
                EXPECT_EQ(block.data()[size - 1], 0xEE);
            }
        }
    }
}

TEST(TagLength, WritesOnlyWhatFits) {
    const HeapCopy block(Octets(8, 0));
    Context context;
    ASSERT_EQ(xe_setp(context, block.data(), 8), 0);
    EXPECT_EQ(xe_memcpy(context, nullptr, 0), ASN1S_BAD_VALUE);
    EXPECT_EQ(xe_memcpy(context, "", 0), 0);
    EXPECT_EQ(xe_memcpy(context, "abcdefgh", 8), ASN1S_BUFFER_OVERFLOW);
    EXPECT_EQ(xe_memcpy(context, "abcdefg", 0xFFFFFFFF), ASN1S_BUFFER_OVERFLOW);
    EXPECT_EQ(context->buffer.byteIndex, 7U);
    EXPECT_EQ(xe_memcpy(context, "abcdefg", 7), 7);
    EXPECT_EQ(tests::toHex(xe_getp(context), 7), "61 62 63 64 65 66 67");
}

TEST(TagLength, ADynamicBufferKeepsEverythingAsItGrows) {
    constexpr unsigned step = 16384;
    Octets expected; // front to back in the order of writing, each piece reversed
    Writer writer;
    unsigned growths = 0;
    unsigned char next = 0;
    for (int round = 0; round < 40; ++round) {
        for (const unsigned count : {1U, 2U, 5000U, step - 1, step, step + 1, 40000U}) {
            if (round > 2 && count > 5000) {
                continue;
            }
            Octets piece(count);
            std::generate(piece.begin(), piece.end(),
                          [&next] { return next = static_cast<unsigned char>(next * 5 + 3); });
            const unsigned sizeBefore = writer->buffer.size;
            const unsigned room = writer->buffer.byteIndex;
            ASSERT_EQ(xe_memcpy(writer, piece.data(), count), static_cast<int>(count));
            const unsigned growth = room < count ? std::max({count, step, sizeBefore / 2}) : 0;
            ASSERT_EQ(writer->buffer.size, sizeBefore + growth);
            growths += growth != 0 ? 1 : 0;
            expected.insert(expected.end(), piece.rbegin(), piece.rend());
        }
    }
    EXPECT_GT(growths, 5U);
    const unsigned char* first = xe_getp(writer);
    ASSERT_EQ(writer->buffer.size - 1 - writer->buffer.byteIndex, expected.size());
    EXPECT_TRUE(std::equal(expected.rbegin(), expected.rend(), first));
}

TEST(TagLength, GrowthThatFailsLeavesTheBufferAlone) {
    const CountingAllocator allocator;
    {
        Writer writer;
        ASSERT_EQ(xe_memcpy(writer, "abc", 3), 3);
        const ASN1Buffer before = writer->buffer;
        const Octets large(20000, 1);
        const long calls = CountingAllocator::calls();
        EXPECT_EQ(xe_expandBuffer(writer, std::numeric_limits<int>::max()), ASN1S_NO_MEMORY);
        EXPECT_EQ(xe_expandBuffer(writer, 0x7FFFFFCF - 16383), ASN1S_NO_MEMORY);
        EXPECT_EQ(xe_memcpy(writer, large.data(), 0xFFFFFFFF), ASN1S_NO_MEMORY);
        EXPECT_EQ(CountingAllocator::calls(), calls) << "sizes that cannot be are not tried";
        CountingAllocator::failAfter(0);
        EXPECT_EQ(xe_memcpy(writer, large.data(), 20000), ASN1S_NO_MEMORY);
        EXPECT_EQ(writer->buffer.data, before.data);
        EXPECT_EQ(writer->buffer.size, before.size);
        EXPECT_EQ(writer.hex(), "61 62 63");
        CountingAllocator::neverFail();
        EXPECT_EQ(xe_expandBuffer(writer, -1), 0);
        EXPECT_EQ(writer->buffer.size, 2 * before.size);
        EXPECT_EQ(writer.hex(), "61 62 63");
        EXPECT_EQ(CountingAllocator::live(), 2) << "the heap and one block";
    }
    EXPECT_EQ(CountingAllocator::live(), 0);
}

} // namespace
