#include <brevantis/asn1/text/json_writer.h>

#include <algorithm>

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <brevantis/asn1/text/value.h>

#include "support/hex.h"

namespace {

using namespace asn1text;
using tests::fromHex;

/// What becomes of a message; "error" behind it where it does not decode.
std::string json(const asn1data::TypeDescription& type, std::string_view hex) {
    const OctetStore message = fromHex(hex);
    TextSink sink;
    const asn1data::WalkResult result = writeJson(type, message, sink, JsonLayout::OneLine);
    sink.whole.pop_back();
    return sink.whole + (result.status != 0 ? " error" : "");
}

TEST(JsonWriter, WritesTextOnlyWhereAllOfItIsText) {
    namespace builtin = asn1data::builtin;
    const struct {
        const asn1data::TypeDescription& type;
        const char* message;
        const char* json;
    } rows[] = {
        {builtin::utf8String, "0c 05 22 5c c3a9 0a", R"("\"\\\u00e9\n")"},
        {builtin::utf8String, "0c 05 f09f9880 7f", R"("\ud83d\ude00\u007f")"},
        {builtin::bmpString, "1e 04 d83d de00", R"("\ud83d\ude00")"},
        {builtin::bmpString, "1e 04 0041 d83d", R"({"hex":"0041d83d"})"},
        {builtin::bmpString, "1e 04 de00 d83d", R"({"hex":"de00d83d"})"},
        {builtin::universalString, "1c 04 0010ffff", R"("\udbff\udfff")"},
        {builtin::universalString, "1c 04 00110000", R"({"hex":"00110000"})"},
        {builtin::universalString, "1c 04 0000d800", R"({"hex":"0000d800"})"},
        {builtin::ia5String, "16 02 41 ff", R"("A\u00ff")"},
        {builtin::utcTime, "17 0d 3236313132313133333330365a", R"("2026-11-21T13:33:06Z")"},
        {builtin::utcTime, "17 01 42", R"({"hex":"42"})"},
        // A character may go on in the next segment.
        {builtin::bmpString, "3e 0a 0403 0041d8 0403 3dde00", R"("A\ud83d\ude00")"},
        {builtin::bmpString, "3e 0a 0403 0041d8 0403 3d0042", R"({"hex":"0041d83d0042"})"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(json(row.type, row.message), row.json) << row.message;
    }
}

TEST(JsonWriter, TellsMagnitudes) {
    const std::pair<const char*, const char*> rows[] = {
        {"0201 00", "0"},
        {"0201 80", "-128"},
        {"0202 ff00", "-256"},
        {"0203 ffff01", "-255"},
        {"0207 1fffffffffffff", "9007199254740991"},
        {"0207 20000000000000", R"("0x20000000000000")"},
        {"0207 e0000000000001", "-9007199254740991"},
        {"0207 e0000000000000", R"("-0x20000000000000")"},
        {"0209 ff0000000000000000", R"("-0x010000000000000000")"},
        {"0209 008000000000000001", R"("0x8000000000000001")"},
    };
    for (const auto& [message, text] : rows) {
        EXPECT_EQ(json(asn1data::builtin::bigInteger, message), text) << message;
    }
}

TEST(JsonWriter, TellsOctetsBehindATypedValue) {
    const asn1data::TypeDescription& type = *asn1data::findType("Extension");
    const std::string behind =
        R"({"extnID":{"oid":"2.5.29.19","name":"id_ce_basicConstraints"},"extnValue":)"
        R"({"basicConstraints":{},"trailing":3,"trailingHex":"534543"}})";
    EXPECT_EQ(json(type, "300c 0603551d13 0405 3000 534543"), behind);
    EXPECT_EQ(json(type, "3010 0603551d13 2409 0403300053 0402 4543"), behind);
}

/// Keeps nothing of what it is given.
class Counting : public Sink {
public:
    void write(std::string_view text) override {
        total += text.size();
        largest = std::max(largest, text.size());
    }

    std::size_t total = 0;
    std::size_t largest = 0;
};

long residentKilobytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

TEST(JsonWriter, TakesNoMemoryForLongStrings) {
    constexpr std::size_t size = 48 << 20;
    // Two segments of half the size each.
    for (const char segment : {'\x04', '\x0c'}) {
        const bool octets = segment == '\x04';
        OctetStore message = fromHex(octets ? "2480" : "0c8403000000");
        for (int i = 0; octets && i < 2; ++i) {
            const OctetStore header = fromHex("048401800000");
            message.insert(message.end(), header.begin(), header.end());
            message.insert(message.end(), size / 2, 'a');
        }
        message.insert(message.end(), octets ? 2 : size, octets ? '\0' : 'a');
        const asn1data::TypeDescription& type =
            octets ? asn1data::builtin::octetString : asn1data::builtin::utf8String;
        const long before = residentKilobytes();
        Counting sink;
        EXPECT_EQ(writeJson(type, message, sink).status, 0);
        EXPECT_EQ(sink.total, (octets ? 2 : 1) * size + 3);
        EXPECT_LE(sink.largest, std::size_t{1} << 16);
        EXPECT_LT(residentKilobytes() - before, 8 << 10);
    }
}

TEST(JsonWriter, TakesNoMemoryForNamesOfBits) {
    OctetStore message = fromHex("0383100001 00");
    message.resize(message.size() + (1 << 20), 0x55);
    const long before = residentKilobytes();
    Counting sink;
    EXPECT_EQ(writeJson(*asn1data::findType("BasicNameForms"), message, sink).status, 0);
    EXPECT_GT(sink.total, std::size_t{40} << 20);
    EXPECT_LT(residentKilobytes() - before, 8 << 10);
}

} // namespace
