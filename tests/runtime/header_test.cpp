#include <brevantis/asn1/runtime/header.h>

#include <random>
#include <vector>

#include <gtest/gtest.h>

#include <brevantis/asn1/runtime/element_walk.h>
#include <brevantis/asn1/runtime/status.h>
#include <brevantis/asn1/runtime/tag_length.h>

#include "support/counting_allocator.h"
#include "support/heap_copy.h"
#include "support/hex.h"

namespace {

constexpr ASN1TAG tags[] = {0x00000002, 0x20000010, 0xA000001E, 0x8000001F,
                            0x6000007F, 0xC0000080, 0xBFFFFFFF};
constexpr int lengths[] = {
    0, 1, 0x7F, 0x80, 0xFF, 0x100, 0xFFFF, 0x10000, 0x1000000, 0x7FFFFFFF, ASN1IndefiniteLength};

TEST(Header, IsReadAsItIsWritten) {
    for (const ASN1TAG tag : tags) {
        for (const int length : lengths) {
            if (length == ASN1IndefiniteLength && (tag & ASN1TagConstructed) == 0) {
                continue;
            }
            unsigned char octets[ASN1LongestHeader] = {};
            const unsigned size = rtWriteHeader(tag, length, octets);
            EXPECT_EQ(size, rtTagSize(tag) + rtLengthSize(length));
            ASN1Header header{};
            ASSERT_EQ(rtReadHeader(octets, size, &header), ASN1S_SUCCESS);
            EXPECT_EQ(header.tag, tag);
            EXPECT_EQ(header.tagSize, rtTagSize(tag));
            EXPECT_EQ(header.size, size);
            EXPECT_EQ(header.length, length);
            for (unsigned cut = 0; cut < size; ++cut) {
                const std::vector<unsigned char> part(octets, octets + cut);
                EXPECT_EQ(rtReadHeader(part.data(), cut, &header), ASN1S_END_OF_BUFFER);
            }
        }
    }
}

TEST(Header, IsWrittenAsTheEncoderWritesIt) {
    for (const ASN1TAG tag : tags) {
        for (const int length : lengths) {
            // Room for all of it at once, and so little that it goes octet by octet.
            unsigned char octets[ASN1LongestHeader] = {};
            const unsigned size = rtWriteHeader(tag, length, octets);
            for (const unsigned room : {64U, size + 1}) {
                ASN1CTXT ctxt;
                ASSERT_EQ(rtInitContext(&ctxt, nullptr), ASN1S_SUCCESS);
                std::vector<unsigned char> block(room);
                ASSERT_EQ(xe_setp(&ctxt, block.data(), room), ASN1S_SUCCESS);
                xe_tag_len(&ctxt, tag, length);
                EXPECT_EQ(std::vector<unsigned char>(xe_getp(&ctxt), block.data() + room - 1),
                          std::vector<unsigned char>(octets, octets + size))
                    << std::hex << tag << " " << length;
                rtFreeContext(&ctxt);
            }
        }
    }
}

TEST(Header, IsRefusedWhereNoCoderTakesIt) {
    struct Row {
        const char* octets;
        int status;
    };
    for (const Row& row :
         {Row{"04 80", ASN1S_INVALID_LENGTH}, Row{"30 85 00 00 00 00 01", ASN1S_INVALID_LENGTH},
          Row{"30 84 80 00 00 00", ASN1S_INVALID_LENGTH},
          Row{"1F 82 80 80 80 00 00", ASN1S_BAD_TAG}, Row{"", ASN1S_END_OF_BUFFER}}) {
        const tests::HeapCopy message(row.octets);
        ASN1Header header{1, 2, 3, 4};
        EXPECT_EQ(rtReadHeader(message.data(), static_cast<unsigned>(message.length()), &header),
                  row.status)
            << row.octets;
        EXPECT_EQ(header.length, 4);
    }
}

TEST(Header, AgreesWithTheCodersOnAnyOctets) {
    std::minstd_rand random(7); // NOLINT: the same octets each time
    for (int i = 0; i < 200000; ++i) {
        unsigned char octets[12];
        for (unsigned char& octet : octets) {
            const auto pick = static_cast<unsigned>(random());
            octet = static_cast<unsigned char>((pick & 0x300) == 0       ? 0x1F | (pick & 0xE0)
                                               : (pick & 0x300) == 0x100 ? 0x80 | (pick & 7)
                                                                         : pick);
        }
        ASN1Header header{};
        const int status = rtReadHeader(octets, sizeof octets, &header);
        ASN1CTXT ctxt;
        rtInitReader(&ctxt, octets, sizeof octets);
        rtCtxtSetFlag(&ctxt, ASN1F_LENGTH_UNCHECKED);
        ASN1TAG tag = 0;
        int length = 0;
        const int read = xd_tag_len(&ctxt, &tag, &length, ASN1MatchAdvance);
        if (read == ASN1S_SUCCESS && length < 0 && length != ASN1IndefiniteLength) {
            EXPECT_EQ(status, ASN1S_INVALID_LENGTH); // left unchecked there
            continue;
        }
        ASSERT_EQ(status, read);
        if (status == ASN1S_SUCCESS) {
            EXPECT_EQ(header.tag, tag);
            EXPECT_EQ(header.length, length);
            EXPECT_EQ(header.size, ctxt.buffer.byteIndex);
        }
    }
}

TEST(Header, AReaderNeedsNoHeapUntilSomethingIsAllocated) {
    const tests::CountingAllocator allocator;
    const tests::HeapCopy message("30 03 02 01 05");
    ASN1CTXT ctxt;
    rtInitReader(&ctxt, message.data(), static_cast<unsigned>(message.length()));
    EXPECT_EQ(xd_NextElement(&ctxt), ASN1S_SUCCESS);
    EXPECT_EQ(ctxt.buffer.byteIndex, 5U);
    EXPECT_EQ(tests::CountingAllocator::calls(), 0);
    EXPECT_NE(rtMemHeapAlloc(&ctxt.memHeap, 10), nullptr);
    rtFreeContext(&ctxt);
    EXPECT_EQ(tests::CountingAllocator::live(), 0);
}

} // namespace
