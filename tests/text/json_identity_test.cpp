#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

#include <gtest/gtest.h>

#include <brevantis/asn1/asn1data/reading_policy.h>
#include <brevantis/asn1/text/message.h>
#include <brevantis/asn1/text/recognition.h>

#include "support/ca_bundle.h"
#include "support/data_file.h"
#include "support/deepest_message.h"
#include "support/json_identity.h"
#include "support/mutation.h"
#include "support/shapes_catalogue.h"
#include "support/value_round_trip.h"

// What is DER and comes back from a record unchanged comes back from JSON unchanged.

namespace {

using asn1data::TypeDescription;
using tests::expectBackFromJson;
using tests::Octets;

unsigned fromEnvironment(const char* name, unsigned usual) {
    const char* const wanted = std::getenv(name);
    return wanted != nullptr ? static_cast<unsigned>(std::strtoul(wanted, nullptr, 10)) : usual;
}

/// Whether a message is to its last octet what decoding and encoding leave of it.
bool isDer(const TypeDescription& type, const Octets& message) {
    asn1data::WalkVisitor nothing;
    const asn1data::WalkResult result =
        asn1data::walk(type, message.data(), message.size(), nothing, {ASN1F_DER | ASN1F_EXACT});
    if (result.status != 0 || result.consumed != message.size()) {
        return false;
    }
    tests::Reader reader(message);
    void* const value = asn1data::family::newRecord(reader, type);
    if (asn1data::family::decode(reader, type, value, ASN1TagExplicit, 0) != 0) {
        return false;
    }
    int status = 0;
    return tests::encodedValue(type, value, status) == message;
}

/// Messages of the tests' data that decode, with their types.
std::vector<std::pair<const TypeDescription*, Octets>> samples() {
    std::vector<std::pair<const TypeDescription*, Octets>> messages;
    for (const auto& [file, shapes] : {std::pair("engine.txt", true), {"oddities.txt", false}}) {
        for (const tests::DataRow& row : tests::dataRows(file, "messages")) {
            const std::string hex = row["message"];
            if (hex.find('(') != std::string::npos) {
                continue; // told in short, for its size
            }
            messages.emplace_back(shapes ? shapes::findType(row.text("type"))
                                         : asn1data::findType(row.text("type")),
                                  tests::fromHex(hex));
        }
    }
    namespace fs = std::filesystem;
    for (const auto& entry : fs::directory_iterator(fs::path(TESTS_DATA_DIRECTORY) / "derview")) {
        if (entry.path().extension() == ".txt") {
            continue;
        }
        std::ifstream file(entry.path(), std::ios::binary);
        const Octets octets(std::istreambuf_iterator<char>(file), {});
        const std::string name = entry.path().stem();
        const TypeDescription* const type =
            asn1data::findType(name.substr(0, name.find('-')).c_str());
        asn1text::MessageReader reader(octets, asn1text::InputForm::Auto);
        while (const auto message = reader.next()) {
            const asn1text::Octets found = message->octets;
            messages.emplace_back(type != nullptr ? type
                                                  : asn1text::recognise(found, message->label).type,
                                  Octets(found.begin(), found.end()));
        }
    }
    for (const Octets& certificate : tests::caBundle()) {
        messages.emplace_back(asn1data::findType("Certificate"), certificate);
    }
    return messages;
}

class EveryType : public testing::TestWithParam<const TypeDescription*> {};

TEST_P(EveryType, ComesBackFromJson) {
    const TypeDescription& type = *GetParam();
    const unsigned count = fromEnvironment("BREVANTIS_VALUES_PER_TYPE", 20);
    for (unsigned seed = 0; seed < count && !HasFatalFailure(); ++seed) {
        SCOPED_TRACE(std::string(type.name) + ", seed " + std::to_string(seed));
        tests::Context values;
        int status = 0;
        const Octets message =
            tests::encodedValue(type, tests::ValueBuilder(values, seed).build(type), status);
        ASSERT_GE(status, 0);
        if (!message.empty()) {
            expectBackFromJson(type, message);
        }
    }
}

std::string nameOf(const testing::TestParamInfo<const TypeDescription*>& info) {
    return std::to_string(info.index) + "X" + info.param->name;
}
INSTANTIATE_TEST_SUITE_P(Json, EveryType,
                         testing::ValuesIn(asn1data::allTypes().begin(),
                                           asn1data::allTypes().end()),
                         nameOf);
INSTANTIATE_TEST_SUITE_P(JsonShapes, EveryType,
                         testing::ValuesIn(shapes::allTypes().begin(), shapes::allTypes().end()),
                         nameOf);

TEST(JsonIdentity, HoldsForSamples) {
    unsigned checked = 0;
    for (const auto& [type, message] : samples()) {
        if (type != nullptr && !message.empty() && isDer(*type, message)) {
            ++checked;
            expectBackFromJson(*type, message);
        }
    }
    std::printf("%u messages\n", checked);
    EXPECT_GT(checked, 200U);
}

TEST(JsonIdentity, HoldsForTheDeepestMessagesWhereTheLimitLetsThem) {
    // The deepest one of the catalogue; the documentation tells this limit.
    const TypeDescription& type = *asn1data::findType("RevocationValues");
    const Octets message = tests::deepestMessage(type);
    asn1text::TextSink json;
    ASSERT_EQ(asn1text::writeJson(type, message, json).status, 0);
    Octets back;
    asn1text::JsonFailure failure;
    asn1text::JsonLimits limits;
    EXPECT_FALSE(asn1text::encodeJson(type, json.whole, back, failure, limits));
    limits.depth = 1234;
    EXPECT_FALSE(asn1text::encodeJson(type, json.whole, back, failure, limits));
    ++limits.depth;
    ASSERT_TRUE(asn1text::encodeJson(type, json.whole, back, failure, limits));
    EXPECT_EQ(back, message);
}

TEST(JsonIdentity, HoldsForDamagedMessagesThatAreDer) {
    const unsigned wanted = fromEnvironment("BREVANTIS_JSON_MUTATIONS", 2000);
    const auto messages = samples();
    std::mt19937 random(7);
    unsigned checked = 0;
    for (unsigned tries = 0; checked < wanted && tries < wanted * 400 && !HasFatalFailure();
         ++tries) {
        const auto& [type, message] = messages[random() % messages.size()];
        if (type == nullptr || message.empty() || message.size() > 4096) {
            continue;
        }
        Octets damaged = message;
        tests::damage(damaged, random);
        if (!damaged.empty() && isDer(*type, damaged)) {
            ++checked;
            expectBackFromJson(*type, damaged);
        }
    }
    EXPECT_EQ(checked, wanted);
}

} // namespace
