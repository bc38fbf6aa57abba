#include <brevantis/asn1/runtime/utc_time.h>

#include <gtest/gtest.h>

#include "support/time_class_checks.h"

namespace {

using tests::describe;

TEST(UtcTime, ParsesAndCompiles) {
    tests::checkRows<ASN1CUTCTime>("utc_time.txt");
    const char* none = nullptr;
    EXPECT_EQ(-3, ASN1CUTCTime(none).getYear());
}

TEST(UtcTime, NeedsDateAndTime) {
    tests::checkMissingFields<ASN1CUTCTime>(5);
}

TEST(UtcTime, FailedParseLeavesTheFields) {
    tests::checkFailedParses<ASN1CUTCTime>("200101120000+0100", "utc_time.txt");
}

TEST(UtcTime, UtcFlag) {
    const char* text = "200101010000+0300";
    ASN1CUTCTime time(text);
    EXPECT_EQ(0, time.setUTC(1));
    EXPECT_STREQ("191231220000Z", text);
    EXPECT_EQ(1, time.getHour());
    EXPECT_EQ(0, time.setUTC(0));
    EXPECT_STREQ("200101010000+0300", text);
    EXPECT_EQ(0, time.setDiff(0));
    EXPECT_EQ(0, time.setUTC(1));
    EXPECT_EQ(0, time.setUTC(0));
    EXPECT_EQ(1, time.getUTC()) << "a text without zone is none";

    // Neither "Z" nor an offset: the text is written, yet it is no UTCTime.
    const char* noOffset = "200101120000+0000";
    ASN1CUTCTime zero(noOffset);
    EXPECT_EQ(0, zero.getUTC());
    EXPECT_EQ(ASN1S_INVALID_FORMAT, zero.compileString());
    EXPECT_STREQ("200101120000", noOffset);
}

TEST(UtcTime, SetYearKeepsWhatWasGiven) {

    for (const auto& [year, expected] : {std::pair(24, "240101120000Z"),
                                         {50, "500101120000Z"},
                                         {1950, "500101120000Z"},
                                         {2107, "070101120000Z"},
                                         {0, "000101120000Z"},
                                         {99, "990101120000Z"}}) {
        const char* text = "200101120000Z";
        ASN1CUTCTime time(text);
        EXPECT_EQ(0, time.setYear(year));
        EXPECT_EQ(year, time.getYear());
        EXPECT_STREQ(expected, text);
        EXPECT_EQ(ASN1S_INVALID_FORMAT, time.setYear(-1));
        EXPECT_EQ(year, time.getYear());
    }
    // A year of two digits that goes below 0 in UTC still shows its century's last year.
    const char* text = "000101003000+0100";
    ASN1CUTCTime time(text);
    EXPECT_EQ(0, time.setYear(0));
    EXPECT_EQ(0, time.setUTC(1));
    EXPECT_STREQ("991231233000Z", text);
}

TEST(UtcTime, HasNoFraction) {
    const char* text = "20200101";
    ASN1CUTCTime time(text);
    EXPECT_EQ(0, time.getFraction()) << "nothing is parsed for it";
    EXPECT_EQ(0, time.getCtxtPtr()->errInfo.status);
    EXPECT_EQ(ASN1S_NOT_SUPPORTED, time.setFraction(5));
    EXPECT_EQ(ASN1S_NOT_SUPPORTED, time.getCtxtPtr()->errInfo.status);
}

TEST(UtcTime, ClearTakesMinutesAwayToo) {
    const char* text = "200101120000+0300";
    ASN1CUTCTime time(text);
    time.setDay(2);
    time.clear();
    EXPECT_STREQ("", text);
    EXPECT_EQ("-3--3--3 -3:-3:00 Z", describe(time));
    time.setYear(2020);
    time.setMonth(2);
    time.setDay(29);
    time.setHour(12);
    EXPECT_STREQ("", text);
    time.setMinute(30);
    EXPECT_STREQ("200229123000Z", text);
}

TEST(UtcTime, TakesLocalTime) {
    tests::forEachRow("utc_time.txt", "zones", [&](const tests::DataRow& row) {
        const tests::TimeZone zone(row.text("zone"));
        const auto seconds = row.number<long>("seconds");
        const char* text = nullptr;
        ASN1CUTCTime time(text);
        EXPECT_EQ(0, time.setTime(seconds, 1));
        EXPECT_EQ(row["withOffset"], text);
        EXPECT_EQ(0, time.setTime(seconds, 0));
        EXPECT_EQ(row["local"], text);
        ASN1CUTCTime der(text, 1);
        EXPECT_EQ(0, der.setTime(seconds, 1));
        EXPECT_EQ(row["derWithOffset"], text);
        EXPECT_EQ(0, der.setTime(seconds, 0));
        EXPECT_EQ(row["local"], text);
    });
}

TEST(UtcTime, GeneratedTimesComeBack) {
    const auto times = tests::generateTimes(1950, 2049);
    ASSERT_GT(times.size(), 2000u);
    for (const unsigned char der : tests::derFlags) {
        for (const auto& local : times) {
            const auto& from = der != 0 ? local.inUtc() : local;
            std::string text =
                tests::format("%02d%02d%02d%02d%02d%02d", from.year % 100, from.month, from.day,
                              from.hour, from.minute, from.second);
            const int magnitude = std::abs(from.offset);
            const char sign = from.offset >= 60 ? '+' : '-';
            text += magnitude == 0
                        ? "Z"
                        : tests::format("%c%02d%02d", sign, magnitude / 60, magnitude % 60);
            auto wholeSeconds = local;
            wholeSeconds.tenths = 0;
            ASSERT_NO_FATAL_FAILURE(tests::checkBothWays<ASN1CUTCTime>(text, der, wholeSeconds));
        }
    }
}

TEST(UtcTime, EveryTextEndsInAStatus) {
    tests::checkHostileTexts<ASN1CUTCTime>({"200101120000-0130", "2001011200Z", "991231235959Z"},
                                           [](const char* text, int* year, int* month, int* day) {
                                               return std::sscanf(text, "%2d%2d%2d", year, month,
                                                                  day);
                                           });
}

} // namespace
