#include <climits>
#include <string>

#include <gtest/gtest.h>

#include <brevantis/asn1/runtime/memory_buffer.h>

#include "support/coding.h"
#include "support/counting_allocator.h"
#include "support/hex.h"

namespace {

using tests::Context;
using tests::CountingAllocator;
using tests::fromHex;
using tests::toHex;

class MemoryBuffer : public ASN1MemBuf {
public:
    MemoryBuffer(ASN1CTXT* ctxt, unsigned int segment) { rtMemBufInit(ctxt, this, segment); }
    std::string hex() {
        unsigned int length = 0;
        const unsigned char* data = rtMemBufGetData(this, &length);
        return length != 0 ? toHex(data, length) : std::string();
    }
};

TEST(MemoryBuffer, GrowsInWholeSegments) {
    const struct {
        const char* name;
        unsigned int used;
        int count;
        unsigned int segment;
        int status;
        unsigned int size;
    } rows[] = {
        {"nothing asked for", 10, 0, 0, 0, 0},
        {"rounded up", 10, 1, 8, 0, 16},
        {"a whole segment", 0, 8, 8, 0, 8},
        {"one more than a segment", 0, 9, 8, 0, 16},
        {"segments of one octet", 0, 5, 1, 0, 5},
        {"a segment of no octets", 0, 1, 0, ASN1S_INVALID_PARAMETER, 0},
        {"a negative count", 0, -1, 8, ASN1S_INVALID_PARAMETER, 0},
        {"the lowest count", 10, INT_MIN, 8, ASN1S_INVALID_PARAMETER, 0},
        {"a sum beyond 32 bits", 0xFFFFFFFFu, 1, 8, ASN1S_NO_MEMORY, 0},
        {"a sum beyond 31 bits", 1, INT_MAX, 8, ASN1S_NO_MEMORY, 0},
        {"rounding beyond 32 bits", 1, 1, 0xFFFFFFFFu, ASN1S_NO_MEMORY, 0},
        {"more than the heap gives", 0, 0x7FFFFFD0, 1, ASN1S_NO_MEMORY, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Context ctxt;
        MemoryBuffer buffer(ctxt, row.segment);
        buffer.usedLength = row.used;
        EXPECT_EQ(rtMemBufPreAllocate(&buffer, row.count), row.status);
        EXPECT_EQ(buffer.bufferSize, row.size);
        EXPECT_EQ(buffer.usedLength, row.used);
        EXPECT_EQ(buffer.buffer != nullptr, row.size != 0);
    }
}

TEST(MemoryBuffer, CollectsOctets) {
    Context ctxt;
    MemoryBuffer buffer(ctxt, 4);
    const tests::Octets octets = fromHex("010203");
    EXPECT_EQ(rtMemBufAppend(&buffer, octets.data(), 3), 0);
    EXPECT_EQ(rtMemBufSet(&buffer, 0x1FF, 2), 0);
    EXPECT_EQ(buffer.hex(), "01 02 03 FF FF");
    EXPECT_EQ(rtMemBufAppend(&buffer, nullptr, 100), 0);
    EXPECT_EQ(buffer.bufferSize, 108u) << "room is reserved";
    EXPECT_EQ(buffer.hex(), "01 02 03 FF FF") << "and the contents stay";
    EXPECT_EQ(rtMemBufAppend(&buffer, octets.data(), 0), 0);
    EXPECT_EQ(rtMemBufSet(&buffer, 1, 0), 0);
    buffer.startOffset = 2;
    EXPECT_EQ(buffer.hex(), "03 FF FF");
    EXPECT_EQ(rtMemBufGetData(&buffer, nullptr), buffer.buffer + 2);
    unsigned char* block = buffer.buffer;
    rtMemBufReset(&buffer);
    unsigned int length = 9;
    EXPECT_EQ(rtMemBufGetData(&buffer, &length), block);
    EXPECT_EQ(length, 0u);
    EXPECT_EQ(buffer.bufferSize, 108u);
}

TEST(MemoryBuffer, AppendsItsOwnOctetsAcrossAGrowth) {
    Context ctxt;
    MemoryBuffer buffer(ctxt, 3);
    const tests::Octets octets = fromHex("010203");
    ASSERT_EQ(rtMemBufAppend(&buffer, octets.data(), 3), 0);
    ASSERT_EQ(rtMemBufAppend(&buffer, buffer.buffer + 1, 2), 0);
    EXPECT_EQ(buffer.hex(), "01 02 03 02 03");
}

TEST(MemoryBuffer, LeavesABlockOfTheCallersAlone) {
    CountingAllocator allocator;
    {
        Context ctxt;
        MemoryBuffer buffer(ctxt, 8);
        unsigned char own[2] = {1, 2};
        buffer.buffer = own;
        buffer.ownsBuffer = 0;
        buffer.usedLength = buffer.bufferSize = 2;
        EXPECT_EQ(buffer.hex(), "01 02");
        const unsigned char more = 3;
        ASSERT_EQ(rtMemBufAppend(&buffer, &more, 1), 0);
        EXPECT_NE(buffer.buffer, own);
        EXPECT_NE(buffer.ownsBuffer, 0);
        EXPECT_EQ(buffer.hex(), "00 00 03") << "contents do not come along";
        rtMemBufFree(&buffer);

        MemoryBuffer second(ctxt, 8);
        second.buffer = own;
        second.ownsBuffer = 0;
        rtMemBufFree(&second);
        MemoryBuffer empty(ctxt, 8);
        rtMemBufFree(&empty);
        EXPECT_EQ(CountingAllocator::live(), 1) << "the heap alone";
    }
}

TEST(MemoryBuffer, MissingMemoryLeavesTheFields) {
    CountingAllocator allocator;
    Context ctxt;
    MemoryBuffer buffer(ctxt, 4);
    const tests::Octets octets = fromHex("0102030405");
    for (bool grown : {false, true}) {
        CountingAllocator::failAfter(0);
        EXPECT_EQ(rtMemBufAppend(&buffer, octets.data(), 5), ASN1S_NO_MEMORY);
        EXPECT_EQ(rtMemBufSet(&buffer, 1, 5), ASN1S_NO_MEMORY);
        EXPECT_EQ(rtMemBufPreAllocate(&buffer, 5), ASN1S_NO_MEMORY);
        EXPECT_EQ(buffer.hex(), grown ? "01 02 03" : "");
        EXPECT_EQ(buffer.bufferSize, grown ? 4u : 0u);
        CountingAllocator::neverFail();
        if (!grown) {
            ASSERT_EQ(rtMemBufAppend(&buffer, octets.data(), 3), 0);
        }
    }
    EXPECT_EQ(rtMemBufAppend(&buffer, octets.data(), 5), 0);
    EXPECT_EQ(buffer.hex(), "01 02 03 01 02 03 04 05");
}

} // namespace
