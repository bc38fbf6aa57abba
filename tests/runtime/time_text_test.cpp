#include <brevantis/asn1/runtime/time_text.h>

#include <climits>

#include <gtest/gtest.h>

#include "support/coding.h"
#include "support/counting_allocator.h"
#include "support/time_texts.h"

namespace {

using Parser = int (*)(ASN1CTXT*, const char*, ASN1TimeFields*) noexcept;

/// Fields as "2020-02-29 12:00:00 f5 -01-30 Z"; fraction, offset and "Z" only where they are.
std::string describe(const ASN1TimeFields& fields) {
    std::string text = tests::format("%d-%02d-%02d %02d:%02d:%02d", fields.year, fields.month,
                                     fields.day, fields.hour, fields.minute, fields.second);
    if (fields.fraction[0] != '\0') {
        text += std::string(" f") + fields.fraction;
    }
    if (fields.diffHour != 0 || fields.diffMinute != 0) {
        text += tests::format(" %d:%d", fields.diffHour, fields.diffMinute);
    }
    return text + (fields.utc == 1 ? " Z" : "");
}

struct ParseRow {
    Parser parse;
    const char* text;
    const char* fields; ///< empty: refused with -31
};

const ParseRow parseRows[] = {
    {rtParseUTCTime, "491231235959Z", "2049-12-31 23:59:59 Z"},
    {rtParseUTCTime, "500101000000Z", "1950-01-01 00:00:00 Z"},
    {rtParseUTCTime, "2002291200Z", "2020-02-29 12:00:00 Z"},
    {rtParseUTCTime, "1902291200Z", ""},
    {rtParseUTCTime, "0002291200Z", "2000-02-29 12:00:00 Z"},
    {rtParseUTCTime, "2001011200+0130", "2020-01-01 12:00:00 1:30"},
    {rtParseUTCTime, "200101120000-1259", "2020-01-01 12:00:00 -12:-59"},
    {rtParseUTCTime, "200101120000-0030junk", "2020-01-01 12:00:00 0:-30"},
    {rtParseUTCTime, "20 1+1120000Z", "2020-01-01 12:00:00 Z"},
    {rtParseUTCTime, "200101120000+1300", ""},
    {rtParseUTCTime, "200101120000+0160", ""},
    {rtParseUTCTime, "200101120000+01", ""},
    {rtParseUTCTime, "200101120000", ""},
    {rtParseUTCTime, "20010112000", ""},
    {rtParseUTCTime, "2001011200ZZ", ""},
    {rtParseUTCTime, "20010112Z", ""},
    {rtParseUTCTime, "200101120000.5Z", ""},
    {rtParseUTCTime, "200101240000Z", ""},
    {rtParseUTCTime, "200101126000Z", ""},
    {rtParseUTCTime, "200101120060Z", ""},
    {rtParseUTCTime, "200001120000Z", ""},
    {rtParseUTCTime, "201301120000Z", ""},
    {rtParseUTCTime, "200432120000Z", ""},
    {rtParseUTCTime, "-10101120000Z", ""},
    {rtParseGeneralizedTime, "2020010112", "2020-01-01 12:00:00"},
    {rtParseGeneralizedTime, "202001011230Z", "2020-01-01 12:30:00 Z"},
    {rtParseGeneralizedTime, "2020010112,5Z", ""},
    {rtParseGeneralizedTime, "202001011230.5Z", ""},
    {rtParseGeneralizedTime, "20200101120000.500Z", "2020-01-01 12:00:00 f500 Z"},
    {rtParseGeneralizedTime, "20200101120000,050Z", "2020-01-01 12:00:00 f50 Z"},
    {rtParseGeneralizedTime, "20200101120000.000Z", "2020-01-01 12:00:00 Z"},
    {rtParseGeneralizedTime, "20200101120000.Z", ""},
    {rtParseGeneralizedTime, "20200101120000.12345678901234567890Z",
     "2020-01-01 12:00:00 f12345678901234567890 Z"},
    {rtParseGeneralizedTime, "20200101120000.00123456789012345678901Z",
     "2020-01-01 12:00:00 f12345678901234567890"},
    {rtParseGeneralizedTime, "20200101120000#", "2020-01-01 12:00:00"},
    {rtParseGeneralizedTime, "20200101120000-01", "2020-01-01 12:00:00 -1:0"},
    {rtParseGeneralizedTime, "20200101120000.5-0130", "2020-01-01 12:00:00 f5 -1:-30"},
    {rtParseGeneralizedTime, "2020010112+", ""},
    {rtParseGeneralizedTime, "2020010112+13", ""},
    {rtParseGeneralizedTime, "2020010112+0060", ""},
    {rtParseGeneralizedTime, "2020010112Z ", ""},
    {rtParseGeneralizedTime, "20200101", ""},
    {rtParseGeneralizedTime, "2020010124", ""},
    {rtParseGeneralizedTime, "19000229120000Z", ""},
    {rtParseGeneralizedTime, "20000229120000Z", "2000-02-29 12:00:00 Z"},
    {rtParseGeneralizedTime, "00000229120000Z", "0-02-29 12:00:00 Z"},
    {rtParseGeneralizedTime, "-0010101120000Z", ""},
};

TEST(TimeText, Parses) {
    for (const ParseRow& row : parseRows) {
        SCOPED_TRACE(row.text);
        tests::Context ctxt;
        const tests::HeapText text(row.text);
        ASN1TimeFields fields{};
        fields.year = 7;
        const int status = row.parse(ctxt, text.get(), &fields);
        EXPECT_EQ(row.fields[0] != '\0' ? 0 : ASN1S_INVALID_FORMAT, status);
        EXPECT_EQ(status, ctxt->errInfo.status);
        EXPECT_EQ(status, row.parse(nullptr, text.get(), &fields));
        if (status == 0) {
            EXPECT_EQ(row.fields, describe(fields));
        } else {
            EXPECT_EQ(7, fields.year);
        }
    }
}

struct MakeRow {
    ASN1TimeFields fields;
    const char* text; ///< empty: refused with -31
};

const MakeRow makeRows[] = {
    {{2020, 1, 2, 3, 4, 5, 0, 0, "", 0}, "20200102030405"},
    {{0, 2, 29, 0, 0, 0, 0, 0, "", 1}, "00000229000000Z"},
    {{9999, 12, 31, 23, 59, 59, 12, 59, "12345678901234567890", 0},
     "99991231235959.12345678901234567890+1259"},
    {{2020, 1, 1, 0, 0, 0, 0, 30, "", 0}, "20200101000000+0030"},
    {{2020, 1, 1, 0, 0, 0, 0, -30, "", 0}, "20200101000000-0030"},
    {{2020, 1, 1, 0, 0, 0, -1, -30, "", 0}, "20200101000000-0130"},
    {{2020, 1, 1, 0, 0, 0, 1, -30, "", 0}, "20200101000000-0130"},
    {{2020, 1, 1, 0, 0, 0, 5, 0, "05", 1}, "20200101000000.05Z"},
    {{10000, 1, 1, 0, 0, 0, 0, 0, "", 1}, ""},
    {{-1, 1, 1, 0, 0, 0, 0, 0, "", 1}, ""},
    {{2020, 13, 1, 0, 0, 0, 0, 0, "", 1}, ""},
    {{2020, 0, 1, 0, 0, 0, 0, 0, "", 1}, ""},
    {{2019, 2, 29, 0, 0, 0, 0, 0, "", 1}, ""},
    {{2020, 4, 31, 0, 0, 0, 0, 0, "", 1}, ""},
    {{2020, 1, 1, 24, 0, 0, 0, 0, "", 1}, ""},
    {{2020, 1, 1, 0, 60, 0, 0, 0, "", 1}, ""},
    {{2020, 1, 1, 0, 0, 60, 0, 0, "", 1}, ""},
    {{2020, 1, 1, 0, 0, -1, 0, 0, "", 1}, ""},
    {{2020, 1, 1, 0, 0, 0, 13, 0, "", 0}, ""},
    {{2020, 1, 1, 0, 0, 0, -13, 0, "", 0}, ""},
    {{2020, 1, 1, 0, 0, 0, 0, -60, "", 0}, ""},
};

TEST(TimeText, Makes) {
    for (const MakeRow& row : makeRows) {
        const std::string expected = row.text;
        SCOPED_TRACE(expected + " from " + describe(row.fields));
        tests::Context ctxt;
        char* text = nullptr;
        const int status = rtMakeGeneralizedTime(ctxt, &row.fields, &text, 0);
        EXPECT_EQ(expected.empty() ? ASN1S_INVALID_FORMAT : 0, status);
        EXPECT_EQ(status, ctxt->errInfo.status);
        if (status != 0) {
            continue;
        }
        EXPECT_EQ(expected, text);
        // The buffer needs room for the terminator, and is not written when it is short of that.
        const int length = static_cast<int>(expected.size());
        const std::unique_ptr<char[]> buffer(new char[expected.size() + 1]);
        char* target = buffer.get();
        target[0] = '#';
        EXPECT_EQ(ASN1S_STRING_OVERFLOW, rtMakeGeneralizedTime(ctxt, &row.fields, &target, length));
        EXPECT_EQ(ASN1S_STRING_OVERFLOW, rtMakeGeneralizedTime(ctxt, &row.fields, &target, -1));
        EXPECT_EQ('#', target[0]);
        EXPECT_EQ(0, rtMakeGeneralizedTime(nullptr, &row.fields, &target, length + 1));
        EXPECT_EQ(expected, target);
    }
}

TEST(TimeText, RefusesWhatIsNotThere) {
    tests::Context ctxt;
    ASN1TimeFields fields = makeRows[0].fields;
    char* text = nullptr;
    EXPECT_EQ(ASN1S_INVALID_PARAMETER, rtParseUTCTime(ctxt, nullptr, &fields));
    EXPECT_EQ(ASN1S_INVALID_PARAMETER, rtParseGeneralizedTime(ctxt, "2020010112", nullptr));
    EXPECT_EQ(ASN1S_INVALID_PARAMETER, rtMakeGeneralizedTime(nullptr, &fields, &text, 0));
    EXPECT_EQ(ASN1S_INVALID_PARAMETER, rtMakeGeneralizedTime(ctxt, &fields, &text, 40));
    std::memset(fields.fraction, '1', sizeof fields.fraction);
    EXPECT_EQ(ASN1S_INVALID_FORMAT, rtMakeGeneralizedTime(ctxt, &fields, &text, 0));
}

TEST(TimeText, ReportsThatMemoryIsOut) {
    tests::CountingAllocator allocator;
    {
        tests::Context ctxt;
        char* text = nullptr;
        allocator.failAfter(0);
        EXPECT_EQ(ASN1S_NO_MEMORY, rtMakeGeneralizedTime(ctxt, &makeRows[0].fields, &text, 0));
        EXPECT_EQ(ASN1S_NO_MEMORY, ctxt->errInfo.status);
        EXPECT_EQ(nullptr, text);
        allocator.neverFail();
    }
    EXPECT_EQ(0, allocator.live());
}

TEST(TimeText, GeneratedTimesComeBack) {
    const auto times = tests::generateTimes(1890, 2110);
    ASSERT_GT(times.size(), 5000u);
    for (const auto& time : times) {
        const int magnitude = std::abs(time.offset);
        std::string expected = tests::format("%04d%02d%02d%02d%02d%02d", time.year, time.month,
                                             time.day, time.hour, time.minute, time.second);
        const std::string beforeZone = expected;
        expected += time.tenths != 0 ? tests::format(".%d", time.tenths) : "";
        const std::string zone = tests::format("%c%02d%02d", time.offset < 0 ? '-' : '+',
                                               magnitude / 60, magnitude % 60);
        expected += time.offset != 0 ? zone : "Z";
        ASN1TimeFields fields{};
        ASSERT_EQ(0, rtParseGeneralizedTime(nullptr, expected.c_str(), &fields)) << expected;
        ASSERT_EQ(time.offset, fields.diffHour * 60 + fields.diffMinute) << expected;
        char buffer[48];
        char* text = buffer;
        ASSERT_EQ(0, rtMakeGeneralizedTime(nullptr, &fields, &text, sizeof buffer));
        ASSERT_EQ(expected, text);
        if (time.year >= 1950 && time.year < 2050) {
            const std::string utcText = beforeZone.substr(2) + zone;
            ASN1TimeFields utcFields{};
            ASSERT_EQ(0, rtParseUTCTime(nullptr, utcText.c_str(), &utcFields)) << utcText;
            fields.fraction[0] = '\0';
            fields.utc = 0;
            ASSERT_EQ(describe(fields), describe(utcFields)) << utcText;
        }
    }
}

TEST(TimeText, EveryTextEndsInAStatus) {
    const auto texts = tests::hostileTexts(
        {"200101120000Z", "2001011200+0130", "20200101120000.123-0130", "2020010112Z"});
    for (const std::string& hostile : texts) {
        const tests::HeapText text(hostile);
        for (const bool utc : {true, false}) {
            ASN1TimeFields fields{};
            const int status =
                (utc ? rtParseUTCTime : rtParseGeneralizedTime)(nullptr, text.get(), &fields);
            ASSERT_TRUE(status == 0 || status == ASN1S_INVALID_FORMAT);
            // The C library reads the date in the same way.
            int year = -1, month = -1, day = -1;
            const int converted =
                std::sscanf(text.get(), utc ? "%2d%2d%2d" : "%4d%2d%2d", &year, &month, &day);
            if (status == 0) {
                ASSERT_EQ(3, converted) << hostile;
                ASSERT_EQ(year, utc ? fields.year % 100 : fields.year) << hostile;
                ASSERT_EQ(month, fields.month) << hostile;
                ASSERT_EQ(day, fields.day) << hostile;
                // What was taken can be written.
                char buffer[48];
                char* made = buffer;
                ASSERT_EQ(0, rtMakeGeneralizedTime(nullptr, &fields, &made, sizeof buffer));
            }
        }
    }
}

} // namespace
