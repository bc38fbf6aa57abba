#include <brevantis/asn1/runtime/time.h>

#include <algorithm>
#include <array>
#include <climits>
#include <sstream>

#include <gtest/gtest.h>

#include <brevantis/asn1/runtime/generalized_time.h>
#include <brevantis/asn1/runtime/message_buffer.h>
#include <brevantis/asn1/runtime/utc_time.h>

#include "support/counting_allocator.h"
#include "support/data_file.h"
#include "support/time_class_checks.h"

namespace {

using tests::describe;

TEST(Time, ConstructorsParseNothing) {
    ASN1BERDecodeBuffer buffer;
    const char* text = "not a time";
    char octets[40] = "20201301";
    char* writable = octets;
    ASN1CGeneralizedTime onBuffer(buffer, text);
    ASN1CUTCTime onContext(*buffer.getContext(), writable, sizeof octets);
    EXPECT_EQ(buffer.getCtxtPtr(), onBuffer.getCtxtPtr());
    EXPECT_EQ(buffer.getCtxtPtr(), onContext.getCtxtPtr());
    EXPECT_EQ(&buffer, onBuffer.getMsgBuf());
    EXPECT_EQ(3u, buffer.getContext()->getRefCount() - 1);
    // Under DER the flag is set, and nothing is parsed for it.
    EXPECT_EQ(1, ASN1CGeneralizedTime(buffer, text, 1).getUTC());
    EXPECT_EQ(1, ASN1CGeneralizedTime(*buffer.getContext(), text, 1).getUTC());
    EXPECT_EQ(1, ASN1CGeneralizedTime(writable, sizeof octets, 1).getUTC());
    EXPECT_EQ(0, buffer.getCtxtPtr()->errInfo.status);
    EXPECT_EQ(0, onBuffer.getUTC());
    EXPECT_EQ(1, onContext.getUTC());
    EXPECT_EQ(ASN1S_INVALID_FORMAT, buffer.getCtxtPtr()->errInfo.status);
}

TEST(Time, ConstructorsReportThatMemoryIsOut) {
    tests::CountingAllocator allocator;
    const char* text = "200101120000Z";
    char octets[40];
    char* writable = octets;
    allocator.failAfter(0);
    EXPECT_THROW(ASN1CUTCTime time(text), ASN1MessageBuffer::RTLError);
    EXPECT_THROW(ASN1CGeneralizedTime time(writable, 40), ASN1MessageBuffer::RTLError);
    EXPECT_EQ(0, allocator.live());
}

TEST(Time, GettersRecordAMalformedText) {
    std::vector<int (ASN1CTime::*)()> getters = {&ASN1CTime::getDiffMinute};
    for (const auto& field : tests::timeFields) {
        getters.push_back(field.get);
    }
    for (const auto getter : getters) {
        std::string octets = "20201301120000Z";
        const char* text = octets.c_str();
        ASN1CGeneralizedTime time(text);
        EXPECT_EQ(ASN1S_INVALID_FORMAT, (time.*getter)());
        EXPECT_EQ(ASN1S_INVALID_FORMAT, time.getCtxtPtr()->errInfo.status);
        octets[4] = '0';
        EXPECT_NE(ASN1S_INVALID_FORMAT, (time.*getter)()) << "a failed parse is done again";
        EXPECT_EQ("2020-03-01 12:00:00 Z", describe(time));
    }
    const char* text = "20201301120000Z";
    ASN1CGeneralizedTime time(text);
    EXPECT_EQ(ASN1S_INVALID_FORMAT, time.getTime());
    EXPECT_EQ(ASN1S_INVALID_FORMAT, time.getCtxtPtr()->errInfo.status);
}

/// Sets the fields that a text such as "month=2, day=29" names; the status of the last.
int setFields(ASN1CTime& time, const std::string& assignments) {
    int status = 0;
    std::istringstream list(assignments);
    for (std::string assignment; std::getline(list >> std::ws, assignment, ',');) {
        const std::size_t sign = assignment.find('=');
        const auto* field = std::find_if(
            std::begin(tests::timeFields), std::end(tests::timeFields),
            [&](const auto& known) { return known.name == assignment.substr(0, sign); });
        status = (time.*field->set)(static_cast<int>(tests::numberOf(assignment.substr(sign + 1))));
    }
    return status;
}

TEST(Time, SettersCheckTheirRange) {
    tests::forEachRow("time.txt", "set", [&](const tests::DataRow& row) {
        const char* text = row.text("text");
        ASN1CGeneralizedTime time(text);
        const int status = row.number("status");
        EXPECT_EQ(status, setFields(time, row["assigned"]));
        EXPECT_TRUE(status == 0 || status == time.getCtxtPtr()->errInfo.status);
        EXPECT_EQ(row["fields"], describe(time));
        EXPECT_EQ(row["after"], text != nullptr ? text : "");
    });
}

TEST(Time, OffsetTakesTheSignOfItsHours) {
    tests::forEachRow("time.txt", "offsets", [&](const tests::DataRow& row) {
        const char* text = "2020022912-0130";
        ASN1CGeneralizedTime time(text);
        EXPECT_EQ(row.number("status"), time.setDiff(row.number("hours"), row.number("minutes")));
        EXPECT_EQ(row.number("offset"), time.getDiff());
        EXPECT_EQ(row["text"], text);
    });
    const char* text = "2020022912+1259";
    ASN1CGeneralizedTime time(text);
    EXPECT_EQ(0, time.setDiffHour(-3));
    EXPECT_EQ(59 - 180, time.getDiff()) << "the minutes stay";
}

TEST(Time, WritesWhereThereIsRoom) {
    const char* invalid = "20201301120000Z";
    ASN1CGeneralizedTime cleared(invalid);
    EXPECT_EQ(0, cleared.setHour(7));
    EXPECT_STREQ("20201301120000Z", invalid) << "there is no date to write";
    cleared.clear();
    EXPECT_STREQ("", invalid);
    // Thirty octets of the caller's take a time; one that is longer is refused.
    std::unique_ptr<char[]> large(new char[30]{"20200101120000Z"});
    char* text = large.get();
    ASN1CGeneralizedTime time(text, 30);
    EXPECT_EQ(0, time.setUTC(0));
    EXPECT_EQ(0, setFields(time, "day=2, offset=-90, fraction=0x7FFFFFFF"));
    EXPECT_EQ(ASN1S_STRING_OVERFLOW, time.compileString());
    EXPECT_EQ(large.get(), text);
    EXPECT_STREQ("2020010212-0130", text);
    EXPECT_EQ(0, time.setFraction(INT_MAX / 10));
    EXPECT_STREQ("20200102120000.214748364-0130", text);

    // A smaller buffer, a read-only text and none are left alone: the variable turns to the object.
    char small[29] = "20200101120000Z";
    char* smallText = small;
    const char* readOnly = "20200101120000Z";
    {
        ASN1CGeneralizedTime inSmall(smallText, sizeof small);
        ASN1CGeneralizedTime inReadOnly(readOnly);
        EXPECT_EQ(1, inSmall.getDay() * inReadOnly.getDay());
        EXPECT_EQ(small, smallText);
        inSmall.setUTC(0);
        setFields(inSmall, "year=32764, offset=-90, fraction=0x7FFFFFFF");
        inReadOnly.setDay(2);
        EXPECT_STREQ("20200101120000Z", small);
        EXPECT_STREQ("327640101120000.2147483647-0130", smallText);
        EXPECT_STREQ("2020010212Z", readOnly);
        EXPECT_EQ(&readOnly, const_cast<const char**>(&inReadOnly.getTimeStringPtr()));
    }
    EXPECT_EQ(nullptr, smallText) << "never a pointer into an object that is gone";
    EXPECT_EQ(nullptr, readOnly);
    {
        ASN1CGeneralizedTime inReadOnly(readOnly);
        inReadOnly.clear();
        readOnly = "another";
    }
    EXPECT_STREQ("another", readOnly);
    char* none = nullptr;
    ASN1CGeneralizedTime inNone(none, 100);
    EXPECT_EQ(0, inNone.parseString("2020010112"));
    EXPECT_STREQ("2020010112", none);
}

TEST(Time, GivesItsText) {
    const char* text = "20200101120000Z";
    ASN1CGeneralizedTime time(text);
    char buffer[16] = "";
    EXPECT_EQ(nullptr, time.getTimeString(buffer, 15));
    EXPECT_EQ(nullptr, time.getTimeString(nullptr, 16));
    EXPECT_EQ(buffer, time.getTimeString(buffer, 16));
    EXPECT_STREQ(text, buffer);
    EXPECT_EQ(15, time.getTimeStringLen()) << "not parsed, hence not written anew";
    time.getYear();
    EXPECT_EQ(11, time.getTimeStringLen());
    const char* none = nullptr;
    ASN1CGeneralizedTime empty(none);
    EXPECT_EQ(0, empty.getTimeStringLen());
    EXPECT_EQ(nullptr, empty.getTimeString(buffer, 16));
}

TEST(Time, CopiesHaveTheirOwnText) {
    ASN1BERDecodeBuffer buffer;
    const char* text = "20200101120000.5-0130";
    ASN1CGeneralizedTime time(buffer, text);
    ASN1CGeneralizedTime unparsed(time);
    time.setUTC(1);
    ASN1CGeneralizedTime parsed(time);
    EXPECT_EQ(buffer.getCtxtPtr(), parsed.getCtxtPtr());
    EXPECT_EQ(&buffer, parsed.getMsgBuf());
    EXPECT_NE(text, parsed.getTimeStringPtr());
    EXPECT_STREQ("20200101133000.5Z", parsed.getTimeStringPtr());
    EXPECT_EQ("2020-01-01 12:00:00 f5 -1:-30 Z", describe(parsed));
    EXPECT_EQ("2020-01-01 12:00:00 f5 -1:-30", describe(unparsed));
    EXPECT_EQ(-90, unparsed.getDiff());
    parsed.setDay(31);
    EXPECT_STREQ("20200101133000.5Z", text);

    // Of a text that exceeds the room the beginning is kept.
    const std::string longText = "20200101120000Z" + std::string(10000, '0');
    const char* pointer = longText.c_str();
    ASN1CGeneralizedTime original(pointer);
    ASN1CGeneralizedTime cut(original);
    EXPECT_EQ(longText.substr(0, 35), cut.getTimeStringPtr());
    EXPECT_EQ(ASN1S_INVALID_FORMAT, cut.getYear());

    char target[40] = "";
    char* targetText = target;
    ASN1CGeneralizedTime assigned(targetText, sizeof target, 1);
    assigned = unparsed;
    EXPECT_STREQ("20200101120000.5-0130", target);
    EXPECT_EQ("2020-01-01 12:00:00 f5 -1:-30", describe(assigned)) << "DER went with the flags";
    EXPECT_NE(unparsed.getCtxtPtr(), assigned.getCtxtPtr());
    assigned = original;
    EXPECT_EQ(longText.substr(0, 39), target);
    assigned = *&assigned;
    EXPECT_EQ(longText.substr(0, 39), target);

    // Two objects over one variable.
    const char* shared = "2020010112Z";
    ASN1CGeneralizedTime first(shared);
    ASN1CGeneralizedTime second(shared);
    first = second;
    EXPECT_STREQ("2020010112Z", shared);
}

TEST(Time, Compares) {

    tests::forEachRow("time.txt", "compared", [&](const tests::DataRow& row) {
        const int difference = row.number("difference");
        const char* leftText = row.text("left");
        const char* rightText = row.text("right");
        ASN1CGeneralizedTime left(leftText);
        ASN1CGeneralizedTime right(rightText);
        EXPECT_EQ(difference, left.equals(right));
        EXPECT_EQ(-difference, right.equals(left));
        EXPECT_EQ(difference == 0, left == right);
        EXPECT_EQ(difference != 0, left != right);
        EXPECT_EQ(difference > 0, left > right);
        EXPECT_EQ(difference > 0, right < left);
        EXPECT_EQ(difference >= 0, left >= right);
        EXPECT_EQ(difference >= 0, right <= left);
        EXPECT_EQ(difference <= 0, right >= left);
    });
    const char* utcText = "200101000000Z";
    const char* generalizedText = "2020010100";
    ASN1CUTCTime utc(utcText);
    ASN1CGeneralizedTime generalized(generalizedText);
    EXPECT_EQ(0, utc.equals(utc));
    EXPECT_EQ(0, utc.equals(generalized));
    generalized.clear();
    EXPECT_GT(utc.equals(generalized), 0) << "a time that is not set comes before every other";
}

TEST(Time, DayNumbersFollowTheCalendar) {
    // Day by day through four centuries, with the month lengths of the C library.
    short year = 1799, month = 12, day = 31;
    const char* text = nullptr;
    ASN1CGeneralizedTime time(text);
    for (long number = -62091; number < 84061; ++number) {
        const short yesterday[] = {year, month, day};
        ASSERT_EQ(0, ASN1CTime::addDays(1, year, month, day));
        ASSERT_EQ(day != 1, ASN1CTime::checkDate(yesterday[2] + 1, yesterday[1], yesterday[0]));
        const std::time_t moment = number * 86400L;
        std::tm expected{};
        ::gmtime_r(&moment, &expected);
        ASSERT_EQ(tests::format("%d-%d-%d", expected.tm_year + 1900, expected.tm_mon + 1,
                                expected.tm_mday),
                  tests::format("%d-%d-%d", year, month, day));
        ASSERT_TRUE(ASN1CTime::checkDate(day, month, year));
        short y = year, m = month, d = day;
        const int back = static_cast<int>(-62092 - number);
        ASSERT_EQ(0, ASN1CTime::addDays(back, y, m, d));
        ASSERT_EQ("1799-12-31", tests::format("%d-%d-%d", y, m, d));
        if (number % 97 == 0) {
            time.parseString(tests::format("%04d%02d%02d00", year, month, day).c_str());
            ASSERT_EQ(number + 719162, time.getDaysNum());
        }
    }
}

TEST(Time, DatesWithUnsetFieldsPass) {
    for (const auto& [day, month, year, passes] : {std::array{31, -3, 2020, 1},
                                                   {-3, 2, 2020, 1},
                                                   {29, 2, -3, 1},
                                                   {30, 2, -3, 0},
                                                   {1, 13, 2020, 0}}) {
        EXPECT_EQ(passes == 1, ASN1CTime::checkDate(day, month, year)) << month;
    }
}

TEST(Time, MovesByMilliseconds) {

    tests::forEachRow("time.txt", "moved", [&](const tests::DataRow& row) {
        short year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
        int tenths = 0;
        ASSERT_EQ(7, std::sscanf(row.text("from"), "%hd-%hd-%hd %hd:%hd:%hd.%d", &year, &month,
                                 &day, &hour, &minute, &second, &tenths));
        const int status = ASN1CTime::addMilliseconds(row.number("milliseconds"), year, month, day,
                                                      hour, minute, second, tenths);
        EXPECT_EQ(!row["to"].empty() ? 0 : ASN1S_INVALID_FORMAT, status);
        EXPECT_EQ(status == 0 ? row["to"] : row["from"],
                  tests::format("%d-%02d-%02d %d:%d:%d.%d", year, month, day, hour, minute, second,
                                tenths));
    });
    short year = 2020, month = 1, day = 1;
    EXPECT_EQ(ASN1S_INVALID_FORMAT, ASN1CTime::addDays(INT_MAX, year, month, day));
    EXPECT_EQ(ASN1S_INVALID_FORMAT, ASN1CTime::addDays(INT_MIN, year, month, day));
    EXPECT_EQ(0, ASN1CTime::addDays(-737791, year, month, day));
    EXPECT_EQ("-1-12-31", tests::format("%d-%d-%d", year, month, day)) << "year 0 has 366 days";
}

TEST(Time, ReadsFieldsAsLocalStandardTime) {
    tests::forEachRow("time.txt", "local times", [&](const tests::DataRow& row) {
        const tests::TimeZone zone(row.text("zone"));
        const char* text = row.text("text");
        EXPECT_EQ(row.number<long>("seconds"), ASN1CGeneralizedTime(text).getTime());
    });
}

} // namespace
