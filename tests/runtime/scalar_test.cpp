#include <brevantis/asn1/runtime/scalar.h>

#include <limits>

#include <gtest/gtest.h>

#include "support/coding.h"

namespace {

using tests::Octets;
using tests::Reader;
using tests::Writer;

/// Flags of a message of definite and of indefinite length; the bound holds in both.
constexpr unsigned short messageKinds[] = {0, ASN1F_INDEF_MESSAGE};

/// One signature for all types, so that rows can name a coder.
template <typename Value, int (*encode)(ASN1CTXT*, Value*, ASN1TagType)>
int encoder(ASN1CTXT* ctxt, long long number, ASN1TagType tagging) {
    auto value = static_cast<Value>(number);
    return encode(ctxt, &value, tagging);
}
template <typename Value, int (*decode)(ASN1CTXT*, Value*, ASN1TagType, int)>
int decoder(ASN1CTXT* ctxt, long long* number, ASN1TagType tagging, int length) {
    Value value = 77;
    const int status = decode(ctxt, &value, tagging, length);
    *number = value;
    return status;
}
int nullEncoder(ASN1CTXT* ctxt, long long, ASN1TagType tagging) {
    return xe_null(ctxt, tagging);
}
int nullDecoder(ASN1CTXT* ctxt, long long*, ASN1TagType tagging, int) {
    return xd_null(ctxt, tagging);
}

struct Coder {
    const char* name;
    int (*encode)(ASN1CTXT*, long long, ASN1TagType);
    int (*decode)(ASN1CTXT*, long long*, ASN1TagType, int);
};

constexpr Coder boolean{"boolean", encoder<unsigned char, xe_boolean>,
                        decoder<unsigned char, xd_boolean>};
constexpr Coder integer{"integer", encoder<int, xe_integer>, decoder<int, xd_integer>};
constexpr Coder unsignedInteger{"unsigned", encoder<unsigned, xe_unsigned>,
                                decoder<unsigned, xd_unsigned>};
constexpr Coder uint16{"uint16", encoder<unsigned short, xe_uint16>,
                       decoder<unsigned short, xd_uint16>};
constexpr Coder enumerated{"enum", encoder<int, xe_enum>, decoder<int, xd_enum>};
constexpr Coder null{"null", nullEncoder, nullDecoder};

const struct {
    const Coder& coder;
    long long value;
    const char* hex;
} canonicalRows[] = {
    {boolean, 0, "01 01 00"},
    {boolean, 0xFF, "01 01 FF"},
    {integer, 0, "02 01 00"},
    {integer, -1, "02 01 FF"},
    {integer, 127, "02 01 7F"},
    {integer, 128, "02 02 00 80"},
    {integer, -128, "02 01 80"},
    {integer, -129, "02 02 FF 7F"},
    {integer, 32767, "02 02 7F FF"},
    {integer, 32768, "02 03 00 80 00"},
    {integer, -32769, "02 03 FF 7F FF"},
    {integer, 0x00FF00FF, "02 04 00 FF 00 FF"},
    {integer, std::numeric_limits<int>::max(), "02 04 7F FF FF FF"},
    {integer, std::numeric_limits<int>::min(), "02 04 80 00 00 00"},
    {unsignedInteger, 0, "02 01 00"},
    {unsignedInteger, 0x80, "02 02 00 80"},
    {unsignedInteger, 0x7FFFFFFF, "02 04 7F FF FF FF"},
    {unsignedInteger, 0x80000000, "02 05 00 80 00 00 00"},
    {unsignedInteger, 0xFFFFFFFF, "02 05 00 FF FF FF FF"},
    {uint16, 0, "02 01 00"},
    {uint16, 0x7F, "02 01 7F"},
    {uint16, 0x80, "02 02 00 80"},
    {uint16, 0x7FFF, "02 02 7F FF"},
    {uint16, 0x8000, "02 03 00 80 00"},
    {uint16, 0xFFFF, "02 03 00 FF FF"},
    {enumerated, 3, "0A 01 03"},
    {enumerated, -1, "0A 01 FF"},
    {enumerated, 65536, "0A 03 01 00 00"},
    {null, 0, "05 00"},
};

TEST(Scalar, CanonicalValuesGoBothWays) {
    for (const auto& row : canonicalRows) {
        SCOPED_TRACE(std::string(row.coder.name) + " " + row.hex);
        const Octets octets = tests::fromHex(row.hex);
        const int count = static_cast<int>(octets.size());
        Writer writer;
        EXPECT_EQ(row.coder.encode(writer, row.value, ASN1TagExplicit), count);
        EXPECT_EQ(writer.hex(), row.hex);
        EXPECT_EQ(row.coder.encode(writer, row.value, ASN1TagImplicit), count - 2);

        Reader whole(octets);
        whole->flags = ASN1F_CONSTRUCTED;
        long long value = row.value;
        EXPECT_EQ(row.coder.decode(whole, &value, ASN1TagExplicit, 0), 0);
        EXPECT_EQ(value, row.value);
        EXPECT_EQ(whole.position(), octets.size());
        EXPECT_EQ(whole->flags, &row.coder == &enumerated ? ASN1F_CONSTRUCTED : 0);

        Reader contents(Octets(octets.begin() + 2, octets.end()));
        EXPECT_EQ(row.coder.decode(contents, &value, ASN1TagImplicit, count - 2), 0);
        EXPECT_EQ(value, row.value);
        EXPECT_EQ(contents.position(), octets.size() - 2);
    }
}

TEST(Scalar, EveryTruncationFailsInsideTheBuffer) {
    for (const auto& row : canonicalRows) {
        const Octets octets = tests::fromHex(row.hex);
        for (std::size_t count = 0; count < octets.size(); ++count) {
            for (const unsigned short flags : messageKinds) {
                SCOPED_TRACE(std::string(row.coder.name) + " " + row.hex + " cut at " +
                             std::to_string(count) + " flags " + std::to_string(flags));
                Reader reader(Octets(octets.begin(), octets.begin() + static_cast<long>(count)));
                reader->flags = flags;
                long long value = 0;
                // An octet that is not there is not the tag; uint16 asks for a whole element first.
                const bool noTag = count == 0 && (&row.coder != &uint16 || flags != 0);
                const int status = noTag ? ASN1S_TAG_NOT_FOUND : ASN1S_END_OF_BUFFER;
                EXPECT_EQ(row.coder.decode(reader, &value, ASN1TagExplicit, 0), status);
                const bool recorded = &row.coder == &enumerated
                                          ? count > 1
                                          : &row.coder != &unsignedInteger || count < 2;
                EXPECT_EQ(reader.recorded(), recorded ? status : 0);
                EXPECT_LE(reader.position(), count);
            }
        }
    }
}

TEST(Scalar, DecodersAcceptWhatBerAllows) {
    const struct {
        const Coder& coder;
        const char* hex;
        long long value;
        const char* reason;
    } rows[] = {
        {boolean, "01 01 01", 1, "the octet is kept as it stands"},
        {integer, "02 81 01 05", 5, "length in the long form"},
        {integer, "02 04 00 00 00 01", 1, "redundant zeros"},
        {integer, "02 04 FF FF FF FF", -1, "redundant sign octets"},
        {unsignedInteger, "02 01 FF", 255, "the sign bit is value"},
        {unsignedInteger, "02 04 FF FF FF FF", 0xFFFFFFFF, "the sign bit is value"},
        {unsignedInteger, "02 00", 0, "no contents are 0"},
        {uint16, "02 01 FF", 255, "the sign bit is value"},
        {uint16, "02 03 00 00 05", 5, "redundant zeros"},
        {uint16, "02 00 09", 9, "a length of 0 takes one octet"},
        {enumerated, "0A 82 00 01 05", 5, "length in the long form"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.coder.name) + " " + row.hex + ": " + row.reason);
        Reader reader(row.hex);
        long long value = 0;
        EXPECT_EQ(row.coder.decode(reader, &value, ASN1TagExplicit, 0), 0);
        EXPECT_EQ(value, row.value);
        EXPECT_EQ(reader.position(), reader->buffer.size);
        EXPECT_EQ(reader.recorded(), 0);
    }
}

TEST(Scalar, DecodersRefuse) {
    const struct {
        const Coder& coder;
        const char* hex;
        int status;
        int recorded;
        unsigned position;
        const char* reason;
    } rows[] = {
        {boolean, "02 01 00", -3, -3, 0, "tag"},
        {boolean, "01 02 00 00", -5, -5, 2, "two octets"},
        {boolean, "01 00 00", -5, -5, 2, "no octet"},
        {boolean, "01 81 01 00", -5, -5, 2, "long form"},
        {integer, "22 01 00", -3, -3, 0, "constructed form"},
        {integer, "02 00", -5, -5, 2, "no octet"},
        {integer, "02 05 00 00 00 00 01", -33, -33, 2, "five octets, whatever they hold"},
        {integer, "02 80 00 00", -33, -33, 2, "indefinite"},
        {integer, "02 85 00", -5, -5, 2, "malformed length"},
        {unsignedInteger, "82 01 00", -3, -3, 0, "context tag"},
        {unsignedInteger, "02 05 01 00 00 00 00", -33, -33, 2, "33 bits"},
        {unsignedInteger, "02 06 00 00 00 00 00 00", -33, -33, 2, "six octets"},
        {unsignedInteger, "02 80 00 00", -33, -33, 2, "indefinite"},
        {unsignedInteger, "02 81 05 00", -5, -5, 3, "long form beyond the buffer"},
        {unsignedInteger, "02 05 00 00 00", -2, 0, 5, "contents cut off"},
        {uint16, "03 01 00", -3, -3, 0, "tag"},
        {uint16, "02 04 00 00 00 00", -33, -33, 2, "four octets"},
        {uint16, "02 03 01 00 00", -33, -33, 3, "17 bits"},
        {uint16, "02 81 01 00", -33, -33, 2, "long form"},
        {uint16, "02 00", -2, -2, 0, "less than three octets"},
        {enumerated, "02 01 00", -3, 0, 0, "tag"},
        {enumerated, "0A 00", -5, -5, 2, "no octet"},
        {enumerated, "0A 80 00 00", -33, -33, 2, "indefinite"},
        {enumerated, "0A 85", -5, -5, 2, "malformed length"},
        {null, "04 00", -3, -3, 0, "tag"},
        {null, "05 01 00", -5, -5, 2, "contents"},
        {null, "05 81 00", -5, -5, 2, "long form"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.coder.name) + " " + row.hex + ": " + row.reason);
        Reader reader(row.hex);
        long long value = 0;
        EXPECT_EQ(row.coder.decode(reader, &value, ASN1TagExplicit, 0), row.status);
        EXPECT_EQ(reader.recorded(), row.recorded);
        EXPECT_EQ(reader.position(), row.position);
    }
}

TEST(Scalar, ImplicitLengthsAreHeldToTheBuffer) {
    for (const Coder* coder : {&boolean, &integer, &unsignedInteger, &uint16, &enumerated}) {
        SCOPED_TRACE(coder->name);
        long long value = 0;
        for (const int length : {std::numeric_limits<int>::min(), ASN1IndefiniteLength + 0, -1, 6,
                                 std::numeric_limits<int>::max()}) {
            Reader reader("00 00 00 00 00 00 00 00");
            EXPECT_EQ(coder->decode(reader, &value, ASN1TagImplicit, length),
                      coder == &boolean ? ASN1S_INVALID_LENGTH : ASN1S_VALUE_TOO_BIG);
            EXPECT_EQ(reader.position(), 0U);
        }
        Reader empty("");
        EXPECT_EQ(coder->decode(empty, &value, ASN1TagImplicit, 1), ASN1S_END_OF_BUFFER);
    }
    // In an indefinite message its end-of-contents octets are another tag, not a cut element.
    Reader reader("00 00");
    reader->flags = ASN1F_INDEF_MESSAGE;
    unsigned short value = 0;
    EXPECT_EQ(xd_uint16(reader, &value, ASN1TagExplicit, 0), ASN1S_TAG_NOT_FOUND);
}

TEST(Scalar, EncodersNormaliseTruthAndRefuseNull) {
    Writer writer;
    unsigned char truth = 1;
    EXPECT_EQ(xe_boolean(writer, &truth, ASN1TagExplicit), 3);
    EXPECT_EQ(writer.hex(), "01 01 FF");
    EXPECT_EQ(xe_boolean(writer, nullptr, ASN1TagExplicit), ASN1S_BAD_VALUE);
    EXPECT_EQ(xe_integer(writer, nullptr, ASN1TagExplicit), ASN1S_BAD_VALUE);
    EXPECT_EQ(xe_unsigned(writer, nullptr, ASN1TagImplicit), ASN1S_BAD_VALUE);
    EXPECT_EQ(xe_uint16(writer, nullptr, ASN1TagExplicit), ASN1S_BAD_VALUE);
    EXPECT_EQ(xe_enum(writer, nullptr, ASN1TagExplicit), ASN1S_BAD_VALUE);
    EXPECT_EQ(writer.hex(), "01 01 FF");
    EXPECT_EQ(writer.recorded(), 0);
    EXPECT_EQ(xd_null(writer, ASN1TagImplicit), 0);
}

} // namespace
