#include <gtest/gtest.h>

#include <brevantis/asn1/values/attribute/attribute.h>
#include <brevantis/asn1/values/util/one_element.h>

#include "support/blob.h"
#include "support/data_file.h"
#include "support/failing_allocations.h"

using namespace Brevantis::ASN1;
using tests::blob;

namespace {

TEST(OneElement, IsToldFromWhatLosesOctets) {
    tests::forEachRow("one_element.txt", "octets", [](const tests::DataRow& row) {
        EXPECT_EQ(isOneElement(blob(row["octets"])), row["one"] == "yes");
    });
    // What goes out of an attribute that the library does not know is the first element.
    CAttribute attribute("1.2.3");
    attribute.add(blob("0401AABBCCDDEEFF"));
    CAttribute written;
    written.decode(attribute.encode());
    EXPECT_EQ(written.begin()->get_value(), blob("0401AA"));
}

TEST(OneElement, IsToldOrNotWhenMemoryIsOut) {
    EXPECT_GT(tests::failEveryAllocation([] { isOneElement(blob("3080 0401AA 0000")); }), 1);
}

} // namespace
