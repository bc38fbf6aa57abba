#include <brevantis/asn1/runtime/big_integer.h>

#include <random>
#include <tuple>

#include <gtest/gtest.h>

#include "support/counting_allocator.h"
#include "support/leak_check.h"
#include "support/row_reader.h"

namespace {

using namespace tests;

/// Number under test in a record that starts on the heap.
class Number {
public:
    Number() { rtBigIntInit(&record_); }
    ~Number() { rtBigIntFree(context_, &record_); }
    Number(const Number&) = delete;
    Number& operator=(const Number&) = delete;

    int set(const std::string& text, int radix = 0) {
        return rtBigIntSetStr(context_, &record_, text.c_str(), radix);
    }
    /// The text, or the status where there is none.
    std::string text(int radix, int size = 8192) {
        const auto buffer = std::make_unique<char[]>(static_cast<std::size_t>(std::max(size, 0)));
        const int status = rtBigIntToString(context_, &record_, radix, buffer.get(), size);
        return status == 0 ? buffer.get() : std::to_string(status);
    }
    RtBigIntDataRec* record() { return &record_; }
    Context& context() { return context_; }

private:
    Context context_;
    RtBigIntDataRec record_;
};

std::string encode(const std::string& text, int (*encoder)(ASN1CTXT*, const char*, ASN1TagType)) {
    Writer writer;
    const int count = encoder(writer, text.c_str(), ASN1TagExplicit);
    EXPECT_EQ(count < 0 ? count : 0, writer.recorded());
    if (count < 0) {
        return std::to_string(count);
    }
    EXPECT_EQ(static_cast<std::size_t>(count), fromHex(writer.hex()).size());
    return writer.hex();
}

std::string decode(const Octets& message) {
    Reader reader(message);
    const char* text = nullptr;
    const int status = xd_bigint(reader, &text, ASN1TagExplicit, 0);
    EXPECT_EQ(status == 0 ? message.size() : reader.position(), reader.position());
    return status == 0 ? text : std::to_string(status);
}

// An independent reference: digit vectors, least significant first, and plain long arithmetic.
using DigitVector = std::vector<unsigned>;

DigitVector convert(const DigitVector& digits, unsigned from, unsigned to) {
    DigitVector result;
    for (auto digit = digits.rbegin(); digit != digits.rend(); ++digit) {
        unsigned carry = *digit;
        for (unsigned& place : result) {
            carry += place * from;
            place = carry % to;
            carry /= to;
        }
        for (; carry != 0; carry /= to) {
            result.push_back(carry % to);
        }
    }
    return result;
}

std::string digitText(const DigitVector& digits) {
    std::string text;
    for (auto digit = digits.rbegin(); digit != digits.rend(); ++digit) {
        text += "0123456789abcdef"[*digit];
    }
    return text.empty() ? "0" : text;
}

/// The fewest octets, in two's complement, of a positive number or of its opposite.
Octets contentOf(const DigitVector& magnitude, bool negative) {
    Octets content = {0};
    for (auto octet = magnitude.rbegin(); octet != magnitude.rend(); ++octet) {
        content.push_back(static_cast<unsigned char>(negative ? ~*octet : *octet));
    }
    if (negative) {
        content.front() = 0xFF;
        unsigned carry = 1;
        for (auto octet = content.rbegin(); octet != content.rend(); ++octet) {
            carry += *octet;
            *octet = static_cast<unsigned char>(carry & 0xFF);
            carry >>= 8;
        }
    }
    if (((content[0] ^ content[1]) & 0x80) == 0) {
        content.erase(content.begin());
    }
    return content;
}

std::string encodeOctets(const Octets& content) {
    Writer writer;
    const int count = xe_memcpy(writer, content.data(), static_cast<unsigned>(content.size()));
    EXPECT_GT(xe_tag_len(writer, 2, count), count);
    return writer.hex();
}

TEST(BigInteger, Decodes) {
    forEachRow("big_integer.txt", "decoded", [&](const DataRow& row) {
        for (const int flags : {0, +ASN1F_INDEF_MESSAGE}) {
            RowReader message(row);
            rtCtxtSetFlag(message, flags);
            const char* text = nullptr;
            message.expect(xd_bigint(message, &text, ASN1TagExplicit, 0));
            EXPECT_STREQ(row.text("text"), text);
        }
    });
    Reader reader("01 02 03");
    const char* text = nullptr;
    EXPECT_EQ(0, xd_bigint(reader, &text, ASN1TagImplicit, 2));
    EXPECT_STREQ("0x0102", text);
    EXPECT_EQ(2u, reader.position());
    // An indefinite length far into a message must not be taken for a step back.
    Reader deep(Octets(12000, 1));
    deep->buffer.byteIndex = 11000;
    EXPECT_EQ(-2, xd_bigint(deep, &text, ASN1TagImplicit, ASN1IndefiniteLength));
}

TEST(BigInteger, Encodes) {

    forEachRow("big_integer.txt", "encoded", [&](const DataRow& row) {
        EXPECT_EQ(row["asSigned"], encode(row["text"], xe_bigint));
        EXPECT_EQ(row["asUnsigned"], encode(row["text"], xe_biguint));
    });
    Writer writer;
    EXPECT_EQ(-18, xe_bigint(writer, nullptr, ASN1TagExplicit));
    EXPECT_EQ(-18, xe_biguint(writer, nullptr, ASN1TagExplicit));
    EXPECT_EQ(2, xe_bigint(writer, "0x0102", ASN1TagImplicit));
    EXPECT_EQ("01 02", writer.hex());

    // Caller-owned buffers: calculated text wants two octets to spare, transcribed text does not.
    for (const auto& [text, size, status] :
         {std::tuple("0x0102", 2u, -1), std::tuple("0x0102", 3u, 2), std::tuple("258", 4u, -1),
          std::tuple("258", 5u, 2), std::tuple("0x080", 2u, -1)}) {
        const auto small = std::make_unique<unsigned char[]>(size);
        ASSERT_EQ(0, xe_setp(writer, small.get(), size));
        rtErrReset(&writer->errInfo);
        EXPECT_EQ(status, xe_bigint(writer, text, ASN1TagImplicit)) << text << ' ' << size;
        EXPECT_EQ(std::min(status, 0), writer.recorded());
    }
}

TEST(BigInteger, AgreesWithLongArithmetic) {
    std::mt19937 random(19991231);
    for (int round = 0; round < 1500; ++round) {
        // Beyond 1233 decimal digits the local arrays of the coders no longer do.
        DigitVector decimal(1 + random() % (round % 50 == 0 ? 2000 : round % 4 == 0 ? 60 : 5));
        for (unsigned& digit : decimal) {
            digit = static_cast<unsigned>(random() % 10);
        }
        decimal.back() = 1 + decimal.back() % 9;
        const std::string text = digitText(decimal);
        const std::string hexadecimal = digitText(convert(decimal, 10, 16));
        const std::string octal = digitText(convert(decimal, 10, 8));
        const std::string binary = digitText(convert(decimal, 10, 2));
        SCOPED_TRACE(text);

        // An odd count of digits reads as positive, and so does a leading zero digit.
        const Octets content = contentOf(convert(decimal, 10, 256), false);
        const std::string positive = encodeOctets(content);
        EXPECT_EQ(positive,
                  encode((hexadecimal.size() % 2 == 0 ? "0x0" : "0x") + hexadecimal, xe_bigint));
        EXPECT_EQ(positive, encode(text, xe_bigint));
        EXPECT_EQ(positive, encode("0o" + octal, xe_bigint));
        EXPECT_EQ(positive,
                  encode(binary.size() % 8 == 0 ? "0b0" + binary : "0b" + binary, xe_bigint));

        Number number;
        ASSERT_EQ(0, number.set(text, 10));
        EXPECT_EQ(text, number.text(10));
        const std::string printedOctal = number.text(8);
        EXPECT_EQ(octal, printedOctal.substr(printedOctal[0] == '0' ? 1 : 0));
        const std::string printed = number.text(16);
        EXPECT_EQ(hexadecimal, printed.substr(printed.find_first_not_of('0')));
        const std::string bits = number.text(2);
        EXPECT_EQ(binary, bits.substr(bits.find_first_not_of('0')));
        EXPECT_GE(rtBigIntDigitsNum(number.record(), 10), static_cast<int>(text.size()));

        EXPECT_EQ(static_cast<int>(content.size()), rtBigIntGetDataLen(number.record()));

        ASSERT_EQ(0, number.set("-" + text));
        EXPECT_EQ("-" + text, number.text(10));
        const std::string negative = encodeOctets(contentOf(convert(decimal, 10, 256), true));
        EXPECT_EQ(negative, encode("-" + text, xe_bigint));
        for (const std::string& message : {positive, negative}) {
            const std::string decoded = decode(fromHex(message));
            EXPECT_EQ(message, encode(decoded, xe_bigint));
            ASSERT_EQ(0, number.set(decoded));
            EXPECT_EQ((message == negative ? "-" : "") + text, number.text(10));
            EXPECT_EQ(
                0, rtBigIntStrCompare(number.context(), decoded.c_str(), number.text(10).c_str()));
        }
        EXPECT_EQ(-1, rtBigIntStrCompare(number.context(), ("-" + text).c_str(), text.c_str()));
        EXPECT_EQ(1, rtBigIntStrCompare(number.context(), (text + "0").c_str(), text.c_str()));
    }
}

TEST(BigInteger, ReadsText) {

    forEachRow("big_integer.txt", "read", [&](const DataRow& row) {
        Number number;
        EXPECT_EQ(row.number("status"), number.set(row["text"], row.number("radix")));
        EXPECT_EQ(row.number("status"), number.context()->errInfo.status);
        EXPECT_EQ(row.number("sign"), number.record()->sign);
        if (row.number("status") != 0) {
            return; // what was read before the bad digit is nobody's business
        }
        EXPECT_EQ(row["magnitude"],
                  toHex(number.record()->mag, static_cast<std::size_t>(number.record()->numocts)));
    });
    Number number;
    EXPECT_EQ(-18, rtBigIntSetStr(number.context(), number.record(), nullptr, 0));
}

TEST(BigInteger, PrintsText) {

    forEachRow("big_integer.txt", "printed", [&](const DataRow& row) {
        Number number;
        ASSERT_EQ(0, number.set(row["text"]));
        const std::string printed = number.text(row.number("radix"), row.number("size"));
        EXPECT_EQ(row["printed"], printed);
        EXPECT_EQ(row.number("recorded"), number.context()->errInfo.status);
    });
}

TEST(BigInteger, ComparesText) {

    forEachRow("big_integer.txt", "compared", [&](const DataRow& row) {
        Context context;
        const char* a = row.text("a");
        const char* b = row.text("b");
        EXPECT_EQ(row.number("result"), rtBigIntStrCompare(context, a, b));
        EXPECT_EQ(-row.number("result"), rtBigIntStrCompare(context, b, a));
        EXPECT_EQ(0, context->errInfo.status);
    });
    Context context;
    rtBigIntStrCompare(context, "", "1y");
    EXPECT_EQ(-18, context->errInfo.status);
}

TEST(BigInteger, GivesOctetsAndEstimates) {
    Number number;
    unsigned char octets[2] = {};
    ASSERT_EQ(0, number.set("255"));
    EXPECT_EQ(-17, rtBigIntGetData(number.context(), number.record(), octets, 1));
    EXPECT_EQ(-17, number.context()->errInfo.status);
    EXPECT_EQ(2, rtBigIntGetData(number.context(), number.record(), octets, 2));
    EXPECT_EQ("00 FF", toHex(octets, 2));
    EXPECT_EQ((2 << 13) / 3402, rtBigIntDigitsNum(number.record(), 10));
    EXPECT_EQ((2 << 13) / 4096, rtBigIntDigitsNum(number.record(), 16));
    EXPECT_EQ(-30, rtBigIntDigitsNum(number.record(), 0));
    EXPECT_EQ(-30, rtBigIntDigitsNum(number.record(), 18));
    RtBigIntDataRec large = {};
    large.numocts = 0x7FFFFFFF;
    EXPECT_EQ(0x7FFFFFFF, rtBigIntDigitsNum(&large, 2));
    rtBigIntFree(number.context(), nullptr);
}

TEST(BigInteger, StartsOnAnArrayOfTheCaller) {
    const tests::LeakCheck allocator;
    Context context;
    unsigned char room[2];
    RtBigIntDataRec number;
    rtBigIntInit(&number);
    number.mag = room;
    number.allocated = 2;
    const long calls = CountingAllocator::calls();
    EXPECT_EQ(0, rtBigIntSetStr(context, &number, "4000", 10));
    EXPECT_EQ(calls, CountingAllocator::calls());
    EXPECT_EQ(room, number.mag);

    CountingAllocator::failAfter(0);
    EXPECT_EQ(-12, rtBigIntSetStr(context, &number, "0x123456", 0));
    EXPECT_EQ(-12, rtBigIntSetStr(context, &number, "100000000", 0));
    EXPECT_EQ("0F A0", toHex(number.mag, 2)) << "the old value stays";
    char text[9];
    EXPECT_EQ(-12, rtBigIntToString(context, &number, 10, text, sizeof text));
    CountingAllocator::neverFail();

    EXPECT_EQ(0, rtBigIntSetStr(context, &number, "0x123456", 0));
    EXPECT_EQ(0, rtBigIntSetStr(context, &number, "0x1234567890", 0));
    EXPECT_EQ(1, number.dynamic);
    EXPECT_EQ(5, number.allocated);
    const long live = CountingAllocator::live();
    rtBigIntFree(context, &number);
    EXPECT_EQ(live - 1, CountingAllocator::live());
}

TEST(BigInteger, GrowsOnlyWhereOctetsDoNotFit) {
    CountingAllocator allocator;
    const struct {
        int (*encoder)(ASN1CTXT*, const char*, ASN1TagType);
        const char* text;
        const char* octets;
    } rows[] = {
        {xe_bigint, "0x01020304", "01 02 03 04"},
        {xe_bigint, "0x0080", "00 80"},
        {xe_bigint, "0xff7f", "FF 7F"},
        {xe_bigint, "0x123", "01 23"},
        {xe_bigint, "0b1111111100000000", "FF 00"},
        {xe_biguint, "0x01020304", "01 02 03 04"},
        {xe_biguint, "0x00FF", "00 FF"},
        {xe_biguint, "0xffffffff", "FF FF FF FF"},
        {xe_biguint, "0b11111111", "FF"},
    };
    for (const auto& row : rows) {
        const auto count = static_cast<unsigned>(fromHex(row.octets).size());
        for (unsigned free = 0; free <= count; ++free) {
            SCOPED_TRACE(row.text + std::string(", free: ") + std::to_string(free));
            Writer writer;
            const Octets before(writer->buffer.byteIndex - free, 0xEE);
            ASSERT_GT(xe_memcpy(writer, before.data(), static_cast<unsigned>(before.size())), 0);
            const bool fits = free == count;
            const long calls = CountingAllocator::calls();
            EXPECT_EQ(static_cast<int>(count), row.encoder(writer, row.text, ASN1TagImplicit));
            EXPECT_EQ(fits ? 0 : 1, CountingAllocator::calls() - calls);
            EXPECT_EQ(row.octets, toHex(xe_getp(writer), count));

            ASSERT_EQ(0, xe_setp(writer, nullptr, free + 1));
            CountingAllocator::failAfter(0);
            EXPECT_EQ(fits ? static_cast<int>(count) : -12,
                      row.encoder(writer, row.text, ASN1TagImplicit));
            // What is wrong with a text is met before room for it is missing.
            EXPECT_EQ(-18, row.encoder(writer, "0x1g", ASN1TagImplicit));
            CountingAllocator::neverFail();
        }
    }
}

TEST(BigInteger, GrowsTheBufferOnceOrReportsMissingMemory) {
    CountingAllocator allocator;
    const std::string decimal(3000, '7'); // beyond the local arrays
    const std::string hexadecimal = "0x" + std::string(400000, '7');
    Writer writer;
    CountingAllocator::failAfter(0);
    for (const std::string& text : {decimal, hexadecimal}) {
        EXPECT_EQ(-12, xe_bigint(writer, text.c_str(), ASN1TagExplicit));
        EXPECT_EQ(-12, writer.recorded());
    }
    rtBigIntStrCompare(writer, decimal.c_str(), "1");
    CountingAllocator::neverFail();
    writer->buffer.byteIndex = writer->buffer.size - 1; // what was written in vain goes
    const long calls = CountingAllocator::calls();
    EXPECT_EQ(200005, xe_bigint(writer, hexadecimal.c_str(), ASN1TagExplicit));
    EXPECT_EQ(calls + 1, CountingAllocator::calls());
}

} // namespace
