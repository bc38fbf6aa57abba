#ifndef TESTS_SUPPORT_ODD_MESSAGES_H
#define TESTS_SUPPORT_ODD_MESSAGES_H

#include <gtest/gtest.h>

#include "support/data_file.h"
#include "support/mutation.h"
#include "support/shapes_catalogue.h"

namespace tests {

/// Shows the messages of tests/data/engine.txt to an agreement with every octet changed, until the
/// first difference.
/// @param agreement has `check(const TypeDescription&, const Octets&)`
template <class Agreement>
void checkOddMessages(Agreement& agreement) {
    for (const DataRow& row : dataRows("engine.txt", "messages")) {
        const asn1data::TypeDescription* const type = shapes::findType(row.text("type"));
        ASSERT_NE(type, nullptr);
        forEachMutation(fromHex(row["message"]), [&](const Octets& message) {
            if (!testing::Test::HasFailure()) {
                agreement.check(*type, message);
            }
        });
    }
}

} // namespace tests

#endif
