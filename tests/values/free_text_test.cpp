#include <gtest/gtest.h>

#include <brevantis/asn1/values/cmp/free_text.h>
#include <brevantis/asn1/values/cmp/free_text_traits.h>
#include <brevantis/asn1/values/util/context_handle.h>
#include <brevantis/asn1/values/util/text_conversion.h>

#include "support/data_file.h"
#include "support/failing_allocations.h"
#include "support/thrown_code.h"

using namespace Brevantis;
using namespace Brevantis::ASN1;
using tests::thrownCode;

namespace {

const CLanguageTagDefaultRead anyLanguage;

TEST(LanguageTag, IsComparedInLowerCase) {
    EXPECT_EQ(CLanguageTag("RU-ru"), CLanguageTagRuRu());
    EXPECT_EQ(CLanguageTag(L"EN-US").tostring(), "en-us");
    EXPECT_NE(CLanguageTagEnUs(), CLanguageTagRuRu());
    EXPECT_EQ(CLanguageTag().tostring(), "");
    EXPECT_EQ(CLanguageTag(static_cast<const char*>(nullptr)), CLanguageTag());
    EXPECT_EQ(CLanguageTag(static_cast<const wchar_t*>(nullptr)), CLanguageTag());
    EXPECT_EQ(CLanguageTag::normalize(nullptr), "");
    EXPECT_NE(CLanguageTag(), CLanguageTagDefaultRead());
    EXPECT_EQ(CLanguageTag::normalize("A\xC3\x9Cz"), "a\xC3\x9Cz");
    EXPECT_NE(thrownCode([] { CLanguageTag(L"\u0416"); }), 0);
    CLanguageTag tag;
    tag.assign(CLanguageTagEnUs());
    EXPECT_EQ(tag, "en-us");
}

TEST(FreeTextString, IsATextInALanguage) {
    const CPKIFreeTextString wide(L"\u0416", CLanguageTagRuRu());
    EXPECT_EQ(wide, CPKIFreeTextString("\xD0\x96", CLanguageTag("RU-RU")));
    EXPECT_NE(wide, CPKIFreeTextString(L"\u0416", CLanguageTagEnUs()));
    EXPECT_NE(wide, CPKIFreeTextString(CLanguageTagRuRu()));
    EXPECT_EQ(CPKIFreeTextString(L"x").get_language(), anyLanguage);
    CPKIFreeTextString string(anyLanguage);
    EXPECT_STREQ(string.get_value(), L"");
    string = wide;
    string.set_value(L"y");
    EXPECT_EQ(string, CPKIFreeTextString("y", CLanguageTagRuRu()));
    string.assign(wide);
    EXPECT_EQ(string, wide);
}

TEST(FreeText, FindsTheFirstStringOrAnEmptyOne) {
    CPKIFreeText text(L"hello", CLanguageTagEnUs());
    EXPECT_EQ(text.find(CLanguageTagEnUs()), text.end()) << "a string with a text is passed over";
    EXPECT_EQ(text.find(anyLanguage), text.begin());
    text.insert(CPKIFreeTextString(CLanguageTagRuRu()));
    const CPKIFreeText& same = text;
    EXPECT_EQ(same.find(CLanguageTagRuRu()), std::next(same.begin()));
    CPKIFreeText none;
    EXPECT_EQ(none.find(anyLanguage), none.end());
}

TEST(FreeText, ReplacesAndRemovesWhatFindGives) {
    const CPKIFreeTextString english(L"hello", CLanguageTagEnUs());
    const CPKIFreeTextString emptyEnglish{CLanguageTagEnUs()};
    CPKIFreeText text(emptyEnglish);
    text.insert(english);
    EXPECT_EQ(text, CPKIFreeText(english)) << "the empty one is replaced";
    text.insert(english);
    EXPECT_EQ(text.size(), 2u) << "one with a text is not";
    text.insert(emptyEnglish);
    text.remove(text.back().get_language());
    EXPECT_EQ(text.size(), 2u) << "only the empty one goes";
    text.insert(CPKIFreeTextString(L"a"));
    text.insert(CPKIFreeTextString(L"a"));
    EXPECT_EQ(text.size(), 4u);
    text.remove(CLanguageTagDefaultRead());
    EXPECT_TRUE(text.empty());
}

TEST(FreeText, StandsForItsFirstString) {
    CPKIFreeText text(L"a");
    text.insert(CPKIFreeTextString(L"b"));
    const CPKIFreeTextString& first = text;
    EXPECT_EQ(&first, &text.front());
    EXPECT_EQ(CPKIFreeTextString(text), text.operator CPKIFreeTextString());
    CPKIFreeText none;
    EXPECT_EQ(thrownCode([&] { CPKIFreeTextString(none).get_value(); }), E_INVALIDARG);
    EXPECT_EQ(thrownCode([&] { none.operator CPKIFreeTextString(); }), E_INVALIDARG);
}

TEST(FreeTextCoding, PutsTheLanguageInFrontOfTheText) {
    const auto language = [](const char* tag) {
        return tag != nullptr ? CLanguageTag(tag) : CLanguageTag(anyLanguage);
    };
    tests::forEachRow("free_text.txt", "coded", [&](const tests::DataRow& row) {
        ScopedContext context;
        asn1data::ASN1T_PKIFreeText record;
        const CPKIFreeText text(towstring(row["text"].c_str()).c_str(), language(row.text("tag")));
        CPKIFreeText_Encode(context.get(), record, text);
        ASSERT_EQ(record.n, 1u);
        EXPECT_EQ(record.elem[0], row["utf8"]);
        CPKIFreeText read;
        EXPECT_EQ(tests::thrownName([&] { CPKIFreeText_Parse(context.get(), read, record); }),
                  row["code"]);
        EXPECT_EQ(read, row["code"] == "ok" ? CPKIFreeText(towstring(row["utf8"].c_str()).c_str(),
                                                           language(row.text("tag read")))
                                            : CPKIFreeText());
    });
    const wchar_t notACharacter[] = {static_cast<wchar_t>(-1), 0};
    ScopedContext context;
    asn1data::ASN1T_PKIFreeText record;
    for (const CPKIFreeText& text :
         {CPKIFreeText(notACharacter), CPKIFreeText(L"x", CLanguageTag("\xD0\x96"))}) {
        EXPECT_EQ(thrownCode([&] { CPKIFreeText_Encode(context.get(), record, text); }),
                  CRYPT_E_ASN1_INTERNAL);
    }
}

TEST(FreeTextCoding, AppendsAllStringsOrNone) {
    ScopedContext context;
    asn1data::ASN1T_PKIFreeText record;
    CPKIFreeText text(L"before");
    CPKIFreeText_Encode(context.get(), record, CPKIFreeText());
    EXPECT_EQ(record.n, 0u);
    EXPECT_NE(record.elem, nullptr);
    CPKIFreeText_Parse(context.get(), text, record);
    EXPECT_EQ(text.size(), 1u);
    record.n = 1;
    record.elem = nullptr;
    EXPECT_EQ(thrownCode([&] { CPKIFreeText_Parse(context.get(), text, record); }), E_INVALIDARG);
    EXPECT_EQ(text.size(), 1u);
    for (const char* bad : {"\x80", "a\xC3z", "\xFF", "a\xC0\x80z\xFF"}) {
        const char* strings[] = {"good", bad};
        record.n = 2;
        record.elem = strings;
        EXPECT_EQ(thrownCode([&] { CPKIFreeText_Parse(context.get(), text, record); }),
                  CRYPT_E_ASN1_UTF8);
        EXPECT_EQ(text.size(), 1u);
        record.n = 1;
        CPKIFreeText_Parse(context.get(), text, record);
        EXPECT_STREQ(text.back().get_value(), L"good");
        text.pop_back();
    }
}

TEST(FreeTextCoding, ReadsWhatIsThereOfATextThatEndsEarly) {
    const char* strings[] = {"a\xC3", "\xF0\x9F\x98", "a\xC0\x80z", nullptr};
    asn1data::ASN1T_PKIFreeText record;
    record.n = 4;
    record.elem = strings;
    CPKIFreeText text;
    CPKIFreeText_Parse(nullptr, text, record);
    std::wstring all;
    for (const CPKIFreeTextString& string : text) {
        all += string.get_value() + std::wstring(L"|");
    }
    EXPECT_EQ(all, L"a\u0003|\u07D8|a||");
}

TEST(FreeTextCoding, GivesEverythingBackWhenMemoryIsOut) {
    CPKIFreeText text(L"a text that is long enough to need memory", CLanguageTagEnUs());
    text.insert(text.front());
    const auto unchanged = [&] { EXPECT_EQ(text.size(), 2u); };
    EXPECT_GT(tests::failEveryAllocation(
                  [&] {
                      ScopedContext context;
                      asn1data::ASN1T_PKIFreeText record;
                      CPKIFreeText_Encode(context.get(), record, text);
                      CPKIFreeText read;
                      CPKIFreeText_Parse(context.get(), read, record);
                  },
                  unchanged),
              5);
}

} // namespace
