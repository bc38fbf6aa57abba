#include <new>
#include <string>

#include <gtest/gtest.h>

#include <brevantis/asn1/runtime/stream.h>

#include "support/coding.h"
#include "support/counting_allocator.h"
#include "support/data_file.h"
#include "support/leak_check.h"

namespace {

using tests::Context;
using tests::CountingAllocator;
// Keeps what it is given; fails half-way through the call number `failAt`, and from then on.
struct Sink : ASN1Stream {
    std::string* taken;
    int* flushes;
    int failAt;
    int writes;
};

int sinkWrite(ASN1Stream* stream, const unsigned char* data, unsigned int count) {
    auto& sink = static_cast<Sink&>(*stream);
    const bool failed = sink.failAt >= 0 && sink.writes > sink.failAt;
    const bool failing = sink.writes++ == sink.failAt;
    if (failed) {
        return ASN1S_BUFFER_OVERFLOW;
    }
    sink.taken->append(data, data + (failing ? count / 2 : count));
    return failing ? ASN1S_BUFFER_OVERFLOW : 0;
}

int sinkFlush(ASN1Stream* stream) {
    return ++*static_cast<Sink&>(*stream).flushes, 0;
}

template <class Record>
Record* attach(ASN1CTXT* ctxt, const Record& record) {
    void* memory = rtMemHeapAlloc(&ctxt->memHeap, int{sizeof(Record)});
    auto* attached = new (memory) Record(record);
    ctxt->stream = attached;
    return attached;
}

class SinkContext : public Context {
public:
    explicit SinkContext(unsigned int bufferSize, int failAt = -1) {
        EXPECT_EQ(rtInitContextBuffer(get(), nullptr, bufferSize), 0);
        sink = attach(
            get(), Sink{{sinkWrite, sinkFlush, 0, ASN1StreamOutput}, &taken, &flushes, failAt, 0});
    }
    int write(const std::string& text) {
        // An exact-size copy shows every read past its end.
        const tests::Octets octets(text.begin(), text.end());
        return rtWriteBytes(get(), octets.data(), static_cast<unsigned int>(octets.size()));
    }
    std::string taken;
    int flushes = 0;
    Sink* sink;
};

TEST(Stream, GathersAndPassesOnInOrder) {
    SinkContext ctxt(8);
    std::string all;
    tests::forEachRow("stream.txt", "pieces", [&](const tests::DataRow& row) {
        EXPECT_EQ(ctxt.write(row["piece"]), 0);
        all += row["piece"];
        EXPECT_EQ(ctxt.taken, all.substr(0, all.size() - row.number<std::size_t>("kept")));
    });
    EXPECT_EQ(ctxt.flushes, 0);
    EXPECT_EQ(rtStreamBufFlush(ctxt), 0);
    EXPECT_EQ(ctxt.flushes, 1);
    EXPECT_EQ(ctxt.taken, all);
    EXPECT_EQ(ctxt.sink->byteCount, ctxt.taken.size());
    EXPECT_EQ(ctxt->buffer.byteIndex, 0u);
    EXPECT_EQ(ctxt->errInfo.status, 0);
    EXPECT_EQ(ctxt.write(""), 0);
    EXPECT_EQ(rtStreamBufFlush(ctxt), 0);
    EXPECT_EQ(ctxt.sink->writes, 6) << "an empty buffer is not written";
}

TEST(Stream, AFailureHalfWayIsReportedAndNothingIsWrittenTwice) {
    const std::string message = "abcdefgh0123456789ABCDEFGHIJyz";
    for (unsigned int bufferSize : {1u, 4u, 8u, 64u}) {
        for (int failAt = 0; failAt < 5; ++failAt) {
            SCOPED_TRACE(testing::Message() << bufferSize << " octets, call " << failAt);
            SinkContext ctxt(bufferSize, failAt);
            int status = 0;
            const std::size_t pieces[] = {3, 5, 1, 9, 12};
            std::size_t at = 0;
            for (std::size_t piece : pieces) {
                const int result = ctxt.write(message.substr(at, piece));
                status = status != 0 ? status : result;
                at += piece;
            }
            const int result = rtStreamBufFlush(ctxt);
            status = status != 0 ? status : result;
            const bool failed = ctxt.sink->writes > failAt;
            EXPECT_EQ(status, failed ? ASN1S_BUFFER_OVERFLOW : 0);
            EXPECT_EQ(ctxt->errInfo.status, status);
            EXPECT_EQ(message.compare(0, ctxt.taken.size(), ctxt.taken), 0) << ctxt.taken;
            EXPECT_EQ(ctxt.taken == message, !failed);

            // The context goes on without the stream.
            EXPECT_EQ(rtStreamRelease(ctxt), 0);
            EXPECT_EQ(ctxt->stream, nullptr);
            rtErrReset(&ctxt->errInfo);
            ASSERT_EQ(rtInitContextBuffer(ctxt, nullptr, 4), 0);
            EXPECT_EQ(ctxt.write("usable again"), 0);
            EXPECT_EQ(std::string(ctxt->buffer.data, ctxt->buffer.data + ctxt->buffer.byteIndex),
                      "usable again");
        }
    }
}

TEST(Stream, AFailureThatTookNothingCanBeTriedAgain) {
    SinkContext ctxt(4);
    ASSERT_EQ(ctxt.write("abc"), 0);
    auto* refuse = +[](ASN1Stream*, const unsigned char*, unsigned int) -> int {
        return ASN1S_BUFFER_OVERFLOW;
    };
    ctxt.sink->write = refuse;
    EXPECT_EQ(rtStreamBufFlush(ctxt), ASN1S_BUFFER_OVERFLOW);
    EXPECT_EQ(ctxt.write("de"), ASN1S_BUFFER_OVERFLOW);
    EXPECT_EQ(rtCheckBuffer(ctxt, 2), ASN1S_BUFFER_OVERFLOW);
    EXPECT_EQ(ctxt->buffer.byteIndex, 3u);
    EXPECT_EQ(ctxt.sink->byteCount, 0u);
    EXPECT_EQ(ctxt.flushes, 0);
    ctxt.sink->write = sinkWrite;
    EXPECT_EQ(ctxt.write("de"), 0);
    EXPECT_EQ(rtStreamBufFlush(ctxt), 0);
    EXPECT_EQ(ctxt.taken, "abcde");
}

TEST(Stream, AMissingStreamHasItsStatus) {
    const unsigned char octet = 1;
    int flushes = 0;
    std::string taken;

    tests::forEachRow("stream.txt", "missing streams", [&](const tests::DataRow& row) {
        Context ctxt;
        ASSERT_EQ(rtInitContextBuffer(ctxt, nullptr, 4), 0);
        ctxt->buffer.data[0] = octet;
        if (row.number<bool>("attached")) {
            attach(ctxt, Sink{{row.number<bool>("writes") ? sinkWrite : nullptr, nullptr, 0,
                               row.number<unsigned int>("flags")},
                              &taken,
                              &flushes,
                              -1,
                              0});
        }
        EXPECT_EQ(rtStreamFlush(ctxt), row.number("flush"));
        EXPECT_EQ(rtStreamWrite(ctxt, &octet, 1), row.number("write"));
        EXPECT_EQ(rtStreamBufFlush(ctxt), row.number("bufFlushEmpty"));
        ctxt->buffer.byteIndex = 1;
        EXPECT_EQ(rtStreamBufFlush(ctxt), row.number("bufFlush"));
        EXPECT_EQ(ctxt->errInfo.status, 0) << "none of these is recorded";
        tests::Octets large(5, octet);
        EXPECT_EQ(rtStreamBufWrite(ctxt, large.data(), 5), row.number("write"));
        EXPECT_EQ(ctxt->errInfo.status, row.number("write"));
        EXPECT_EQ(rtStreamRelease(ctxt), 0);
    });
}

TEST(Stream, RefusesWhatCannotBeWritten) {
    SinkContext ctxt(4);
    EXPECT_EQ(rtStreamWrite(ctxt, nullptr, 1), ASN1S_INVALID_PARAMETER);
    EXPECT_EQ(rtStreamWrite(ctxt, nullptr, 0), 0);
    EXPECT_EQ(rtWriteBytes(ctxt, nullptr, 1), ASN1S_INVALID_PARAMETER);
    EXPECT_EQ(ctxt->errInfo.status, ASN1S_INVALID_PARAMETER);
    ctxt->buffer.byteIndex = 0xFFFFFFFFu; // a sum with it would wrap
    EXPECT_EQ(ctxt.write("a"), ASN1S_INVALID_PARAMETER);
    EXPECT_EQ(rtStreamBufFlush(ctxt), ASN1S_INVALID_PARAMETER);
    EXPECT_EQ(rtCheckBuffer(ctxt, 1), ASN1S_INVALID_PARAMETER);
    EXPECT_EQ(ctxt.taken, "");
    ASSERT_EQ(rtStreamRelease(ctxt), 0);
    EXPECT_EQ(ctxt.write("a"), ASN1S_INVALID_PARAMETER);
}

TEST(ForwardWriting, FillsAndGrows) {
    Context ctxt;
    unsigned char fixed[4] = {};
    ASSERT_EQ(rtInitContextBuffer(ctxt, fixed, 4), 0);
    const unsigned char octets[] = {1, 2, 3, 4, 5};
    EXPECT_EQ(rtWriteBytes(ctxt, octets, 4), 0);
    EXPECT_EQ(rtWriteBytes(ctxt, octets, 0), 0);
    EXPECT_EQ(ctxt->errInfo.status, 0);
    EXPECT_EQ(rtWriteBytes(ctxt, octets, 1), ASN1S_BUFFER_OVERFLOW);
    EXPECT_EQ(ctxt->errInfo.status, ASN1S_BUFFER_OVERFLOW);
    EXPECT_EQ(tests::toHex(fixed, 4), "01 02 03 04");
    EXPECT_EQ(rtCheckBuffer(ctxt, 0xFFFFFFFFu), ASN1S_BUFFER_OVERFLOW);

    ASSERT_EQ(rtInitContextBuffer(ctxt, nullptr, 4), 0);
    EXPECT_EQ(rtWriteBytes(ctxt, octets, 3), 0);
    EXPECT_EQ(rtWriteBytes(ctxt, octets, 5), 0);
    EXPECT_EQ(ctxt->buffer.size, 4u + 16384u);
    EXPECT_EQ(tests::toHex(ctxt->buffer.data, ctxt->buffer.byteIndex), "01 02 03 01 02 03 04 05");
    EXPECT_EQ(rtCheckBuffer(ctxt, 20000), 0);
    EXPECT_EQ(ctxt->buffer.size, 4u + 16384u + 20000u);
    for (unsigned int count : {0x7FFFFFFFu, 0xFFFFFFF8u, 0xFFFFFFFFu}) {
        rtErrReset(&ctxt->errInfo);
        EXPECT_EQ(rtCheckBuffer(ctxt, count), ASN1S_NO_MEMORY) << count;
        EXPECT_EQ(ctxt->errInfo.status, ASN1S_NO_MEMORY);
        EXPECT_EQ(ctxt->buffer.size, 4u + 16384u + 20000u);
    }
}

TEST(ForwardWriting, FlushesBeforeItGrows) {
    SinkContext ctxt(4);
    ASSERT_EQ(ctxt.write("abc"), 0);
    EXPECT_EQ(rtCheckBuffer(ctxt, 2), 0);
    EXPECT_EQ(ctxt.taken, "abc");
    EXPECT_EQ(ctxt->buffer.size, 4u);
    EXPECT_EQ(rtCheckBuffer(ctxt, 5), 0);
    EXPECT_EQ(ctxt->buffer.size, 4u + 16384u);
}

TEST(ForwardWriting, MissingMemoryKeepsWhatIsThere) {
    const tests::LeakCheck allocator;
    Context ctxt;
    ASSERT_EQ(rtInitContextBuffer(ctxt, nullptr, 2), 0);
    const unsigned char octets[] = {1, 2, 3};
    ASSERT_EQ(rtWriteBytes(ctxt, octets, 2), 0);
    CountingAllocator::failAfter(0);
    EXPECT_EQ(rtWriteBytes(ctxt, octets, 3), ASN1S_NO_MEMORY);
    EXPECT_EQ(ctxt->errInfo.status, ASN1S_NO_MEMORY);
    CountingAllocator::neverFail();
    EXPECT_EQ(rtWriteBytes(ctxt, octets, 3), 0);
    EXPECT_EQ(tests::toHex(ctxt->buffer.data, 5), "01 02 01 02 03");
}

} // namespace
