#include <thread>

#include <gtest/gtest.h>

#include <brevantis/asn1/asn1data/object.h>
#include <brevantis/asn1/runtime/message_buffer.h>
#include <shapes/shapes.h>

#include "support/coding.h"

// Information objects and sets: what stands behind an open value.

namespace {

using namespace shapes;
using tests::Reader;
using tests::Writer;

ASN1TObjId identifier(std::initializer_list<unsigned> arcs) {
    return ASN1TObjId(static_cast<unsigned char>(arcs.size()), arcs.begin());
}

TEST(ObjectSet, IsOneForAllThreads) {
    Kinds* seen[8] = {};
    std::vector<std::thread> threads;
    for (Kinds*& slot : seen) {
        threads.emplace_back([&slot] { slot = Kinds::instance(nullptr); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (const Kinds* set : seen) {
        EXPECT_EQ(set, seen[0]);
    }
    EXPECT_EQ(seen[0]->count, 7u);
    EXPECT_EQ(seen[0]->objects[0], kindInner::instance());
}

TEST(ObjectSet, FindsTheFirstMatch) {
    const Kinds& kinds = *Kinds::instance(nullptr);
    EXPECT_EQ(kinds.lookupObject(identifier({1, 2, 3, 1})), kindInner::instance());
    EXPECT_EQ(kinds.lookupObject(identifier({1, 2, 3, 6})), kindNested::instance());
    EXPECT_EQ(kinds.lookupObject(identifier({1, 2, 3})), nullptr);
    EXPECT_EQ(kinds.lookupObject(identifier({1, 2, 3, 1, 1})), nullptr);
    EXPECT_EQ(kinds.lookupObject(ASN1TObjId()), nullptr);
    EXPECT_EQ(NoKinds::instance(nullptr)->count, 0u);
    EXPECT_EQ(NoKinds::instance(nullptr)->lookupObject(identifier({1, 2, 3, 1})), nullptr);
}

TEST(Object, FieldsTellWhatItHas) {
    EXPECT_EQ(looseList::instance()->m.ValuePresent, 1u);
    EXPECT_EQ(looseNone::instance()->m.ValuePresent, 0u);
    EXPECT_TRUE(looseNone::instance()->id == identifier({1, 2, 3, 8}));
    // Without a value type nothing happens.
    tests::Context context;
    Asn1TObject slot;
    EXPECT_EQ(looseNone::instance()->constructASN1TValue(context), nullptr);
    EXPECT_EQ(looseNone::instance()->encodeBERValue(context, slot), 0);
    EXPECT_EQ(looseNone::instance()->decodeBERValue(context, slot), 0);
    EXPECT_EQ(slot.decoded, nullptr);
}

struct Row {
    const char* name;
    KIND* object;
    const char* octets;
};

const Row rows[] = {
    {"record", kindInner::instance(), "30 06 02 01 05 06 01 2A"},
    {"text", kindText::instance(), "0C 02 41 42"},
    {"null", kindNothing::instance(), "05 00"},
    {"octets", kindOctets::instance(), "04 03 01 02 03"},
    {"choice", kindChoice::instance(), "81 01 07"},
    {"open value within", kindNested::instance(), "30 09 06 03 2A 03 02 0C 02 41 42"},
};

TEST(Object, CodesCopiesAndFreesItsValue) {
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        Asn1TObject copied;
        Writer writer;
        {
            Reader reader(row.octets);
            Asn1TObject slot;
            ASSERT_EQ(row.object->decodeBERValue(reader, slot), 0) << reader.recorded();
            ASSERT_NE(slot.decoded, nullptr);
            row.object->copyValue(writer, slot, copied);
            ASSERT_NE(copied.decoded, nullptr);
            EXPECT_NE(copied.decoded, slot.decoded);
            row.object->freeValue(reader, slot);
            EXPECT_EQ(slot.decoded, nullptr);
            row.object->freeValue(reader, slot);
        }
        // The copy outlives the context that the origin was decoded on.
        const int length = row.object->encodeBERValue(writer, copied);
        EXPECT_EQ(length, static_cast<int>(tests::fromHex(row.octets).size()));
        EXPECT_EQ(writer.hex(), row.octets);
        row.object->freeValue(writer, copied);
        EXPECT_NE(row.object->constructASN1TValue(writer), nullptr);
    }
}

TEST(Object, KeepsTheRecordOfAFailedDecoding) {
    Reader reader("0C 05 41");
    Asn1TObject slot;
    EXPECT_LT(kindText::instance()->decodeBERValue(reader, slot), 0);
    EXPECT_NE(slot.decoded, nullptr);
    EXPECT_NE(reader.recorded(), 0);
    // A slot without a value cannot be encoded, and its copy has none either.
    Writer writer;
    Asn1TObject empty;
    Asn1TObject target;
    EXPECT_EQ(kindInner::instance()->encodeBERValue(writer, empty), ASN1S_INVALID_PARAMETER);
    kindInner::instance()->copyValue(writer, empty, target);
    EXPECT_EQ(target.decoded, nullptr);
}

TEST(Object, MakesControlObjects) {
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const tests::Octets octets = tests::fromHex(row.octets);
        ASN1BERDecodeBuffer in(octets.data(), static_cast<int>(octets.size()));
        void* value = row.object->constructASN1TValue(in.getCtxtPtr());
        ASSERT_NE(value, nullptr);
        ASN1CType* control = row.object->constructASN1CValue(in, value);
        ASSERT_NE(control, nullptr);
        ASSERT_EQ(control->Decode(), 0);
        {
            // Turned to another buffer, the object lives on another heap than it was made on.
            ASN1BEREncodeBuffer out;
            const int length = control->EncodeTo(out);
            ASSERT_EQ(length, static_cast<int>(octets.size()));
            EXPECT_EQ(tests::toHex(out.getMsgPtr(), octets.size()), row.octets);
            row.object->destructASN1CValue(control);
        }
    }
    ASN1BEREncodeBuffer buffer;
    EXPECT_EQ(kindInner::instance()->constructASN1CValue(buffer, nullptr), nullptr);
    kindInner::instance()->destructASN1CValue(nullptr);
}

} // namespace
