#ifndef TESTS_SUPPORT_LOCKED_LIST_H
#define TESTS_SUPPORT_LOCKED_LIST_H

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/data_file.h"

namespace tests {

/// Expects the lines of a file of tests/data/ that locks what programs depend on. With UPDATE=1 in
/// the environment they are written below the comment that the file opens with.
inline void expectLocked(const std::string& name, const std::vector<std::string>& actual) {
    const char* update = std::getenv("UPDATE");
    if (update != nullptr && *update != '\0') {
        const std::string path = std::string(TESTS_DATA_DIRECTORY) + "/" + name;
        std::ifstream old(path);
        std::string text;
        for (std::string line; std::getline(old, line) && line.rfind('#', 0) == 0;) {
            text += line + '\n';
        }
        old.close();
        std::ofstream file(path);
        file << text << '\n';
        for (const std::string& line : actual) {
            file << line << '\n';
        }
        file.close();
        ASSERT_TRUE(file) << path;
        return;
    }
    const std::vector<std::string> expected = readDataFile(name);
    const auto [left, right] =
        std::mismatch(actual.begin(), actual.end(), expected.begin(), expected.end());
    if (left == actual.end() && right == expected.end()) {
        return;
    }
    // From the first difference to the last, which is most often one place.
    std::string difference;
    auto actualEnd = actual.end();
    auto expectedEnd = expected.end();
    while (actualEnd != left && expectedEnd != right && *(actualEnd - 1) == *(expectedEnd - 1)) {
        --actualEnd;
        --expectedEnd;
    }
    for (auto line = right; line != expectedEnd; ++line) {
        difference += "- " + *line + '\n';
    }
    for (auto line = left; line != actualEnd; ++line) {
        difference += "+ " + *line + '\n';
    }
    FAIL() << name << ":\n" << difference;
}

} // namespace tests

#endif
