#include "name_text.h"

#include <gtest/gtest.h>

#include "support/hex.h"

namespace {

TEST(NameText, ShowsStringsOfEveryType) {
    const struct {
        const char* what;
        const char* element;
        const char* text;
    } rows[] = {
        {"UTF8String", "0C 05 4E C3 A9 74 21", "N\xC3\xA9t!"},
        {"PrintableString", "13 02 43 41", "CA"},
        {"IA5String in segments", "36 08 04 02 61 62 04 02 63 64", "abcd"},
        {"T61String in Latin-1", "14 02 E9 41",
         "\xC3\xA9"
         "A"},
        {"BMPString", "1E 04 00 41 04 1F", "A\xD0\x9F"},
        {"BMPString with a character beyond 16 bits", "1E 04 D8 3D DE 00", "\xF0\x9F\x98\x80"},
        {"UniversalString", "1C 04 00 01 F6 00", "\xF0\x9F\x98\x80"},
        {"empty", "0C 00", ""},
        {"control characters", "0C 05 61 1B 5B 00 0A", "a\\u{001B}[\\u{0000}\\u{000A}"},
        {"C1 control and a turn of direction", "0C 05 C2 9B E2 80 AE", "\\u{009B}\\u{202E}"},
        {"backslash", "0C 02 5C 6E", "\\\\n"},
        {"no UTF-8", "0C 03 41 FF C3", "A\\xFF\\xC3"},
        {"overlong control character", "0C 02 C0 8A", "\\u{000A}"},
        {"half of a pair", "1E 02 D8 3D", "\\u{D83D}"},
        {"value beyond Unicode", "1C 04 FF FF FF FF", "\\u{FFFFFFFF}"},
        {"no string", "02 01 05", "-"},
        {"cut short", "0C 05 41", "-"},
        {"nothing", "", "-"},
    };
    for (const auto& row : rows) {
        const tests::Octets element = tests::fromHex(row.element);
        EXPECT_EQ(displayText(element.data(), static_cast<unsigned>(element.size())), row.text)
            << row.what;
    }
}

} // namespace
