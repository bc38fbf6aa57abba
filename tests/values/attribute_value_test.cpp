#include <stdexcept>
#include <string>
#include <type_traits>

#include <gtest/gtest.h>

#include <brevantis/asn1/values/attribute/signed_attributes.h>
#include <brevantis/asn1/values/attribute/string_values.h>

#include "support/blob.h"
#include "support/failing_allocations.h"
#include "support/thrown_code.h"

using namespace Brevantis;
using namespace Brevantis::ASN1;
using tests::blob;
using tests::thrownCode;

namespace {

TEST(AttrValue, ComparesIdentifierAndEncoding) {
    const CAttrValue value("1.2.3", blob("0500"));
    const CAttrValue others[] = {CAttrValue(), CAttrValue("1.2.3"), CAttrValue("1.2.3", blob("05")),
                                 CAttrValue("1.2.30", blob("0500"))};
    EXPECT_TRUE(value == CAttrValue(value));
    EXPECT_FALSE(value != CAttrValue(value));
    for (const CAttrValue& other : others) {
        EXPECT_FALSE(value == other);
        EXPECT_TRUE(value != other);
    }
    EXPECT_STREQ(CAttrValue(nullptr).get_oid(), "");
}

TEST(AttrStringValue, HasTheIdentifierAndStringTypeOfItsClass) {
    struct Row {
        CAttrStringValue value;
        const char* oid;
        const char* tag;
    };
    const Row rows[] = {
        {CAttrCommonName("x"), "2.5.4.3", "0C"},
        {CAttrSurname("x"), "2.5.4.4", "0C"},
        {CAttrSerialNumber("x"), "2.5.4.5", "13"},
        {CAttrCountry("x"), "2.5.4.6", "13"},
        {CAttrLocality("x"), "2.5.4.7", "0C"},
        {CAttrStateOrProvinceName("x"), "2.5.4.8", "0C"},
        {CAttrOrganizationName("x"), "2.5.4.10", "0C"},
        {CAttrOrganizationalUnitName("x"), "2.5.4.11", "0C"},
        {CAttrTitle("x"), "2.5.4.12", "0C"},
        {CAttrGivenName("x"), "2.5.4.42", "0C"},
        {CAttrInitials("x"), "2.5.4.43", "0C"},
        {CAttrPseudonym("x"), "2.5.4.65", "0C"},
        {CAttrEmailAddress("x"), "1.2.840.113549.1.9.1", "16"},
    };
    for (const Row& row : rows) {
        EXPECT_STREQ(row.value.get_oid(), row.oid);
        EXPECT_EQ(row.value.get_value(), blob(std::string(row.tag) + "0178")) << row.oid;
    }
}

TEST(AttrStringValue, TakesTextsOfBothKinds) {
    EXPECT_EQ(CAttrCommonName("\xD0\x96").get_value(), blob("0C02D096"));
    EXPECT_EQ(CAttrStringValue("2.5.4.3", L"\u0416").get_value(), blob("0C02D096"));
    EXPECT_EQ(CAttrStringValue("1.2.3", "#0102").get_value(), blob("0102"))
        << "not in the register";
    EXPECT_EQ(CAttrTitle(std::string(32768, 'x').c_str()).get_value().cbData(), 32768u + 4);

    EXPECT_EQ(thrownCode([] { CAttrTitle{std::string(32769, 'x').c_str()}; }), E_INVALIDARG);
    EXPECT_EQ(thrownCode([] { CAttrStringValue("1.2.3", "#01x"); }), E_INVALIDARG);
    EXPECT_NE(thrownCode([] { CAttrCountry("\xD0\x96"); }), 0) << "needs two octets";
    EXPECT_THROW(CAttrStringValue("1.2.3", ""), std::out_of_range);
    EXPECT_GT(tests::failEveryAllocation([] { CAttrCommonName("a longer text, on the heap"); }), 3);
}

TEST(AttrContentType, KeepsFieldAndValueInStep) {
    CAttrContentType value("1.2.840.113549.1.7.1");
    EXPECT_STREQ(value.get_oid(), "1.2.840.113549.1.9.3");
    EXPECT_EQ(value.get_value(), blob("06092A864886F70D010701"));
    value.put_contentType("1.2.3");
    EXPECT_EQ(value.get_value(), blob("06022A03"));

    EXPECT_EQ(thrownCode([&] { value.put_contentType("data"); }), E_INVALIDARG);
    EXPECT_STREQ(value.get_contentType(), "1.2.3") << "unchanged by a failure";
    EXPECT_EQ(value.get_value(), blob("06022A03"));
    EXPECT_EQ(thrownCode([] { CAttrContentType{""}; }), E_INVALIDARG);
    EXPECT_EQ(thrownCode([] { CAttrContentType{static_cast<const char*>(nullptr)}; }),
              E_INVALIDARG);
    EXPECT_EQ(thrownCode([] { CAttrContentType{blob("0402AABB")}; }), CRYPT_E_ASN1_INTERNAL);
}

TEST(AttrMessageDigest, KeepsFieldAndValueInStep) {
    CAttrMessageDigest value;
    EXPECT_STREQ(value.get_oid(), "1.2.840.113549.1.9.4");
    EXPECT_EQ(value.get_value(), CBlob()) << "nothing is encoded so far";
    value.put_messageDigest(blob("AABB"));
    EXPECT_EQ(value.get_value(), blob("0402AABB"));
    value.put_messageDigest(value.get_value());
    EXPECT_EQ(value.get_value(), blob("04040402AABB"));
    value.put_messageDigest(CBlob());
    EXPECT_EQ(value.get_value(), blob("0400"));
    EXPECT_EQ(thrownCode([] { CAttrMessageDigest{CBlob()}; }), CRYPT_E_ASN1_INTERNAL);
}

TEST(AttrSigningTime, KeepsFieldAndValueInStep) {
    CAttrSigningTime value(CDateTime(2049, 12, 31, 23, 59, 59, 999));
    EXPECT_STREQ(value.get_oid(), "1.2.840.113549.1.9.5");
    const std::string utcTime = "170D3439313233313233353935395A";
    EXPECT_EQ(value.get_value(), blob(utcTime));
    EXPECT_EQ(value.get_time(), CDateTime(2049, 12, 31, 23, 59, 59, 999));
    value.put_time(CDateTime(2050, 1, 1, 0, 0, 0));
    EXPECT_EQ(value.get_value(), blob("180F32303530303130313030303030305A"));
    EXPECT_EQ(thrownCode([] { CAttrSigningTime{blob("0500")}; }), CRYPT_E_ASN1_INTERNAL);
    EXPECT_EQ(thrownCode([] { CAttrSigningTime{blob("170D3439393933313233353935395A")}; }),
              E_INVALIDARG)
        << "month 99";
}

/// The value can be replaced from outside, and is only believed once it decodes.
TEST(AttrWithField, DecodesWhatWasPutIntoTheValue) {
    CAttrContentType type("1.2.3");
    CAttrMessageDigest digest;
    CAttrSigningTime time(CDateTime(0, 0));
    type.value() = digest.value() = time.value() = blob("01");
    EXPECT_EQ(thrownCode([&] { type.decode(); }), CRYPT_E_ASN1_INTERNAL);
    EXPECT_EQ(thrownCode([&] { digest.decode(); }), CRYPT_E_ASN1_INTERNAL);
    EXPECT_EQ(thrownCode([&] { time.decode(); }), CRYPT_E_ASN1_INTERNAL);
    EXPECT_STREQ(type.get_contentType(), "1.2.3");
    EXPECT_EQ(time.get_time(), CDateTime(0, 0));

    type.value() = blob("06012A");
    digest.value() = blob("0401AA");
    time.value() = blob("170D3730303130313030303030315A");
    type.decode();
    digest.decode();
    time.decode();
    EXPECT_STREQ(type.get_contentType(), "1.2");
    EXPECT_EQ(digest.get_messageDigest(), blob("AA"));
    EXPECT_EQ(time.get_time(), CDateTime(1, 0));
}

// They have no copies, and none may be had by way of what they derive from: the getter of a time
// that has gone would lead to nothing.
static_assert(!std::is_move_constructible_v<CAttrSigningTime>);
static_assert(!std::is_move_constructible_v<ValueWithField<CAttrValue, CTimeChoice>>);
static_assert(!std::is_move_assignable_v<ValueWithField<CAttrValue, CTimeChoice>>);
static_assert(!std::is_copy_constructible_v<ValueWithField<CAttrValue, CStringProxy>>);

TEST(AttrWithField, StaysInStepWhenMemoryIsOut) {
    const std::string before = "1.2.3";
    const char* const after = "1.2.840.113549.1.9.16.1.4.1.1.1.1.1.1.1.1.1.1.1.1.1";
    bool unchanged = true;
    EXPECT_GT(tests::failEveryAllocation([&] {
                  CAttrContentType type(before.c_str());
                  try {
                      type.put_contentType(after);
                  } catch (...) {
                      unchanged = unchanged && type.get_contentType() == before &&
                                  type.get_value().cbData() == 4;
                      throw;
                  }
                  CAttrContentType{type.get_value()};
              }),
              6);
    EXPECT_TRUE(unchanged);
    EXPECT_GT(tests::failEveryAllocation([] {
                  CAttrMessageDigest digest;
                  digest.put_messageDigest(CBlob(64));
                  CAttrMessageDigest{digest.get_value()};
              }),
              4);
    EXPECT_GT(tests::failEveryAllocation([] {
                  CAttrSigningTime time(CDateTime(0, 0));
                  time.put_time(CDateTime(1, 0));
                  CAttrSigningTime{time.get_value()};
              }),
              6);
}

} // namespace
