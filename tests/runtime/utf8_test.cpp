#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <brevantis/asn1/runtime/character_classes.h>
#include <brevantis/asn1/runtime/status.h>
#include <brevantis/asn1/runtime/utf8.h>

#include "support/coding.h"
#include "support/counting_allocator.h"

namespace {

/// A text in a block of its exact size, so that a sanitizer sees a read past its terminator.
std::unique_ptr<char[]> exact(const std::string& text) {
    std::unique_ptr<char[]> block(new char[text.size() + 1]);
    std::memcpy(block.get(), text.c_str(), text.size() + 1);
    return block;
}

TEST(Utf8, encodesAndDecodesEachLength) {
    struct Row {
        unsigned int value;
        const char* sequence;
    };
    const Row rows[] = {
        {0x00, "00"},
        {0x7F, "7f"},
        {0x80, "c280"},
        {0x7FF, "dfbf"},
        {0x800, "e0a080"},
        {0xD800, "eda080"}, // a surrogate passes
        {0xFFFF, "efbfbf"},
        {0x10000, "f0908080"},
        {0x1FFFFF, "f7bfbfbf"},
        {0x200000, "f888808080"},
        {0x3FFFFFF, "fbbfbfbfbf"},
        {0x4000000, "fc8480808080"},
        {0x7FFFFFFF, "fdbfbfbfbfbf"},
    };
    for (const Row& row : rows) {
        const tests::Octets expected = tests::fromHex(row.sequence);
        const std::string text(expected.begin(), expected.end());
        ASSERT_EQ(rtUTF8CharSize(row.value), expected.size());
        const std::unique_ptr<char[]> target(new char[expected.size()]);
        EXPECT_EQ(rtUTF8EncodeChar(row.value, target.get(), expected.size()),
                  static_cast<int>(expected.size()));
        EXPECT_EQ(std::string(target.get(), expected.size()), text);
        EXPECT_EQ(rtUTF8EncodeChar(row.value, target.get(), expected.size() - 1),
                  row.value < 0x80 ? 1 : static_cast<int>(ASN1S_BUFFER_OVERFLOW));

        const std::unique_ptr<char[]> source = exact(text);
        std::size_t size = expected.size() + 1;
        EXPECT_EQ(rtUTF8DecodeChar(nullptr, source.get(), &size), static_cast<int>(row.value));
        EXPECT_EQ(size, expected.size());
        --size;
        EXPECT_EQ(rtUTF8DecodeChar(nullptr, source.get(), &size), ASN1S_INVALID_UTF8);
        EXPECT_EQ(size, expected.size() - 1);
    }
    EXPECT_EQ(rtUTF8CharSize(0xFFFFFFFF), 6u);
    char target[6];
    EXPECT_EQ(rtUTF8EncodeChar(0x80000000, target, 6), ASN1S_INVALID_UTF8);
    std::size_t size = 1;
    EXPECT_EQ(rtUTF8DecodeChar(nullptr, nullptr, &size), ASN1S_INVALID_UTF8);
    EXPECT_EQ(rtUTF8DecodeChar(nullptr, "a", nullptr), ASN1S_INVALID_UTF8);
}

TEST(Utf8, texts) {
    constexpr int Bad = ASN1S_INVALID_UTF8;
    struct Row {
        std::string text;
        int decoded; ///< rtUTF8DecodeChar of the whole text
        int length;  ///< rtUTF8Len
        int wide;    ///< rtUTF8ToWCS
        std::wstring stored;
        const char* reason;
    };
    const Row rows[] = {
        {"", Bad, 0, 0, L"", "nothing"},
        {"a\xC3\xA9\xE2\x82\xAC", 'a', 3, 3, L"a\u00E9\u20AC", "three lengths"},
        {"\xF0\x9F\x98\x80", 0x1F600, 1, 1, L"\U0001F600", "four octets"},
        {"\xC0\x80", 0, 1, 1, std::wstring(1, L'\0'), "an overlong form"},
        {"ab\xC3", 'a', 3, 3, L"ab\x03", "a last lead octet"},
        {"\xE2\x82", Bad, 1, 1, L"\x82", "a sequence that the terminator cuts off"},
        {"\xFD\xBF", Bad, 1, 1, std::wstring(1, wchar_t{0x7F}), "one of six octets, cut off"},
        {"a\xC3z", 'a', 2, Bad, L"a", "a bad continuation octet"},
        {"\xE2\x82z", Bad, 1, Bad, L"", "another one"},
        {"a\x80", 'a', Bad, Bad, L"a", "a continuation octet cannot lead"},
        {"\xFE\x80", Bad, Bad, Bad, L"", "nor can 0xFE"},
        {"\xFF", Bad, Bad, Bad, L"", "nor 0xFF"},
    };
    for (const Row& row : rows) {
        const std::unique_ptr<char[]> text = exact(row.text);
        std::size_t size = row.text.size();
        EXPECT_EQ(rtUTF8DecodeChar(nullptr, text.get(), &size), row.decoded) << row.reason;
        EXPECT_EQ(rtUTF8Len(text.get()), row.length) << row.reason;
        EXPECT_EQ(rtUTF8LenBytes(text.get()), row.text.size()) << row.reason;
        // A block of the exact size: nothing is written behind the last character.
        const std::unique_ptr<wchar_t[]> wide(new wchar_t[row.stored.size() + 1]);
        const std::size_t capacity = row.stored.size() + (row.wide < 0 ? 1u : 0u);
        EXPECT_EQ(rtUTF8ToWCS(nullptr, text.get(), wide.get(), capacity), row.wide) << row.reason;
        EXPECT_EQ(std::wstring(wide.get(), row.stored.size()), row.stored) << row.reason;
        EXPECT_EQ(rtUTF8ToWCS(nullptr, text.get(), nullptr, 0), row.wide < 0 ? Bad : 0)
            << row.reason;
        if (row.wide > 0) {
            EXPECT_EQ(rtUTF8ToWCS(nullptr, text.get(), wide.get(), capacity - 1),
                      ASN1S_BUFFER_OVERFLOW);
        }
    }
    EXPECT_EQ(rtUTF8LenBytes(nullptr), 0u);
    EXPECT_EQ(rtUTF8Len(nullptr), 0);
}

TEST(Utf8, wideTextToOctets) {
    struct Row {
        std::wstring text;
        std::size_t size;
        int result;
        std::string written;
        const char* reason;
    };
    const Row rows[] = {
        {L"", 0, 0, "", "nothing to write"},
        {L"ab", 2, 2, "ab", "a single octet may be the last"},
        {L"ab", 1, -1, "a", "too small"},
        {L"\u00E9", 2, -1, "", "a longer sequence may not be the last"},
        {L"\u00E9", 3, 2, "\xC3\xA9", "an octet is left behind it"},
        {L"\u00E9z", 3, 3, "\xC3\xA9z", "which the next character may take"},
        {L"a\U0001F600", 6, 5, "a\xF0\x9F\x98\x80", "four octets"},
        {std::wstring(L"a") + static_cast<wchar_t>(-1), 9, -26, "a", "a negative character"},
        {std::wstring(1, wchar_t{0x7FFFFFFF}), 7, 6, "\xFD\xBF\xBF\xBF\xBF\xBF", "the greatest"},
    };
    for (const Row& row : rows) {
        const std::unique_ptr<char[]> target(new char[row.size]);
        EXPECT_EQ(rtWCSToUTF8(nullptr, row.text.data(), row.text.size(), target.get(), row.size),
                  row.result)
            << row.reason;
        EXPECT_EQ(std::string(target.get(), row.written.size()), row.written) << row.reason;
    }
}

TEST(Utf8, duplicatesOnTheHeap) {
    tests::CountingAllocator allocator;
    tests::Context context;
    EXPECT_STREQ(rtUTF8Strdup(context, "a\xC3\xA9"), "a\xC3\xA9");
    EXPECT_STREQ(rtUTF8Strdup(context, ""), "");
    EXPECT_EQ(rtUTF8Strdup(context, nullptr), nullptr);
    allocator.failAfter(0);
    EXPECT_EQ(rtUTF8Strdup(context, "a"), nullptr);
}

TEST(CharacterClasses, tableHoldsEveryRange) {
    struct Row {
        int first;
        int last;
        int classes;
    };
    const Row rows[] = {
        {0, 8, 0x20},    {9, 13, 0x28},    {14, 31, 0x20},   {32, 32, 0x88},   {33, 47, 0x10},
        {48, 57, 0x04},  {58, 64, 0x10},   {65, 70, 0x41},   {71, 90, 0x01},   {91, 96, 0x10},
        {97, 102, 0x42}, {103, 122, 0x02}, {123, 126, 0x10}, {127, 127, 0x20}, {128, 255, 0x00},
    };
    int next = 0;
    for (const Row& row : rows) {
        for (; next <= row.last; ++next) {
            EXPECT_EQ(int{rtCtypeTable[static_cast<unsigned char>(next)]}, row.classes) << next;
        }
    }
    EXPECT_EQ(next, 256);
    EXPECT_EQ(tests::toHex(encoding_byte, 5), "C0 E0 F0 F8 FC");
}

} // namespace
