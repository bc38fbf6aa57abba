#include <brevantis/asn1/runtime/generalized_time.h>

#include <gtest/gtest.h>

#include "support/time_class_checks.h"

namespace {

using tests::describe;

TEST(GeneralizedTime, ParsesAndCompiles) {
    tests::checkRows<ASN1CGeneralizedTime>("generalized_time.txt");
}

TEST(GeneralizedTime, WritesUtcOfAnOffset) {
    tests::forEachRow("generalized_time.txt", "in UTC", [&](const tests::DataRow& row) {
        const char* text = row.text("text");
        ASN1CGeneralizedTime time(text);
        const std::string before = describe(time);
        EXPECT_EQ(0, time.setUTC(1));
        EXPECT_EQ(row["inUtc"], text);
        EXPECT_EQ(before + " Z", describe(time)) << "only the text is brought to UTC";
    });
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
    tests::checkFailedParses<ASN1CGeneralizedTime>("20200101120000.5+01", "generalized_time.txt");
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

TEST(GeneralizedTime, TakesLocalTime) {
    tests::forEachRow("generalized_time.txt", "zones", [&](const tests::DataRow& row) {
        const tests::TimeZone zone(row.text("zone"));
        const auto seconds = row.number<long>("seconds");
        const char* text = "20200101000000.7-0130";
        ASN1CGeneralizedTime time(text);
        EXPECT_EQ(0, time.setTime(seconds, 1));
        EXPECT_EQ(row["withOffset"], text);
        EXPECT_EQ(0, time.setTime(seconds, 0));
        EXPECT_EQ(row["local"], text);
        EXPECT_EQ(0, time.getUTC());
        time.setUTC(1);
        EXPECT_EQ(0, time.setTime(seconds, 1));
        EXPECT_EQ(1, time.getUTC());
        ASN1CGeneralizedTime der(text, 1);
        EXPECT_EQ(0, der.setTime(seconds, 0));
        EXPECT_EQ(row["der"], text);
        for (const long bad : {1L << 40, -(1L << 62), (1L << 62)}) {
            EXPECT_EQ(ASN1S_INVALID_FORMAT, der.setTime(bad, 1));
        }
        EXPECT_EQ(row["der"], text);
    });
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
