#include <array>
#include <climits>
#include <cstddef>
#include <sstream>
#include <string>
#include <type_traits>

#include <gtest/gtest.h>

#include <brevantis/support/date_time.h>

#include "support/data_file.h"
#include "support/thrown_code.h"

namespace {

using Brevantis::CDateTime;
using Brevantis::CDateTimeSpan;

// Whoever keeps one in raw memory may release the memory alone.
static_assert(std::is_trivially_copyable_v<CDateTime>);
static_assert(std::is_trivially_destructible_v<CDateTime>);

std::string textOf(const CDateTime& time) {
    return time.getGeneralizedTime().c_str();
}

/// The text of the time that a call makes, or "refused".
template <class Call>
std::string textOrRefusal(Call call) {
    std::string text;
    const int code = tests::thrownCode([&] { text = textOf(call()); });
    return code == 0 ? text : code == E_INVALIDARG ? "refused" : "another code";
}

TEST(DateTime, countsFromTheEpoch) {
    tests::forEachRow("date_time.txt", "counted", [](const tests::DataRow& row) {
        const auto seconds = row.number<long long>("seconds");
        EXPECT_EQ(textOrRefusal([&] { return CDateTime(seconds, row.number("milliseconds")); }),
                  row["text"]);
    });
    EXPECT_EQ(textOrRefusal([] { return CDateTime(LLONG_MIN, INT_MIN); }), "refused");
    EXPECT_EQ(textOrRefusal([] { return CDateTime(LLONG_MAX, INT_MAX); }), "refused");
    EXPECT_EQ(CDateTime(), CDateTime(0, 0));
}

TEST(DateTime, takesAndGivesTheFieldsOfEveryDay) {
    // Counts the days of all years by the rule for their lengths alone.
    const int lengths[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    long long seconds = -62167219200;
    for (int year = 0; year <= 9999; ++year) {
        const bool isLeapYear = year % 400 == 0 || (year % 4 == 0 && year % 100 != 0);
        for (int month = 1; month <= 12; ++month) {
            const int length = lengths[month - 1] + (month == 2 && isLeapYear ? 1 : 0);
            for (int day = 1; day <= length; ++day, seconds += 86400) {
                const CDateTime time(year, month, day, 23, 59, 58, 7);
                ASSERT_EQ(time, CDateTime(seconds + 86398, 7));
                ASSERT_TRUE(time.year() == year && time.month() == month && time.day() == day &&
                            time.hour() == 23 && time.minute() == 59 && time.second() == 58 &&
                            time.millisecond() == 7)
                    << textOf(time);
            }
        }
    }
}

TEST(DateTime, takesFieldsInRange) {
    using Fields = std::array<int, 8>;
    const auto make = [](const Fields& f) {
        return textOrRefusal(
            [&] { return CDateTime(f[0], f[1], f[2], f[3], f[4], f[5], f[6], f[7]); });
    };
    const Fields lowest = {0, 1, 1, 0, 0, 0, 0, -1439};
    const Fields highest = {9999, 12, 31, 23, 59, 59, 999, 1439};
    for (std::size_t i = 0; i < lowest.size(); ++i) {
        Fields fields = {2024, 1, 1, 0, 0, 0, 0, 0};
        for (const int value : {lowest[i] - 1, lowest[i], highest[i], highest[i] + 1, INT_MIN}) {
            fields[i] = value;
            EXPECT_EQ(make(fields) != "refused", value >= lowest[i] && value <= highest[i])
                << testing::PrintToString(fields);
        }
    }
    EXPECT_EQ(make({2023, 2, 29, 0, 0, 0, 0, 0}), "refused");
    EXPECT_EQ(make({2024, 4, 31, 0, 0, 0, 0, 0}), "refused");
    EXPECT_EQ(make({2024, 1, 1, 1, 30, 0, 0, 120}), "20231231233000Z") << "ahead of UTC";
    EXPECT_EQ(make({2023, 12, 31, 23, 0, 0, 0, -1439}), "20240101225900Z") << "behind UTC";
    EXPECT_EQ(make({0, 1, 1, 0, 0, 0, 0, 1}), "refused") << "in UTC before the first year";
    EXPECT_EQ(make({9999, 12, 31, 23, 59, 0, 0, -1}), "refused") << "in UTC after the last year";
}

TEST(DateTime, readsGeneralizedTime) {
    tests::forEachRow("date_time.txt", "read", [](const tests::DataRow& row) {
        EXPECT_EQ(textOrRefusal([&] { return CDateTime(row["text"].c_str()); }), row["time"]);
    });
    const std::string manyDigits = "20240229123456." + std::string(1000, '9');
    EXPECT_EQ(textOf(CDateTime(manyDigits.c_str())), "20240229123456.999Z");
    // Fields missing, cut off, too many; fractions; zones; no such day, a leap second, hour 24;
    // outside the years in UTC.
    std::istringstream refused(
        "20240229 202402291 20240229123 2024022912345 202402291234567 2024-02-29T12:34:56Z "
        "20240229123456.Z 20240229123456.5.5Z 20240229123456z 20240229123456+ 20240229123456+013 "
        "20240229123456+0160 20240229123456+24 20240229123456+0100Z 20230229123456Z "
        "20240229123460Z 20240229240000Z 00000101000000+0001 99991231235959.9-0001");
    for (std::string text; refused >> text;) {
        EXPECT_EQ(textOrRefusal([&] { return CDateTime(text.c_str()); }), "refused") << text;
    }
    for (const char* text :
         {"", " 2024022912Z", "2024022912Z ", static_cast<const char*>(nullptr)}) {
        EXPECT_EQ(textOrRefusal([&] { return CDateTime(text); }), "refused");
    }
}

TEST(DateTime, addsSpansAndCompares) {
    CDateTime time("19991231235959.5Z");
    const CDateTime before = time;
    time += CDateTimeSpan::OneSecond();
    EXPECT_EQ(textOf(time), "20000101000000.5Z");
    EXPECT_TRUE(before < time && time > before && before <= time && time >= before);
    EXPECT_TRUE(before != time && !(before == time) && before <= before && !(before < before));
    for (const long long span : {LLONG_MIN, LLONG_MAX, 253000000000000LL}) {
        EXPECT_EQ(textOrRefusal([&] { return time += CDateTimeSpan(span); }), "refused") << span;
    }
    EXPECT_EQ(textOf(time += CDateTimeSpan(-1000)), textOf(before));
}

} // namespace
