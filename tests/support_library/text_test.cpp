#include <iterator>
#include <sstream>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include <brevantis/support/text.h>

namespace {

using Brevantis::CStringProxy;
using Brevantis::CWStringProxy;

const std::string longText(100, 'x'); // beyond what a string holds without a block

TEST(Text, ownsItsCharacters) {
    char source[] = "1.2.840";
    CStringProxy text = source;
    source[0] = '2';
    EXPECT_STREQ(text.c_str(), "1.2.840");
    EXPECT_EQ(text.length(), 7u);
    text = text.c_str() + 2;
    EXPECT_STREQ(text.c_str(), "2.840") << "assigned from a part of itself";
    text = longText;
    CStringProxy copy = text;
    CStringProxy taken = std::move(text);
    EXPECT_EQ(copy, taken);
    text = nullptr;
    swap(text, copy);
    EXPECT_EQ(text, longText);
    EXPECT_TRUE(copy.empty());
    EXPECT_STREQ(copy.c_str(), "");
    const std::string withZero("a\0b", 3);
    EXPECT_EQ(CStringProxy(withZero), withZero);
    EXPECT_NE(CStringProxy(withZero), "a") << "a terminator inside does not hide the rest";
}

TEST(Text, comparesWithTextsStringsAndPointers) {
    // Ascending; a null pointer stands for the empty text.
    const wchar_t* const rows[] = {nullptr, L"a", L"ab", L"abc", L"b", L"\u0416"};
    for (const auto* left = std::begin(rows); left != std::end(rows); ++left) {
        for (const auto* right = std::begin(rows); right != std::end(rows); ++right) {
            const CWStringProxy text = *left;
            const CWStringProxy other = *right;
            EXPECT_EQ(text == other, left == right);
            EXPECT_EQ(text != *right, left != right);
            EXPECT_EQ(*left < other, left < right);
            EXPECT_EQ(text > other, left > right);
            EXPECT_EQ(text <= std::wstring(other.c_str()), left <= right);
            EXPECT_EQ(text >= other, left >= right);
        }
    }
    std::wostringstream stream;
    stream << CWStringProxy(L"CN=") << CWStringProxy() << CWStringProxy(L"\u0416");
    EXPECT_EQ(stream.str(), L"CN=\u0416");
}

} // namespace
