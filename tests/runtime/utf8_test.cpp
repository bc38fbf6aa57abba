#include <algorithm>
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
#include "support/data_file.h"
#include "support/time_texts.h"

namespace {

TEST(Utf8, encodesAndDecodesEachLength) {
    tests::forEachRow("utf8.txt", "sequences", [&](const tests::DataRow& row) {
        const auto value = row.number<unsigned>("value");
        const tests::Octets octets = tests::fromHex(row["sequence"]);
        const std::string text(octets.begin(), octets.end());
        const int count = static_cast<int>(text.size());
        ASSERT_EQ(rtUTF8CharSize(value), text.size());
        const std::unique_ptr<char[]> target(new char[text.size()]);
        EXPECT_EQ(rtUTF8EncodeChar(value, target.get(), text.size()), count);
        EXPECT_EQ(std::string(target.get(), text.size()), text);
        EXPECT_EQ(rtUTF8EncodeChar(value, target.get(), text.size() - 1),
                  value < 0x80 ? 1 : static_cast<int>(ASN1S_BUFFER_OVERFLOW));

        const tests::HeapText source(text);
        std::size_t size = text.size() + 1;
        EXPECT_EQ(rtUTF8DecodeChar(nullptr, source.get(), &size), static_cast<int>(value));
        EXPECT_EQ(size, text.size());
        --size;
        EXPECT_EQ(rtUTF8DecodeChar(nullptr, source.get(), &size), ASN1S_INVALID_UTF8);
        EXPECT_EQ(size, text.size() - 1);
    });
    EXPECT_EQ(rtUTF8CharSize(0xFFFFFFFF), 6u);
    char target[6];
    EXPECT_EQ(rtUTF8EncodeChar(0x80000000, target, 6), ASN1S_INVALID_UTF8);
    std::size_t size = 1;
    EXPECT_EQ(rtUTF8DecodeChar(nullptr, nullptr, &size), ASN1S_INVALID_UTF8);
    EXPECT_EQ(rtUTF8DecodeChar(nullptr, "a", nullptr), ASN1S_INVALID_UTF8);
}

TEST(Utf8, texts) {
    tests::forEachRow("utf8.txt", "texts", [&](const tests::DataRow& row) {
        const tests::HeapText text(row["text"]);
        std::size_t size = row["text"].size();
        EXPECT_EQ(rtUTF8DecodeChar(nullptr, text.get(), &size), row.number("first character"));
        EXPECT_EQ(rtUTF8Len(text.get()), row.number("length"));
        EXPECT_EQ(rtUTF8LenBytes(text.get()), row["text"].size());
        // A block of the exact size: nothing is written behind the last character.
        const int status = row.number("characters");
        const std::vector<unsigned> stored = row.numbers("stored");
        const std::unique_ptr<wchar_t[]> wide(new wchar_t[stored.size() + 1]);
        const std::size_t capacity = stored.size() + (status < 0 ? 1u : 0u);
        EXPECT_EQ(rtUTF8ToWCS(nullptr, text.get(), wide.get(), capacity), status);
        EXPECT_EQ(std::vector<unsigned>(wide.get(), wide.get() + stored.size()), stored);
        EXPECT_EQ(rtUTF8ToWCS(nullptr, text.get(), nullptr, 0), std::min(status, 0));
        if (status > 0) {
            EXPECT_EQ(rtUTF8ToWCS(nullptr, text.get(), wide.get(), capacity - 1),
                      ASN1S_BUFFER_OVERFLOW);
        }
    });
    EXPECT_EQ(rtUTF8LenBytes(nullptr), 0u);
    EXPECT_EQ(rtUTF8Len(nullptr), 0);
}

TEST(Utf8, wideTextToOctets) {
    tests::forEachRow("utf8.txt", "wide texts", [&](const tests::DataRow& row) {
        const std::vector<unsigned> characters = row.numbers("characters");
        const std::wstring text(characters.begin(), characters.end());
        const auto size = row.number<std::size_t>("size");
        const std::unique_ptr<char[]> target(new char[size]);
        EXPECT_EQ(rtWCSToUTF8(nullptr, text.data(), text.size(), target.get(), size),
                  row.number("result"));
        EXPECT_EQ(std::string(target.get(), row["written"].size()), row["written"]);
    });
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

    int next = 0;
    tests::forEachRow("utf8.txt", "character classes", [&](const tests::DataRow& row) {
        for (; next <= row.number("last"); ++next) {
            EXPECT_EQ(int{rtCtypeTable[static_cast<unsigned char>(next)]}, row.number("classes"))
                << next;
        }
    });
    EXPECT_EQ(next, 256);
    EXPECT_EQ(tests::toHex(encoding_byte, 5), "C0 E0 F0 F8 FC");
}

} // namespace
