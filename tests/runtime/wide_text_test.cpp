#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <brevantis/asn1/runtime/wide_text.h>

#include "support/coding.h"
#include "support/counting_allocator.h"

namespace {

using Characters = std::vector<unsigned int>;

Characters charactersOf(const Asn132BitCharString& text) {
    return Characters(text.data, text.data + text.nchars);
}

TEST(WideText, narrowTextAndAlphabets) {
    const unsigned int even[] = {'0', '2', '4', 'x'};
    struct Row {
        std::string text;
        Asn132BitCharSet alphabet;
        Characters expected;
        const char* reason;
    };
    const Row rows[] = {
        {"", {0, nullptr, 0, 0xFFFFFFFF}, {}, "nothing"},
        {"a\xE9", {0, nullptr, 0, 0xFFFFFFFF}, {'a', 0xE9}, "octets are unsigned"},
        {"a1b2", {0, nullptr, 48, 57}, {'1', '2'}, "bounds alone"},
        {"/09:", {0, nullptr, 48, 57}, {'0', '9'}, "bounds are inclusive"},
        {"0123x", {4, even, 48, 57}, {'0', '2'}, "bounds and list"},
        {"0123", {1, even, 49, 57}, {}, "a list outside the bounds"},
    };
    tests::Context context;
    for (const Row& row : rows) {
        Asn132BitCharString target{9, nullptr};
        EXPECT_EQ(rtCToUCSString(context, row.text.c_str(), &target, &row.alphabet), &target);
        EXPECT_EQ(charactersOf(target), row.expected) << row.reason;
        const std::wstring wide(row.text.begin(), row.text.end());
        if (row.text.find('\xE9') == std::string::npos) {
            EXPECT_EQ(rtWCSToUCSString(context, wide.c_str(), &target, &row.alphabet), &target);
            EXPECT_EQ(charactersOf(target), row.expected) << row.reason;
        }
    }
    Asn132BitCharString target{9, nullptr};
    EXPECT_EQ(rtWCSToUCSString(context, L"\U0001F600\u00E9", &target, nullptr), &target);
    EXPECT_EQ(charactersOf(target), (Characters{0xF600, 0xE9}));
    EXPECT_EQ(rtWCSToUCSString(context, L"", &target, nullptr), &target);
    EXPECT_EQ(target.nchars, 0u);
    EXPECT_NE(target.data, nullptr);
}

TEST(WideText, reportsMissingMemoryAndArguments) {
    tests::CountingAllocator allocator;
    tests::Context context;
    Asn132BitCharString target{9, nullptr};
    EXPECT_EQ(rtCToUCSString(context, nullptr, &target, nullptr), nullptr);
    EXPECT_EQ(rtCToUCSString(context, "a", nullptr, nullptr), nullptr);
    allocator.failAfter(0);
    EXPECT_EQ(rtCToUCSString(context, "abc", &target, nullptr), nullptr);
    EXPECT_EQ(rtWCSToUCSString(context, L"abc", &target, nullptr), nullptr);
    EXPECT_EQ(target.nchars, 0u);
    EXPECT_EQ(target.data, nullptr);
}

TEST(WideText, toPlatformText) {
    struct Row {
        Characters source;
        std::size_t capacity;
        std::wstring expected; ///< all that is written
        const char* reason;
    };
    const Row rows[] = {
        {{}, 1, std::wstring(1, L'\0'), "a terminator alone"},
        {{}, 0, L"", "no room for it"},
        {{'a', 'b', 'c', 'd', 'e'}, 5, L"abcde", "full, not terminated"},
        {{'a', 'b', 'c'}, 2, L"ab", "cut off, not terminated"},
        {{'a', 0x10000, 0xFFFF}, 3, std::wstring(L"a\xFFFF") + L'\0', "a value of 17 bits goes"},
    };
    for (const Row& row : rows) {
        Characters data = row.source;
        const Asn132BitCharString source{static_cast<unsigned int>(data.size()), data.data()};
        const std::unique_ptr<wchar_t[]> target(new wchar_t[row.capacity]);
        EXPECT_EQ(rtUCSToWCSString(&source, target.get(), row.capacity), target.get());
        EXPECT_EQ(std::wstring(target.get(), row.expected.size()), row.expected) << row.reason;
    }
}

} // namespace
