#include <brevantis/asn1/runtime/scalar.h>

#include <algorithm>
#include <limits>

#include <gtest/gtest.h>

#include "support/row_reader.h"

namespace {

using tests::DataRow;
using tests::Octets;
using tests::Reader;
using tests::RowReader;
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

const Coder coders[] = {
    {"boolean", encoder<unsigned char, xe_boolean>, decoder<unsigned char, xd_boolean>},
    {"integer", encoder<int, xe_integer>, decoder<int, xd_integer>},
    {"unsigned", encoder<unsigned, xe_unsigned>, decoder<unsigned, xd_unsigned>},
    {"uint16", encoder<unsigned short, xe_uint16>, decoder<unsigned short, xd_uint16>},
    {"enumerated", encoder<int, xe_enum>, decoder<int, xd_enum>},
    {"null", nullEncoder, nullDecoder},
};

const Coder& coderOf(const DataRow& row) {
    return *std::find_if(std::begin(coders), std::end(coders),
                         [&](const Coder& coder) { return coder.name == row["coder"]; });
}

TEST(Scalar, CanonicalValuesGoBothWays) {
    tests::forEachRow("scalar.txt", "canonical", [&](const DataRow& row) {
        const Coder& coder = coderOf(row);
        const auto expected = row.number<long long>("value");
        const Octets octets = tests::fromHex(row["message"]);
        const int count = static_cast<int>(octets.size());
        Writer writer;
        EXPECT_EQ(coder.encode(writer, expected, ASN1TagExplicit), count);
        EXPECT_EQ(writer.hex(), row["message"]);
        EXPECT_EQ(coder.encode(writer, expected, ASN1TagImplicit), count - 2);

        Reader whole(octets);
        whole->flags = ASN1F_CONSTRUCTED;
        long long value = expected;
        EXPECT_EQ(coder.decode(whole, &value, ASN1TagExplicit, 0), 0);
        EXPECT_EQ(value, expected);
        EXPECT_EQ(whole.position(), octets.size());
        EXPECT_EQ(whole->flags, row["coder"] == "enumerated" ? ASN1F_CONSTRUCTED : 0);

        Reader contents(Octets(octets.begin() + 2, octets.end()));
        EXPECT_EQ(coder.decode(contents, &value, ASN1TagImplicit, count - 2), 0);
        EXPECT_EQ(value, expected);
        EXPECT_EQ(contents.position(), octets.size() - 2);
    });
}

TEST(Scalar, EveryTruncationFailsInsideTheBuffer) {
    tests::forEachRow("scalar.txt", "canonical", [&](const DataRow& row) {
        const Octets octets = tests::fromHex(row["message"]);
        const std::string& coder = row["coder"];
        for (std::size_t count = 0; count < octets.size(); ++count) {
            for (const unsigned short flags : messageKinds) {
                SCOPED_TRACE(testing::Message()
                             << row << " cut at " << count << " flags " << flags);
                Reader reader(Octets(octets.begin(), octets.begin() + static_cast<long>(count)));
                reader->flags = flags;
                long long value = 0;
                // An octet that is not there is not the tag; uint16 asks for a whole element first.
                const bool noTag = count == 0 && (coder != "uint16" || flags != 0);
                const int status = noTag ? ASN1S_TAG_NOT_FOUND : ASN1S_END_OF_BUFFER;
                EXPECT_EQ(coderOf(row).decode(reader, &value, ASN1TagExplicit, 0), status);
                const bool recorded =
                    coder == "enumerated" ? count > 1 : coder != "unsigned" || count < 2;
                EXPECT_EQ(reader.recorded(), recorded ? status : 0);
                EXPECT_LE(reader.position(), count);
            }
        }
    });
}

TEST(Scalar, DecodersAcceptWhatBerAllows) {
    tests::forEachRow("scalar.txt", "tolerated", [&](const DataRow& row) {
        Reader reader(row["message"]);
        long long value = 0;
        EXPECT_EQ(coderOf(row).decode(reader, &value, ASN1TagExplicit, 0), 0);
        EXPECT_EQ(value, row.number<long long>("value"));
        EXPECT_EQ(reader.position(), reader->buffer.size);
        EXPECT_EQ(reader.recorded(), 0);
    });
}

TEST(Scalar, DecodersRefuse) {
    tests::forEachRow("scalar.txt", "refused", [&](const DataRow& row) {
        RowReader reader(row);
        long long value = 0;
        reader.expect(coderOf(row).decode(reader, &value, ASN1TagExplicit, 0));
    });
}

TEST(Scalar, ImplicitLengthsAreHeldToTheBuffer) {
    for (const Coder& coder : coders) {
        if (coder.decode == nullDecoder) {
            continue; // NULL has no length to believe
        }
        SCOPED_TRACE(coder.name);
        long long value = 0;
        for (const int length : {std::numeric_limits<int>::min(), ASN1IndefiniteLength + 0, -1, 17,
                                 std::numeric_limits<int>::max()}) {
            Reader reader("00 00 00 00 00 00 00 00");
            EXPECT_EQ(coder.decode(reader, &value, ASN1TagImplicit, length),
                      coder.name == std::string("boolean") ? ASN1S_INVALID_LENGTH
                                                           : ASN1S_VALUE_TOO_BIG);
            EXPECT_EQ(reader.position(), 0U);
        }
        Reader empty("");
        EXPECT_EQ(coder.decode(empty, &value, ASN1TagImplicit, 1), ASN1S_END_OF_BUFFER);
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
