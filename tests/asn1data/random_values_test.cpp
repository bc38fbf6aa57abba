#include <cstdlib>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <brevantis/asn1/asn1data.h>
#include <brevantis/asn1/runtime/tag_length.h>

#include "support/coding.h"
#include "support/shapes_catalogue.h"
#include "support/value_builder.h"
#include "support/value_text.h"

// Every type of the catalogue, by its description alone: values within the constraints survive the
// way to octets and back, copying, releasing and a second encoding.

namespace {

using namespace asn1data;
using tests::Octets;

/// Values a type. The environment raises it for a thorough run.
unsigned valuesPerType() {
    const char* wanted = std::getenv("BREVANTIS_VALUES_PER_TYPE");
    return wanted != nullptr ? static_cast<unsigned>(std::strtoul(wanted, nullptr, 10)) : 100;
}

Octets encoded(const TypeDescription& type, void* value, int& status) {
    tests::Writer writer;
    status = family::encode(writer, type, value, ASN1TagExplicit);
    if (status < 0) {
        return {};
    }
    const ASN1Buffer& buffer = writer->buffer;
    return Octets(buffer.data + buffer.byteIndex, buffer.data + buffer.size - 1);
}

void checkValue(const TypeDescription& type, unsigned long long seed) {
    SCOPED_TRACE(std::string(type.name) + ", seed " + std::to_string(seed));
    tests::Context values;
    tests::ValueBuilder builder(values, seed);
    void* value = builder.build(type);

    // Encoding leaves the raw octets of typed open values on the heap of the context that encodes,
    // so it is the one that the value lives on.
    ASSERT_EQ(xe_setp(values, nullptr, 0), 0);
    const int count = family::encode(values, type, value, ASN1TagExplicit);
    ASSERT_GE(count, 0);
    if (count == 0) {
        return;
    }
    const ASN1Buffer& buffer = values->buffer;
    const Octets octets(buffer.data + buffer.byteIndex, buffer.data + buffer.size - 1);
    ASSERT_EQ(octets.size(), static_cast<std::size_t>(count));

    tests::Reader reader(octets);
    void* decoded = family::newRecord(reader, type);
    ASSERT_EQ(xd_setp(reader, reader->buffer.data, count, nullptr, nullptr), 0);
    ASSERT_EQ(family::decode(reader, type, decoded, ASN1TagExplicit, 0), 0) << tests::toHex(octets);
    EXPECT_EQ(reader.position(), octets.size());
    EXPECT_TRUE(tests::equalValues(type, value, decoded)) << tests::toHex(octets);

    if (!type.copyable) {
        return;
    }
    tests::Context copies;
    void* copied = family::newRecord(copies, type);
    family::copy(copies, type, decoded, copied);
    EXPECT_EQ(copies->errInfo.status, 0);
    EXPECT_TRUE(tests::equalValues(type, decoded, copied));
    family::release(reader, type, decoded);

    int status = 0;
    const Octets again = encoded(type, copied, status);
    EXPECT_GE(status, 0);
    EXPECT_EQ(tests::toHex(again), tests::toHex(octets));
    family::release(copies, type, copied);
}

class EveryType : public testing::TestWithParam<const TypeDescription*> {};

TEST_P(EveryType, SurvivesTheRoundTrip) {
    for (unsigned long long seed = 1; seed <= valuesPerType(); ++seed) {
        checkValue(*GetParam(), seed);
        if (HasFatalFailure() || HasNonfatalFailure()) {
            break;
        }
    }
}

std::vector<const TypeDescription*> typesOf(const TypeRange& types) {
    return {types.begin(), types.end()};
}

std::string testName(const testing::TestParamInfo<const TypeDescription*>& tested) {
    const std::string name = tested.param->name;
    // GoogleTest takes no underscore at the end or in pairs.
    return std::to_string(tested.index) + "X" + name.substr(name.find_first_not_of('_'));
}

INSTANTIATE_TEST_SUITE_P(Catalogue, EveryType, testing::ValuesIn(typesOf(asn1data::allTypes())),
                         testName);
// The module that has every shape once, also those that the catalogue does without.
INSTANTIATE_TEST_SUITE_P(Shapes, EveryType, testing::ValuesIn(typesOf(shapes::allTypes())),
                         testName);

} // namespace
