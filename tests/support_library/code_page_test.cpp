#include <cstddef>
#include <sstream>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include <brevantis/support/code_page.h>

namespace {

std::wstring widen(const std::string& text) {
    const int size = static_cast<int>(text.length());
    const int count = MultiByteToWideChar(0, 0, text.data(), size, nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(count), L'#');
    EXPECT_EQ(MultiByteToWideChar(65001, 0, text.data(), size, wide.data(), count), count);
    return wide;
}

std::string narrow(const std::wstring& text, const char* defaultChar, int& used) {
    const int size = static_cast<int>(text.length());
    const int count =
        WideCharToMultiByte(0, 0, text.data(), size, nullptr, 0, defaultChar, nullptr);
    std::string octets(static_cast<std::size_t>(count), '#');
    EXPECT_EQ(
        WideCharToMultiByte(65001, 0, text.data(), size, octets.data(), count, defaultChar, &used),
        count);
    return octets;
}

unsigned long takeLastError() {
    const unsigned long error = GetLastError();
    SetLastError(0);
    return error;
}

TEST(CodePage, roundTrips) {
    // The first and last character of each length, and around the surrogates.
    const std::wstring wide(L"\0\x7F\x80\x7FF\x800\xD7FF\xE000\xFFFF\x10000\x10FFFF", 10);
    const std::string octets("\0\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80"
                             "\xEF\xBF\xBF\xF0\x90\x80\x80\xF4\x8F\xBF\xBF",
                             26);
    int used = 7;
    EXPECT_EQ(narrow(wide, nullptr, used), octets);
    EXPECT_EQ(used, 0);
    EXPECT_EQ(widen(octets), wide);
}

TEST(CodePage, replacesOctetsThatAreNotUtf8) {
    // Each octet of these is replaced for itself: no lead; overlong; a surrogate and what is above
    // U+10FFFF; five octets; cut off.
    std::istringstream malformed(
        "\x80 \xBF \xFF \xC1\xBF \xE0\x9F\xBF \xF0\x8F\xBF\xBF "
        "\xED\xA0\x80 \xF4\x90\x80\x80 \xF9\x88\x80\x80\x80 \xE2\x82 \xC3");
    for (std::string octets; malformed >> octets;) {
        const std::wstring replaced(octets.length(), L'\uFFFD');
        EXPECT_EQ(widen(octets), replaced);
        EXPECT_EQ(widen(octets + "\xC3\xA9"), replaced + L'\u00E9');
    }
}

TEST(CodePage, replacesCharactersThatUtf8CannotHold) {
    for (const wchar_t bad : {0xD800, 0xDFFF, 0x110000, -1}) {
        int used = 0;
        EXPECT_EQ(narrow({L'a', bad, L'\u00E9'}, nullptr, used), "a?\xC3\xA9") << bad;
        EXPECT_EQ(used, 1);
        EXPECT_EQ(narrow({bad, bad}, "_", used), "__") << bad;
    }
}

TEST(CodePage, countsTheTerminatorOfATerminatedText) {
    wchar_t wide[4] = {L'#', L'#', L'#', L'#'};
    EXPECT_EQ(MultiByteToWideChar(0, 0, "\xC3\xA9z", -1, wide, 4), 3);
    EXPECT_EQ(std::wstring(wide, 4), std::wstring(L"\u00E9z\0#", 4));
    char octets[5] = {'#', '#', '#', '#', '#'};
    EXPECT_EQ(WideCharToMultiByte(0, 0, L"\u00E9z", -1, octets, 5, nullptr, nullptr), 4);
    EXPECT_EQ(std::string(octets, 5), std::string("\xC3\xA9z\0#", 5));
    EXPECT_EQ(MultiByteToWideChar(0, 0, "", -1, nullptr, 0), 1);
}

TEST(CodePage, refusesWithTheReason) {
    struct Row {
        const char* reason;
        unsigned codePage;
        unsigned flags;
        int size;
        int targetSize;
        unsigned long error;
    };
    const Row rows[] = {
        {"another code page", 1251, 0, -1, 3, ERROR_INVALID_PARAMETER},
        {"a flag", 0, 8, -1, 3, ERROR_INVALID_PARAMETER},
        {"no characters", 0, 0, 0, 3, ERROR_INVALID_PARAMETER},
        {"negative size", 0, 0, -2, 3, ERROR_INVALID_PARAMETER},
        {"negative target size", 0, 0, -1, -1, ERROR_INVALID_PARAMETER},
        {"no room for the terminator", 0, 0, -1, 2, ERROR_INSUFFICIENT_BUFFER},
        {"no room for a character", 0, 0, 2, 1, ERROR_INSUFFICIENT_BUFFER},
    };
    for (const Row& row : rows) {
        wchar_t wide[] = L"##";
        EXPECT_EQ(
            MultiByteToWideChar(row.codePage, row.flags, "ab", row.size, wide, row.targetSize), 0);
        EXPECT_EQ(takeLastError(), row.error) << row.reason;
        char octets[] = "##";
        int used = 7;
        EXPECT_EQ(WideCharToMultiByte(row.codePage, row.flags, L"ab", row.size, octets,
                                      row.targetSize, nullptr, &used),
                  0);
        EXPECT_EQ(takeLastError(), row.error) << row.reason;
        EXPECT_TRUE(wide == std::wstring(L"##") && octets == std::string("##") && used == 7)
            << row.reason;
    }
    // Null pointers, a replacement that is not ASCII.
    wchar_t wide[4] = L"abc";
    EXPECT_EQ(MultiByteToWideChar(0, 0, nullptr, -1, wide, 4), 0);
    EXPECT_EQ(MultiByteToWideChar(0, 0, "abc", -1, nullptr, 4), 0);
    EXPECT_EQ(WideCharToMultiByte(0, 0, nullptr, -1, nullptr, 0, nullptr, nullptr), 0);
    EXPECT_EQ(WideCharToMultiByte(0, 0, wide, -1, nullptr, 4, nullptr, nullptr), 0);
    EXPECT_EQ(WideCharToMultiByte(0, 0, wide, -1, nullptr, 0, "\xE9", nullptr), 0);
    EXPECT_EQ(takeLastError(), ERROR_INVALID_PARAMETER);
}

TEST(CodePage, keepsTheErrorOfEachThread) {
    SetLastError(5);
    unsigned long other = 1;
    std::thread([&] {
        other = GetLastError();
        SetLastError(6);
    }).join();
    EXPECT_EQ(other, 0u);
    EXPECT_EQ(MultiByteToWideChar(0, 0, "a", -1, nullptr, 0), 2);
    EXPECT_EQ(GetLastError(), 5u) << "success leaves it";
}

} // namespace
