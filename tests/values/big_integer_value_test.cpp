#include <climits>
#include <string>

#include <gtest/gtest.h>

#include <brevantis/asn1/values/types/big_integer.h>
#include <brevantis/asn1/values/types/big_integer_text.h>
#include <brevantis/asn1/values/util/context_handle.h>

#include "support/blob.h"
#include "support/data_file.h"
#include "support/failing_allocations.h"
#include "support/thrown_code.h"

using namespace Brevantis;
using namespace Brevantis::ASN1;
using tests::blob;
using tests::thrownCode;

namespace {

CBigInteger number(const std::string& hex) {
    const CBlob octets = blob(hex);
    return CBigInteger(octets.pbData(), octets.cbData());
}

std::string hexOf(const CBlob& octets) {
    return octets.writeToHexString(0).c_str();
}

TEST(BigIntegerValue, IsOrderedByValueExceptForNegativeNumbersOfDifferentSize) {
    tests::forEachRow("big_integer_value.txt", "ordered", [](const tests::DataRow& row) {
        const CBigInteger left = number(row["left"]);
        const CBigInteger right = number(row["right"]);
        const int order = row.number("order");
        const auto sign = [](int compared) { return (compared > 0) - (compared < 0); };
        EXPECT_EQ(sign(left.compare(right)), order);
        EXPECT_EQ(sign(right.compare(left)), -order);
        EXPECT_EQ(left == right, order == 0);
        EXPECT_EQ(left != right, order != 0);
        EXPECT_EQ(left < right, order < 0);
        EXPECT_EQ(left > right, order > 0);
        EXPECT_EQ(left <= right, order <= 0);
        EXPECT_EQ(left >= right, order >= 0);
    });
}

TEST(BigIntegerValue, IncrementsWithinItsSize) {
    tests::forEachRow("big_integer_value.txt", "incremented", [](const tests::DataRow& row) {
        CBigInteger value = number(row["before"]);
        value.increment(row.number("limit"));
        EXPECT_EQ(hexOf(value), row["after"]);
    });
    ASN1T_BigInt_inc(nullptr, 0, 0);
    CBigInteger value = number("00FF");
    EXPECT_EQ(hexOf(++value), "0100");
    EXPECT_EQ(hexOf(value++), "0100");
    EXPECT_EQ(hexOf(value), "0101");
}

TEST(BigIntegerValue, AddsNumbersOfItsSize) {
    tests::forEachRow("big_integer_value.txt", "added", [](const tests::DataRow& row) {
        CBigInteger value = number(row["left"]);
        const CBigInteger other = number(row["right"]);
        const char* sum = row.text("sum");
        EXPECT_EQ(thrownCode([&] { value.add(other); }), sum != nullptr ? 0 : E_INVALIDARG);
        EXPECT_EQ(hexOf(value), row[sum != nullptr ? "sum" : "left"]);
    });
    CBigInteger twice = number("0081");
    twice.add(twice);
    EXPECT_EQ(hexOf(twice), "0102");
}

TEST(BigIntegerValue, LosesItsTopBitAsAbsoluteValue) {
    for (const auto& [value, result] :
         {std::pair{"", ""}, {"FF", "7f"}, {"80FF", "00ff"}, {"7F", "7f"}}) {
        EXPECT_EQ(hexOf(number(value).abs()), result);
    }
}

TEST(BigIntegerText, IsReadAndWritten) {
    tests::forEachRow("big_integer_value.txt", "texts", [](const tests::DataRow& row) {
        CBigInteger value = number("55");
        EXPECT_EQ(tests::thrownName([&] { ASN1StringToBigInteger(row.text("text"), value); }),
                  row["code"]);
        EXPECT_EQ(hexOf(value), row["octets"]);
        if (row["code"] == "ok") {
            CBlob text;
            BigIntegerToString(value, text);
            const std::string written = "0x" + row["octets"];
            EXPECT_EQ(std::string(text.pbData(), text.pbData() + text.cbData()), written + '\0');
            ScopedContext context;
            EXPECT_EQ(BigIntegerToASN1String(context.get(), value), written);
        }
    });
}

TEST(BigIntegerText, FoldsA32BitNumberByEleven) {
    struct Row {
        const char* text;
        unsigned value;
        unsigned folded;
    };
    const Row rows[] = {{"0x00000000", 0, 0},
                        {"0x00000001", 1, 1},
                        {"0x000000ff", 0xFF, 0xFF},
                        {"0x00000102", 0x102, 13},
                        {"0x01020304", 0x01020304, 1331 + 242 + 33 + 4}};
    ScopedContext context;
    for (const Row& row : rows) {
        EXPECT_STREQ(DWORDToASN1BigInteger(context.get(), row.value), row.text);
        EXPECT_EQ(ASN1BigIntegerToDWORD(row.text), row.folded);
    }
    EXPECT_EQ(thrownCode([] { ASN1BigIntegerToDWORD("0x0000000001"); }), E_INVALIDARG);
    EXPECT_EQ(thrownCode([] { ASN1BigIntegerToDWORD("1"); }), CRYPT_E_ASN1_INTERNAL);
}

TEST(BigIntegerText, TellsOfMemoryByTheCodeOfItsPlace) {
    const CBigInteger value = number("0102");
    for (const auto& [expected, operation] :
         {std::pair<int, void (*)(ASN1CTXT*, const CBigInteger&)>{
              E_OUTOFMEMORY,
              [](ASN1CTXT*ctxt, const CBigInteger&) { DWORDToASN1BigInteger(ctxt, 1); }},
          {CRYPT_E_ASN1_MEMORY, [](ASN1CTXT*ctxt, const CBigInteger&number) {
               BigIntegerToASN1String(ctxt, number);
           }}}) {
        int last = 0;
        EXPECT_GT(tests::failEveryAllocation(
                      [&, run = operation] {
                          ScopedContext context;
                          last = 0;
                          try {
                              run(context.get(), value);
                          } catch (const ATL::CAtlException& error) {
                              last = error.m_hr;
                              throw;
                          }
                      },
                      [&, code = expected] { EXPECT_TRUE(last == 0 || last == code) << last; }),
                  1);
    }
}

TEST(BigIntegerValue, IsWrittenInTheFewestOctets) {
    EXPECT_EQ(number("000001").encode(), blob("020101"));
    EXPECT_EQ(number("FFFFFF").encode(), blob("0201FF"));
    EXPECT_EQ(thrownCode([] { CBigInteger().encode(); }), CRYPT_E_ASN1_INTERNAL);
}

TEST(BigIntegerValue, IsMadeOfOctets) {
    EXPECT_EQ(hexOf(CBigInteger(3ul)), "000000") << "a size, not a number";
    EXPECT_EQ(CBigInteger().cbData(), 0u);
    EXPECT_EQ(CBigInteger(nullptr, 0).cbData(), 0u);
    EXPECT_EQ(thrownCode([] { CBigInteger(nullptr, 1); }), E_INVALIDARG);
}

} // namespace
