#include <brevantis/asn1/runtime/element_walk.h>

#include <limits>
#include <random>

#include <gtest/gtest.h>

#include "support/coding.h"
#include "support/counting_allocator.h"
#include "support/heap_copy.h"
#include "support/row_reader.h"

namespace {

using tests::CountingAllocator;
using tests::HeapCopy;
using tests::Octets;
using tests::Reader;
using tests::RowReader;

constexpr int indefinite = ASN1IndefiniteLength;
constexpr unsigned short unchecked = ASN1F_LENGTH_UNCHECKED;

/// Flags of a message of definite and of indefinite length; the bound holds in both.
constexpr unsigned short messageKinds[] = {0, ASN1F_INDEF_MESSAGE};

TEST(ElementWalk, MatchFindsTags) {
    tests::forEachRow("element_walk.txt", "matches", [&](const tests::DataRow& row) {
        RowReader reader(row);
        int length = 77;
        const int status = xd_match(reader, row.number<ASN1TAG>("tag"), &length, row.number("how"));
        reader.expect(status);
        EXPECT_EQ(length, row.number("length"));
        EXPECT_EQ(reader.recorded(), status == ASN1S_INVALID_LENGTH ? status : 0);
    });
}

TEST(ElementWalk, ASkipDoesNotFollowTheRecordOfALongerMessage) {
    Reader reader("02 01 05");
    reader->savedInfo.byteIndex = 4000;
    reader->buffer.byteIndex = 3;
    EXPECT_EQ(xd_match(reader, 2, nullptr, ASN1MatchSkipFirst), ASN1S_TAG_NOT_FOUND);
    EXPECT_EQ(reader.position(), 3U);
}

TEST(ElementWalk, OneOctetMatch) {
    tests::forEachRow("element_walk.txt", "matches of one octet", [&](const tests::DataRow& row) {
        RowReader reader(row);
        int length = 77;
        const bool found =
            reader.expect(xd_match1(reader, row.number<unsigned char>("octet"), &length));
        EXPECT_EQ(length, row.number("length"));
        if (found) {
            EXPECT_EQ(reader->flags, row["message"][0] == '3' ? ASN1F_CONSTRUCTED : 0);
        }
    });
    Reader reader("04 80");
    EXPECT_EQ(xd_match1(reader, 4, nullptr), 0) << "without a length to report it is not judged";
}

TEST(ElementWalk, Tag1AndLenTakesAnyTag) {
    Reader reader("04 80 3F 81 01 05");
    reader->savedInfo.byteIndex = 99;
    reader->flags = ASN1F_LAST_EOC;
    int length = 0;
    EXPECT_EQ(xd_Tag1AndLen(reader, &length), 0);
    EXPECT_EQ(length, indefinite) << "the form is not compared";
    EXPECT_EQ(xd_Tag1AndLen(reader, &length), 0) << "31 announces no number octets here";
    EXPECT_EQ(length, 1);
    EXPECT_EQ(reader->flags, ASN1F_LAST_EOC | ASN1F_CONSTRUCTED);
    EXPECT_EQ(xd_Tag1AndLen(reader, &length), ASN1S_END_OF_BUFFER);
    EXPECT_EQ(xd_Tag1AndLen(reader, &length), ASN1S_END_OF_BUFFER);
    EXPECT_EQ(reader->savedInfo.byteIndex, 99U);
    reader->buffer.byteIndex = 0;
    reader->flags = ASN1F_INDEF_MESSAGE | ASN1F_LAST_EOC;
    EXPECT_EQ(xd_Tag1AndLen(reader, &length), ASN1S_END_OF_BUFFER);
    EXPECT_EQ(reader.position(), 0U);
}

TEST(ElementWalk, StepsOverElements) {
    tests::forEachRow("element_walk.txt", "steps", [&](const tests::DataRow& row) {
        RowReader reader(row);
        reader.expect(row["walk"] == "next element" ? xd_NextElement(reader)
                                                    : xd_MovePastEOC(reader));
        EXPECT_EQ(reader.recorded(), 0);
    });
}

TEST(ElementWalk, CountsElements) {
    tests::forEachRow("element_walk.txt", "counts", [&](const tests::DataRow& row) {
        RowReader reader(row);
        int count = 77;
        reader.expect(xd_count(reader, row.number("length"), &count));
        EXPECT_EQ(count, row.number("count"));
    });
}

TEST(ElementWalk, MeasuresIndefiniteMessages) {

    tests::forEachRow("element_walk.txt", "indefinite messages", [&](const tests::DataRow& row) {
        const HeapCopy message(row["message"]);
        EXPECT_EQ(xd_indeflen_ex(message.data(), message.length()), row.number("result"));
    });
    EXPECT_EQ(xd_indeflen_ex(nullptr, -1), 0);
}

TEST(ElementWalk, MeasuringTakesNoMemory) {
    const CountingAllocator allocator;
    const HeapCopy message("30 80 05 00 00 00");
    EXPECT_EQ(xd_indeflen_ex(message.data(), message.length()), 6);
    EXPECT_EQ(CountingAllocator::calls(), 0);
}

TEST(ElementWalk, MeasuresSegmentedStrings) {

    tests::forEachRow("element_walk.txt", "segmented strings", [&](const tests::DataRow& row) {
        Reader reader(std::string("EE ") + row["message"]);
        reader->buffer.byteIndex = 1;
        reader->flags = ASN1F_CONSTRUCTED;
        int dataLen = 77;
        int contentLen = 77;
        EXPECT_EQ(xd_consStrIndefLenAndSize(reader, row.number<ASN1TAG>("segmentTag"), &dataLen,
                                            &contentLen),
                  row.number("status"));
        EXPECT_EQ(dataLen, row.number("dataLen"));
        EXPECT_EQ(contentLen, row.number("contentLen"));
        if (row.number("status") == 0) {
            EXPECT_EQ(reader.position(), 1U);
            EXPECT_EQ(reader->flags, ASN1F_CONSTRUCTED);
        }
    });
}

TEST(ElementWalk, CopiesWithinTheBuffer) {
    Reader reader("01 02 03 04");
    unsigned char target[4] = {};
    EXPECT_EQ(xd_memcpy(reader, nullptr, 0), 0);
    EXPECT_EQ(xd_memcpy(reader, target, 3), 0);
    EXPECT_EQ(tests::toHex(target, 4), "01 02 03 00");
    for (const int count :
         {2, -1, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
        for (const unsigned short flags : messageKinds) {
            reader->flags = flags;
            EXPECT_EQ(xd_memcpy(reader, target, count), ASN1S_END_OF_BUFFER) << count;
        }
    }
    EXPECT_EQ(reader.position(), 3U);
    EXPECT_EQ(xd_memcpy(reader, target, 1), 0);
    EXPECT_EQ(xd_memcpy(reader, nullptr, 0), 0);
    EXPECT_EQ(reader.recorded(), 0);
}

TEST(ElementWalk, SavesAndRestoresThePosition) {
    Reader reader("05 00 05 00");
    for (const bool own : {false, true}) {
        ASN1SavedState state{};
        ASN1SavedState* saved = own ? &state : nullptr;
        reader->buffer.byteIndex = 2;
        reader->flags = ASN1F_CONSTRUCTED | ASN1F_LAST_EOC;
        EXPECT_EQ(xu_SaveBufferState(reader, saved), 0);
        reader->buffer.byteIndex = 4;
        reader->buffer.bitOffset = 0;
        reader->flags = 0;
        EXPECT_EQ(xu_RestoreBufferState(reader, saved), 0);
        EXPECT_EQ(reader.position(), 2U);
        EXPECT_EQ(reader->buffer.bitOffset, 8);
        EXPECT_EQ(reader->flags, ASN1F_CONSTRUCTED);
    }
}

/// Runs every walk on one message and checks that the position stays inside.
void walkAllWays(const Octets& message, unsigned short flags) {
    int number = 0;
    int other = 0;
    const auto expectInside = [&](const char* walk, auto&& call) {
        Reader reader(message);
        reader->flags = flags;
        const int status = call(reader.get());
        ASSERT_LE(reader.position(), message.size()) << walk << " " << tests::toHex(message);
        ASSERT_LE(status, 0) << walk << " " << tests::toHex(message);
    };
    expectInside("next", [](ASN1CTXT* ctxt) { return xd_NextElement(ctxt); });
    expectInside("past", [](ASN1CTXT* ctxt) { return xd_MovePastEOC(ctxt); });
    for (const int matchFlags : {0, 1, 2, 3, 8, 9, 11}) {
        expectInside("match",
                     [&](ASN1CTXT* ctxt) { return xd_match(ctxt, 4, &number, matchFlags); });
    }
    expectInside("match1", [&](ASN1CTXT* ctxt) { return xd_match1(ctxt, 0x30, &number); });
    expectInside("count", [&](ASN1CTXT* ctxt) { return xd_count(ctxt, indefinite, &number); });
    expectInside("count", [&](ASN1CTXT* ctxt) { return xd_count(ctxt, 1000, &number); });
    expectInside("segments", [&](ASN1CTXT* ctxt) {
        return xd_consStrIndefLenAndSize(ctxt, 4, &number, &other);
    });
    const HeapCopy copy(message);
    ASSERT_LE(xd_indeflen_ex(copy.data(), copy.length()), copy.length());
}

TEST(ElementWalk, NoMessageLeadsOutOfItself) {
    // Octets that make headers: tags of both forms, short, long, indefinite and huge lengths.
    const Octets alphabet = tests::fromHex("00 00 04 24 30 3F 80 81 82 84 01 02 03 05 7F FF");
    std::mt19937 random(20240607);
    for (int round = 0; round < 20000; ++round) {
        Octets message(random() % 24);
        for (unsigned char& octet : message) {
            octet = alphabet[random() % alphabet.size()];
        }
        for (const unsigned short flags : {messageKinds[0], messageKinds[1], unchecked}) {
            walkAllWays(message, flags);
            if (HasFatalFailure()) {
                return;
            }
        }
    }
}

TEST(ElementWalk, EveryTruncationIsNoticed) {
    for (const char* hex : {"30 80 04 02 AA BB BF 81 1F 03 02 01 05 24 80 04 01 CC 00 00 00 00",
                            "30 0B 04 02 AA BB BF 81 1F 03 02 01 05"}) {
        const Octets whole = tests::fromHex(hex);
        for (std::size_t count = 0; count < whole.size(); ++count) {
            SCOPED_TRACE(count);
            const Octets message(whole.begin(), whole.begin() + static_cast<long>(count));
            Reader reader(message);
            EXPECT_EQ(xd_NextElement(reader), ASN1S_END_OF_BUFFER);
            walkAllWays(message, 0);
            walkAllWays(message, ASN1F_INDEF_MESSAGE);
        }
        Reader reader(whole);
        EXPECT_EQ(xd_NextElement(reader), 0);
        EXPECT_EQ(reader.position(), whole.size());
    }
}

} // namespace
