#include <brevantis/asn1/runtime/open_type.h>

#include <gtest/gtest.h>

#include "support/counting_allocator.h"
#include "support/heap_copy.h"
#include "support/row_reader.h"

namespace {

using namespace tests;

/// The elements of a list as hexadecimal text, with commas between them.
std::string elementsOf(const Asn1RTDList& list) {
    std::string elements;
    for (const Asn1RTDListNode* node = list.head; node != nullptr; node = node->next) {
        const auto* element = static_cast<const ASN1OpenType*>(node->data);
        elements += (node != list.head ? ", " : "") + toHex(element->data, element->numocts);
    }
    return elements;
}

TEST(OpenType, TakesOneElement) {
    forEachRow("open_type.txt", "one element", [&](const DataRow& row) {
        for (const bool noCopy : {false, true}) {
            RowReader reader(row);
            rtCtxtSetFlag(reader, noCopy ? ASN1F_NO_COPY : 0);
            const unsigned char* data = nullptr;
            unsigned numocts = 7;
            reader.expect(xd_OpenType(reader, &data, &numocts));
            EXPECT_EQ(row.number<unsigned>("numocts"), numocts);
            if (numocts == 7) { // as the caller left it
                EXPECT_EQ(nullptr, data);
                continue;
            }
            EXPECT_EQ(toHex(reader->buffer.data, numocts), toHex(data, numocts));
            EXPECT_EQ(noCopy, data == reader->buffer.data);
        }
    });
}

TEST(OpenType, CollectsUnknownMembers) {
    forEachRow("open_type.txt", "unknown members", [&](const DataRow& row) {
        RowReader reader(row);
        ASN1ElementScope scope{reader->buffer.data, row.number("length")};
        const auto stop = row.number<ASN1TAG>("stop");
        Asn1RTDList list = {};
        const int status = xd_OpenTypeExt(reader, &scope, stop, &list);
        reader.expect(status);
        EXPECT_EQ(row["elements"], elementsOf(list));
        rtMemFreeOpenSeqExt(reader, &list);
        EXPECT_EQ(0u, list.count);

        RowReader dropping(row);
        scope.start = dropping->buffer.data;
        EXPECT_EQ(status == -18 ? -2 : status, xd_OpenTypeExt(dropping, &scope, stop, nullptr));
    });
}

TEST(OpenType, EndsWhereNoHeaderCanBeRead) {
    for (const ASN1TAG stopTag : {2u, +ASN1TagNone}) {
        Reader reader("05 00 05 00");
        rtCtxtSetFlag(reader, ASN1F_INDEF_MESSAGE | ASN1F_LAST_EOC);
        ASN1ElementScope scope{reader->buffer.data, ASN1IndefiniteLength};
        Asn1RTDList list = {};
        EXPECT_EQ(-2, xd_OpenTypeExt(reader, &scope, stopTag, &list));
        EXPECT_EQ(-2, reader.recorded());
    }
}

TEST(OpenType, Encodes) {

    forEachRow("open_type.txt", "encoded", [&](const DataRow& row) {
        const HeapCopy stored(row["stored"]);
        const int count = row.number("count");
        Writer writer;
        EXPECT_EQ(count, xe_OpenType(writer, stored.data(), stored.size()));
        EXPECT_EQ(0, writer.recorded());
        EXPECT_EQ(toHex(stored.data(), static_cast<std::size_t>(std::max(count, 0))), writer.hex());
    });
    Writer writer;
    EXPECT_EQ(-18, xe_OpenType(writer, nullptr, 2));
    EXPECT_EQ(0, xe_OpenType(writer, nullptr, 0));

    // Octets that were encoded into the buffer itself are not written twice.
    const Octets null = fromHex("05 00");
    EXPECT_EQ(2, xe_OpenType(writer, null.data(), 2));
    EXPECT_EQ(2, xe_OpenType(writer, xe_getp(writer), 2));
    EXPECT_EQ("05 00", writer.hex());
    unsigned char small[2];
    ASSERT_EQ(0, xe_setp(writer, small, sizeof small));
    EXPECT_EQ(-1, xe_OpenType(writer, null.data(), 2));
}

TEST(OpenType, MeasuresWithoutAllocating) {
    CountingAllocator allocator;
    Writer writer;
    CountingAllocator::failAfter(0);
    const Octets octets = fromHex("30 80 05 00 00 00");
    EXPECT_EQ(6, xe_OpenType(writer, octets.data(), 6));
}

TEST(OpenType, CopiesAndEncodesLists) {
    Reader reader("05 00 04 01 41 30 80 00 00");
    ASN1ElementScope scope{reader->buffer.data, 9};
    Asn1RTDList list = {};
    ASSERT_EQ(0, xd_OpenTypeExt(reader, &scope, ASN1TagNone, &list));
    rtDListAppend(reader, &list, nullptr); // a node without an element counts for nothing

    Writer writer;
    Asn1RTDList copy = {};
    EXPECT_EQ(1, rtCopyOpenTypeExt(writer, &list, &copy));
    EXPECT_EQ(3u, copy.count);
    rtMemFreeOpenSeqExt(reader, &list);
    EXPECT_EQ(9, xe_OpenTypeExt(writer, &copy));
    EXPECT_EQ("05 00 04 01 41 30 80 00 00", writer.hex()) << "in list order";

    auto* second = static_cast<ASN1OpenType*>(copy.head->next->data);
    second->numocts = 2; // the element claims more now
    EXPECT_EQ(-5, xe_OpenTypeExt(writer, &copy));
    EXPECT_EQ(-5, writer.recorded());
    rtMemFreeOpenSeqExt(writer, &copy);

    EXPECT_EQ(0, xe_OpenTypeExt(writer, nullptr));
    EXPECT_EQ(0, xe_OpenTypeExt(writer, &copy));
    EXPECT_EQ(0, rtCopyOpenTypeExt(writer, nullptr, &copy));
    EXPECT_EQ(0, rtCopyOpenTypeExt(writer, &copy, nullptr));
    rtMemFreeOpenSeqExt(writer, nullptr);
}

TEST(OpenType, CopiesOneValue) {
    Context context;
    const Octets octets = fromHex("05 00");
    const ASN1OpenType value{2, octets.data()};
    ASN1OpenType copy{9, octets.data()};
    EXPECT_EQ(1, rtCopyOpenType(context, &value, &copy));
    EXPECT_NE(octets.data(), copy.data);
    EXPECT_EQ("05 00", toHex(copy.data, copy.numocts));
    const ASN1OpenType none{0, octets.data()};
    EXPECT_EQ(1, rtCopyOpenType(context, &none, &copy));
    EXPECT_EQ(nullptr, copy.data);
    const ASN1OpenType lost{2, nullptr};
    const ASN1OpenType huge{0x80000000u, octets.data()};
    EXPECT_EQ(0, rtCopyOpenType(context, &lost, &copy));
    EXPECT_EQ(0, rtCopyOpenType(context, &huge, &copy));
    EXPECT_EQ(0u, copy.numocts);
    EXPECT_EQ(0, rtCopyOpenType(context, nullptr, &copy));
    EXPECT_EQ(0, rtCopyOpenType(context, &value, nullptr));
}

TEST(OpenType, SurvivesMissingMemoryAtEveryCall) {
    CountingAllocator allocator;
    {
        Reader source("05 00 04 01 41");
        ASN1ElementScope scope{source->buffer.data, 5};
        Asn1RTDList list = {};
        ASSERT_EQ(0, xd_OpenTypeExt(source, &scope, ASN1TagNone, &list));
        for (long call = 0; call <= 6; ++call) {
            SCOPED_TRACE(call);
            Reader reader("05 00 04 01 41");
            scope.start = reader->buffer.data;
            Asn1RTDList decoded = {};
            CountingAllocator::failAfter(call);
            const int expected = call < 4 ? -12 : 0; // a block each for node and octets
            EXPECT_EQ(expected, xd_OpenTypeExt(reader, &scope, ASN1TagNone, &decoded));
            EXPECT_EQ(expected, reader.recorded());
            CountingAllocator::neverFail();

            Asn1RTDList copy = {};
            CountingAllocator::failAfter(call);
            EXPECT_EQ(call < 6 ? 0 : 1, rtCopyOpenTypeExt(reader, &list, &copy));
            CountingAllocator::neverFail();
            EXPECT_EQ(std::string("05 00, 04 01 41").find(elementsOf(copy)), 0u);
        }
        // Octets in the message are not the heap's to free.
        Reader reader("05 00");
        rtCtxtSetFlag(reader, ASN1F_NO_COPY);
        Asn1RTDList inPlace = {};
        ASSERT_EQ(0, xd_OpenTypeAppend(reader, &inPlace));
        const long live = CountingAllocator::live();
        rtMemFreeOpenSeqExt(reader, &inPlace);
        EXPECT_EQ(live - 1, CountingAllocator::live());
    }
    EXPECT_EQ(0, CountingAllocator::live());
}

} // namespace
