#include <brevantis/asn1/runtime/element_walk.h>

#include <limits>
#include <random>

#include <gtest/gtest.h>

#include "support/coding.h"
#include "support/counting_allocator.h"
#include "support/heap_copy.h"

namespace {

using tests::CountingAllocator;
using tests::HeapCopy;
using tests::Octets;
using tests::Reader;

constexpr int indefinite = ASN1IndefiniteLength;
constexpr unsigned short unchecked = ASN1F_LENGTH_UNCHECKED;

/// Flags of a message of definite and of indefinite length; the bound holds in both.
constexpr unsigned short messageKinds[] = {0, ASN1F_INDEF_MESSAGE};

TEST(ElementWalk, MatchFindsTags) {
    constexpr int seek = ASN1MatchSeek;
    constexpr int advance = ASN1MatchAdvance;
    constexpr int skip = ASN1MatchSkipFirst;
    const struct {
        const char* name;
        const char* hex;
        ASN1TAG tag;
        int matchFlags;
        int status;
        int length;
        unsigned position;
    } rows[] = {
        {"at the position", "02 01 05", 2, 0, 0, 1, 0},
        {"behind the header", "02 01 05", 2, advance, 0, 1, 2},
        {"constructed where primitive is asked", "30 00", 0x10, 0, 0, 0, 0},
        {"primitive where constructed is asked", "10 00", 0x20000010, 0, 0, 0, 0},
        {"long form", "BF 81 1F 01 00", 0xA000009F, advance, 0, 1, 4},
        {"another class", "82 01 05", 2, 0, -3, 77, 0},
        {"no seek", "05 00 02 01 05", 2, advance, -3, 77, 0},
        {"seek over a sibling", "04 02 02 01 02 01 05", 2, seek, 0, 1, 4},
        {"seek enters constructed elements", "30 05 04 00 02 01 05", 2, seek | advance, 0, 1, 6},
        {"seek behind constructed elements", "30 02 04 00 02 01 05", 2, seek, 0, 1, 4},
        {"seek to the end", "04 00 30 02 04 00", 2, seek, -3, 77, 0},
        {"seek meets contents beyond the end", "04 05 00", 2, seek, -3, 77, 0},
        {"seek meets a bad length", "04 00 04 85", 2, seek, -5, 77, 0},
        {"skip a primitive element", "02 01 05 02 01 06", 2, skip, 0, 1, 3},
        {"skip no more than a constructed header", "30 02 02 00", 2, skip, 0, 0, 2},
        {"skip, then no match", "02 01 05 04 00", 2, skip, -3, 77, 3},
        {"skip, then seek", "02 01 05 04 00 02 00", 2, skip | seek, 0, 0, 5},
        {"skip contents beyond the end", "02 05 05", 2, skip, -3, 77, 0},
        {"skip a bad length", "02 85", 2, skip, -5, 77, 0},
        {"nothing to skip", "", 2, skip, -3, 77, 0},
        {"nothing", "", 2, seek, -3, 77, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Reader reader(row.hex);
        int length = 77;
        EXPECT_EQ(xd_match(reader, row.tag, &length, row.matchFlags), row.status);
        EXPECT_EQ(length, row.length);
        EXPECT_EQ(reader.position(), row.position);
        EXPECT_EQ(reader.recorded(), row.status == ASN1S_INVALID_LENGTH ? row.status : 0);
    }
}

TEST(ElementWalk, ASkipDoesNotFollowTheRecordOfALongerMessage) {
    Reader reader("02 01 05");
    reader->savedInfo.byteIndex = 4000;
    reader->buffer.byteIndex = 3;
    EXPECT_EQ(xd_match(reader, 2, nullptr, ASN1MatchSkipFirst), ASN1S_TAG_NOT_FOUND);
    EXPECT_EQ(reader.position(), 3U);
}

TEST(ElementWalk, OneOctetMatch) {
    const struct {
        const char* name;
        const char* hex;
        unsigned char octet;
        int status;
        int recorded;
        int length;
        unsigned position;
    } rows[] = {
        {"plain", "30 03 02 01 05", 0x30, 0, 0, 3, 2},
        {"form does not count", "10 00", 0x30, 0, 0, 0, 2},
        {"form of what is asked neither", "30 80", 0x10, 0, 0, indefinite, 2},
        {"class counts", "90 00", 0x10, -3, -3, 77, 0},
        {"nothing", "", 0x30, -3, -3, 77, 0},
        {"no length", "30", 0x30, -2, 0, 77, 1},
        {"long length", "30 81 02 05 00", 0x30, 0, 0, 2, 3},
        {"length too long", "30 81 03 05 00", 0x30, -5, -5, 77, 3},
        {"length cut off", "30 82 00", 0x30, -2, -2, 77, 3},
        {"indefinite primitive", "04 80", 4, -5, -5, 77, 2},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Reader reader(row.hex);
        int length = 77;
        EXPECT_EQ(xd_match1(reader, row.octet, &length), row.status);
        EXPECT_EQ(reader.recorded(), row.recorded);
        EXPECT_EQ(length, row.length);
        EXPECT_EQ(reader.position(), row.position);
        if (row.status == 0) {
            EXPECT_EQ(reader->flags, row.hex[0] == '3' ? ASN1F_CONSTRUCTED : 0);
        }
    }
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
    const struct {
        const char* name;
        const char* hex;
        int (*walk)(ASN1CTXT*);
        unsigned short flags;
        int status;
        unsigned position;
    } rows[] = {
        {"primitive", "04 02 30 80 FF", xd_NextElement, 0, 0, 4},
        {"constructed, whole", "30 02 30 80 FF", xd_NextElement, 0, 0, 4},
        {"indefinite", "30 80 04 01 AA 30 80 00 00 00 00 FF", xd_NextElement, 0, 0, 11},
        {"zeros inside contents", "30 80 04 02 00 00 00 00 FF", xd_NextElement, 0, 0, 8},
        {"short length beyond the end", "04 03 AA AA", xd_NextElement, 0, -2, 2},
        {"the same, indefinite message", "04 03 AA AA", xd_NextElement, ASN1F_INDEF_MESSAGE, -2, 2},
        {"long length, unchecked", "04 81 03 AA", xd_NextElement, ASN1F_LENGTH_UNCHECKED, -2, 3},
        {"negative, unchecked", "04 84 FF FF FF F0", xd_NextElement, ASN1F_LENGTH_UNCHECKED, -2, 6},
        {"not closed", "30 80 04 00", xd_NextElement, 0, -2, 4},
        {"nothing", "", xd_NextElement, 0, -2, 0},
        {"closes the level it is in", "04 01 AA 00 00 FF", xd_MovePastEOC, 0, 0, 5},
        {"at once", "00 00 00 00", xd_MovePastEOC, 0, 0, 2},
        {"closes inner levels first", "30 80 A0 80 00 00 00 00 00 00", xd_MovePastEOC, 0, 0, 10},
        {"empty elements do not close", "30 00 04 00 20 00 00 00", xd_MovePastEOC, 0, 0, 8},
        {"tag 0 with contents does not close", "00 01 00 00 00", xd_MovePastEOC, 0, 0, 5},
        {"contents beyond the end", "04 7F 00 00", xd_MovePastEOC, 0, -2, 2},
        {"negative, unchecked", "04 84 FF FF FF F0", xd_MovePastEOC, ASN1F_LENGTH_UNCHECKED, -2, 6},
        {"indefinite primitive", "04 80 00 00", xd_MovePastEOC, 0, -5, 2},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Reader reader(row.hex);
        reader->flags = row.flags;
        EXPECT_EQ(row.walk(reader), row.status);
        EXPECT_EQ(reader.position(), row.position);
        EXPECT_EQ(reader.recorded(), 0);
    }
}

TEST(ElementWalk, CountsElements) {
    const struct {
        const char* name;
        const char* hex;
        int length;
        int status;
        int count;
        unsigned position;
    } rows[] = {
        {"none", "FF", 0, 0, 0, 0},
        {"none, indefinite", "00 00 FF", indefinite, 0, 0, 0},
        {"three", "02 01 05 30 02 05 00 05 00", 9, 0, 3, 0},
        {"as far as the length goes", "05 00 05 00 05 00", 4, 0, 2, 0},
        {"the length ends inside an element", "05 00 02 01 05", 3, 0, 2, 0},
        {"indefinite among them", "30 80 05 00 00 00 05 00 00 00", indefinite, 0, 2, 0},
        {"the buffer ends first", "05 00 05 00", 1000, 0, 2, 0},
        {"the buffer ends first, indefinite", "05 00 05 00 05", indefinite, 0, 2, 0},
        {"a failing element", "05 00 04 85", 4, -5, 1, 4},
        {"an element beyond the end", "05 00 04 05 00", 1000, -2, 1, 4},
        {"negative length", "05 00", -1, 0, 0, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Reader reader(row.hex);
        int count = 77;
        EXPECT_EQ(xd_count(reader, row.length, &count), row.status);
        EXPECT_EQ(count, row.count);
        EXPECT_EQ(reader.position(), row.position);
    }
}

TEST(ElementWalk, MeasuresIndefiniteMessages) {
    const struct {
        const char* name;
        const char* hex;
        int result;
    } rows[] = {
        {"closed", "30 80 05 00 00 00", 6},
        {"octets behind", "30 80 05 00 00 00 FF FF", 6},
        {"nested", "30 80 30 80 00 00 04 02 00 00 00 00", 12},
        {"empty, too short to look at", "30 80 00 00", 0},
        {"empty, with an octet behind", "30 80 00 00 FF", 4},
        {"definite", "30 03 02 01 05", -5},
        {"definite beyond the end", "30 7F 02 01 05", -5},
        {"indefinite primitive", "04 80 00 00 00", -5},
        {"not closed", "30 80 05 00 00", -2},
        {"inner level not closed", "30 80 30 80 00 00", -2},
        {"contents beyond the end", "30 80 04 7F 00 00", -2},
        {"cut off in the first tag", "3F 80 80 80 80", -2},
        {"bad element", "30 80 1F 82 80 80 80 00", -21},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const HeapCopy message(row.hex);
        EXPECT_EQ(xd_indeflen_ex(message.data(), message.length()), row.result);
    }
    EXPECT_EQ(xd_indeflen_ex(nullptr, -1), 0);
}

TEST(ElementWalk, MeasuringKeepsNoMemory) {
    const CountingAllocator allocator;
    const HeapCopy message("30 80 05 00 00 00");
    EXPECT_EQ(xd_indeflen_ex(message.data(), message.length()), 6);
    CountingAllocator::failAfter(0);
    EXPECT_EQ(xd_indeflen_ex(message.data(), message.length()), ASN1S_NO_MEMORY);
    EXPECT_EQ(CountingAllocator::live(), 0);
}

TEST(ElementWalk, MeasuresSegmentedStrings) {
    const struct {
        const char* name;
        const char* hex;
        ASN1TAG segmentTag;
        int status;
        int dataLen;
        int contentLen;
    } rows[] = {
        {"no segments", "00 00", 4, 0, 0, 0},
        {"two segments", "04 02 AA BB 04 01 CC 00 00 FF", 4, 0, 3, 7},
        {"an empty segment", "04 00 04 81 01 CC 00 00", 4, 0, 1, 6},
        {"bit string", "03 02 00 AA 00 00", 3, 0, 2, 4},
        {"wrong segment tag", "04 02 AA BB 00 00", 3, -21, 77, 77},
        {"constructed segment", "24 03 04 01 AA 00 00", 4, -21, 77, 77},
        {"indefinite segment", "24 80 00 00 00 00", 4, -21, 77, 77},
        {"tag 0 with contents counts as data", "00 01 AA 00 00", 4, 0, 1, 3},
        {"not closed", "04 01 AA", 4, -2, 77, 77},
        {"segment beyond the end", "04 05 AA 00 00", 4, -2, 77, 77},
        {"bad length", "04 85", 4, -5, 77, 77},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Reader reader(std::string("EE ") + row.hex);
        reader->buffer.byteIndex = 1;
        reader->flags = ASN1F_CONSTRUCTED;
        int dataLen = 77;
        int contentLen = 77;
        EXPECT_EQ(xd_consStrIndefLenAndSize(reader, row.segmentTag, &dataLen, &contentLen),
                  row.status);
        EXPECT_EQ(dataLen, row.dataLen);
        EXPECT_EQ(contentLen, row.contentLen);
        if (row.status == 0) {
            EXPECT_EQ(reader.position(), 1U);
            EXPECT_EQ(reader->flags, ASN1F_CONSTRUCTED);
        }
    }
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
