#include <stdexcept>
#include <type_traits>

#include <gtest/gtest.h>

#include <constructs/builtin_types.h>
#include <constructs/clash.h>
#include <constructs/constraints.h>
#include <constructs/objects.h>
#include <constructs/parameters.h>

#include "support/coded_row.h"
#include "support/value_round_trip.h"

// What the notation's constructs come to: modules with one kind each, and their values on the wire.

namespace constructs {

// No generated header declares them.
asn1data::TypeRange allTypes() noexcept;
const asn1data::TypeDescription* findType(const char* name) noexcept;

namespace {

using tests::DataRow;
using tests::fromHex;

TEST(Constructs, CodeAsTheNotationSays) {
    tests::forEachRow("constructs.txt", "messages", [](const DataRow& row) {
        const asn1data::TypeDescription* const type = findType(row.text("type"));
        if (type == nullptr) {
            throw std::runtime_error("no type " + row["type"]);
        }
        tests::expectCoded(row, *type, fromHex(row["message"]));
        tests::expectCoded(row, *type, fromHex(row["message"]), ASN1F_NO_COPY);
    });
}

TEST(Constructs, RandomValuesRoundTrip) {
    for (const asn1data::TypeDescription* type : allTypes()) {
        SCOPED_TRACE(type->name);
        for (unsigned seed = 1; seed <= 16; ++seed) {
            tests::expectRoundTrip(*type, std::mt19937_64(seed));
        }
    }
}

TEST(Constructs, RangesChooseTheStorage) {
    EXPECT_TRUE((std::is_same_v<ASN1T_Limit_Union, int>));
    EXPECT_TRUE((std::is_same_v<ASN1T_Limit_Word, unsigned>));
    EXPECT_TRUE((std::is_same_v<ASN1T_Limit_Huge, const char*>));
    EXPECT_STREQ(findType("Limit_Size")->notation,
                 "UTF8String (FROM (\"a\"..\"z\") ^ SIZE (2..3))");
    EXPECT_STREQ(findType("Limit_Components")->notation,
                 "SEQUENCE {\n    a BOOLEAN OPTIONAL } (WITH COMPONENTS { ..., a PRESENT })");
}

TEST(Constructs, EqualParametersMakeOneType) {
    const auto& again = *findType("Param_Again");
    EXPECT_EQ(again.elements[0].type, again.elements[1].type);
    EXPECT_STREQ(again.elements[0].type->name, "Pair_Param_Pair_Param_Pair");
    EXPECT_EQ(findType("Param_Chain")->elements[1].type->element, findType("Param_Chain"));
}

TEST(Constructs, ClashingNamesHaveNamespaces) {
    EXPECT_TRUE((std::is_same_v<Objects_Others::ASN1T_Clash, unsigned char>));
    EXPECT_TRUE((std::is_class_v<Clashing::ASN1T_Clash>));
    Clashing::ASN1T_Clash value;
    EXPECT_TRUE((std::is_same_v<decltype(value.own), ASN1T_Own_Record>));
}

TEST(Constructs, ObjectIdentifiersInBothForms) {
    EXPECT_EQ(base.numids, 3u);
    EXPECT_EQ(base.subid[2], 99u);
}

} // namespace
} // namespace constructs
