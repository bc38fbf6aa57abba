#include <cstddef>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include <brevantis/asn1/asn1data.h>
#include <brevantis/asn1/runtime/tag_length.h>

#include "support/coded_row.h"
#include "support/value_builder.h"

// Where a type of the catalogue is not what its published module, or the types around it, would
// make one expect. Each row says what follows from it for a user of the interface.

namespace {

using namespace asn1data;
using tests::fromHex;
using tests::Octets;
using tests::toHex;

/// The octets of a hexadecimal text in which "(41 x 64)" stands for one of them so many times.
Octets octetsOf(std::string text) {
    Octets repeated;
    if (const std::size_t open = text.find('('); open != std::string::npos) {
        const auto count = std::stoul(text.substr(text.find('x', open) + 1));
        repeated.assign(count, fromHex(text.substr(open + 1, 2))[0]);
        text.erase(open);
    }
    Octets octets = fromHex(text);
    octets.insert(octets.end(), repeated.begin(), repeated.end());
    return octets;
}

TEST(Oddities, AreAsTold) {
    tests::forEachRow("oddities.txt", "messages", [&](const tests::DataRow& row) {
        const TypeDescription* type = findType(row.text("type"));
        ASSERT_NE(type, nullptr);
        const Octets octets = octetsOf(row["message"]);
        const std::size_t position = tests::expectCoded(row, *type, octets);
        EXPECT_TRUE(row.number("status") != 0 || position == octets.size());
    });
}

/// A message or response that comes piece by piece, made of one that did not.
Octets streamed(const Octets& message, bool complete) {
    const std::size_t lengthOctets = message[1] < 0x80 ? 1 : 1u + (message[1] & 0x7Fu);
    Octets octets = {message[0], 0x80};
    octets.insert(octets.end(), message.begin() + 1 + static_cast<std::ptrdiff_t>(lengthOctets),
                  message.end());
    octets.insert(octets.end(), complete ? 2 : 0, 0);
    return octets;
}

/// Decodes a random value's octets after their outermost form was made indefinite.
void expectEnd(const TypeDescription& type, unsigned long long seed) {
    SCOPED_TRACE(type.name);
    tests::Context values;
    void* value = tests::ValueBuilder(values, seed).build(type);
    ASSERT_EQ(xe_setp(values, nullptr, 0), 0);
    ASSERT_GT(family::encode(values, type, value, ASN1TagExplicit), 0);
    const ASN1Buffer& buffer = values->buffer;
    const Octets message(buffer.data + buffer.byteIndex, buffer.data + buffer.size - 1);
    if ((message[0] & 0x20) == 0) {
        return; // an alternative in primitive form
    }
    for (const bool complete : {true, false}) {
        const Octets octets = streamed(message, complete);
        tests::Reader reader(octets);
        void* decoded = family::newRecord(reader, type);
        const int status = family::decode(reader, type, decoded, ASN1TagExplicit, 0);
        if (type.stepsOverEndOfContents) {
            EXPECT_EQ(status, complete ? 0 : ASN1S_INVALID_LENGTH);
            EXPECT_TRUE(!complete || reader.position() == octets.size());
        } else if (complete) {
            EXPECT_EQ(status, 0);
            EXPECT_EQ(reader.position(), octets.size() - 2);
        }
        family::release(reader, type, decoded);
    }
}

// Whether a type steps over the end of its own indefinite form decides whether a streamed message
// can be read whole.
TEST(EndOfContents, IsSteppedOverByTheTypesThatAreStreamed) {
    unsigned stepping = 0;
    for (const TypeDescription* type : allTypes()) {
        const bool constructed = type->shape == Shape::Sequence || type->shape == Shape::Set ||
                                 type->shape == Shape::List || type->shape == Shape::Array ||
                                 type->shape == Shape::FixedArray ||
                                 // Elsewhere it depends on the alternative.
                                 (type->shape == Shape::Choice && type->stepsOverEndOfContents);
        // Behind an EXPLICIT tag the inner form ends first; kept elements end with the message.
        if (!constructed || type->outerTag != 0 || type->extensionOffset != NoOffset) {
            continue;
        }
        for (unsigned long long seed = 1; seed <= 10; ++seed) {
            expectEnd(*type, seed);
        }
        stepping += type->stepsOverEndOfContents;
    }
    // 48 types and seven other names of theirs.
    EXPECT_EQ(stepping, 55u);
}

// A list with a tag of its own leaves it to the caller who writes another in its place, never its
// universal one.
TEST(OwnTags, OfListsAreLeftToTheCaller) {
    tests::Writer writer;
    ASN1T_CertId id;
    id.issuer.t = 3;
    id.issuer.u.dNSName = "A";
    id.serialNumber = "5";
    ASN1T_RevRepContent_revCerts list;
    rtDListInit(&list);
    rtDListAppend(writer, &list, &id);
    EXPECT_EQ(asn1E_RevRepContent_revCerts(writer, &list, ASN1TagImplicit), 10);
    EXPECT_EQ(writer.hex(), "30 08 30 06 82 01 41 02 01 05");
}

TEST(OwnTags, OfChoicesAreLeftToTheCaller) {
    for (const auto& [tagging, octets] :
         {std::pair{ASN1TagExplicit, "A1 03 13 01 41"}, {ASN1TagImplicit, "13 01 41"}}) {
        tests::Writer writer;
        ASN1T_EDIPartyName_partyName name;
        name.t = 2;
        name.u.printableString = "A";
        EXPECT_GT(asn1E_EDIPartyName_partyName(writer, &name, tagging), 0);
        EXPECT_EQ(writer.hex(), octets);
    }
}

TEST(Defaults, OfTextNumbersAreComparedByValue) {
    for (const char* version : {"1", "0x1", "0x01", "0x0001", "0b1"}) {
        tests::Writer writer;
        ASN1T_DVCSRequestInformation value;
        value.version = version;
        value.service = 1;
        EXPECT_EQ(asn1E_DVCSRequestInformation(writer, &value, ASN1TagExplicit), 5) << version;
    }
    tests::Reader reader("30 03 0A 01 01");
    ASN1T_DVCSRequestInformation value;
    ASSERT_EQ(asn1D_DVCSRequestInformation(reader, &value, ASN1TagExplicit, 0), 0);
    EXPECT_STREQ(value.version, "1");
    // The decoded default is a constant of the library, which releasing leaves alone.
    asn1Free_DVCSRequestInformation(reader, &value);
}

TEST(Choices, WithoutAnAlternativeAreRefused) {
    for (const unsigned selector : {0u, 10u}) {
        tests::Writer writer;
        ASN1T_GeneralName name;
        name.t = selector;
        EXPECT_EQ(asn1E_GeneralName(writer, &name, ASN1TagExplicit), ASN1S_INVALID_CHOICE);
        name.t = 0;
    }
}

TEST(Extensions, KeepWhatLaterVersionsAdd) {
    tests::Reader reader("30 0B 06 03 2A 03 04 05 00 02 02 00 01");
    ASN1T_Gost28147_89_BlobParameters value;
    ASSERT_EQ(asn1D_Gost28147_89_BlobParameters(reader, &value, ASN1TagExplicit, 0), 0);
    ASSERT_EQ(value.extElem1.count, 2u);
    const auto* second = static_cast<const ASN1OpenType*>(value.extElem1.tail->data);
    EXPECT_EQ(toHex(second->data, second->numocts), "02 02 00 01");
    asn1Free_Gost28147_89_BlobParameters(reader, &value);
}

// Whoever looks for the cause of a refusal finds the place by these names.
TEST(Parameters, NameThePlaceOfABrokenBound) {
    tests::forEachRow("oddities.txt", "parameters", [&](const tests::DataRow& row) {
        const TypeDescription& type = *findType(row.text("type"));
        std::string parameter = row["element"].empty() ? type.parameter : "";
        for (unsigned i = 0; i < type.elementCount; ++i) {
            if (type.elements[i].name == row["element"]) {
                parameter = type.elements[i].parameter;
            }
        }
        EXPECT_EQ(parameter, row["parameter"]);
    });
}

} // namespace
