#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include <brevantis/asn1/values/types/attr_value.h>
#include <brevantis/asn1/values/types/attribute_register.h>
#include <brevantis/asn1/values/types/attribute_type_and_value.h>
#include <brevantis/asn1/values/util/text_conversion.h>

#include "support/blob.h"
#include "support/data_file.h"
#include "support/failing_allocations.h"
#include "support/thrown_code.h"

using namespace Brevantis;
using namespace Brevantis::ASN1;
using tests::blob;
using tests::thrownCode;

namespace {

constexpr int insufficientBuffer = static_cast<int>(0x8007007Au);

TEST(AttributeRegister, TellsEveryRowByItsIdentifierAndByItsName) {
    std::string names;
    for (const CATAVRegister& row : CATAVRegister::registered_) {
        EXPECT_EQ(&*CATAVRegister::find(row.oid.c_str()), &row) << row.oid;
        EXPECT_EQ(&*CATAVRegister::find(row.name.c_str()), &row) << row.oid;
        EXPECT_EQ(row.maxLength, 32768u) << row.oid;
        names += std::string(row.name.begin(), row.name.end()) + ' ';
    }
    EXPECT_EQ(names, "CN C L ST E O OU T GN I SN PS OGRN OGRNIP SNILS INN STREET DC "
                     "UnstructuredName PostalCode SERIALNUMBER ");
    const auto none = CATAVRegister::registered_.end();
    EXPECT_EQ(CATAVRegister::find(L"cn"), none);
    EXPECT_EQ(CATAVRegister::find("2.5.4"), none);
    EXPECT_EQ(CATAVRegister::find(static_cast<const char*>(nullptr)), none);
}

TEST(AttributeRegister, TakesFurtherRows) {
    const CATAVRegister row("1.2.3.4", L"X", StringTypeBMP, 3);
    const CATAVRegister second("1.2.3.4", L"Y", StringTypeUTF8, 4);
    CAttributeTypeAndValue pair(L"X=abc", StringTypeDefault);
    EXPECT_EQ(pair.get_value(), blob("1E06 006100620063"));
    EXPECT_EQ(thrownCode([&] { pair.put_value_str(L"abcd", StringTypeUTF8); }), E_INVALIDARG);
    EXPECT_EQ(pair.toString(), L"X=abc") << "unchanged, and named by the first row";
    CATAVRegister::registered_.pop_back();
    CATAVRegister::registered_.pop_back();
    EXPECT_EQ(pair.get_type_str(), L"1.2.3.4");
}

TEST(AttributeTypeAndValue, IsReadFromTextAndWrittenAsText) {
    tests::forEachRow("attribute_text.txt", "pairs", [](const tests::DataRow& row) {
        const std::wstring text = towstring(row["text"].c_str());
        const std::string& written = row[row["written"] == "same" ? "text" : "written"];
        CAttributeTypeAndValue pair;
        pair.fromString(text.c_str(), StringTypeDefault);
        EXPECT_EQ(pair.get_type(), row["type"]);
        EXPECT_EQ(pair.get_value(), blob(row["value"]));
        EXPECT_EQ(pair.toString(), towstring(written.c_str()));
        EXPECT_EQ(pair, CAttributeTypeAndValue(text.c_str(), StringTypeDefault));
        CAttributeTypeAndValue parts;
        parts.put_type_str(pair.get_type_str().c_str());
        parts.put_value(pair.get_value());
        EXPECT_EQ(parts, pair);
    });
}

TEST(AttributeTypeAndValue, RefusesTextAndStaysAsItWas) {
    const CAttributeTypeAndValue before("1.2.3", blob("0500"));
    CAttributeTypeAndValue pair = before;
    const std::wstring longest = L"CN=" + std::wstring(32768, L'x');
    const std::wstring tooLong = longest + L'x';
    const std::pair<const wchar_t*, int> rows[] = {
        {L"CN", E_INVALIDARG},
        {L"", E_INVALIDARG},
        {nullptr, E_INVALIDARG},
        {tooLong.c_str(), E_INVALIDARG},
        {L"1.2.3=#0", E_INVALIDARG},
        {L"1.2.3=#0g", E_INVALIDARG},
        {L"E=\u0416", insufficientBuffer},
        {L"\u0416=#05", insufficientBuffer},
        {L"1.2.3=#\u0416", insufficientBuffer},
    };
    for (const auto& [text, code] : rows) {
        EXPECT_EQ(thrownCode([&, t = text] { pair.fromString(t, StringTypeDefault); }), code);
        EXPECT_EQ(pair, before);
    }
    EXPECT_EQ(thrownCode([&] { pair.put_type_str(L"\u0416"); }), insufficientBuffer);
    for (const wchar_t* empty : {L"", static_cast<const wchar_t*>(nullptr)}) {
        try {
            pair.put_value_str(empty, StringTypeUTF8);
            ADD_FAILURE() << "no exception";
        } catch (const std::out_of_range& error) {
            EXPECT_STREQ(error.what(), "basic_string::substr");
        }
    }
    EXPECT_EQ(pair, before);
    pair.fromString(longest.c_str(), StringTypeDefault);
    EXPECT_EQ(pair.get_value_str().length(), 32768u);
}

TEST(AttributeTypeAndValue, HeedsTheStringTypeExceptInFromString) {
    CAttributeTypeAndValue pair(L"CN=x", StringTypeBMP);
    EXPECT_EQ(pair.get_value(), blob("1E020078"));
    EXPECT_EQ(CAttributeTypeAndValue(L"CN", L"x", StringTypeBMP), pair);
    pair.fromString(L"CN=x", StringTypeBMP);
    EXPECT_EQ(pair.get_value(), blob("0C0178"));
    pair.put_value_str(L"y", StringTypeIA5);
    EXPECT_EQ(pair.get_value(), blob("160179"));
    pair.put_type("1.2.3");
    pair.put_value_str(L"#05", StringTypeIA5);
    EXPECT_EQ(pair.get_value(), blob("05"));
}

TEST(AttributeTypeAndValue, ComparesEncodings) {
    const CAttributeTypeAndValue pair(L"CN=x", StringTypeUTF8);
    EXPECT_EQ(pair, CAttributeTypeAndValue("2.5.4.3", blob("0C0178")));
    EXPECT_NE(pair, CAttributeTypeAndValue(L"CN=x", StringTypePrintable));
    EXPECT_NE(pair, CAttributeTypeAndValue("2.5.4.4", blob("0C0178")));
    EXPECT_EQ(pair, CAttributeTypeAndValue(CAttrValue("2.5.4.3", blob("0C0178"))));
}

TEST(AttributeTypeAndValue, IsNotEncodedWithWhatCannotStandInIt) {
    EXPECT_EQ(CAttributeTypeAndValue(" 1.2.3 ", blob("0500")).encode(), blob("3006 06022A03 0500"));
    const std::pair<CAttributeTypeAndValue, int> rows[] = {
        {{"2.5.4.3", blob("020101")}, CRYPT_E_ASN1_INTERNAL}, // no DirectoryString
        {{"2.5.4.3", CBlob()}, CRYPT_E_ASN1_INTERNAL},
        {{"cn", blob("0500")}, E_INVALIDARG},
        {{"", blob("0500")}, E_INVALIDARG},
    };
    for (const auto& [refused, code] : rows) {
        EXPECT_EQ(thrownCode([&, &value = refused] { value.encode(); }), code)
            << refused.get_type();
    }
}

/// Every row's own string type makes a value that the catalogue knows by its identifier.
TEST(AttributeTypeAndValue, OfEveryRegisteredTypeComesBack) {
    for (const CATAVRegister& row : CATAVRegister::registered_) {
        const CAttributeTypeAndValue pair(row.name.c_str(), L"12", StringTypeDefault);
        CAttributeTypeAndValue decoded;
        EXPECT_EQ(thrownCode([&] { decoded.decode(pair.encode()); }), 0) << row.oid;
        EXPECT_EQ(decoded, pair) << row.oid;
    }
}

TEST(AttributeTypeAndValue, GivesEverythingBackWhenMemoryIsOut) {
    const CAttributeTypeAndValue before("1.2.3", blob("0500"));
    const CAttributeTypeAndValue pair(L"CN=a text of some length", StringTypeUTF8);
    EXPECT_GT(tests::failEveryAllocation([&] { pair.toString(); }), 0);
    EXPECT_GT(tests::failEveryAllocation([&] {
                  CAttributeTypeAndValue target = before;
                  try {
                      target.fromString(L"CN=some more text", StringTypeDefault);
                  } catch (...) {
                      EXPECT_EQ(target, before);
                      throw;
                  }
              }),
              3);
}

} // namespace
