#ifndef TESTS_SUPPORT_DATA_FILE_H
#define TESTS_SUPPORT_DATA_FILE_H

#include <algorithm>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace tests {

/// Lines of a file in tests/data/ without comments ("# ...") and empty lines.
inline std::vector<std::string> readDataFile(const std::string& name) {
    std::ifstream file(std::string(TESTS_DATA_DIRECTORY) + "/" + name);
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);) {
        if (!line.empty() && line.front() != '#') {
            lines.push_back(line);
        }
    }
    if (lines.empty()) {
        throw std::runtime_error("no such data file: " + name);
    }
    return lines;
}

/// Parts of a line that are separated by " | " or just by bars, without blanks around them.
inline std::vector<std::string> splitColumns(const std::string& line) {
    std::vector<std::string> columns;
    std::size_t start = 0;
    while (start <= line.size()) {
        const std::size_t bar = std::min(line.find('|', start), line.size());
        const std::size_t first = std::min(line.find_first_not_of(' ', start), bar);
        std::size_t last = bar;
        while (last > first && line[last - 1] == ' ') {
            --last;
        }
        columns.push_back(line.substr(first, last - first));
        start = bar + 1;
    }
    return columns;
}

} // namespace tests

#endif
