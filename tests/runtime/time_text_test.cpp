#include <brevantis/asn1/runtime/time_text.h>

#include <climits>
#include <cstdio>
#include <cstring>

#include <gtest/gtest.h>

#include "support/coding.h"
#include "support/counting_allocator.h"
#include "support/data_file.h"
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

TEST(TimeText, Parses) {
    tests::forEachRow("time_text.txt", "parsed", [&](const tests::DataRow& row) {
        const Parser parse = row["kind"] == "utc" ? rtParseUTCTime : rtParseGeneralizedTime;
        tests::Context ctxt;
        const tests::HeapText text(row["text"]);
        ASN1TimeFields fields{};
        fields.year = 7;
        const int status = parse(ctxt, text.get(), &fields);
        EXPECT_EQ(row["fields"].empty() ? ASN1S_INVALID_FORMAT : 0, status);
        EXPECT_EQ(status, ctxt->errInfo.status);
        EXPECT_EQ(status, parse(nullptr, text.get(), &fields));
        EXPECT_EQ(status == 0 ? row["fields"] : "7-00-00 00:00:00", describe(fields));
    });
}

/// The fields of a time that can be written.
ASN1TimeFields someFields() {
    ASN1TimeFields fields{};
    rtParseGeneralizedTime(nullptr, "20200102030405", &fields);
    return fields;
}

ASN1TimeFields fieldsOf(const tests::DataRow& row) {
    ASN1TimeFields fields{};
    const auto number = [&](const char* name) { return row.number<short>(name); };
    fields.year = number("year");
    fields.month = number("month");
    fields.day = number("day");
    fields.hour = number("hour");
    fields.minute = number("minute");
    fields.second = number("second");
    fields.diffHour = number("hours off");
    fields.diffMinute = number("minutes off");
    std::snprintf(fields.fraction, sizeof fields.fraction, "%s", row.text("fraction"));
    fields.utc = row.number<unsigned char>("utc");
    return fields;
}

TEST(TimeText, Makes) {
    tests::forEachRow("time_text.txt", "made", [&](const tests::DataRow& row) {
        const std::string& expected = row["text"];
        const ASN1TimeFields fields = fieldsOf(row);
        tests::Context ctxt;
        char* text = nullptr;
        const int status = rtMakeGeneralizedTime(ctxt, &fields, &text, 0);
        EXPECT_EQ(expected.empty() ? ASN1S_INVALID_FORMAT : 0, status);
        EXPECT_EQ(status, ctxt->errInfo.status);
        if (status != 0) {
            return;
        }
        EXPECT_EQ(expected, text);
        // The buffer needs room for the terminator, and is not written when it is short of that.
        const int length = static_cast<int>(expected.size());
        const std::unique_ptr<char[]> buffer(new char[expected.size() + 1]);
        char* target = buffer.get();
        target[0] = '#';
        EXPECT_EQ(ASN1S_STRING_OVERFLOW, rtMakeGeneralizedTime(ctxt, &fields, &target, length));
        EXPECT_EQ(ASN1S_STRING_OVERFLOW, rtMakeGeneralizedTime(ctxt, &fields, &target, -1));
        EXPECT_EQ('#', target[0]);
        EXPECT_EQ(0, rtMakeGeneralizedTime(nullptr, &fields, &target, length + 1));
        EXPECT_EQ(expected, target);
    });
}

TEST(TimeText, RefusesWhatIsNotThere) {
    tests::Context ctxt;
    ASN1TimeFields fields = someFields();
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
        const ASN1TimeFields fields = someFields();
        tests::Context ctxt;
        char* text = nullptr;
        allocator.failAfter(0);
        EXPECT_EQ(ASN1S_NO_MEMORY, rtMakeGeneralizedTime(ctxt, &fields, &text, 0));
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
