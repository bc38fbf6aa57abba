#ifndef TESTS_SUPPORT_TIME_TEXTS_H
#define TESTS_SUPPORT_TIME_TEXTS_H

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace tests {

/// printf into a text of up to 127 octets.
__attribute__((format(printf, 1, 2))) inline std::string format(const char* pattern, ...) {
    char text[128];
    std::va_list arguments;
    va_start(arguments, pattern);
    std::vsnprintf(text, sizeof text, pattern, arguments);
    va_end(arguments);
    return text;
}

/// A terminated text in a heap block of its exact size, so that a sanitizer sees every read past
/// the terminator.
class HeapText {
public:
    explicit HeapText(const std::string& text) {
        const std::size_t size = std::strlen(text.c_str()) + 1;
        text_.reset(new char[size]);
        std::memcpy(text_.get(), text.c_str(), size);
    }
    const char* get() const { return text_.get(); }

private:
    std::unique_ptr<char[]> text_;
};

/// A time of the generated round trips.
struct GeneratedTime {
    int year, month, day, hour, minute, second, tenths;
    int offset; ///< minutes

    /// The same time in UTC, by the C library.
    GeneratedTime inUtc() const {
        std::tm fields{};
        fields.tm_year = year - 1900;
        fields.tm_mon = month - 1;
        fields.tm_mday = day;
        fields.tm_hour = hour;
        fields.tm_min = minute - offset;
        fields.tm_sec = second;
        ::timegm(&fields);
        return {fields.tm_year + 1900, fields.tm_mon + 1, fields.tm_mday, fields.tm_hour,
                fields.tm_min,         fields.tm_sec,     tenths,         0};
    }
};

/// Times from @p firstYear to @p lastYear: each month of each year has its first and its last day,
/// with time of day, fraction and offset (also none) at random.
inline std::vector<GeneratedTime> generateTimes(int firstYear, int lastYear) {
    std::mt19937 random(20200229);
    const auto below = [&](unsigned bound) { return static_cast<int>(random() % bound); };
    std::vector<GeneratedTime> times;
    for (int year = firstYear; year <= lastYear; ++year) {
        for (int month = 1; month <= 12; ++month) {
            std::tm last{};
            last.tm_year = year - 1900;
            last.tm_mon = month;
            ::timegm(&last); // day 0 of the next month
            for (const int day : {1, last.tm_mday}) {
                times.push_back({year, month, day, below(24), below(3) ? below(60) : 0,
                                 below(3) ? below(60) : 0, below(2) ? below(10) : 0,
                                 below(3) ? below(1441) - 720 : 0});
            }
        }
    }
    return times;
}

/// Texts that are no times, or hardly: every cut and every octet of valid ones replaced, blanks and
/// signs in front, many digits, octets at random.
inline std::vector<std::string> hostileTexts(const std::vector<std::string>& valid) {
    std::vector<std::string> texts = {"",
                                      " ",
                                      "1 2 3",
                                      "+1-2+3",
                                      std::string(40, ' ') + "20200101",
                                      std::string(10000, '7'),
                                      std::string(10000, '\t')};
    for (const std::string& text : valid) {
        for (std::size_t place = 0; place <= text.size(); ++place) {
            texts.push_back(text.substr(0, place));
            texts.push_back(text.substr(0, place) + std::string(10000, '1'));
            texts.push_back(text.substr(0, place) + " " + text.substr(place));
            for (const char octet :
                 {'\0', '\xFF', '\x80', ' ', '+', '-', '.', ',', 'Z', '0', '9'}) {
                std::string changed = text;
                changed[place == text.size() ? 0 : place] = octet;
                texts.push_back(changed);
            }
        }
    }
    std::mt19937 random(31);
    const std::string alphabet = "0123456789 +-.,Z\xFF\t";
    for (int count = 0; count < 20000; ++count) {
        std::string text;
        for (unsigned length = random() % 32; length != 0; --length) {
            const auto choice = random() % (2 * alphabet.size());
            text += choice < alphabet.size() ? alphabet[choice] : alphabet[choice % 4];
        }
        texts.push_back(text);
    }
    return texts;
}

/// Sets the time zone of the process for as long as it lives.
class TimeZone {
public:
    explicit TimeZone(const char* zone) {
        const char* old = std::getenv("TZ");
        hadOld_ = old != nullptr;
        old_ = hadOld_ ? old : "";
        ::setenv("TZ", zone, 1);
        ::tzset();
    }
    ~TimeZone() {
        if (hadOld_) {
            ::setenv("TZ", old_.c_str(), 1);
        } else {
            ::unsetenv("TZ");
        }
        ::tzset();
    }
    TimeZone(const TimeZone&) = delete;
    TimeZone& operator=(const TimeZone&) = delete;

private:
    bool hadOld_;
    std::string old_;
};

} // namespace tests

#endif
