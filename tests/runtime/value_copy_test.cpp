#include <cstddef>
#include <cstring>
#include <new>
#include <type_traits>

#include <gtest/gtest.h>

#include <brevantis/asn1/runtime/value_copy.h>
#include <brevantis/asn1/runtime/value_types.h>

#include "support/coding.h"
#include "support/counting_allocator.h"
#include "support/data_file.h"

namespace {

const unsigned char Octets[] = {1, 2, 3, 4, 5, 6, 7, 8};

template <class Record>
class StringRecord : public testing::Test {};
using StringRecords =
    testing::Types<ASN1TDynOctStr, ASN1TDynBitStr, Asn116BitCharString, Asn132BitCharString>;
TYPED_TEST_SUITE(StringRecord, StringRecords, );

// Records that programs fill in braces and copy octet by octet, and that are empty without a word.
TYPED_TEST(StringRecord, startsOutEmptyAndStaysPlain) {
    static_assert(std::is_aggregate_v<TypeParam> && std::is_standard_layout_v<TypeParam>);
    static_assert(std::is_trivially_copyable_v<TypeParam>);
    static_assert(!std::is_trivially_default_constructible_v<TypeParam>);
    static_assert(sizeof(TypeParam) == sizeof(ASN1OpenType));
    static_assert(offsetof(TypeParam, data) == offsetof(ASN1OpenType, data));
    alignas(TypeParam) unsigned char storage[sizeof(TypeParam)];
    std::memset(storage, 0xA5, sizeof storage);
    const auto& [count, data] = *new (storage) TypeParam;
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(data, nullptr);
}

TEST(ValueCopy, intoACallersArray) {

    tests::forEachRow("value_copy.txt", "arrays", [&](const tests::DataRow& row) {
        const auto number = row.number<unsigned>("count");
        for (auto* copy : {rtCopyBitStr, rtCopyOctStr}) {
            const auto copied =
                row.number<unsigned>(copy == rtCopyBitStr ? "octets of bits" : "octets of octets");
            unsigned int count = 99;
            unsigned char target[9] = {};
            EXPECT_EQ(copy(nullptr, number, Octets, &count, target), row.number("result"));
            EXPECT_EQ(count, number);
            EXPECT_EQ(std::memcmp(target, Octets, copied), 0);
            EXPECT_EQ(target[copied], 0);
        }
    });
    unsigned int count = 99;
    unsigned char target[1];
    EXPECT_EQ(rtCopyBitStr(nullptr, 1, nullptr, &count, target), 0);
    EXPECT_EQ(rtCopyOctStr(nullptr, 1, Octets, nullptr, target), 0);
    EXPECT_EQ(rtCopyOctStr(nullptr, 1, Octets, &count, nullptr), 0);
    EXPECT_EQ(count, 99u);
}

/// Runs @p copy on a full and an empty source, on null records and with no memory.
template <class Record, class Data>
void checkRecordCopy(int (*copy)(ASN1CTXT*, const Record*, Record*), unsigned int Record::*count,
                     unsigned int number, Data* data, std::size_t octets) {
    tests::CountingAllocator allocator;
    tests::Context context;
    const Record source{number, data};
    Record target{99, nullptr};
    ASSERT_EQ(copy(context, &source, &target), 1);
    EXPECT_EQ(target.*count, number);
    EXPECT_NE(target.data, source.data);
    EXPECT_EQ(std::memcmp(target.data, data, octets), 0);

    const Record empty{0, data};
    EXPECT_EQ(copy(context, &empty, &target), 1);
    EXPECT_EQ(target.*count, 0u);
    EXPECT_EQ(target.data, nullptr);

    EXPECT_EQ(copy(context, nullptr, &target), 0);
    EXPECT_EQ(copy(context, &source, nullptr), 0);
    const long live = allocator.live();
    for (const Record& bad : {source, Record{number, nullptr}, Record{0xFFFFFFFF, nullptr}}) {
        allocator.failAfter(0);
        target = source;
        EXPECT_EQ(copy(context, &bad, &target), 0);
        EXPECT_EQ(target.*count, 0u);
        EXPECT_EQ(target.data, nullptr);
        allocator.neverFail();
    }
    EXPECT_EQ(allocator.live(), live);
}

TEST(ValueCopy, records) {
    unsigned short shorts[] = {1, 2, 0xFFFF};
    unsigned int words[] = {1, 2, 0xFFFFFFFF};
    checkRecordCopy(rtCopyDynBitStr, &ASN1TDynBitStr::numbits, 57, Octets, 8);
    checkRecordCopy(rtCopyDynOctStr, &ASN1TDynOctStr::numocts, 8, Octets, 8);
    checkRecordCopy(rtCopy16BitCharStr, &Asn116BitCharString::nchars, 3, shorts, sizeof shorts);
    checkRecordCopy(rtCopy32BitCharStr, &Asn132BitCharString::nchars, 3, words, sizeof words);
}

TEST(ValueCopy, sizesDoNotWrap) {
    tests::Context context;
    unsigned short shorts[1] = {};
    unsigned int words[1] = {};
    // Taken modulo 2^32 these counts would ask for 2 and 4 octets.
    const Asn116BitCharString wide{0x80000001, shorts};
    const Asn132BitCharString wider{0x40000001, words};
    Asn116BitCharString target{};
    Asn132BitCharString widerTarget{};
    EXPECT_EQ(rtCopy16BitCharStr(context, &wide, &target), 0);
    EXPECT_EQ(rtCopy32BitCharStr(context, &wider, &widerTarget), 0);
}

TEST(ValueCopy, text) {
    tests::CountingAllocator allocator;
    tests::Context context;
    const char source[] = "text";
    const char* target = nullptr;
    EXPECT_EQ(rtCopyCharStr(context, source, &target), 1);
    EXPECT_NE(target, source);
    EXPECT_STREQ(target, source);
    EXPECT_EQ(rtCopyCharStr(nullptr, source, &target), 0);
    EXPECT_EQ(rtCopyCharStr(context, nullptr, &target), 0);
    EXPECT_EQ(rtCopyCharStr(context, source, nullptr), 0);
    EXPECT_STREQ(target, source);
    allocator.failAfter(0);
    EXPECT_EQ(rtCopyCharStr(context, source, &target), 0);
    EXPECT_EQ(target, nullptr);
}

} // namespace
