#include <brevantis/asn1/text/json_reader.h>

#include <fstream>

#include <gtest/gtest.h>

#include <brevantis/asn1/asn1data/builder.h>
#include <brevantis/asn1/text/json_writer.h>

#include "support/coding.h"
#include "support/data_file.h"
#include "support/failing_allocations.h"
#include "support/hex.h"
#include "support/json_identity.h"

namespace {

using namespace asn1text;

/// The message that a text tells, or what is wrong with it.
std::string encoded(const std::string& type, std::string_view json, const JsonLimits& limits = {}) {
    OctetStore der;
    JsonFailure failure;
    const bool good = encodeJson(*asn1data::findType(type.c_str()), json, der, failure, limits);
    EXPECT_EQ(good, failure.status == 0);
    return good ? tests::toHex(der) : failureText(failure);
}

TEST(JsonReader, TakesWhatIsWrittenByHand) {
    const struct {
        const char* type;
        const char* json;
        const char* message;
    } rows[] = {
        // DEFAULT and absent elements, keys in any order.
        {"BasicConstraintsSyntax", "{}", "30 00"},
        {"BasicConstraintsSyntax", R"({"cA": false})", "30 00"},
        {"BasicConstraintsSyntax", R"({"pathLenConstraint": 3, "cA": true})",
         "30 06 01 01 FF 02 01 03"},
        // Numbers.
        {"CertificateSerialNumber", "-129", "02 02 FF 7F"},
        {"CertificateSerialNumber", R"("-128")", "02 01 80"},
        {"CertificateSerialNumber", R"("0x80")", "02 02 00 80"},
        {"CertificateSerialNumber", R"("-0x8000")", "02 02 80 00"},
        {"CertificateSerialNumber", R"("0x000f")", "02 01 0F"},
        {"CertificateSerialNumber", R"("0xf")", "02 01 0F"},
        {"CertificateSerialNumber", R"("-0")", "02 01 00"},
        {"CertificateSerialNumber", "18446744073709551615", "02 09 00 FF FF FF FF FF FF FF FF"},
        {"CertificateSerialNumber", "-9223372036854775808", "02 08 80 00 00 00 00 00 00 00"},
        {"CertificateSerialNumber", R"("340282366920938463463374607431768211456")",
         "02 11 01 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00"},
        {"CRLReason", "1", "0A 01 01"},
        {"CRLReason", R"("keyCompromise")", "0A 01 01"},
        {"CRLReason", R"("0x01")", "0A 01 01"},
        {"CRLReason", R"({"name": "keyCompromise"})", "0A 01 01"},
        {"CRLReason", R"({"number": 7, "name": null})", "0A 01 07"},
        {"TSTInfo_version", "1", "02 01 01"},
        {"TSTInfo_version", R"("v1")", "02 01 01"},
        {"TSTInfo_version", R"({"number": "0x0101", "name": null})", "02 02 01 01"},
        // Bits.
        {"KeyUsage", R"(["keyCertSign", "cRLSign"])", "03 02 01 06"},
        {"KeyUsage", R"({"names": ["digitalSignature"]})", "03 02 07 80"},
        {"KeyUsage", R"({"names": [], "bits": 2})", "03 02 06 00"},
        {"KeyUsage", R"([])", "03 01 00"},
        {"KeyUsage", R"(["bit 8"])", "03 03 07 00 80"},
        {"KeyUsage", R"({"hex": "06", "bits": 7})", "03 02 01 06"},
        {"KeyUsage", R"("80")", "03 02 00 80"},
        // Identifiers, times, octets, text.
        {"AlgorithmIdentifier", R"({"algorithm": "rsaEncryption"})",
         "30 0B 06 09 2A 86 48 86 F7 0D 01 01 01"},
        {"AlgorithmIdentifier", R"({"algorithm": {"name": "id_Ed25519"}})", "30 05 06 03 2B 65 70"},
        {"AlgorithmIdentifier", R"({"algorithm": {"oid": "1.2.3"}, "parameters": "0500"})",
         "30 06 06 02 2A 03 05 00"},
        {"Time", R"({"utcTime": "1950-01-01T00:00:00Z"})",
         "17 0D 35 30 30 31 30 31 30 30 30 30 30 30 5A"},
        {"Time", R"({"utcTime": "500101000000Z"})", "17 0D 35 30 30 31 30 31 30 30 30 30 30 30 5A"},
        {"GeneralName", R"({"iPAddress": {"base64": "fwAAAQ=="}})", "87 04 7F 00 00 01"},
        {"GeneralName", R"({"iPAddress": "7F000001"})", "87 04 7F 00 00 01"},
        {"GeneralName", R"({"dNSName": {"base64": "YQ=="}})", "82 01 61"},
        {"DisplayText", R"({"bmpString": "\u0416\ud83d\ude00"})", "1E 06 04 16 D8 3D DE 00"},
        {"DisplayText", R"({"utf8String": "Ж"})", "0C 02 D0 96"},
        // Open values: typed, raw, in front of their identifier, with octets behind them.
        {"Extension", R"({"extnValue": {"basicConstraints": {}}, "extnID": "2.5.29.19"})",
         "30 09 06 03 55 1D 13 04 02 30 00"},
        {"Extension", R"({"extnID": "2.5.29.19", "extnValue": "3000"})",
         "30 09 06 03 55 1D 13 04 02 30 00"},
        {"Extension", R"({"extnID": "2.5.29.19", "extnValue": {"base64": "MAA="}})",
         "30 09 06 03 55 1D 13 04 02 30 00"},
        {"Extension",
         R"({"extnID": "2.5.29.19", "extnValue": {"trailingHex": "00", "basicConstraints": {}}})",
         "30 0A 06 03 55 1D 13 04 03 30 00 00"},
        {"Attribute", R"({"values": [{"contentType": "1.2.3"}, "0500"], "type": "id_contentType"})",
         "30 13 06 09 2A 86 48 86 F7 0D 01 09 03 31 06 05 00 06 02 2A 03"},
        // An object of the viewer.
        {"GeneralName",
         R"({"file": "-", "message": 1, "type": "GeneralName", "recognised": "as told", "size": 3,
             "value": {"dNSName": "a"}, "later": [{"more": [1, 1.5, {}]}, 1e9], "later": 0.5})",
         "82 01 61"},
        {"GeneralName", "\xEF\xBB\xBF {\"dNSName\": \"a\"}", "82 01 61"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(encoded(row.type, row.json), row.message) << row.json;
    }
}

TEST(JsonReader, TellsWhatIsWrongAndWhere) {
    std::string type;
    std::string json;
    unsigned count = 0;
    for (const std::string& line : tests::readDataFile("json_failures.txt")) {
        if (line.front() == ' ') {
            EXPECT_EQ("    " + encoded(type, json), line) << type << " " << json;
            ++count;
            continue;
        }
        const std::size_t blank = std::min(line.find(' '), line.size() - 1);
        type = line.substr(0, line.find(' '));
        json = line.substr(blank + 1);
    }
    EXPECT_GE(count, 100U);
}

TEST(JsonReader, CountsLinesAndColumns) {
    EXPECT_EQ(encoded("Validity", "{\n  \"notBefore\": {\n    \"utcTime\":\t  5}}"),
              "notBefore.utcTime at line 3, column 18: expected a time as 2026-11-21T14:57:02Z, "
              "found a number");
    EXPECT_EQ(encoded("GeneralNames", "[{\"dNSName\": \"a\\\"]\"},\n 5]").substr(0, 25),
              "[1] at line 2, column 2: ");
}

TEST(JsonReader, TakesAnyNumberOfBitsWithTheirNames) {
    OctetStore message = tests::fromHex("03822711 00");
    message.resize(message.size() + 10000, 0x81);
    tests::expectBackFromJson(*asn1data::findType("BasicNameForms"), message);
}

TEST(JsonReader, ReadsTheTextToItsLastOctet) {
    using namespace std::string_view_literals;
    for (const std::string_view behind : {"\0"sv, "\0[]"sv, "\0 "sv, " \0"sv}) {
        EXPECT_EQ(encoded("GeneralNames", "[]" + std::string(behind)).substr(0, 10), "at line 1,")
            << tests::toHex({behind.begin(), behind.end()});
    }
}

TEST(JsonReader, KeepsToItsLimits) {
    const std::string deep(600, '[');
    EXPECT_EQ(encoded("GeneralNames", "{\"file\": 1, \"x\": " + deep).substr(0, 80),
              "at line 1, column 529: expected at most 512 objects and arrays in each other, fo");
    JsonLimits limits;
    limits.textSize = 10;
    EXPECT_EQ(encoded("GeneralNames", "[         ]", limits),
              "at line 1, column 1: expected a text of at most 10 octets, found 11");
    EXPECT_EQ(encoded("GeneralNames", "[        ]", limits), "30 00");
    limits.depth = 1;
    EXPECT_EQ(encoded("GeneralNames", "[{", limits),
              "[0] at line 1, column 2: expected at most 1 objects and arrays in each other, found "
              "one more");
    const std::string digits(5000, '1');
    EXPECT_EQ(encoded("CertificateSerialNumber", "\"" + digits + "\"").substr(0, 80),
              "at line 1, column 1: expected at most 4096 decimal digits, or hexadecimal ones, ");
}

TEST(JsonReader, KnowsTheViewersObjectsByAKeyThatNoTypeHas) {
    for (const asn1data::TypeDescription* const type : asn1data::allTypes()) {
        for (unsigned i = 0; i < type->elementCount; ++i) {
            for (const char* const key : {"file", "hex", "base64"}) {
                EXPECT_STRNE(type->elements[i].name, key) << type->name;
            }
        }
    }
    for (const asn1data::ObjectSetDescription* const set : asn1data::allObjectSets()) {
        for (unsigned i = 0; i < set->count; ++i) {
            for (const char* const key : {"trailing", "trailingHex", "hex", "base64"}) {
                EXPECT_STRNE(set->objects[i].name, key) << set->name;
            }
        }
    }
}

TEST(JsonReader, LeavesNothingBehindWhenMemoryIsOut) {
    constexpr std::string_view json =
        R"({"extnID": {"oid": "2.5.29.17", "name": "id_ce_subjectAltName"}, "extnValue":
            {"subjectAltName": [{"dNSName": "a"}, {"directoryName": {"rdnSequence": [[
            {"type": "2.5.4.3", "value": {"commonName": {"bmpString": "b"}}}]]}}],
            "trailingHex": "00"}})";
    const asn1data::TypeDescription& type = *asn1data::findType("Extension");
    const long failures = tests::failEveryAllocation([&] {
        OctetStore der;
        JsonFailure failure;
        if (!encodeJson(type, json, der, failure)) {
            EXPECT_EQ(failure.status, ASN1S_NO_MEMORY) << failureText(failure);
            throw std::bad_alloc();
        }
    });
    EXPECT_GT(failures, 10);
}

TEST(JsonReader, KnowsNamesOfOnesOwn) {
    IdentifierNames names;
    ASSERT_EQ(names.read("OID = 1 2 3 4\nDescription = my own"), "");
    OctetStore der;
    JsonFailure failure;
    for (const char* json : {R"("my own")", R"({"oid": "1.2.3.4", "name": "my own"})"}) {
        const asn1data::TypeDescription& type = asn1data::builtin::objectIdentifier;
        EXPECT_TRUE(encodeJson(type, json, der, failure, {}, names)) << failureText(failure);
        EXPECT_EQ(tests::toHex(der), "06 03 2A 03 04");
        EXPECT_FALSE(encodeJson(type, json, der, failure));
    }
    // Two identifiers with one name.
    ASSERT_EQ(names.read("OID = 1 2 3 5\nDescription = my own"), "");
    for (const char* oid : {"1.2.3.4", "1.2.3.5"}) {
        const std::string json = "{\"oid\": \"" + std::string(oid) + "\", \"name\": \"my own\"}";
        EXPECT_TRUE(encodeJson(asn1data::builtin::objectIdentifier, json, der, failure, {}, names))
            << failureText(failure);
    }
}

} // namespace
