#include <algorithm>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include <brevantis/asn1/runtime/control.h>
#include <brevantis/asn1/runtime/element_walk.h>
#include <brevantis/asn1/runtime/memory_buffer.h>
#include <brevantis/asn1/runtime/message_buffer.h>
#include <brevantis/asn1/runtime/tag_length.h>

#include "support/counting_allocator.h"
#include "support/data_file.h"
#include "support/hex.h"
#include "support/leak_check.h"

namespace {

using tests::CountingAllocator;
using tests::fromHex;
using tests::Octets;
using tests::toHex;

// The shape of every control class, over an OCTET STRING whose octets are all the same.
class Repeated : public ASN1CType {
public:
    Repeated(int size, unsigned char octet) : size_(size), octet_(octet) {}
    Repeated(ASN1MessageBufferIF& buffer, int size, unsigned char octet)
        : ASN1CType(buffer), size_(size), octet_(octet) {}

    int EncodeTo(ASN1MessageBufferIF& buffer) override {
        setMsgBuf(buffer);
        buffer.init();
        for (int i = 0; i < size_; ++i) {
            if (int added = xe_memcpy(buffer.getCtxtPtr(), &octet_, 1); added < 0) {
                return rtErrSetData(&buffer.getCtxtPtr()->errInfo, added, nullptr, 0);
            }
        }
        return xe_tag_len(buffer.getCtxtPtr(), 4, size_);
    }
    int DecodeFrom(ASN1MessageBufferIF& buffer) override {
        setMsgBuf(buffer);
        buffer.init();
        if (int status = xd_match1(buffer.getCtxtPtr(), 4, &size_); status != 0) {
            return status;
        }
        copy_ = static_cast<unsigned char*>(rtMemHeapAlloc(&getCtxtPtr()->memHeap, size_));
        return copy_ != nullptr ? xd_memcpy(buffer.getCtxtPtr(), copy_, size_) : ASN1S_NO_MEMORY;
    }
    std::string hex() const { return toHex(copy_, static_cast<std::size_t>(size_)); }

private:
    int size_;
    unsigned char octet_;
    unsigned char* copy_ = nullptr;
};

// Adds nothing to the buffer: an encoding of no octets.
class Nothing : public ASN1CType {
public:
    int EncodeTo(ASN1MessageBufferIF& buffer) override { return ++calls, buffer.init(); }
    int calls = 0;
};

template <class Action>
int thrownStatus(Action action) {
    try {
        action();
    } catch (const ASN1RTLException& error) {
        return error.status();
    }
    return 0;
}

unsigned int references(ASN1CTXT* ctxt) {
    return static_cast<ASN1MemHeap*>(ctxt->memHeap)->refCount;
}

TEST(EncodeBuffer, HoldsTheMessageOfTheLastEncoding) {
    ASN1BEREncodeBuffer buffer;
    Repeated object(buffer, 2, 0xAB);
    ASSERT_EQ(object.Encode(), 4);
    EXPECT_EQ(toHex(buffer.getMsgPtr(), 4), "04 02 AB AB");
    ASSERT_EQ(object.Encode(), 4);
    EXPECT_EQ(toHex(buffer.getMsgPtr(), 4), "04 02 AB AB") << "a further encoding rewinds";
    const std::unique_ptr<unsigned char[]> copy(buffer.getMsgCopy());
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(toHex(copy.get(), 4), "04 02 AB AB");

    Repeated large(20000, 7);
    ASSERT_EQ(large.EncodeTo(buffer), 20004);
    EXPECT_EQ(toHex(buffer.getMsgPtr(), 5), "04 82 4E 20 07");
    const unsigned int grown = buffer.getCtxtPtr()->buffer.size;
    EXPECT_EQ(object.Encode(), 4);
    EXPECT_EQ(buffer.getCtxtPtr()->buffer.size, grown);
}

TEST(EncodeBuffer, CopiesTheUnusedLastOctetToo) {
    unsigned char block[] = {1, 2, 3, 4};
    ASN1BEREncodeBuffer buffer(block, 4);
    std::unique_ptr<unsigned char[]> copy(buffer.getMsgCopy());
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(copy[0], 4);
    buffer.getCtxtPtr()->buffer.byteIndex = 2;
    copy.reset(buffer.getMsgCopy());
    EXPECT_EQ(toHex(copy.get(), 2), "03 04");
    for (const unsigned int end : {4u, 5u}) {
        buffer.getCtxtPtr()->buffer.byteIndex = end;
        EXPECT_EQ(buffer.getMsgCopy(), nullptr);
    }
}

TEST(EncodeBuffer, KeepsToABlockOfTheCallers) {

    tests::forEachRow("message_buffer.txt", "blocks", [&](const tests::DataRow& row) {
        Octets block(std::max(row.number<std::size_t>("room"), std::size_t{1}));
        block.resize(row.number<std::size_t>("room"));
        ASN1BEREncodeBuffer buffer;
        EXPECT_EQ(buffer.setBuffer(block.data(), row.number("size")), row.number("made"));
        if (row["result"] != "any") {
            Repeated object(buffer, 2, 0xAB);
            EXPECT_EQ(object.Encode(), row.number("result"));
        }
        EXPECT_EQ(thrownStatus([&] { ASN1BEREncodeBuffer made(block.data(), row.number("size")); }),
                  row.number("made"));
    });
}

TEST(EncodeBuffer, TheStreamOperatorThrowsEveryResultButNone) {
    unsigned char block[8];
    ASN1BEREncodeBuffer buffer(block, 8);
    Repeated object(3, 1);
    EXPECT_EQ(thrownStatus([&] { buffer << object; }), 5);
    EXPECT_EQ(toHex(buffer.getMsgPtr(), 5), "04 03 01 01 01") << "the message is there";
    Repeated large(30, 1);
    EXPECT_EQ(thrownStatus([&] { buffer << large; }), ASN1S_BUFFER_OVERFLOW);
    Nothing nothing;
    ASN1CType base;
    EXPECT_EQ(&(buffer << nothing << base), &buffer);
    EXPECT_EQ(nothing.calls, 1);
    try {
        buffer << large;
        FAIL();
    } catch (const std::exception& error) {
        EXPECT_STREQ(error.what(), "ASN1S_BUFFER_OVERFLOW");
    }
}

TEST(DecodeBuffer, BindsAtTheFirstDecodeAndStaysBound) {
    const Octets message = fromHex("04 02 AB CD 04 01 EF");
    ASN1BERDecodeBuffer buffer(message.data(), static_cast<int>(message.size()));
    EXPECT_EQ(buffer.getMsgPtr(), nullptr) << "nothing is bound yet";
    Repeated object(buffer, 0, 0);
    ASSERT_EQ(object.Decode(), 0);
    EXPECT_EQ(object.hex(), "AB CD");
    EXPECT_EQ(buffer.getMsgPtr(), message.data());
    EXPECT_EQ(buffer.init(), 0);
    EXPECT_EQ(buffer.getCtxtPtr()->buffer.byteIndex, 4u) << "init is no rewind";
    EXPECT_EQ(object.Decode(), ASN1S_TAG_NOT_FOUND) << "the second element is out of reach";

    const Octets next = fromHex("04 01 EF");
    ASSERT_EQ(buffer.setBuffer(next.data(), 3, 1), 0);
    ASSERT_EQ(object.Decode(), 0);
    EXPECT_EQ(object.hex(), "EF");
    EXPECT_EQ(buffer.setBuffer(next.data(), 3, 1), 0);
    EXPECT_EQ(buffer.getCtxtPtr()->buffer.byteIndex, 3u);
    EXPECT_EQ(buffer.setBuffer(next.data(), 3, 0), 0);
    EXPECT_EQ(buffer.getCtxtPtr()->buffer.byteIndex, 0u);
    rtErrReset(&buffer.getCtxtPtr()->errInfo);
    EXPECT_EQ(thrownStatus([&] { buffer >> object; }), 0);
    EXPECT_EQ(thrownStatus([&] { buffer >> object; }), ASN1S_TAG_NOT_FOUND);
    ASN1CType base;
    EXPECT_EQ(&(buffer >> base), &buffer);
}

TEST(DecodeBuffer, WithoutAMessageNothingDecodes) {
    const Octets message = fromHex("04 00");
    ASN1BERDecodeBuffer buffer;
    EXPECT_EQ(buffer.init(), ASN1S_NOT_SUPPORTED);
    Repeated object(buffer, 0, 0);
    EXPECT_EQ(object.Decode(), ASN1S_TAG_NOT_FOUND);
    EXPECT_EQ(buffer.setBuffer(nullptr, 2), ASN1S_NOT_SUPPORTED);
    for (const int size : {0, -1}) {
        EXPECT_EQ(buffer.setBuffer(message.data(), size), ASN1S_NOT_SUPPORTED);
    }
    EXPECT_EQ(buffer.init(), ASN1S_NOT_SUPPORTED) << "what was refused is remembered";
    const Octets tooLong = fromHex("04 82 01 00 AB");
    EXPECT_EQ(buffer.setBuffer(tooLong.data(), 5), ASN1S_INVALID_LENGTH);
    EXPECT_EQ(buffer.init(), 0) << "bound all the same";
    rtErrReset(&buffer.getCtxtPtr()->errInfo);
    EXPECT_LT(object.Decode(), 0);
}

TEST(DecodeBuffer, ReadsWhatItWasTurnedToLast) {
    const Octets first = fromHex("04 01 AA");
    const Octets second = fromHex("04 01 BB");
    const Octets third = fromHex("04 01 CC");
    ASN1BERDecodeBuffer buffer(first.data(), 3);
    ASN1MemBuf memory;
    rtMemBufInit(buffer.getCtxtPtr(), &memory, 16);
    ASSERT_EQ(rtMemBufAppend(&memory, second.data(), 3), 0);
    Repeated object(buffer, 0, 0);
    ASSERT_EQ(object.Decode(), 0);

    ASSERT_EQ(buffer.initBuffer(memory), 0);
    EXPECT_EQ(buffer.getMsgPtr(), memory.buffer);
    ASSERT_EQ(object.Decode(), 0);
    EXPECT_EQ(object.hex(), "BB");
    ASSERT_EQ(xd_setp(buffer.getCtxtPtr(), third.data(), 3, nullptr, nullptr), 0);
    ASSERT_EQ(object.Decode(), 0);
    EXPECT_EQ(object.hex(), "CC");
    EXPECT_EQ(buffer.init(), 0);
    EXPECT_EQ(buffer.getCtxtPtr()->buffer.byteIndex, 3u) << "no rewind here either";

    int length = 0;
    EXPECT_EQ(buffer.findElement(4, length, 1), first.data()) << "the message, not what came since";
    ASSERT_EQ(object.Decode(), 0);
    EXPECT_EQ(object.hex(), "AA");

    EXPECT_EQ(buffer.setBuffer(nullptr, 3, 0), ASN1S_NOT_SUPPORTED);
    EXPECT_EQ(buffer.init(), 0) << "bound as before";
    EXPECT_EQ(buffer.getMsgPtr(), first.data());
    ASN1BERDecodeBuffer neverBound;
    EXPECT_EQ(neverBound.setBuffer(nullptr, 3, 0), ASN1S_NOT_SUPPORTED);
    EXPECT_EQ(neverBound.init(), ASN1S_NOT_SUPPORTED);

    ASN1BERDecodeBuffer notBoundYet(first.data(), 3);
    ASSERT_EQ(notBoundYet.initBuffer(memory), 0);
    EXPECT_EQ(notBoundYet.init(), 0);
    EXPECT_EQ(notBoundYet.getMsgPtr(), first.data()) << "a message that waits comes first";
}

TEST(DecodeBuffer, FindsElements) {
    //                             0     2        5     7     9        12       15
    const Octets message = fromHex("30 0D 02 01 01 30 05 04 00 02 01 02 02 01 03 02 01 04");
    ASN1BERDecodeBuffer buffer(message.data(), static_cast<int>(message.size()));
    int length = -1;
    EXPECT_EQ(buffer.findElement(2, length, 0), nullptr) << "nothing is bound";

    tests::forEachRow("message_buffer.txt", "elements", [&](const tests::DataRow& row) {
        const unsigned char* found =
            buffer.findElement(row.number<unsigned int>("tag"), length, row.number("first"));
        ASSERT_EQ(found != nullptr ? static_cast<int>(found - message.data()) : -1,
                  row.number("offset"));
        if (found != nullptr) {
            EXPECT_EQ(length, row.number("length"));
        }
    });
    ASN1BERDecodeBuffer empty;
    EXPECT_EQ(empty.findElement(2, length, 1), nullptr);
}

// What a buffer of a program's own gets when it overrides the pure operations alone.
class Bare : public ASN1MessageBufferIF {
public:
    ASN1ContextRef getContext() override { return {}; }
    ASN1CTXT* getCtxtPtr() override { return nullptr; }
    bool isA(Type /*type*/) override { return false; }
};

TEST(MessageBuffer, OffersWhatItsDirectionAllows) {
    ASN1BEREncodeBuffer encode;
    ASN1BERDecodeBuffer decode;
    for (const auto type : {ASN1MessageBufferIF::EncodeBuffer, ASN1MessageBufferIF::DecodeBuffer}) {
        EXPECT_EQ(encode.isA(type), type == ASN1MessageBufferIF::EncodeBuffer);
        EXPECT_EQ(decode.isA(type), type == ASN1MessageBufferIF::DecodeBuffer);
    }
    EXPECT_EQ(decode.getMsgCopy(), nullptr);
    Bare bare;
    ASN1MessageBufferIF& buffer = bare;
    ASN1MemBuf memory{};
    char narrow[] = "";
    unsigned short wide[] = {0};
    EXPECT_EQ(buffer.init(), 0);
    EXPECT_EQ(buffer.getMsgCopy(), nullptr);
    EXPECT_EQ(buffer.getMsgPtr(), nullptr);
    EXPECT_EQ(buffer.initBuffer(memory), ASN1S_NOT_SUPPORTED);
    for (ASN1MessageBufferIF* any : {&buffer, static_cast<ASN1MessageBufferIF*>(&encode),
                                     static_cast<ASN1MessageBufferIF*>(&decode)}) {
        EXPECT_EQ(any->initBuffer(narrow), ASN1S_NOT_SUPPORTED);
        EXPECT_EQ(any->initBuffer(wide), ASN1S_NOT_SUPPORTED);
    }
    ASN1CType control(buffer);
    EXPECT_EQ(control.getCtxtPtr(), nullptr);
    control.setMsgBuf(buffer);
    EXPECT_EQ(control.Encode(), 0);
}

TEST(MessageBuffer, WorksOnAMemoryBuffer) {
    ASN1BERDecodeBuffer buffer;
    ASN1MemBuf memory;
    rtMemBufInit(buffer.getCtxtPtr(), &memory, 16);
    EXPECT_EQ(buffer.initBuffer(memory), ASN1S_NOT_SUPPORTED) << "no octets to decode";
    EXPECT_EQ(buffer.getMsgPtr(), nullptr);
    const Octets message = fromHex("04 01 AB");
    ASSERT_EQ(rtMemBufAppend(&memory, message.data(), 3), 0);
    ASSERT_EQ(buffer.initBuffer(memory), 0);
    Repeated object(buffer, 0, 0);
    EXPECT_EQ(object.Decode(), 0);
    EXPECT_EQ(object.hex(), "AB");

    ASN1BEREncodeBuffer output;
    ASSERT_EQ(output.initBuffer(memory), 0);
    Repeated fitting(output, 0, 1);
    EXPECT_EQ(fitting.Encode(), 2);
    Repeated large(output, 1, 1);
    EXPECT_EQ(large.Encode(), ASN1S_BUFFER_OVERFLOW);
    ASN1MemBuf empty;
    rtMemBufInit(output.getCtxtPtr(), &empty, 16);
    EXPECT_EQ(output.initBuffer(empty), 0);
    EXPECT_EQ(large.Encode(), 3) << "the encode buffer has a block of its own";
}

TEST(Control, NeedsABufferToCode) {
    Repeated object(1, 1);
    EXPECT_EQ(object.getMsgBuf(), nullptr);
    EXPECT_EQ(object.Encode(), ASN1S_INVALID_PARAMETER);
    EXPECT_EQ(object.Decode(), ASN1S_INVALID_PARAMETER);
    ASN1BEREncodeBuffer buffer;
    EXPECT_EQ(object.EncodeTo(buffer), 3);
    EXPECT_EQ(object.getMsgBuf(), &buffer);
    EXPECT_EQ(object.Encode(), 3) << "it has one now";
}

TEST(Control, CountsReferencesToContextAndHeap) {
    const tests::LeakCheck allocator;
    ASN1BEREncodeBuffer buffer;
    ASN1CTXT* ctxt = buffer.getCtxtPtr();
    EXPECT_EQ(buffer.getContext()->getRefCount(), 2u) << "the buffer's and this one";
    ASN1ContextRef held = buffer.getContext();
    {
        ASN1CType on(buffer);
        ASN1CType copy(on);
        ASN1CType plain(*held);
        ASN1BEREncodeBuffer second(buffer);
        EXPECT_EQ(held->getRefCount(), 6u);
        EXPECT_EQ(copy.getMsgBuf(), &buffer);
        EXPECT_EQ(copy.getCtxtPtr(), ctxt);
        EXPECT_EQ(plain.getMsgBuf(), nullptr);
        EXPECT_EQ(second.getCtxtPtr(), ctxt);
        on.setMsgBuf(buffer);
        EXPECT_EQ(references(ctxt), 2u) << "one context, one heap";

        ASN1CType apart;
        EXPECT_EQ(apart.getContext()->getRefCount(), 2u);
        EXPECT_NE(apart.getCtxtPtr(), ctxt);
        apart.setMsgBuf(buffer);
        apart.setMsgBuf(buffer);
        EXPECT_EQ(references(ctxt), 3u);
        EXPECT_EQ(apart.getCtxtPtr()->memHeap, ctxt->memHeap);
        second = ASN1BEREncodeBuffer();
        EXPECT_EQ(held->getRefCount(), 5u);
    }
    EXPECT_EQ(held->getRefCount(), 2u);
    EXPECT_EQ(references(ctxt), 2u);
}

TEST(Control, KeepsTheHeapOfItsValueBeyondTheBuffer) {
    const tests::LeakCheck allocator;
    const Octets message = fromHex("04 02 AB CD");
    Repeated own(0, 0);
    auto buffer = std::make_unique<ASN1BERDecodeBuffer>(message.data(), 4);
    ASSERT_EQ(own.DecodeFrom(*buffer), 0);
    buffer.reset();
    EXPECT_EQ(own.hex(), "AB CD");
}

// A control object on one buffer is coded with another: the first buffer's block lies on a heap
// that its context does not allocate from any more, and has to grow and go all the same.
TEST(Control, MovesBetweenBuffers) {
    for (bool firstDiesFirst : {true, false}) {
        CountingAllocator allocator;
        {
            auto first = std::make_unique<ASN1BEREncodeBuffer>();
            auto second = std::make_unique<ASN1BEREncodeBuffer>();
            {
                Repeated object(*first, 20000, 0xAB);
                EXPECT_EQ(object.EncodeTo(*second), 20004);
                EXPECT_EQ(first->getCtxtPtr()->memHeap, second->getCtxtPtr()->memHeap);
                EXPECT_EQ(object.EncodeTo(*first), 20004);
                EXPECT_EQ(toHex(first->getMsgPtr(), 5), "04 82 4E 20 AB");
                EXPECT_EQ(toHex(second->getMsgPtr(), 5), "04 82 4E 20 AB");
            }
            (firstDiesFirst ? first : second).reset();
        }
        EXPECT_EQ(CountingAllocator::live(), 0);
    }
}

TEST(MessageBuffer, EveryAllocationMayFail) {
    CountingAllocator allocator;
    const Octets message = fromHex("04 02 AB CD");
    const auto encode = [] {
        ASN1BEREncodeBuffer buffer;
        Repeated object(20000, 1);
        return object.EncodeTo(buffer);
    };
    const auto decode = [&] {
        ASN1BERDecodeBuffer buffer(message.data(), 4);
        Repeated object(buffer, 0, 0);
        return object.Decode();
    };
    const auto constructions = [&](auto action, int expected) {
        for (long n = 0;; ++n) {
            CountingAllocator::failAfter(n);
            const long before = CountingAllocator::calls();
            int result = 0;
            const int thrown = thrownStatus([&] { result = action(); });
            EXPECT_EQ(CountingAllocator::live(), 0) << n;
            if (CountingAllocator::calls() - before <= n) {
                EXPECT_EQ(result, expected);
                EXPECT_EQ(thrown, 0);
                return n;
            }
            EXPECT_EQ(thrown != 0 ? thrown : result, ASN1S_NO_MEMORY) << n;
        }
    };
    EXPECT_EQ(constructions(encode, 20004), 4) << "two heaps, the block and its growth";
    EXPECT_EQ(constructions(decode, 0), 2) << "the heap and the value";
}

} // namespace
