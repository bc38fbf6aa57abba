#ifndef TESTS_SUPPORT_STATUS_TALLY_H
#define TESTS_SUPPORT_STATUS_TALLY_H

#include <cstddef>
#include <iostream>
#include <map>

#include <brevantis/asn1/runtime/status.h>

namespace tests {

/// Counts how messages come out, and prints that at its end.
class StatusTally {
public:
    StatusTally() = default;
    StatusTally(const StatusTally&) = delete;
    StatusTally& operator=(const StatusTally&) = delete;
    ~StatusTally() {
        std::size_t all = 0;
        for (const auto& [status, count] : statuses_) {
            all += count;
            std::cout << rtStatusName(status) << ": " << count << ", ";
        }
        std::cout << "messages: " << all << "\n";
    }
    void add(int status) { ++statuses_[status]; }

private:
    std::map<int, std::size_t> statuses_;
};

} // namespace tests

#endif
