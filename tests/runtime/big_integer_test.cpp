#include <brevantis/asn1/runtime/big_integer.h>

#include <random>
#include <tuple>

#include <gtest/gtest.h>

#include "support/coding.h"
#include "support/counting_allocator.h"
#include "support/mutation.h"

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

/// The fewest octets of a two's complement form.
Octets minimalOctets(long value) {
    Octets octets;
    do {
        octets.insert(octets.begin(), static_cast<unsigned char>(value & 0xFF));
        value >>= 8;
    } while (value != ((octets.front() & 0x80) != 0 ? -1 : 0));
    return octets;
}

Octets integer(const Octets& content) {
    Octets message = {2, static_cast<unsigned char>(content.size())};
    message.insert(message.end(), content.begin(), content.end());
    return message;
}

std::string encodeOctets(const Octets& content) {
    Writer writer;
    const int count = xe_memcpy(writer, content.data(), static_cast<unsigned>(content.size()));
    EXPECT_GT(xe_tag_len(writer, 2, count), count);
    return writer.hex();
}

TEST(BigInteger, Decodes) {
    struct Row {
        const char* name;
        const char* message;
        int status;
        int recorded;
        const char* text;
    };
    const Row rows[] = {
        {"zero", "02 01 00", 0, 0, "0x0"},
        {"positive with a sign octet", "02 02 00 80", 0, 0, "0x080"},
        {"positive", "02 01 7F", 0, 0, "0x7f"},
        {"negative", "02 01 80", 0, 0, "0x80"},
        {"minus one", "02 01 FF", 0, 0, "0xff"},
        {"padded, positive", "02 03 00 00 7F", 0, 0, "0x7f"},
        {"padded, high bit", "02 03 00 00 FF", 0, 0, "0x0ff"},
        {"padded zero", "02 02 00 00", 0, 0, "0x0"},
        {"no content", "02 00", 0, 0, "0x0"},
        {"another tag", "0A 01 00", -3, -3, nullptr},
        {"constructed", "22 01 00", -3, -3, nullptr},
        {"no octet", "", -3, -3, nullptr},
        {"tag alone", "02", -2, -2, nullptr},
        {"cut off", "02 02 01", -2, 0, nullptr},
        {"indefinite length", "02 80 01 00 00", -2, 0, nullptr},
        {"five length octets", "02 85 00 00 00 00 01", -5, -5, nullptr},
    };
    for (const Row& row : rows) {
        for (const int flags : {0, +ASN1F_INDEF_MESSAGE}) {
            SCOPED_TRACE(row.name);
            Reader reader(row.message);
            rtCtxtSetFlag(reader, flags);
            const char* text = nullptr;
            EXPECT_EQ(row.status, xd_bigint(reader, &text, ASN1TagExplicit, 0));
            EXPECT_EQ(row.recorded, reader.recorded());
            EXPECT_STREQ(row.text, text);
        }
    }
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
    struct Row {
        const char* text;
        const char* asSigned;
        const char* asUnsigned;
    };
    const Row rows[] = {
        {"", "-18", "-18"},
        {"0", "02 01 00", "02 01 00"},
        {"0x", "-18", "-18"},
        {"0x0000", "02 01 00", "02 01 00"},
        {"0x80", "02 01 80", "02 01 80"},
        {"0x080", "02 02 00 80", "02 02 00 80"},
        {"0xff", "02 01 FF", "02 01 FF"},
        {"0xFFff", "02 01 FF", "02 02 FF FF"},
        {"0xff7f", "02 02 FF 7F", "02 02 FF 7F"},
        {"0xffff80", "02 01 80", "02 03 FF FF 80"},
        {"0x00FF", "02 02 00 FF", "02 02 00 FF"},
        {"0x007F", "02 01 7F", "02 02 00 7F"},
        {"0x0F", "02 01 0F", "02 01 0F"},
        {"0x123", "02 02 01 23", "02 02 01 23"},
        {"0b11111111", "02 01 FF", "02 01 FF"},
        {"0b101", "02 01 05", "02 01 05"},
        {"0b0000000010000000", "02 02 00 80", "02 02 00 80"},
        {"0b1111111101111111", "02 02 FF 7F", "02 02 FF 7F"},
        {"0b2", "-18", "-18"},
        {"0b22222222", "-18", "-18"},
        {"0x1g", "-18", "-18"},
        {"0xg1", "-18", "-18"},
        {"0x 1", "-18", "-18"},
        {"255", "02 02 00 FF", "-18"},
        {"-128", "02 01 80", "-18"},
        {"-129", "02 02 FF 7F", "-18"},
        {"-256", "02 02 FF 00", "-18"},
        {"-32769", "02 03 FF 7F FF", "-18"},
        {"000", "02 01 00", "-18"},
        {"-0", "02 01 00", "-18"},
        {"0o17", "02 01 0F", "-18"},
        {"  42", "02 01 2A", "-18"},
        {" 0x80", "02 01 80", "-18"},
        {"12x", "-18", "-18"},
        {"x12", "-18", "-18"},
        {"1-2", "-18", "-18"},
        {"-", "-18", "-18"},
        {"0o8", "-18", "-18"},
        {"-8388609", "02 03 7F FF FF", "-18"}, // the length looks at two octets only
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(row.asSigned, encode(row.text, xe_bigint));
        EXPECT_EQ(row.asUnsigned, encode(row.text, xe_biguint));
    }
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

TEST(BigInteger, RoundTripsEverySmallNumber) {
    Number number;
    Writer writer;
    for (long value = -70000; value <= 70000; ++value) {
        const Octets content = minimalOctets(value);
        const std::string hexadecimal = decode(integer(content));
        const std::string decimal = std::to_string(value);
        for (const std::string& text : {hexadecimal, decimal}) {
            writer->buffer.byteIndex = writer->buffer.size - 1;
            ASSERT_EQ(static_cast<int>(content.size()),
                      xe_bigint(writer, text.c_str(), ASN1TagImplicit));
            ASSERT_EQ(toHex(content), writer.hex()) << text;
        }
        ASSERT_EQ(0, number.set(decimal));
        ASSERT_EQ(value == 0 ? "-30" : decimal, number.text(10));
        ASSERT_EQ(0, number.set(hexadecimal));
        ASSERT_EQ(value == 0 ? "-30" : decimal, number.text(10));
        ASSERT_EQ(value == 0 ? 0 : static_cast<int>(content.size()),
                  rtBigIntGetDataLen(number.record()));
        ASSERT_EQ(0, rtBigIntStrCompare(writer, hexadecimal.c_str(), decimal.c_str()) *
                         (value == 0 ? 0 : 1));
    }
}

TEST(BigInteger, AgreesWithLongArithmetic) {
    std::mt19937 random(19991231);
    for (int round = 0; round < 300; ++round) {
        // Beyond 1233 decimal digits the local arrays of the coders no longer do.
        DigitVector decimal(1 + random() % (round % 10 == 0 ? 2000 : 60));
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
        Octets content;
        for (const unsigned octet : convert(decimal, 10, 256)) {
            content.insert(content.begin(), static_cast<unsigned char>(octet));
        }
        if ((content.front() & 0x80) != 0) {
            content.insert(content.begin(), 0);
        }
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

        ASSERT_EQ(0, number.set("-" + text));
        EXPECT_EQ("-" + text, number.text(10));
        EXPECT_EQ(-1, rtBigIntStrCompare(number.context(), ("-" + text).c_str(), text.c_str()));
        EXPECT_EQ(1, rtBigIntStrCompare(number.context(), (text + "0").c_str(), text.c_str()));
    }
}

TEST(BigInteger, ReadsText) {
    struct Row {
        const char* text;
        int radix;
        int status;
        int sign;
        const char* magnitude;
    };
    const Row rows[] = {
        {"0o17", 0, 0, 1, "0F"},
        {"  42", 0, 0, 1, "2A"},
        {"0x", 0, -18, 0, ""},
        {"1", 7, -30, 0, ""},
        {"", 10, -18, 0, ""},
        {"   ", 0, -18, 0, ""},
        {"0x123", 0, 0, 1, "01 23"},
        {"ff", 16, 0, -1, "01"},
        {"0ff", 16, 0, 1, "FF"},
        {"8000", 16, 0, -1, "80 00"},
        {"0x0000", 0, 0, 1, ""},
        {"000", 10, 0, 0, ""},
        {"-000", 10, 0, 0, ""},
        {"0005", 8, 0, 1, "05"},
        {"-17", 8, 0, -1, "0F"},
        {"18", 8, -18, 1, ""},
        {"10000000", 2, 0, -1, "80"},
        {"0b100000000", 0, 0, 1, "01 00"},
        {"65536", 10, 0, 1, "01 00 00"},
        {"+5", 10, 0, 1, "05"},
        {"1-2", 10, -18, 1, ""},
        {"+42", 10, -18, 1, ""},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.text);
        Number number;
        EXPECT_EQ(row.status, number.set(row.text, row.radix));
        EXPECT_EQ(row.status, number.context()->errInfo.status);
        EXPECT_EQ(row.sign, number.record()->sign);
        if (row.status != 0) {
            continue; // what was read before the bad digit is nobody's business
        }
        EXPECT_EQ(row.magnitude,
                  toHex(number.record()->mag, static_cast<std::size_t>(number.record()->numocts)));
    }
    Number number;
    EXPECT_EQ(-18, rtBigIntSetStr(number.context(), number.record(), nullptr, 0));
}

TEST(BigInteger, PrintsText) {
    struct Row {
        const char* text;
        int radix;
        int size;
        const char* printed; ///< the status where there is no text
        int recorded;
    };
    const Row rows[] = {
        {"255", 10, 4, "255", 0},     {"255", 10, 3, "-17", -17}, {"-255", 10, 5, "-255", 0},
        {"-255", 10, 4, "-17", -17},  {"255", 16, 5, "00ff", 0},  {"255", 16, 4, "-17", -17},
        {"255", 16, 0, "-17", -17},   {"255", 10, 0, "-17", -17}, {"-129", 16, 5, "007f", 0},
        {"-1", 2, 9, "11111111", 0},  {"5", 2, 9, "00000101", 0}, {"128", 8, 5, "0200", 0},
        {"128", 8, 4, "-17", -17},    {"-1", 8, 4, "377", 0},     {"127", 8, 4, "177", 0},
        {"10000", 10, 6, "10000", 0}, {"0", 10, 9, "-30", 0},     {"0", 16, 9, "00", 0},
        {"0x00", 16, 9, "", 0},       {"5", 12, 9, "-30", -30},   {"5", 99, 9, "-30", -30},
        {"5", -2, 9, "-30", -30},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(std::string(row.text) + " in radix " + std::to_string(row.radix));
        Number number;
        ASSERT_EQ(0, number.set(row.text));
        const std::string printed = number.text(row.radix, row.size);
        EXPECT_EQ(row.printed, printed);
        EXPECT_EQ(row.recorded, number.context()->errInfo.status);
    }
}

TEST(BigInteger, ComparesText) {
    struct Row {
        const char* a;
        const char* b;
        int result;
    };
    const Row rows[] = {
        {"0x10", "16", 0}, {"-1", "1", -1},     {"1", "-1", 1},        {"-1", "-2", 1},
        {"0", "-0", 0},    {"255", "256", -1},  {"-256", "-255", -1},  {"0xff", "-1", 0},
        {"0", "-5", 1},    {"0b101", "0o5", 0}, {"65537", "65536", 1},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(std::string(row.a) + " " + row.b);
        Context context;
        EXPECT_EQ(row.result, rtBigIntStrCompare(context, row.a, row.b));
        EXPECT_EQ(-row.result, rtBigIntStrCompare(context, row.b, row.a));
        EXPECT_EQ(0, context->errInfo.status);
    }
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
    CountingAllocator allocator;
    {
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
    EXPECT_EQ(0, CountingAllocator::live());
}

TEST(BigInteger, SurvivesMissingMemory) {
    CountingAllocator allocator;
    const std::string decimal(3000, '7'); // beyond the local arrays
    Reader reader("02 01 05");
    Writer writer;
    CountingAllocator::failAfter(0);
    const char* text = nullptr;
    EXPECT_EQ(-12, xd_bigint(reader, &text, ASN1TagExplicit, 0));
    EXPECT_EQ(0, reader.recorded());
    EXPECT_EQ(-12, xe_bigint(writer, decimal.c_str(), ASN1TagExplicit));
    EXPECT_EQ(-12, writer.recorded());
    EXPECT_EQ(-12, xe_bigint(writer, ("0x" + std::string(40000, '7')).c_str(), ASN1TagExplicit));
    rtBigIntStrCompare(writer, decimal.c_str(), "1");
}

TEST(BigInteger, GrowsTheBufferOnce) {
    CountingAllocator allocator;
    Writer writer;
    const std::string text = "0x" + std::string(400000, '7');
    const long calls = CountingAllocator::calls();
    EXPECT_EQ(200005, xe_bigint(writer, text.c_str(), ASN1TagExplicit));
    EXPECT_EQ(calls + 1, CountingAllocator::calls());
}

TEST(BigInteger, StaysInsideAnyInput) {
    for (const char* message : {"02 03 00 80 01", "02 81 02 FF 7F"}) {
        forEachMutation(fromHex(message), [](const Octets& octets) {
            for (const int flags : {0, ASN1F_INDEF_MESSAGE | ASN1F_LENGTH_UNCHECKED}) {
                SCOPED_TRACE(toHex(octets));
                Reader reader(octets);
                rtCtxtSetFlag(reader, flags);
                const char* text = nullptr;
                const int status = xd_bigint(reader, &text, ASN1TagExplicit, 0);
                EXPECT_LE(status, 0);
                EXPECT_LE(reader.position(), octets.size());
                if (status == 0) {
                    EXPECT_LE(std::strlen(text), 3 + 2 * octets.size());
                }
            }
        });
    }
}

} // namespace
