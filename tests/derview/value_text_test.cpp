#include "tools/derview/value_text.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/hex.h"
#include "tools/derview/time_text.h"

// What the viewer writes for the values of primitives.

namespace {

using namespace derview;
using tests::fromHex;

constexpr std::size_t Wide = 1000;

/// Collects the values in a message.
class Values : public asn1data::WalkVisitor {
public:
    explicit Values(std::size_t room) : room_(room) {}

    asn1data::WalkAction primitive(const asn1data::WalkElement& element) override {
        const ValueText value = valueText(element, room_);
        texts.push_back(value.text + (value.rest != 0 ? " " + restText(value.rest) : ""));
        return asn1data::WalkAction::Continue;
    }

    std::vector<std::string> texts;

private:
    std::size_t room_;
};

/// The only value in a message.
std::string textOf(const asn1data::TypeDescription& type, std::string_view hex,
                   std::size_t room = Wide) {
    const tests::Octets message = fromHex(hex);
    Values values(room);
    const asn1data::WalkResult result =
        asn1data::walk(type, message.data(), message.size(), values);
    return result.status == 0 && values.texts.size() == 1 ? values.texts[0] : "no value";
}
std::string textOf(const char* type, std::string_view hex, std::size_t room = Wide) {
    return textOf(*asn1data::findType(type), hex, room);
}

TEST(TimeText, TakesUtcTimeForTheYears1950To2049) {
    // RFC 5280, 4.1.2.5.1
    const std::pair<const char*, const char*> rows[] = {
        {"500101000000Z", "1950-01-01T00:00:00Z"}, {"991231235959Z", "1999-12-31T23:59:59Z"},
        {"000101000000Z", "2000-01-01T00:00:00Z"}, {"491231235959Z", "2049-12-31T23:59:59Z"},
        {"4912312359Z", "2049-12-31T23:59:00Z"},   {"5001010000-0130", "1950-01-01T00:00:00-01:30"},
    };
    for (const auto& [text, iso] : rows) {
        EXPECT_EQ(isoTime(text, false), iso) << text;
    }
}

TEST(TimeText, TakesGeneralizedTimeAsItStands) {
    const std::pair<const char*, const char*> rows[] = {
        {"19491231235959Z", "1949-12-31T23:59:59Z"},
        {"2050010100Z", "2050-01-01T00:00:00Z"},
        {"20500101000000.125Z", "2050-01-01T00:00:00.125Z"},
        {"20500101000000,5+02", "2050-01-01T00:00:00.5+02:00"},
        {"20500101000060", "2050-01-01T00:00:60"},
    };
    for (const auto& [text, iso] : rows) {
        EXPECT_EQ(isoTime(text, true), iso) << text;
    }
}

TEST(TimeText, LeavesWhatIsNoTime) {
    for (const char* text :
         {"", "49", "4912312459Z", "491331235959Z", "490031235959Z", "491200235959Z", "4912312360Z",
          "491231235961Z", "491231235959z", "491231235959+2", "491231235959.5Z", "4912312359 9Z"}) {
        EXPECT_EQ(isoTime(text, false), std::nullopt) << text;
    }
    for (const char* text : {"2049123123.5Z", "20491231235959.Z", "204912312359.5Z"}) {
        EXPECT_EQ(isoTime(text, true), std::nullopt) << text;
    }
    EXPECT_EQ(textOf("Time", "17 0D 35 30 30 31 30 31 30 30 30 30 30 30 5A"),
              "1950-01-01 00:00:00 UTC");
    EXPECT_EQ(textOf("Time", "17 03 35 30 5A"), "\"50Z\"");
}

TEST(NumberText, WritesIntegersOfAnySize) {
    // Where octets end in zeros, the one that completes the complement is carried through them.
    const std::pair<const char*, const char*> rows[] = {
        {"02 01 00", "0"},
        {"02 01 7F", "127"},
        {"02 01 80", "-128"},
        {"02 01 FF", "-1"},
        {"02 02 00 80", "128"},
        {"02 02 FF 00", "-256"},
        {"02 02 FF 01", "-255"},
        {"02 03 FF 00 00", "-65536"},
        {"02 03 FE FF 00", "-65792"},
        {"02 08 7F FF FF FF FF FF FF FF", "9223372036854775807"},
        {"02 08 80 00 00 00 00 00 00 01", "-9223372036854775807"},
        {"02 08 80 00 00 00 00 00 00 00", "-0x8000000000000000"},
        {"02 09 00 80 00 00 00 00 00 00 00", "0x8000000000000000"},
        {"02 0A FF 00 00 00 00 00 00 00 00 00", "-0x01000000000000000000"},
        {"02 0A 80 00 00 00 00 00 00 00 00 00", "-0x80000000000000000000"},
    };
    for (const auto& [message, text] : rows) {
        EXPECT_EQ(textOf("CertificateSerialNumber", message), text) << message;
    }
    EXPECT_EQ(textOf(asn1data::builtin::bigUnsigned, "02 01 FF"), "255");
}

TEST(NumberText, CutsWhatDoesNotFit) {
    const std::string message = "02 14 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F 10 11 12 13 14";
    EXPECT_EQ(textOf("CertificateSerialNumber", message, 42),
              "0x0102030405060708090a0b0c0d0e0f1011121314");
    EXPECT_EQ(textOf("CertificateSerialNumber", message, 41),
              "0x0102030405060708090a … 10 more octets");
}

TEST(ValueText, NamesNumbersBitsAndIdentifiers) {
    EXPECT_EQ(textOf("CRLReason", "0A 01 01"), "keyCompromise (1)");
    EXPECT_EQ(textOf("CRLReason", "0A 01 07"), "7");
    EXPECT_EQ(textOf("KeyUsage", "03 02 01 06"), "keyCertSign, cRLSign");
    EXPECT_EQ(textOf("KeyUsage", "03 01 00"), "no bits");
    EXPECT_EQ(textOf("KeyUsage", "03 03 00 80 01"), "digitalSignature, bit 15");
    EXPECT_EQ(textOf("UniqueIdentifier", "03 03 04 AB C0"), "12 bits abc0");
    EXPECT_EQ(textOf("UniqueIdentifier", "23 08 03 02 00 AB 03 02 04 C0"), "20 bits 00abc0");
    EXPECT_EQ(textOf("UniqueIdentifier", "23 80 03 02 00 AB 03 01 04 00 00"), "12 bits 00ab");
    EXPECT_EQ(textOf("UniqueIdentifier", "23 06 23 04 03 02 04 C0"), "21 bits 0204c0");
    EXPECT_EQ(textOf("HoldInstruction", "06 03 2A 03 04"), "1.2.3.4");
    EXPECT_EQ(textOf(asn1data::builtin::objectIdentifier, "06 03 55 04 03"),
              "id_at_commonName (2.5.4.3)");
}

TEST(ValueText, WritesTextFitForATerminal) {
    EXPECT_EQ(textOf(asn1data::builtin::utf8String, "0C 05 C3 A9 22 0A 41"), "\"é\\\"\\nA\"");
    EXPECT_EQ(textOf(asn1data::builtin::teletexString, "14 02 E9 1B"), "\"é\\x1B\"");
    EXPECT_EQ(textOf(asn1data::builtin::bmpString, "1E 08 00 41 20 2E D8 3D DE 00"),
              "\"A\\u{202E}😀\"");
    EXPECT_EQ(textOf(asn1data::builtin::universalString, "1C 04 00 00 20 AC"), "\"€\"");
    EXPECT_EQ(textOf(asn1data::builtin::utf8String, "2C 80 04 02 41 42 04 01 43 00 00"), "\"ABC\"");
    EXPECT_EQ(
        textOf(asn1data::builtin::ia5String,
               "16 18 41 42 43 44 45 46 47 48 49 4A 4B 4C 4D 4E 4F 50 51 52 53 54 55 56 57 58", 20),
        "\"ABCDEFGHIJKLMNOP\" … 8 more octets");
    EXPECT_EQ(textOf(asn1data::builtin::octetString, "04 00"), "(empty)");
    EXPECT_EQ(textOf(asn1data::builtin::octetString, "24 80 04 01 AB 04 01 CD 00 00"), "abcd");
}

} // namespace
