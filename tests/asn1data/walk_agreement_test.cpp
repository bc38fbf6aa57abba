#include <random>
#include <stdexcept>
#include <string>

#include <brevantis/asn1/asn1data.h>
#include <gtest/gtest.h>

#include "support/coding.h"
#include "support/data_file.h"
#include "support/loosened.h"
#include "support/mutation.h"
#include "support/value_builder.h"
#include "support/walk_agreement.h"

// Walking a message accepts what decoding it accepts, and fails where that fails: for values of
// every type, and for what is left of them when octets are damaged.

namespace shapes {

asn1data::TypeRange allTypes() noexcept;
const asn1data::TypeDescription* findType(const char* name) noexcept;

} // namespace shapes

namespace {

using namespace asn1data;
using tests::Octets;

void damageValuesOf(const TypeRange& types, unsigned seeds, unsigned mutations) {
    std::mt19937 random(1);
    tests::WalkAgreement agreement;
    for (const TypeDescription* type : types) {
        for (unsigned seed = 1; seed <= seeds; ++seed) {
            tests::Context values;
            void* const value = tests::ValueBuilder(values, seed).build(*type);
            ASSERT_EQ(xe_setp(values, nullptr, 0), 0);
            const int count = family::encode(values, *type, value, ASN1TagExplicit);
            ASSERT_GE(count, 0) << type->name;
            const Octets message(xe_getp(values), xe_getp(values) + count);
            if (!agreement.check(*type, message) || message.empty()) {
                return;
            }
            for (unsigned i = 0; i < mutations; ++i) {
                Octets damaged = i % 2 == 0 ? message : tests::loosened(message, random);
                for (unsigned harm = 0; harm < i % 4 && !damaged.empty(); ++harm) {
                    tests::damage(damaged, random);
                }
                if (!agreement.check(*type, damaged)) {
                    return;
                }
            }
        }
    }
}

TEST(WalkAgreement, OnDamagedValuesOfTheCatalogue) {
    damageValuesOf(asn1data::allTypes(), 6, 30);
}

TEST(WalkAgreement, OnDamagedValuesOfEveryShape) {
    damageValuesOf(shapes::allTypes(), 6, 60);
}

TEST(WalkAgreement, OnOddMessagesWithEveryOctetChanged) {
    tests::WalkAgreement agreement;
    for (const tests::DataRow& row : tests::dataRows("engine.txt", "messages")) {
        const TypeDescription* const type = shapes::findType(row.text("type"));
        ASSERT_NE(type, nullptr);
        tests::forEachMutation(tests::fromHex(row["message"]), [&](const Octets& message) {
            if (!testing::Test::HasFailure()) {
                agreement.check(*type, message);
            }
        });
    }
}

TEST(WalkAgreement, OnOpenValuesInsideEachOther) {
    // Kind 1.2.3.6 holds a value of its own type; the innermost kind is unknown.
    Octets message = tests::fromHex("30 07 06 03 2A 03 63 05 00");
    const Octets kind = tests::fromHex("06 03 2A 03 06");
    for (int depth = 1; depth <= 300; ++depth) {
        Octets contents = kind;
        tests::append(contents, message);
        message = tests::elementOf(0x30, contents, false);
        const int expected = depth <= 64 ? ASN1S_SUCCESS : ASN1S_NO_MEMORY;
        EXPECT_EQ(tests::expectWalkAgrees(*shapes::findType("Open"), message), expected) << depth;
    }
}

} // namespace
