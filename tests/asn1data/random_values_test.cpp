#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <brevantis/asn1/asn1data.h>

#include "support/shapes_catalogue.h"
#include "support/value_round_trip.h"

// Every type of the catalogue, by its description alone: values within the constraints survive the
// way to octets and back, copying, releasing and a second encoding.

namespace {

using namespace asn1data;

/// Values a type. The environment raises it for a thorough run.
unsigned valuesPerType() {
    const char* wanted = std::getenv("BREVANTIS_VALUES_PER_TYPE");
    return wanted != nullptr ? static_cast<unsigned>(std::strtoul(wanted, nullptr, 10)) : 100;
}

class EveryType : public testing::TestWithParam<const TypeDescription*> {};

TEST_P(EveryType, SurvivesTheRoundTrip) {
    for (unsigned long long seed = 1; seed <= valuesPerType(); ++seed) {
        SCOPED_TRACE(std::string(GetParam()->name) + ", seed " + std::to_string(seed));
        tests::expectRoundTrip(*GetParam(), std::mt19937_64(seed));
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
