#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <brevantis/asn1/runtime/wide_text.h>

#include "support/coding.h"
#include "support/counting_allocator.h"
#include "support/data_file.h"

namespace {

using Characters = std::vector<unsigned int>;

Characters charactersOf(const Asn132BitCharString& text) {
    return Characters(text.data, text.data + text.nchars);
}

TEST(WideText, narrowTextAndAlphabets) {
    tests::Context context;
    tests::forEachRow("wide_text.txt", "alphabets", [&](const tests::DataRow& row) {
        const std::string& text = row["text"];
        const Characters listed = row.numbers("listed");
        const Asn132BitCharSet alphabet{
            static_cast<unsigned>(listed.size()), listed.empty() ? nullptr : listed.data(),
            row.number<unsigned>("first"), row.number<unsigned>("last")};
        const Characters expected = row.numbers("characters");
        Asn132BitCharString target{9, nullptr};
        EXPECT_EQ(rtCToUCSString(context, text.c_str(), &target, &alphabet), &target);
        EXPECT_EQ(charactersOf(target), expected);
        if (text.find('\xE9') == std::string::npos) {
            const std::wstring wide(text.begin(), text.end());
            EXPECT_EQ(rtWCSToUCSString(context, wide.c_str(), &target, &alphabet), &target);
            EXPECT_EQ(charactersOf(target), expected);
        }
    });
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
    tests::forEachRow("wide_text.txt", "platform texts", [&](const tests::DataRow& row) {
        Characters data = row.numbers("characters");
        const Characters written = row.numbers("written");
        const auto capacity = row.number<std::size_t>("capacity");
        const Asn132BitCharString source{static_cast<unsigned int>(data.size()), data.data()};
        const std::unique_ptr<wchar_t[]> target(new wchar_t[capacity]);
        EXPECT_EQ(rtUCSToWCSString(&source, target.get(), capacity), target.get());
        EXPECT_EQ(Characters(target.get(), target.get() + written.size()), written);
    });
}

} // namespace
