#ifndef TESTS_SUPPORT_LEAK_CHECK_H
#define TESTS_SUPPORT_LEAK_CHECK_H

#include <gtest/gtest.h>

#include "support/counting_allocator.h"

namespace tests {

/// A counting allocator that minds, when it goes, whether every block was given back. It has to
/// come before all that allocates.
class LeakCheck : public CountingAllocator {
public:
    LeakCheck() = default;
    ~LeakCheck() { EXPECT_EQ(live(), 0); }
    LeakCheck(const LeakCheck&) = delete;
    LeakCheck& operator=(const LeakCheck&) = delete;
};

} // namespace tests

#endif
