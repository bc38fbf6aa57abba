#include <brevantis/asn1/runtime/generalized_time.h>

#include <gtest/gtest.h>

#include "support/time_class_checks.h"

namespace {

using tests::describe;

const tests::TimeRow rows[] = {
    {"20200101120000Z", 0, "2020-01-01 12:00:00 Z", "2020010112Z"},
    {"20200101120000Z", 1, "2020-01-01 12:00:00 Z", "20200101120000Z"},
    {"20200101120000.5Z", 0, "2020-01-01 12:00:00 f5 Z", "20200101120000.5Z"},
    {"20200101120000.5Z", 1, "2020-01-01 12:00:00 f5 Z", "20200101120000.5Z"},
    {"20200101120000,5Z", 0, "2020-01-01 12:00:00 f5 Z", "20200101120000.5Z"},
    {"20200101120000,5Z", 1, "", ""},
    {"20200101120000.0Z", 0, "2020-01-01 12:00:00 Z", "2020010112Z"},
    // The place behind the first digit of the fraction is where the zone is looked for.
    {"20200101120000.25Z", 0, "2020-01-01 12:00:00 f25", "20200101120000.25"},
    {"20200101120000.25Z", 1, "", ""},
    {"20200101120000.2+0130", 0, "2020-01-01 12:00:00 f2 1:30", "20200101120000.2+0130"},
    {"20200101120000.2147483647Z", 0, "2020-01-01 12:00:00 f2147483647",
     "20200101120000.2147483647"},
    {"20200101120000.2147483648Z", 0, "", ""},
    {"20200101120000.-5", 0, "2020-01-01 12:00:00 f-5", "2020010112"},
    {"20200101120000.Z", 0, "", ""},
    {"202001011230.5Z", 0, "", ""},
    {"2020010112.5Z", 0, "", ""},
    {"2020010112", 0, "2020-01-01 12:00:00", "2020010112"},
    {"202001011230", 0, "2020-01-01 12:30:00", "202001011230"},
    {"2020010112#", 0, "2020-01-01 12:00:00", "2020010112"},
    {"20200101120000", 1, "", ""},
    {"20200101120000ZZ", 0, "", ""},
    {"20200101120000+0100", 1, "", ""},
    {"20200101120000+0100", 0, "2020-01-01 12:00:00 1:0", "2020010112+01"},
    {"20200101120000-0130", 0, "2020-01-01 12:00:00 -1:-30", "2020010112-0130"},
    {"20200101120000+0030", 0, "2020-01-01 12:00:00 0:30", "2020010112-0030"},
    {"2020010112+1", 0, "2020-01-01 12:00:00 1:0", "2020010112+01"},
    {"2020010112+13", 0, "", ""},
    {"2020010112+0060", 0, "", ""},
    {"2020010112-Z", 0, "", ""},
    {"", 0, "-3--3--3 -3:00:00", ""},
    {"abc", 1, "-3--3--3 -3:00:00", ""},
    {"202001", 0, "-3--3--3 -3:00:00", ""},
    {"20200101", 0, "", ""},
    {"20200101 1Z", 0, "", ""},
    {"20200001120000Z", 0, "", ""},
    {"20201301120000Z", 0, "", ""},
    {"20190229120000Z", 0, "", ""},
    {"20200101240000Z", 0, "", ""},
    {"20200101126000Z", 0, "", ""},
    {"20200101120060Z", 0, "", ""},
    {"-0010101120000Z", 0, "", ""},
    {"99991231235959Z", 0, "9999-12-31 23:59:59 Z", "99991231235959Z"},
};

TEST(GeneralizedTime, ParsesAndCompiles) {
    tests::checkRows<ASN1CGeneralizedTime>(rows);
}

struct Shift {
    const char* text;
    const char* inUtc;
};

const Shift shifts[] = {
    {"2020010100+01", "2019123123Z"},         {"20200101003000+0100", "201912312330Z"},
    {"20200229233000-0045", "202003010015Z"}, {"20200101120000.5+1200", "20200101000000.5Z"},
    {"9999123123-01", "10000010100Z"},        {"0000010100+01", "0000010100+01"},
};

TEST(GeneralizedTime, WritesUtcOfAnOffset) {
    for (const Shift& shift : shifts) {
        const char* text = shift.text;
        ASN1CGeneralizedTime time(text);
        const std::string before = describe(time);
        EXPECT_EQ(0, time.setUTC(1));
        EXPECT_STREQ(shift.inUtc, text) << shift.text;
        EXPECT_EQ(before + " Z", describe(time)) << "only the text is brought to UTC";
    }
    // A fraction counts in tenths, so that 2.5 s carry into the minute; the second goes out as is.
    const char* text = "20200101125959";
    ASN1CGeneralizedTime time(text);
    time.setFraction(25);
    time.setDiffHour(1);
    time.setUTC(1);
    EXPECT_STREQ("20200101120059.25Z", text);
}

TEST(GeneralizedTime, NeedsDateAndHour) {
    tests::checkMissingFields<ASN1CGeneralizedTime>(4);
}

TEST(GeneralizedTime, FailedParseLeavesTheFields) {
    tests::checkFailedParses<ASN1CGeneralizedTime>("20200101120000.5+01", rows);
}

TEST(GeneralizedTime, Century) {
    const char* text = "20200101120000Z";
    ASN1CGeneralizedTime time(text);
    EXPECT_EQ(0, time.setCentury(21));
    EXPECT_EQ(2120, time.getYear());
    EXPECT_EQ(21, time.getCentury());
    EXPECT_STREQ("2120010112Z", text);
    for (const int bad : {-1, 100}) {
        EXPECT_EQ(ASN1S_INVALID_FORMAT, time.setCentury(bad));
    }
    EXPECT_EQ(2120, time.getYear());
    EXPECT_EQ(0, time.setCentury(0));
    EXPECT_EQ(20, time.getYear());
    time.setYear(0);
    EXPECT_EQ(0, time.getCentury());
    const char* malformed = "20201301";
    EXPECT_EQ(ASN1S_INVALID_FORMAT, ASN1CGeneralizedTime(malformed).getCentury());
    const char* empty = "";
    EXPECT_EQ(-3, ASN1CGeneralizedTime(empty).getCentury());
}

struct ZoneRow {
    const char* zone;
    long seconds;
    const char* local;      ///< without an offset
    const char* withOffset; ///< with one
    const char* der;
};

// 2020-07-01 and 2020-01-01, 12:00 UTC, and a midnight.
const ZoneRow zoneRows[] = {
    {"UTC0", 1593604800, "2020070112", "2020070112", "20200701120000Z"},
    {"UTC0", 1577836800, "2020010100", "2020010100", "20200101000000Z"},
    {"CET-1CEST,M3.5.0,M10.5.0/3", 1593604800, "2020070114", "2020070114+02", "20200701120000Z"},
    {"CET-1CEST,M3.5.0,M10.5.0/3", 1577880000, "2020010113", "2020010113+01", "20200101120000Z"},
    {"EST5EDT,M3.2.0,M11.1.0", 1593604800, "2020070108", "2020070108-04", "20200701120000Z"},
    {"NZST-12NZDT,M9.5.0,M4.1.0/3", 1577880000, "2020010201", "2020010201+13", "20200101120000Z"},
    // Minutes of a zone's offset are lost, its seconds take their place.
    {"IST-5:30", 1593604800, "202007011730", "202007011730+05", "20200701123000Z"},
    {"NST3:30NDT,M3.2.0,M11.1.0", 1593604800, "202007010930", "202007010930-02", "20200701113000Z"},
    {"XST-0:20:30", 1593604800, "20200701122030", "20200701122030-0030", "20200701115030Z"},
};

TEST(GeneralizedTime, TakesLocalTime) {
    for (const ZoneRow& row : zoneRows) {
        SCOPED_TRACE(row.zone);
        const tests::TimeZone zone(row.zone);
        const char* text = "20200101000000.7-0130";
        ASN1CGeneralizedTime time(text);
        EXPECT_EQ(0, time.setTime(row.seconds, 1));
        EXPECT_STREQ(row.withOffset, text);
        EXPECT_EQ(0, time.setTime(row.seconds, 0));
        EXPECT_STREQ(row.local, text);
        EXPECT_EQ(0, time.getUTC());
        time.setUTC(1);
        EXPECT_EQ(0, time.setTime(row.seconds, 1));
        EXPECT_EQ(1, time.getUTC());
        ASN1CGeneralizedTime der(text, 1);
        EXPECT_EQ(0, der.setTime(row.seconds, 0));
        EXPECT_STREQ(row.der, text);
        for (const long bad : {1L << 40, -(1L << 62), (1L << 62)}) {
            EXPECT_EQ(ASN1S_INVALID_FORMAT, der.setTime(bad, 1));
        }
        EXPECT_STREQ(row.der, text);
    }
}

TEST(GeneralizedTime, GeneratedTimesComeBack) {
    const auto times = tests::generateTimes(1890, 2110);
    ASSERT_GT(times.size(), 5000u);
    for (const unsigned char der : tests::derFlags) {
        for (const auto& local : times) {
            // DER has UTC, and all fields; otherwise what is 0 at the end is left out.
            const auto& from = der != 0 ? local.inUtc() : local;
            std::string text =
                tests::format("%04d%02d%02d%02d", from.year, from.month, from.day, from.hour);
            const bool withSecond = der != 0 || from.second != 0 || from.tenths != 0;
            text += withSecond || from.minute != 0 ? tests::format("%02d", from.minute) : "";
            text += withSecond ? tests::format("%02d", from.second) : "";
            text += from.tenths != 0 ? tests::format(".%d", from.tenths) : "";
            if (from.offset != 0) {
                const int magnitude = std::abs(from.offset);
                text += tests::format("%c%02d", from.offset >= 60 ? '+' : '-', magnitude / 60);
                text += magnitude % 60 != 0 ? tests::format("%02d", magnitude % 60) : "";
            } else {
                text += der != 0 || local.day != 1 ? "Z" : "";
            }
            ASSERT_NO_FATAL_FAILURE(tests::checkBothWays<ASN1CGeneralizedTime>(text, der, local));
        }
    }
}

TEST(GeneralizedTime, EveryTextEndsInAStatus) {
    tests::checkHostileTexts<ASN1CGeneralizedTime>(
        {"20200101120000.5-0130", "20200101120000Z", "2020010112"},
        [](const char* text, int* year, int* month, int* day) {
            return std::sscanf(text, "%4d%2d%2d", year, month, day);
        });
}

} // namespace
