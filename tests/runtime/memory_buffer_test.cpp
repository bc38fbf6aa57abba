#include <climits>
#include <string>

#include <gtest/gtest.h>

#include <brevantis/asn1/runtime/memory_buffer.h>

#include "support/coding.h"
#include "support/counting_allocator.h"
#include "support/data_file.h"
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

    tests::forEachRow("memory_buffer.txt", "growths", [&](const tests::DataRow& row) {
        Context ctxt;
        MemoryBuffer buffer(ctxt, row.number<unsigned int>("segment"));
        buffer.usedLength = row.number<unsigned int>("used");
        EXPECT_EQ(rtMemBufPreAllocate(&buffer, row.number("count")), row.number("status"));
        EXPECT_EQ(buffer.bufferSize, row.number<unsigned int>("size"));
        EXPECT_EQ(buffer.usedLength, row.number<unsigned int>("used"));
        EXPECT_EQ(buffer.buffer != nullptr, row.number<unsigned int>("size") != 0);
    });
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
