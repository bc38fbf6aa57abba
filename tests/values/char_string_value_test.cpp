#include <map>
#include <string>

#include <gtest/gtest.h>

#include <brevantis/asn1/values/types/character_string.h>
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

TEST(CharString, WritesTextAndReadsItBack) {
    const std::map<std::string, StringType> types = {
        {"UTF8", StringTypeUTF8},       {"Printable", StringTypePrintable},
        {"Teletex", StringTypeTeletex}, {"IA5", StringTypeIA5},
        {"BMP", StringTypeBMP},         {"Universal", StringTypeUniversal},
    };
    tests::forEachRow("char_string_value.txt", "written", [&](const tests::DataRow& row) {
        const std::string& readBack = row[row["read"] == "same" ? "text" : "read"];
        const CBlob encoded =
            encodeCharString(towstring(row["text"].c_str()).c_str(), types.at(row["type"]));
        EXPECT_EQ(encoded, blob(row["encoded"]));
        EXPECT_EQ(decodeCharString(encoded), towstring(readBack.c_str()));
    });
    EXPECT_EQ(encodeCharString(nullptr, StringTypeUTF8), blob("0C00"));
}

TEST(CharString, RefusesTextThatHasNoSuchString) {
    const wchar_t negative[] = {static_cast<wchar_t>(-1), 0};
    struct Row {
        const wchar_t* text;
        StringType type;
        int code;
    };
    const Row rows[] = {
        {L"x", StringTypeDefault, CRYPT_E_ASN1_INTERNAL},
        {L"x", static_cast<StringType>(7), CRYPT_E_ASN1_INTERNAL},
        {negative, StringTypeUTF8, CRYPT_E_ASN1_INTERNAL},
        {L"a\u0416", StringTypePrintable, insufficientBuffer},
        {L"a\u0416", StringTypeTeletex, insufficientBuffer},
        {L"a\u0416", StringTypeIA5, insufficientBuffer},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(thrownCode([&] { encodeCharString(row.text, row.type); }), row.code) << row.type;
    }
}

TEST(CharString, ReadsWhatOthersWrite) {
    tests::forEachRow("char_string_value.txt", "read", [](const tests::DataRow& row) {
        EXPECT_EQ(decodeCharString(blob(row["encoded"])), towstring(row["text"].c_str()));
    });
    EXPECT_EQ(decodeCharString(blob("1E04 D83DDE00")), L"\xD83D\xDE00") << "surrogates singly";
}

TEST(CharString, RefusesWhatIsNoString) {
    tests::forEachRow("char_string_value.txt", "refused", [](const tests::DataRow& row) {
        EXPECT_EQ(thrownCode([&] { decodeCharString(blob(row["encoded"])); }),
                  CRYPT_E_ASN1_INTERNAL);
    });
}

TEST(CharString, GivesEverythingBackWhenMemoryIsOut) {
    for (const StringType type :
         {StringTypeUTF8, StringTypeIA5, StringTypeBMP, StringTypeUniversal}) {
        const CBlob encoded = encodeCharString(L"a text of some length", type);
        EXPECT_GT(
            tests::failEveryAllocation([&] { encodeCharString(L"a text of some length", type); }),
            2);
        EXPECT_GT(tests::failEveryAllocation([&] { decodeCharString(encoded); }), 0);
    }
}

} // namespace
