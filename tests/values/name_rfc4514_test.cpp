#include <gtest/gtest.h>

#include <brevantis/asn1/values/types/attribute_type_and_value.h>
#include <brevantis/asn1/values/types/character_string.h>
#include <brevantis/asn1/values/types/general_name.h>
#include <brevantis/asn1/values/types/name_rfc4514.h>
#include <brevantis/asn1/values/util/utf8.h>

#include "support/blob.h"
#include "support/thrown_code.h"

using namespace Brevantis;
using namespace Brevantis::ASN1;
using tests::blob;
using tests::thrownCode;

namespace {

std::string again(std::string_view text) {
    return toRfc4514(fromRfc4514(text));
}

// The examples of RFC 4514, 4, and what its grammar leaves open.
TEST(NameRfc4514, IsReadAndWritten) {
    const struct {
        const char* text;
        const char* written; ///< null: the same
    } rows[] = {
        {"", nullptr},
        {"UID=jsmith,DC=example,DC=net", nullptr},
        {"OU=Sales+CN=J.  Smith,DC=example,DC=net", nullptr},
        {R"(CN=James \"Jim\" Smith\, III,DC=example,DC=net)", nullptr},
        {R"(CN=Before\0dAfter,DC=example,DC=net)", "CN=Before\rAfter,DC=example,DC=net"},
        {"1.3.6.1.4.1.1466.0=#04024869", nullptr},
        {"CN=Lu\xC4\x8Di\xC4\x87", nullptr},
        {R"(CN=Lu\C4\8Di\C4\87)", "CN=Lu\xC4\x8Di\xC4\x87"},
        {R"(CN=\ a b\ )", nullptr},
        {R"(CN=\#a\+b\;c\<d\>e\\f)", nullptr},
        {"cn = a b , o = c ; c=RU", "CN=a b,O=c,C=RU"},
        {"OID.2.5.4.3=x,2.5.4.10=y", "CN=x,O=y"},
        {"CN=", nullptr},
        {"INN=12", "1.2.643.3.131.1.1=#0c023132"},
        {"CN=#0c0161", "CN=a"},
        {"CN=#02012a", nullptr},       // a number
        {"CN=#0c03610062", nullptr},   // a text that would end early
        {"CN=#1e0400610062", "CN=ab"}, // BMPString
        {"CN=#1e02d800", nullptr},     // a surrogate
    };
    for (const auto& row : rows) {
        EXPECT_EQ(again(row.text), row.written != nullptr ? row.written : row.text) << row.text;
    }
}

TEST(NameRfc4514, OrderIsThatOfTheEncoding) {
    EXPECT_EQ(fromRfc4514("CN=b,C=RU").encode(), CName(L"C=RU,CN=b").encode());
    // Separators that the other form has no way to tell.
    const CName company = fromRfc4514(R"(O=Company\, Ltd.,C=RU)");
    EXPECT_EQ(company.size(), 2u);
    EXPECT_EQ(company.back().front().get_value_str(), L"Company, Ltd.");
}

TEST(NameRfc4514, RefusesWhatIsNone) {
    for (const char* text : {"x",
                             "CN",
                             "Nobody=x",
                             "CN=a,",
                             ",CN=a",
                             "CN=a++O=b",
                             "CN=a\\",
                             "CN=\\g0",
                             "CN=\\0",
                             "CN=\"a\"",
                             "CN=a<b",
                             "CN=#",
                             "CN=#0",
                             "CN=#0c0161 x",
                             "CN=#0c01\t61",
                             "CN=#0c02",
                             "CN=#0c016161",
                             "CN=\\00",
                             "CN=\\ff",
                             "1.2.=x",
                             "OID.=x",
                             "10.2.3=#0500",
                             "1.40=#0500",
                             "1=#0500",
                             "2.4294967295=#0500",
                             "2.5.4.4294967299=x",
                             "2.5.4.03=x",
                             "2.5.4.+3=x",
                             "2.5. 4.3=x"}) {
        EXPECT_EQ(thrownCode([&] { fromRfc4514(text); }), E_INVALIDARG) << text;
    }
    using namespace std::string_view_literals;
    for (const std::string_view text : {"CN=a\0"sv, "2.5.4.3\0=a"sv, "CN=#0c0161\0"sv}) {
        EXPECT_EQ(thrownCode([&] { fromRfc4514(text); }), E_INVALIDARG) << text;
    }
}

TEST(Utf8, BothWaysAndNothingElse) {
    const std::wstring wide{L'a', L'\0', 0x7FF, 0xFFFF, 0x10FFFF};
    const std::string octets("a\0\xDF\xBF\xEF\xBF\xBF\xF4\x8F\xBF\xBF", 11);
    EXPECT_EQ(toUtf8(wide), octets);
    EXPECT_EQ(fromUtf8(octets), wide);
    for (const char* text : {"\x80", "\xC1\x81", "\xE0\x80\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80",
                             "\xF8\x80\x80\x80", "\xC3", "\xE4\xB8", "\xC3z"}) {
        EXPECT_EQ(thrownCode([&] { fromUtf8(text); }), E_INVALIDARG);
    }
    for (const wchar_t character : {0xD800, 0xDFFF, 0x110000, -1}) {
        EXPECT_EQ(thrownCode([&] { toUtf8({&character, 1}); }), E_INVALIDARG);
    }
}

TEST(GeneralName, ComparesWhole) {
    const CGeneralName name = CGeneralName::dNSName(L"example.com");
    EXPECT_TRUE(sameWhole(name, CGeneralName(name)));
    EXPECT_TRUE(name == CGeneralName::dNSName(L"elsewhere"));
    EXPECT_FALSE(sameWhole(name, CGeneralName::dNSName(L"example.com.")));
    EXPECT_FALSE(sameWhole(name, CGeneralName::rfc822Name(L"example.com")));
    EXPECT_FALSE(sameWhole(name, CGeneralName()));
    EXPECT_TRUE(sameWhole(CGeneralName(), CGeneralName()));
    EXPECT_FALSE(
        sameWhole(CGeneralName::iPAddress(blob("01")), CGeneralName::iPAddress(blob("02"))));
}

} // namespace
