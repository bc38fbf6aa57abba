#include <cstring>
#include <memory>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include <brevantis/asn1/runtime/context.h>
#include <brevantis/asn1/runtime/message_buffer.h>
#include <brevantis/asn1/runtime/status.h>
#include <brevantis/asn1/runtime/stream.h>

#include "support/coding.h"
#include "support/counting_allocator.h"
#include "support/data_file.h"
#include "support/leak_check.h"

namespace {

using tests::Context;
using tests::CountingAllocator;

unsigned int references(void* heap) {
    return static_cast<ASN1MemHeap*>(heap)->refCount;
}

TEST(Status, EveryCodeHasItsName) {

    tests::forEachRow("context.txt", "status names", [&](const tests::DataRow& row) {
        EXPECT_EQ(rtStatusName(row.number("status")), row["name"]);
    });
}

TEST(Status, TheFirstFailureStays) {
    ASN1ErrInfo errors{0};
    EXPECT_EQ(rtErrSetData(&errors, -3, nullptr, 0), -3);
    EXPECT_EQ(rtErrSetData(&errors, -5, "module", 7), -5);
    EXPECT_EQ(errors.status, -3);
    EXPECT_EQ(rtErrAddIntParm(&errors, 4), 1);
    EXPECT_EQ(rtErrAddStrParm(&errors, "name"), 1);
    EXPECT_STREQ(rtErrGetText(&errors), "");
    ASN1ErrInfo copy{-12};
    EXPECT_EQ(rtErrCopyData(&errors, &copy), -3);
    EXPECT_EQ(copy.status, -3);
    testing::internal::CaptureStdout();
    EXPECT_EQ(rtErrPrint(&errors), 23);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "ASN.1 ERROR: Status -3\n");
    EXPECT_EQ(rtErrReset(&errors), 0);
    EXPECT_EQ(errors.status, 0);
}

TEST(Context, IsSetUpFromAnyMemory) {
    ASN1CTXT ctxt;
    std::memset(static_cast<void*>(&ctxt), 0xA5, sizeof ctxt);
    int userData = 0;
    ASSERT_EQ(rtInitContext(&ctxt, &userData), 0);
    EXPECT_EQ(ctxt.initCode, 0x1AA2A34Au);
    EXPECT_EQ(ctxt.memHeap, ctxt.msgMemHeap);
    EXPECT_EQ(references(ctxt.memHeap), 2u);
    EXPECT_EQ(static_cast<ASN1MemHeap*>(ctxt.memHeap)->userData, &userData);
    EXPECT_EQ(ctxt.userData, &userData);
    EXPECT_EQ(ctxt.buffer.data, nullptr);
    EXPECT_EQ(ctxt.buffer.size, 0u);
    EXPECT_EQ(ctxt.errInfo.status, 0);
    EXPECT_EQ(ctxt.flags, 0);
    EXPECT_EQ(ctxt.nestingDepth, 0);
    EXPECT_EQ(ctxt.stream, nullptr);
    EXPECT_EQ(ctxt.headList.pctxt, &ctxt);
    EXPECT_EQ(ctxt.tailList.pctxt, &ctxt);
    rtFreeContext(&ctxt);
    EXPECT_EQ(ctxt.initCode, 0u);
    rtFreeContext(&ctxt);
    ASN1CTXT zeroed{};
    rtFreeContext(&zeroed);
}

TEST(Context, BindsBuffers) {
    Context ctxt;
    unsigned char octets[4] = {1, 2, 3, 4};
    ctxt->buffer.byteIndex = 7;
    ASSERT_EQ(rtInitContextBuffer(ctxt, octets, 4), 0);
    EXPECT_EQ(ctxt->buffer.data, octets);
    EXPECT_EQ(ctxt->buffer.size, 4u);
    EXPECT_EQ(ctxt->buffer.byteIndex, 0u);
    EXPECT_EQ(ctxt->buffer.bitOffset, 8u);
    EXPECT_EQ(ctxt->buffer.dynamic, 0);
    ASSERT_EQ(rtInitContextBuffer(ctxt, nullptr, 0), 0);
    EXPECT_EQ(ctxt->buffer.size, 16384u);
    EXPECT_NE(ctxt->buffer.dynamic, 0);
    ASSERT_EQ(rtInitContextBuffer(ctxt, nullptr, 5), 0);
    EXPECT_EQ(ctxt->buffer.size, 5u);
}

TEST(Context, ABindingThatFailsWritesNothing) {
    ASN1CTXT never{};
    unsigned char octets[4] = {};
    EXPECT_EQ(rtInitContextBuffer(&never, octets, 4), ASN1S_NOT_INITIALISED);
    EXPECT_EQ(never.buffer.data, nullptr);
    EXPECT_EQ(never.buffer.bitOffset, 0u);

    Context ctxt;
    ASSERT_EQ(rtInitContextBuffer(ctxt, octets, 4), 0);
    for (unsigned int size : {0x7FFFFFD0u, 0x80000000u, 0xFFFFFFFFu}) {
        EXPECT_EQ(rtInitContextBuffer(ctxt, nullptr, size), ASN1S_NO_MEMORY) << size;
        EXPECT_EQ(ctxt->buffer.data, octets);
        EXPECT_EQ(ctxt->buffer.dynamic, 0);
    }
}

TEST(Context, SetUpAndBindingWithEveryAllocationFailing) {
    CountingAllocator allocator;
    for (long n = 0; n < 2; ++n) {
        CountingAllocator::failAfter(n);
        ASN1CTXT ctxt;
        EXPECT_EQ(rtInitContext(&ctxt, nullptr), n == 0 ? ASN1S_NO_MEMORY : 0);
        EXPECT_EQ(rtInitContextBuffer(&ctxt, nullptr, 0), ASN1S_NO_MEMORY);
        rtFreeContext(&ctxt);
        EXPECT_EQ(CountingAllocator::live(), 0) << n;
    }
}

TEST(Context, ADynamicBufferGoesWithTheContextUnlessKept) {
    CountingAllocator allocator;
    for (bool keep : {false, true}) {
        ASN1CTXT ctxt;
        ASSERT_EQ(rtInitContext(&ctxt, nullptr), 0);
        ASSERT_EQ(rtInitContextBuffer(&ctxt, nullptr, 8), 0);
        unsigned char* data = ctxt.buffer.data;
        data[7] = 42;
        if (keep) {
            rtCtxtSetFlag(&ctxt, ASN1F_KEEP_BUFFER);
        }
        void* heap = ctxt.memHeap;
        rtMemHeapAddRef(&heap);
        rtFreeContext(&ctxt);
        EXPECT_EQ(CountingAllocator::live(), keep ? 2 : 1);
        if (keep) {
            EXPECT_EQ(data[7], 42);
        }
        rtMemHeapRelease(&heap);
        EXPECT_EQ(CountingAllocator::live(), 0);
    }
}

TEST(Context, ACopyIsTheDescriptorAndTheFlags) {
    Context source;
    unsigned char octets[4] = {};
    rtInitContextBuffer(source, octets, 4);
    source->buffer.byteIndex = 3;
    for (const int added : {0x0400, 0x7FFF0040, 0}) {
        rtCtxtSetFlag(source, added);
    }
    rtErrSetData(&source->errInfo, -5, nullptr, 0);
    ASN1CTXT target;
    std::memset(static_cast<void*>(&target), 0x5A, sizeof target);
    void* heap = target.memHeap;
    rtCopyContext(&target, source);
    EXPECT_EQ(target.buffer.data, octets);
    EXPECT_EQ(target.buffer.byteIndex, 3u);
    EXPECT_EQ(target.buffer.size, 4u);
    EXPECT_EQ(target.buffer.bitOffset, 8u);
    EXPECT_EQ(target.buffer.dynamic, 0);
    EXPECT_EQ(target.flags, 0x0440);
    EXPECT_EQ(target.memHeap, heap);
    EXPECT_EQ(target.errInfo.status, 0x5A5A5A5A);
    EXPECT_EQ(target.initCode, 0x5A5A5A5Au);
}

TEST(Context, JoinsAnotherHeap) {
    const tests::LeakCheck allocator;
    Context source;
    Context target;
    void* own = target->msgMemHeap;
    ASSERT_EQ(rtInitContextBuffer(target, nullptr, 8), 0);
    rtCtxtSetMemHeap(target, source);
    EXPECT_EQ(target->memHeap, source->memHeap);
    EXPECT_EQ(references(source->memHeap), 3u);
    EXPECT_EQ(references(own), 1u);
    rtCtxtSetMemHeap(target, source);
    EXPECT_EQ(references(source->memHeap), 3u) << "shared already";
    rtCtxtSetMemHeap(target, nullptr);
    rtCtxtSetMemHeap(nullptr, source);
    EXPECT_EQ(target->memHeap, source->memHeap);
    target->buffer.data[7] = 1; // the old heap and what lies on it still live
    ASSERT_NE(rtMemHeapAlloc(&target->memHeap, 1), nullptr);

    // Even the only reference outlives a context that joins itself.
    Context alone;
    rtMemHeapRelease(&alone->msgMemHeap);
    alone->msgMemHeap = nullptr;
    auto* block = static_cast<unsigned char*>(rtMemHeapAlloc(&alone->memHeap, 1));
    rtCtxtSetMemHeap(alone, alone);
    EXPECT_EQ(references(alone->memHeap), 1u);
    *block = 1;
}

TEST(Context, LeavesAHeapThatVanishes) {
    const tests::LeakCheck allocator;
    Context source;
    Context target;
    ASSERT_EQ(rtInitContextBuffer(target, nullptr, 8), 0);
    ASSERT_NE(rtSListAppend(&target->headList, nullptr), nullptr);
    target->stream =
        static_cast<ASN1Stream*>(rtMemHeapAllocZ(&target->memHeap, int{sizeof(ASN1Stream)}));
    rtCtxtSetMemHeap(target, source);
    EXPECT_NE(target->stream, nullptr);
    ASSERT_NE(rtSListAppend(&target->tailList, nullptr), nullptr);
    EXPECT_NE(target->buffer.data, nullptr);
    rtCtxtSetMsgMemHeap(target, source);
    EXPECT_EQ(references(source->memHeap), 4u);
    EXPECT_EQ(target->buffer.data, nullptr);
    EXPECT_EQ(target->buffer.size, 0u);
    EXPECT_EQ(target->stream, nullptr);
    EXPECT_EQ(target->headList.count, 0u);
    EXPECT_EQ(target->tailList.count, 1u);
    ASSERT_NE(rtSListAppend(&target->headList, nullptr), nullptr);
}

TEST(SharedContext, DiesWithItsLastReference) {
    CountingAllocator allocator;
    auto* context = new ASN1Context;
    EXPECT_EQ(context->getRefCount(), 0u);
    EXPECT_EQ(static_cast<void*>(static_cast<ASN1CTXT*>(context)), static_cast<void*>(context));
    {
        ASN1ContextRef first(context);
        ASN1ContextRef second = first;
        EXPECT_EQ(context->getRefCount(), 2u);
        ASN1ContextRef third;
        EXPECT_FALSE(third);
        third = second;
        third = third.operator->() == context ? third : second;
        EXPECT_EQ(context->getRefCount(), 3u);
        ASN1ContextRef moved = std::move(second);
        EXPECT_EQ(context->getRefCount(), 3u);
        moved = std::move(third);
        EXPECT_EQ(context->getRefCount(), 2u);
        first = ASN1ContextRef(new ASN1Context);
        EXPECT_EQ(context->getRefCount(), 1u);
        EXPECT_EQ(moved.get(), context);
    }
    EXPECT_EQ(CountingAllocator::live(), 0);
}

TEST(SharedContext, OnTheStackIsHeldByItsOwner) {
    ASN1Context context;
    context._ref();
    { ASN1ContextRef visitor(&context); }
    EXPECT_EQ(context.getRefCount(), 1u);
    rtErrSetData(&context.errInfo, -2, nullptr, 0);
    testing::internal::CaptureStdout();
    context.PrintErrorInfo();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "ASN.1 ERROR: Status -2\n");
    ASN1Context unheld;
    unheld._unref();
    EXPECT_EQ(unheld.getRefCount(), 0xFFFFFFFFu) << "it does not delete itself";
    EXPECT_EQ(rtInitContextBuffer(&unheld, nullptr, 1), 0);
}

TEST(SharedContext, ReportsMissingMemory) {
    CountingAllocator allocator;
    CountingAllocator::failAfter(0);
    try {
        auto context = std::make_unique<ASN1Context>();
        FAIL() << "made without memory";
    } catch (const ASN1MessageBuffer::RTLError& error) {
        EXPECT_EQ(error.status(), ASN1S_NO_MEMORY);
        EXPECT_STREQ(error.what(), "ASN1S_NO_MEMORY");
    }
    EXPECT_EQ(CountingAllocator::live(), 0);
}

} // namespace
