#ifndef TESTS_SUPPORT_ROW_READER_H
#define TESTS_SUPPORT_ROW_READER_H

#include <gtest/gtest.h>

#include "support/coding.h"
#include "support/data_file.h"

namespace tests {

/// A context bound to the message of a row, under the row's flags if it has any.
class RowReader : public Reader {
public:
    explicit RowReader(const DataRow& row) : Reader(row["message"]), row_(row) {
        if (row.has("flags")) {
            get()->flags = row.number<unsigned short>("flags");
        }
    }

    /// Compares what a decoder left behind with the row: its status, the status recorded and the
    /// position, as far as the row names them; a position of "any" is not compared.
    /// @return whether it succeeded
    bool expect(int status) {
        EXPECT_EQ(row_.number("status"), status);
        if (row_.has("recorded")) {
            EXPECT_EQ(row_.number("recorded"), recorded());
        }
        if (row_.has("position") && row_["position"] != "any") {
            EXPECT_EQ(row_.number<unsigned>("position"), position());
        }
        return status == 0;
    }

private:
    const DataRow& row_;
};

} // namespace tests

#endif
