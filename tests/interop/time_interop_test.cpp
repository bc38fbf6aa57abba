#include <gtest/gtest.h>

#ifdef BREVANTIS_HAVE_LIBCRYPTO

#include <memory>
#include <string>

#include <openssl/asn1.h>
#include <openssl/pem.h>
#include <openssl/x509.h>

#include <brevantis/asn1/runtime/generalized_time.h>
#include <brevantis/asn1/runtime/time_text.h>
#include <brevantis/asn1/runtime/utc_time.h>

#include "support/time_texts.h"

namespace {

constexpr const char* Bundle = "/etc/ssl/certs/ca-certificates.crt";

template <auto Free>
struct Deleter {
    template <class Object>
    void operator()(Object* object) const {
        Free(object);
    }
};
using TimeHandle = std::unique_ptr<ASN1_TIME, Deleter<ASN1_TIME_free>>;
using CertificateHandle = std::unique_ptr<X509, Deleter<X509_free>>;

std::string fieldsText(int year, int month, int day, int hour, int minute, int second) {
    return tests::format("%d-%02d-%02d %02d:%02d:%02d", year, month, day, hour, minute, second);
}

/// The fields of a time in UTC as libcrypto sees them; empty when it refuses the time.
std::string theirView(const ASN1_TIME* time) {
    std::tm fields{};
    if (ASN1_TIME_to_tm(time, &fields) != 1) {
        return {};
    }
    return fieldsText(fields.tm_year + 1900, fields.tm_mon + 1, fields.tm_mday, fields.tm_hour,
                      fields.tm_min, fields.tm_sec);
}

/// The fields as the plain functions see them, not brought to UTC; empty when they refuse the text.
std::string plainView(const std::string& text, bool utcTime) {
    ASN1TimeFields fields{};
    const auto parse = utcTime ? rtParseUTCTime : rtParseGeneralizedTime;
    if (parse(nullptr, text.c_str(), &fields) != 0) {
        return {};
    }
    return fieldsText(fields.year, fields.month, fields.day, fields.hour, fields.minute,
                      fields.second);
}

/// The fields in UTC as the class sees them, from the text that it writes; empty when it refuses.
template <class Time>
std::string classView(const std::string& text) {
    const char* source = text.c_str();
    Time time(source);
    if (time.getYear() < 0 || time.setUTC(1) != 0) {
        return {};
    }
    const char* inUtc = time.getTimeStringPtr();
    Time utc(inUtc);
    return fieldsText(utc.getYear(), utc.getMonth(), utc.getDay(), utc.getHour(), utc.getMinute(),
                      utc.getSecond());
}

std::string classView(const std::string& text, bool utcTime) {
    return utcTime ? classView<ASN1CUTCTime>(text) : classView<ASN1CGeneralizedTime>(text);
}

std::string theirView(const std::string& text, bool utcTime) {
    const TimeHandle time(ASN1_STRING_type_new(utcTime ? V_ASN1_UTCTIME : V_ASN1_GENERALIZEDTIME));
    ASN1_STRING_set(time.get(), text.c_str(), static_cast<int>(text.size()));
    return theirView(time.get());
}

TEST(TimeInterop, ValidityOfInstalledCertificates) {
    const std::unique_ptr<BIO, Deleter<BIO_free_all>> file(BIO_new_file(Bundle, "r"));
    if (!file) {
        GTEST_SKIP() << "no certificates to compare: " << Bundle << " is missing";
    }
    int count = 0;
    while (const auto certificate =
               CertificateHandle(PEM_read_bio_X509(file.get(), nullptr, nullptr, nullptr))) {
        for (const ASN1_TIME* time :
             {X509_get0_notBefore(certificate.get()), X509_get0_notAfter(certificate.get())}) {
            const unsigned char* octets = ASN1_STRING_get0_data(time);
            const std::string text(octets, octets + ASN1_STRING_length(time));
            const bool utcTime = ASN1_STRING_type(time) == V_ASN1_UTCTIME;
            const std::string expected = theirView(time);
            ASSERT_FALSE(expected.empty()) << text;
            EXPECT_EQ(expected, plainView(text, utcTime)) << text;
            EXPECT_EQ(expected, classView(text, utcTime)) << text;
            ++count;
        }
    }
    EXPECT_GT(count, 0);
    RecordProperty("times", count);
}

TEST(TimeInterop, GeneratedTimesWithOffsets) {
    for (const auto& time : tests::generateTimes(1951, 2048)) {
        const int magnitude = std::abs(time.offset);
        const std::string zone = time.offset == 0
                                     ? "Z"
                                     : tests::format("%c%02d%02d", time.offset < 0 ? '-' : '+',
                                                     magnitude / 60, magnitude % 60);
        const std::string clock = tests::format("%02d%02d%02d%02d%02d", time.month, time.day,
                                                time.hour, time.minute, time.second);
        const std::string fraction = time.tenths != 0 ? tests::format(".%d", time.tenths) : "";
        for (const bool utcTime : {true, false}) {
            std::string text =
                tests::format("%0*d", utcTime ? 2 : 4, utcTime ? time.year % 100 : time.year);
            text.append(clock).append(utcTime ? "" : fraction).append(zone);
            const std::string expected = theirView(text, utcTime);
            ASSERT_FALSE(expected.empty()) << text;
            ASSERT_EQ(expected, classView(text, utcTime)) << text;
        }
    }
}

// Every digit at every place: both must draw the lines of months, days, hours and offsets alike.
TEST(TimeInterop, RangesOfTheFields) {
    for (const std::string valid : {"200229235959Z", "191231102030+1030", "000131010101-0101",
                                    "20000229235959Z", "19000228102030-1030"}) {
        const bool utcTime = valid.find_first_of("Z+-") == 12;
        for (std::size_t place = 0; place < valid.size(); ++place) {
            for (char digit = '0'; digit <= '9'; ++digit) {
                std::string text = valid;
                text[place] = digit;
                // Years before 1900 cannot take an offset there; a zone cannot be a digit.
                if ((!utcTime && text.compare(0, 4, "1900") < 0) || valid[place] < '0' ||
                    valid[place] > '9') {
                    continue;
                }
                const std::string expected = theirView(text, utcTime);
                EXPECT_EQ(expected, classView(text, utcTime)) << text;
                EXPECT_EQ(expected.empty(), plainView(text, utcTime).empty()) << text;
            }
        }
    }
}

} // namespace

#else

TEST(TimeInterop, ValidityOfInstalledCertificates) {
    GTEST_SKIP() << "libcrypto was not found when the tests were configured";
}

#endif
