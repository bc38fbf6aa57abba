#include "name_text.h"

#include <gtest/gtest.h>

#include "support/data_file.h"
#include "support/hex.h"

namespace {

TEST(NameText, ShowsStringsOfEveryType) {
    tests::forEachRow("name_text.txt", "elements", [&](const tests::DataRow& row) {
        const tests::Octets element = tests::fromHex(row["element"]);
        EXPECT_EQ(displayText(element.data(), static_cast<unsigned>(element.size())), row["text"]);
    });
}

} // namespace
