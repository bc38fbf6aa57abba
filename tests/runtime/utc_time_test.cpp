#include <brevantis/asn1/runtime/utc_time.h>

#include <gtest/gtest.h>

#include "support/time_class_checks.h"

namespace {

using tests::describe;

const tests::TimeRow rows[] = {
    {"491231235959Z", 0, "2049-12-31 23:59:59 Z", "491231235959Z"},
    {"500101000000Z", 1, "1950-01-01 00:00:00 Z", "500101000000Z"},
    {"2002291200Z", 0, "2020-02-29 12:00:00 Z", "200229120000Z"},
    {"1902291200Z", 0, "", ""},
    {"0002291200Z", 0, "2000-02-29 12:00:00 Z", "000229120000Z"},
    {"200101120000+0300", 0, "2020-01-01 12:00:00 3:0", "200101120000+0300"},
    {"200101120000-0130", 0, "2020-01-01 12:00:00 -1:-30", "200101120000-0130"},
    {"2001011200+0030", 0, "2020-01-01 12:00:00 0:30", "200101120000-0030"},
    {"200101120000+0300", 1, "", ""},
    {"200101120000", 1, "", ""},
    {"200101120000", 0, "", ""},
    {"20010112Z", 0, "", ""},
    {"20010112 0Z", 0, "", ""},
    {"20010112001", 0, "", ""},
    {"200101120000+03", 0, "", ""},
    {"200101120000+1300", 0, "", ""},
    {"200101120000+0060", 0, "", ""},
    {"200101120000ZZ", 0, "", ""},
    {"200101120000.5Z", 0, "", ""},
    {"200101240000Z", 0, "", ""},
    {"200101126000Z", 0, "", ""},
    {"200101120060Z", 0, "", ""},
    {"200001120000Z", 0, "", ""},
    {"201301120000Z", 0, "", ""},
    {"-10101120000Z", 0, "", ""},
    {"abc", 0, "-3--3--3 -3:-3:00 Z", ""},
    {"2001", 1, "-3--3--3 -3:-3:00 Z", ""},
};

TEST(UtcTime, ParsesAndCompiles) {
    tests::checkRows<ASN1CUTCTime>(rows);
    const char* none = nullptr;
    EXPECT_EQ(-3, ASN1CUTCTime(none).getYear());
}

TEST(UtcTime, NeedsDateAndTime) {
    tests::checkMissingFields<ASN1CUTCTime>(5);
}

TEST(UtcTime, FailedParseLeavesTheFields) {
    tests::checkFailedParses<ASN1CUTCTime>("200101120000+0100", rows);
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
    struct {
        int year;
        const char* text;
    } const years[] = {{24, "240101120000Z"},   {50, "500101120000Z"}, {1950, "500101120000Z"},
                       {2107, "070101120000Z"}, {0, "000101120000Z"},  {99, "990101120000Z"}};
    for (const auto& row : years) {
        const char* text = "200101120000Z";
        ASN1CUTCTime time(text);
        EXPECT_EQ(0, time.setYear(row.year));
        EXPECT_EQ(row.year, time.getYear());
        EXPECT_STREQ(row.text, text);
        EXPECT_EQ(ASN1S_INVALID_FORMAT, time.setYear(-1));
        EXPECT_EQ(row.year, time.getYear());
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

struct ZoneRow {
    const char* zone;
    long seconds;
    const char* local;         ///< without an offset
    const char* withOffset;    ///< with one
    const char* derWithOffset; ///< with one under DER
};

// 2020-07-01 and 2020-01-01, 12:00 UTC.
const ZoneRow zoneRows[] = {
    {"UTC0", 1593604800, "200701120000Z", "200701120000", "200701120000Z"},
    {"CET-1CEST,M3.5.0,M10.5.0/3", 1593604800, "200701140000Z", "200701140000+0200",
     "200701120000Z"},
    {"EST5EDT,M3.2.0,M11.1.0", 1577880000, "200101070000Z", "200101070000-0500", "200101120000Z"},
    // Minutes of a zone's offset are lost, its seconds take their place.
    {"IST-5:30", 1593604800, "200701173000Z", "200701173000+0500", "200701123000Z"},
    {"XST-0:20:30", 1593604800, "200701122030Z", "200701122030-0030", "200701115030Z"},
};

TEST(UtcTime, TakesLocalTime) {
    for (const ZoneRow& row : zoneRows) {
        SCOPED_TRACE(row.zone);
        const tests::TimeZone zone(row.zone);
        const char* text = nullptr;
        ASN1CUTCTime time(text);
        EXPECT_EQ(0, time.setTime(row.seconds, 1));
        EXPECT_STREQ(row.withOffset, text);
        EXPECT_EQ(0, time.setTime(row.seconds, 0));
        EXPECT_STREQ(row.local, text);
        ASN1CUTCTime der(text, 1);
        EXPECT_EQ(0, der.setTime(row.seconds, 1));
        EXPECT_STREQ(row.derWithOffset, text);
        EXPECT_EQ(0, der.setTime(row.seconds, 0));
        EXPECT_STREQ(row.local, text);
    }
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
