#include <brevantis/asn1/runtime/tag_length.h>

#include <algorithm>
#include <limits>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "support/coding.h"
#include "support/counting_allocator.h"
#include "support/heap_copy.h"
#include "support/leak_check.h"
#include "support/row_reader.h"

namespace {

using tests::Context;
using tests::CountingAllocator;
using tests::HeapCopy;
using tests::Octets;
using tests::Reader;
using tests::RowReader;
using tests::Writer;

/// Flags of a message of definite and of indefinite length; the bound holds in both.
constexpr unsigned short messageKinds[] = {0, ASN1F_INDEF_MESSAGE};

TEST(TagLength, ReadsTags) {
    tests::forEachRow("tag_length.txt", "tags", [&](const tests::DataRow& row) {
        // The form flag follows a tag that was read and stays as it was after a failure.
        for (const unsigned before : {0U, unsigned{ASN1F_CONSTRUCTED}}) {
            RowReader reader(row);
            reader->flags = static_cast<unsigned short>(before);
            ASN1TAG tag = 0x12345678;
            const bool read = reader.expect(xd_tag(reader, &tag));
            EXPECT_EQ(tag, row.number<ASN1TAG>("tag"));
            EXPECT_EQ(reader.recorded(), 0);
            const bool constructed = (tag & ASN1TagConstructed) != 0;
            EXPECT_EQ(reader->flags, !read ? before : (constructed ? ASN1F_CONSTRUCTED : 0));
        }
    });
}

TEST(TagLength, ReadsLengths) {
    tests::forEachRow("tag_length.txt", "lengths", [&](const tests::DataRow& row) {
        RowReader reader(row);
        int length = 77;
        reader.expect(xd_len(reader, &length));
        EXPECT_EQ(length, row.number("length"));
        EXPECT_EQ(reader.recorded(), row.number("status"));
    });
}

TEST(TagLength, HeaderReturnsToItsStartUnlessAdvanced) {
    tests::forEachRow("tag_length.txt", "headers", [&](const tests::DataRow& row) {
        for (const int matchFlags : {0, int{ASN1MatchAdvance}}) {
            RowReader reader(row);
            ASN1TAG tag = 0;
            int length = 0;
            reader.expect(xd_tag_len(reader, &tag, &length, matchFlags));
            const auto position = row.number<unsigned>(matchFlags != 0 ? "advanced" : "returned");
            EXPECT_EQ(reader.position(), position);
            if (matchFlags == 0 && position == 0) {
                EXPECT_EQ(reader->flags, row.number<unsigned short>("flags"));
            }
        }
    });
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
    tests::forEachRow("tag_length.txt", "bound messages", [&](const tests::DataRow& row) {
        const HeapCopy message(row["message"]);
        Context context;
        context->flags = row.number<unsigned short>("before");
        const int size = row.number("size stated");
        int length = 77;
        EXPECT_EQ(xd_setp(context, message.data(), size, nullptr, &length), row.number("status"));
        EXPECT_EQ(length, row.number("length"));
        EXPECT_EQ(context->buffer.size, row.number<unsigned>("size"));
        EXPECT_EQ(context->buffer.byteIndex, row.number<unsigned>("position"));
        EXPECT_EQ(context->flags, row.number<unsigned short>("after"));
        EXPECT_EQ(xd_setp(context, message.data(), size, nullptr, nullptr), row.number("status"));
    });
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

    tests::forEachRow("tag_length.txt", "written headers", [&](const tests::DataRow& row) {
        Writer writer;
        EXPECT_EQ(xe_tag_len(writer, row.number<ASN1TAG>("tag"), row.number("length")),
                  row.number("result"));
        EXPECT_EQ(writer.hex(), row["octets"]);
    });
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
    for (const auto& [tag, length, headerSize] :
         {std::tuple(0x9Fu, 256, 6u), std::tuple(0x04u, 5, 2u)}) {
        for (unsigned size = 0; size <= headerSize + 1; ++size) {
            SCOPED_TRACE(size);
            const HeapCopy block(Octets(size, 0xEE));
            Context context;
            EXPECT_EQ(xe_setp(context, block.data(), size), size == 0 ? ASN1S_BUFFER_OVERFLOW : 0);
            EXPECT_EQ(xe_tag_len(context, tag, length), size > headerSize
                                                            ? length + static_cast<int>(headerSize)
                                                            : ASN1S_BUFFER_OVERFLOW);
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
    const tests::LeakCheck allocator;
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

} // namespace
