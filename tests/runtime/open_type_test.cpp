#include <brevantis/asn1/runtime/open_type.h>

#include <gtest/gtest.h>

#include "support/coding.h"
#include "support/counting_allocator.h"
#include "support/mutation.h"

namespace {

using namespace tests;

std::vector<std::string> elementsOf(const Asn1RTDList& list) {
    std::vector<std::string> elements;
    for (const Asn1RTDListNode* node = list.head; node != nullptr; node = node->next) {
        const auto* element = static_cast<const ASN1OpenType*>(node->data);
        elements.push_back(toHex(element->data, element->numocts));
    }
    return elements;
}

TEST(OpenType, TakesOneElement) {
    struct Row {
        const char* name;
        const char* message;
        int status;
        unsigned position;
        unsigned numocts; ///< 7: as the caller left it
    };
    const Row rows[] = {
        {"no content", "05 00 05 00", 0, 2, 2},
        {"primitive", "04 02 01 02 FF", 0, 4, 4},
        {"long tag and length", "BF 81 01 81 01 AA 00", 0, 6, 6},
        {"indefinite", "30 80 05 00 00 00 FF", 0, 6, 6},
        {"indefinite in indefinite", "30 80 24 80 04 01 41 00 00 00 00 FF", 0, 11, 11},
        {"end of the buffer", "", 0, 0, 7},
        {"header cut off", "30", 0, 1, 7},
        {"length octets cut off", "30 82 01", 0, 3, 7},
        {"indefinite cut off", "30 80 05 00", 0, 4, 4},
        {"end-of-contents", "00 00", -18, 2, 7},
        {"past the buffer", "04 03 01 02", -18, 2, 7},
        {"five length octets", "04 85 00 00 00 00 00", -5, 2, 7},
        {"indefinite on a primitive form", "04 80 00 00", -5, 2, 7},
        {"tag number too big", "1F 82 80 80 80 00 00", -21, 6, 7},
    };
    for (const Row& row : rows) {
        for (const bool noCopy : {false, true}) {
            SCOPED_TRACE(row.name);
            Reader reader(row.message);
            rtCtxtSetFlag(reader, noCopy ? ASN1F_NO_COPY : 0);
            const unsigned char* data = nullptr;
            unsigned numocts = 7;
            EXPECT_EQ(row.status, xd_OpenType(reader, &data, &numocts));
            EXPECT_EQ(row.position, reader.position());
            EXPECT_EQ(row.numocts, numocts);
            if (row.numocts == 7) {
                EXPECT_EQ(nullptr, data);
                continue;
            }
            EXPECT_EQ(toHex(reader->buffer.data, numocts), toHex(data, numocts));
            EXPECT_EQ(noCopy, data == reader->buffer.data);
        }
    }
}

TEST(OpenType, CollectsUnknownMembers) {
    constexpr ASN1TAG integer = 2;
    struct Row {
        const char* name;
        const char* message;
        int length;
        ASN1TAG stopTag;
        int status;
        int recorded;
        unsigned position;
        std::vector<std::string> elements;
    };
    const Row rows[] = {
        {"up to the known member",
         "05 00 04 01 41 02 01 07",
         8,
         integer,
         0,
         0,
         5,
         {"05 00", "04 01 41"}},
        {"none in front of it", "02 01 07", 3, integer, 0, 0, 0, {}},
        {"known member missing", "05 00", 2, integer, -2, -2, 2, {"05 00"}},
        {"known member missing, indefinite", "05 00 00 00", -9999, integer, -2, -2, 2, {"05 00"}},
        {"to the end", "05 00 04 01 41 02 01 07", 5, ASN1TagNone, 0, 0, 5, {"05 00", "04 01 41"}},
        {"to the end-of-contents", "05 00 00 00", -9999, ASN1TagNone, 0, 0, 2, {"05 00"}},
        {"to the end of the buffer", "05 00", 99, ASN1TagNone, 0, 0, 2, {"05 00"}},
        {"past the buffer", "05 00 04 03 01", 5, ASN1TagNone, -18, -18, 4, {"05 00"}},
        {"malformed", "05 00 04 80", 4, integer, -5, 0, 2, {"05 00"}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        Reader reader(row.message);
        ASN1ElementScope scope{reader->buffer.data, row.length};
        Asn1RTDList list = {};
        EXPECT_EQ(row.status, xd_OpenTypeExt(reader, &scope, row.stopTag, &list));
        EXPECT_EQ(row.recorded, reader.recorded());
        if (row.recorded == row.status) { // xd_match leaves its position open after a failure
            EXPECT_EQ(row.position, reader.position());
        }
        EXPECT_EQ(row.elements, elementsOf(list));
        rtMemFreeOpenSeqExt(reader, &list);
        EXPECT_EQ(0u, list.count);

        Reader dropping(row.message);
        scope.start = dropping->buffer.data;
        EXPECT_EQ(row.status == -18 ? -2 : row.status,
                  xd_OpenTypeExt(dropping, &scope, row.stopTag, nullptr));
    }
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

TEST(OpenType, StaysInsideAnyInput) {
    for (const char* message :
         {"30 80 24 80 04 01 41 00 00 00 00", "BF 81 01 81 01 AA 05 00 02 01 07"}) {
        forEachMutation(fromHex(message), [](const Octets& octets) {
            for (const int flags :
                 {0, +ASN1F_NO_COPY, ASN1F_INDEF_MESSAGE | ASN1F_LENGTH_UNCHECKED}) {
                SCOPED_TRACE(toHex(octets));
                Reader reader(octets);
                rtCtxtSetFlag(reader, flags);
                ASN1ElementScope scope{reader->buffer.data, static_cast<int>(octets.size())};
                Asn1RTDList list = {};
                EXPECT_LE(xd_OpenTypeExt(reader, &scope, ASN1TagNone, &list), 0);
                EXPECT_LE(reader.position(), octets.size());
                elementsOf(list);
                rtMemFreeOpenSeqExt(reader, &list);

                // The same octets as a stored value that is to be written.
                const auto stored = std::make_unique<unsigned char[]>(octets.size());
                std::copy(octets.begin(), octets.end(), stored.get());
                Writer writer;
                const int count =
                    xe_OpenType(writer, stored.get(), static_cast<unsigned>(octets.size()));
                EXPECT_LE(count, static_cast<int>(octets.size()));
                if (count > 0) {
                    EXPECT_EQ(toHex(octets.data(), static_cast<std::size_t>(count)), writer.hex());
                }
            }
        });
    }
}

TEST(OpenType, Encodes) {
    struct Row {
        const char* name;
        const char* stored;
        int count;
    };
    const Row rows[] = {
        {"nothing", "", 0},
        {"first element alone", "05 00 05 00", 2},
        {"end-of-contents", "00 00", 2},
        {"indefinite", "30 80 05 00 00 00 05 00", 6},
        {"smallest indefinite", "30 80 00 00", 4},
        {"header cut off", "30", -2},
        {"claims more than there is", "04 03 01 02", -5},
        {"long length, claims more", "04 82 FF FF 01", -5},
        {"indefinite cut off", "30 80 05 00", -2},
        {"indefinite, inner element cut off", "30 80 04 05 00 00", -2},
        {"indefinite on a primitive form", "04 80 00 00", -5},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const Octets octets = fromHex(row.stored);
        const auto stored = std::make_unique<unsigned char[]>(octets.size());
        std::copy(octets.begin(), octets.end(), stored.get());
        Writer writer;
        EXPECT_EQ(row.count,
                  xe_OpenType(writer, stored.get(), static_cast<unsigned>(octets.size())));
        EXPECT_EQ(0, writer.recorded());
        EXPECT_EQ(toHex(octets.data(), static_cast<std::size_t>(std::max(row.count, 0))),
                  writer.hex());
    }
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
            for (const std::string& element : elementsOf(copy)) {
                EXPECT_FALSE(element.empty());
            }
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
