#include <brevantis/asn1/runtime/der_order.h>

#include <algorithm>
#include <random>
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
using tests::Writer;

/// Writes members the way the encoders do, last octet first, and notes each in a list.
class SetOf {
public:
    explicit SetOf(ASN1CTXT* ctxt) : ctxt_(ctxt) { rtSListInitEx(ctxt, &list_); }

    void add(const Octets& member) {
        const auto count = static_cast<unsigned>(member.size());
        ASSERT_EQ(xe_memcpy(ctxt_, member.data(), count), static_cast<int>(count));
        auto* descriptor = static_cast<Asn1BufLocDescr*>(
            rtMemHeapAlloc(&ctxt_->memHeap, static_cast<int>(sizeof(Asn1BufLocDescr))));
        ASSERT_NE(descriptor, nullptr);
        xe_getBufLocDescr(ctxt_, count, descriptor);
        ASSERT_NE(rtSListAppend(&list_, descriptor), nullptr);
    }
    int sort() { return xe_derCanonicalSort(ctxt_, &list_); }
    const Asn1RTSList& list() const { return list_; }

private:
    ASN1CTXT* ctxt_;
    Asn1RTSList list_{};
};

Octets concatenated(const std::vector<Octets>& members) {
    Octets octets;
    for (const Octets& member : members) {
        octets.insert(octets.end(), member.begin(), member.end());
    }
    return octets;
}

Octets written(ASN1CTXT* ctxt) {
    const unsigned char* first = xe_getp(ctxt);
    return Octets(first, first + (ctxt->buffer.size - 1 - ctxt->buffer.byteIndex));
}

/// Sorts @p members in a growing buffer behind a prefix of other octets, and compares with the
/// order of the standard library.
void expectSorted(std::vector<Octets> members) {
    Writer writer;
    const Octets behind = {0xDE, 0xAD};
    ASSERT_EQ(xe_memcpy(writer, behind.data(), 2), 2);
    SetOf set(writer);
    for (const Octets& member : members) {
        set.add(member);
    }
    const Octets total = concatenated(members);
    ASSERT_EQ(set.sort(), static_cast<int>(total.size()));
    EXPECT_EQ(set.list().head, nullptr);
    std::sort(members.begin(), members.end());
    members.push_back(behind);
    ASSERT_TRUE(written(writer) == concatenated(members));
}

TEST(DerOrder, RandomSets) {
    std::mt19937 random(41);
    for (int round = 0; round < 600; ++round) {
        std::vector<Octets> members(random() % 40);
        for (Octets& member : members) {
            member.resize(1 + random() % 6); // few symbols: equal members and prefixes abound
            std::generate(member.begin(), member.end(),
                          [&random] { return static_cast<unsigned char>(random() % 3 * 127); });
        }
        if (round % 4 == 0) {
            std::sort(members.begin(), members.end());
        } else if (round % 4 == 1) {
            std::sort(members.rbegin(), members.rend());
        }
        expectSorted(members);
    }
}

TEST(DerOrder, PositionsSurviveGrowth) {
    std::vector<Octets> members;
    for (unsigned char first = 5; first != 0; --first) {
        members.emplace_back(7000 + first, first);
        members.emplace_back(9000 - first, static_cast<unsigned char>(first + 100));
    }
    expectSorted(members);
}

TEST(DerOrder, AHundredThousandMembersAgainstTheOrder) {
    std::vector<Octets> members;
    std::mt19937 random(7);
    for (unsigned i = 100000; i != 0; --i) {
        const unsigned noise = random() % 16;
        members.push_back({4, 4, static_cast<unsigned char>(i >> 16),
                           static_cast<unsigned char>(i >> 8 & 255),
                           static_cast<unsigned char>(i & 255), static_cast<unsigned char>(noise)});
    }
    expectSorted(members);
}

TEST(DerOrder, MemoryIsTakenOnlyToMoveMembersAndGivenBack) {
    const CountingAllocator allocator;
    {
        Writer writer;
        SetOf ordered(writer);
        // Encoded from the last member to the first, so the greatest comes first.
        ordered.add({9});
        ordered.add({5});
        ordered.add({5});
        const long calls = CountingAllocator::calls();
        EXPECT_EQ(ordered.sort(), 3);
        EXPECT_EQ(CountingAllocator::calls(), calls);
        EXPECT_EQ(writer.hex(), "05 05 09");

        SetOf disordered(writer);
        disordered.add({1});
        disordered.add({2});
        CountingAllocator::failAfter(0);
        EXPECT_EQ(disordered.sort(), ASN1S_NO_MEMORY);
        EXPECT_EQ(disordered.list().count, 2U);
        EXPECT_EQ(writer.hex(), "02 01 05 05 09");
        CountingAllocator::neverFail();
        EXPECT_EQ(disordered.sort(), 2);
        EXPECT_EQ(writer.hex(), "01 02 05 05 09");
        EXPECT_EQ(CountingAllocator::live(), 2) << "the heap and the buffer";
        xe_free(writer);
        EXPECT_EQ(CountingAllocator::live(), 1);
    }
    EXPECT_EQ(CountingAllocator::live(), 0);
}

TEST(DerOrder, AFreedBufferTakesNothing) {
    Writer writer;
    xe_free(writer);
    EXPECT_EQ(writer->buffer.data, nullptr);
    EXPECT_EQ(writer->buffer.size, 0U) << "a rewind must not find room";
    EXPECT_EQ(writer->buffer.dynamic, 0);
    EXPECT_EQ(xe_memcpy(writer, "a", 1), ASN1S_BUFFER_OVERFLOW);
    xe_free(writer);
    EXPECT_EQ(xe_setp(writer, nullptr, 0), 0);
    EXPECT_EQ(xe_memcpy(writer, "a", 1), 1);

    const HeapCopy block(Octets(4, 0));
    Context context;
    ASSERT_EQ(xe_setp(context, block.data(), 4), 0);
    xe_free(context);
    EXPECT_EQ(context->buffer.data, block.data()) << "the caller's buffer is the caller's";
    EXPECT_EQ(xe_memcpy(context, "abc", 3), 3);
}

} // namespace
