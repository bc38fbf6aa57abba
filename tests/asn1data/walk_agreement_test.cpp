#include <stdexcept>
#include <string>

#include <brevantis/asn1/asn1data.h>
#include <gtest/gtest.h>

#include "support/coding.h"
#include "support/damaged_values.h"
#include "support/hex.h"
#include "support/odd_messages.h"
#include "support/shapes_catalogue.h"
#include "support/walk_agreement.h"

// Walking a message accepts what decoding it accepts, and fails where that fails: for values of
// every type, and for what is left of them when octets are damaged.

namespace {

using namespace asn1data;
using tests::Octets;

void damageValuesOf(const TypeRange& types, unsigned seeds, unsigned mutations) {
    tests::WalkAgreement agreement;
    tests::checkDamagedValues(types, seeds, mutations, agreement);
}

TEST(WalkAgreement, OnDamagedValuesOfTheCatalogue) {
    damageValuesOf(asn1data::allTypes(), 6, 30);
}

TEST(WalkAgreement, OnDamagedValuesOfEveryShape) {
    damageValuesOf(shapes::allTypes(), 6, 60);
}

TEST(WalkAgreement, OnOddMessagesWithEveryOctetChanged) {
    tests::WalkAgreement agreement;
    tests::checkOddMessages(agreement);
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
