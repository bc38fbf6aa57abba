#ifndef TESTS_SUPPORT_TIME_CLASS_CHECKS_H
#define TESTS_SUPPORT_TIME_CLASS_CHECKS_H

#include <gtest/gtest.h>

#include "support/data_file.h"
#include "support/time_texts.h"

namespace tests {

constexpr unsigned char derFlags[] = {0, 1};

/// The numbers of a time that can be read and set, from the largest unit on.
inline constexpr struct {
    const char* name;
    int (ASN1CTime::*get)();
    int (ASN1CTime::*set)(int);
} timeFields[] = {
    {"year", &ASN1CTime::getYear, &ASN1CTime::setYear},
    {"month", &ASN1CTime::getMonth, &ASN1CTime::setMonth},
    {"day", &ASN1CTime::getDay, &ASN1CTime::setDay},
    {"hour", &ASN1CTime::getHour, &ASN1CTime::setHour},
    {"minute", &ASN1CTime::getMinute, &ASN1CTime::setMinute},
    {"second", &ASN1CTime::getSecond, &ASN1CTime::setSecond},
    {"fraction", &ASN1CTime::getFraction, &ASN1CTime::setFraction},
    {"hours of the offset", &ASN1CTime::getDiffHour, &ASN1CTime::setDiffHour},
    {"offset", &ASN1CTime::getDiff, &ASN1CTime::setDiff},
};

/// Fields as "2020-02-29 12:00:00 f5 -1:-30 Z"; fraction, offset and "Z" only where they are.
inline std::string describe(ASN1CTime& time) {
    std::string text = format("%d-%02d-%02d %02d:%02d:%02d", time.getYear(), time.getMonth(),
                              time.getDay(), time.getHour(), time.getMinute(), time.getSecond());
    if (time.getFraction() != 0) {
        text += format(" f%d", time.getFraction());
    }
    if (time.getDiffHour() != 0 || time.getDiffMinute() != 0) {
        text += format(" %d:%d", time.getDiffHour(), time.getDiffMinute());
    }
    return text + (time.getUTC() == 1 ? " Z" : "");
}

/// The rows of a table [texts]: a text, whether DER applies, the fields (none: refused with -31)
/// and the text compiled from them (none: they cannot be compiled).
template <class Time>
void checkRows(const char* file) {
    forEachRow(file, "texts", [&](const DataRow& row) {
        const HeapText heapText(row["text"]);
        const char* text = heapText.get();
        Time time(text, row.number<unsigned char>("der"));
        const std::string& fields = row["fields"];
        EXPECT_EQ(!fields.empty() ? 0 : ASN1S_INVALID_FORMAT, time.parseString(text));
        EXPECT_EQ(0, time.getCtxtPtr()->errInfo.status);
        if (fields.empty()) {
            EXPECT_EQ(ASN1S_INVALID_FORMAT, time.getSecond());
            EXPECT_EQ(ASN1S_INVALID_FORMAT, time.getCtxtPtr()->errInfo.status);
        } else {
            EXPECT_EQ(fields, describe(time));
            EXPECT_EQ(heapText.get(), text) << "its own text is not written anew";
            const std::string& compiled = row["compiled"];
            EXPECT_EQ(!compiled.empty() ? 0 : ASN1S_INVALID_FORMAT, time.compileString());
            EXPECT_EQ(!compiled.empty() ? compiled : row["text"], text);
        }
    });
}

/// Each of the first @p needed fields that is not set keeps the text from being written.
template <class Time>
void checkMissingFields(int needed) {
    for (int missing = 0; missing < 5; ++missing) {
        const char* text = nullptr;
        Time time(text);
        time.clear();
        for (int field = 0; field < 5; ++field) {
            const auto set = timeFields[field].set;
            EXPECT_EQ(0, field != missing ? (time.*set)(11) : 0);
        }
        EXPECT_EQ(missing < needed ? ASN1S_INVALID_FORMAT : 0, time.compileString()) << missing;
        EXPECT_EQ(missing < needed, text[0] == '\0') << missing;
    }
}

/// A parse that fails changes no field but the UTC flag.
template <class Time>
void checkFailedParses(const char* text, const char* file) {
    Time time(text);
    const std::string before = describe(time);
    forEachRow(file, "texts", [&](const DataRow& row) {
        if (row["fields"].empty() && row["der"] == "0") {
            EXPECT_EQ(ASN1S_INVALID_FORMAT, time.parseString(row.text("text")));
            time.setUTC(0);
            EXPECT_EQ(before, describe(time)) << row;
        }
    });
}

/// One text by the parser and by the setters.
/// @param text what @p local is written as
template <class Time>
void checkBothWays(const std::string& text, unsigned char der, const GeneratedTime& local) {
    const char* variable = nullptr;
    Time time(variable, der);
    ASSERT_EQ(0, time.parseString(text.c_str())) << text;
    ASSERT_EQ(text, variable);
    const unsigned char utc = time.getUTC();
    time.clear();
    for (const int status :
         {time.setYear(local.year), time.setMonth(local.month), time.setDay(local.day),
          time.setHour(local.hour), time.setMinute(local.minute), time.setSecond(local.second),
          local.tenths != 0 ? time.setFraction(local.tenths) : 0, time.setDiff(local.offset),
          time.setUTC(utc)}) {
        ASSERT_EQ(0, status) << text;
    }
    ASSERT_EQ(text, variable);
}

/// Whatever stands in a text, it is parsed or refused; the C library sees the same date in it, and
/// what it compiles to is parsed again.
/// @param scanDate the C library's conversion of the date
template <class Time>
void checkHostileTexts(const std::vector<std::string>& valid,
                       int (*scanDate)(const char*, int*, int*, int*)) {
    for (const std::string& hostile : hostileTexts(valid)) {
        const HeapText heapText(hostile);
        for (const unsigned char der : derFlags) {
            const char* text = heapText.get();
            Time time(text, der);
            const int status = time.parseString(heapText.get());
            ASSERT_TRUE(status == 0 || status == ASN1S_INVALID_FORMAT);
            int year = -1, month = -1, day = -1;
            if (scanDate(heapText.get(), &year, &month, &day) < 3) {
                ASSERT_EQ(0, status) << hostile;
                ASSERT_EQ(-3, time.getYear()) << hostile;
            } else if (status == 0) {
                ASSERT_EQ(year % 100, time.getYear() % 100) << hostile;
                ASSERT_EQ(month, time.getMonth()) << hostile;
                ASSERT_EQ(day, time.getDay()) << hostile;
                if (time.compileString() == 0) {
                    ASSERT_EQ(0, time.parseString(text)) << hostile << " as " << text;
                } else {
                    ASSERT_TRUE(time.getUTC() == 0 && time.getDiff() == 0) << hostile;
                }
            }
            Time copy(time);
            ASSERT_EQ(0, copy.setYear(2020));
            copy.equals(time);
        }
    }
}

} // namespace tests

#endif
