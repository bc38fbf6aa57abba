#ifndef TESTS_SUPPORT_DATA_FILE_H
#define TESTS_SUPPORT_DATA_FILE_H

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <ostream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <brevantis/asn1/runtime/context.h>
#include <brevantis/asn1/runtime/element_walk.h>
#include <brevantis/asn1/runtime/open_type.h>
#include <brevantis/asn1/runtime/tag_length.h>

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

/// The text of a cell, in which no bar can stand. Quotes keep its blanks, and between them "\n",
/// "\r", "\t", "\\" and "\xFF" stand for octets.
inline std::string unquoted(const std::string& cell) {
    if (cell.size() < 2 || cell.front() != '"' || cell.back() != '"') {
        return cell;
    }
    std::string text;
    for (std::size_t i = 1; i + 1 < cell.size(); ++i) {
        if (cell[i] != '\\') {
            text += cell[i];
        } else if (cell[++i] == 'x') {
            text += static_cast<char>(std::stoi(cell.substr(i + 1, 2), nullptr, 16));
            i += 2;
        } else {
            const std::size_t known = std::string("nrt\\").find(cell[i]);
            text += std::string("\n\r\t\\").at(known);
        }
    }
    return text;
}

/// The constants that data files name, beside the status codes.
inline constexpr std::pair<const char*, long long> namedConstants[] = {
    {"ASN1F_LENGTH_UNCHECKED", ASN1F_LENGTH_UNCHECKED},
    {"ASN1F_CONSTRUCTED", ASN1F_CONSTRUCTED},
    {"ASN1F_LAST_EOC", ASN1F_LAST_EOC},
    {"ASN1F_INDEF_MESSAGE", ASN1F_INDEF_MESSAGE},
    {"ASN1IndefiniteLength", ASN1IndefiniteLength},
    {"ASN1MatchAdvance", ASN1MatchAdvance},
    {"ASN1MatchSeek", ASN1MatchSeek},
    {"ASN1MatchSkipFirst", ASN1MatchSkipFirst},
    {"ASN1TagExplicit", ASN1TagExplicit},
    {"ASN1TagImplicit", ASN1TagImplicit},
    {"ASN1TagNone", ASN1TagNone},
};

/// The number that a text stands for: decimal, hexadecimal behind "0x", or a name.
inline long long numberOf(const std::string& text) {
    char* end = nullptr;
    const long long value = std::strtoll(text.c_str(), &end, 0);
    if (!text.empty() && *end == '\0') {
        return value;
    }
    for (const auto& [name, constant] : namedConstants) {
        if (text == name) {
            return constant;
        }
    }
    for (int status = ASN1S_NOT_SUPPORTED; status < 0; ++status) {
        if (text == rtStatusName(status)) {
            return status;
        }
    }
    throw std::runtime_error("no number: \"" + text + "\"");
}

/// One row of a table in a data file. Streamed, it tells where it stands and what it says.
class DataRow {
public:
    DataRow(std::string place, std::vector<std::string> names, std::vector<std::string> cells)
        : place_(std::move(place)), names_(std::move(names)), cells_(std::move(cells)) {
        if (names_.size() != cells_.size()) {
            throw std::runtime_error("not as many cells as columns at " + place_);
        }
    }

    /// The text in a column, without the quotes that keep its blanks.
    const std::string& operator[](const std::string& column) const {
        const auto name = std::find(names_.begin(), names_.end(), column);
        if (name == names_.end()) {
            throw std::runtime_error("no column " + column + " at " + place_);
        }
        return cells_[static_cast<std::size_t>(name - names_.begin())];
    }
    /// The number in a column, or the sum of the numbers that " + " joins.
    template <class Number = int>
    Number number(const std::string& column) const {
        const std::string& text = (*this)[column];
        long long sum = 0;
        std::size_t start = 0;
        for (std::size_t plus; (plus = text.find(" + ", start)) != std::string::npos;) {
            sum += numberOf(text.substr(start, plus - start));
            start = plus + 3;
        }
        return static_cast<Number>(sum + numberOf(text.substr(start)));
    }
    bool has(const std::string& column) const {
        return std::find(names_.begin(), names_.end(), column) != names_.end();
    }
    /// The text in a column, null where it says "none".
    const char* text(const std::string& column) const {
        const std::string& cell = (*this)[column];
        return cell != "none" ? cell.c_str() : nullptr;
    }

    /// The numbers in a column, with blanks between them.
    std::vector<unsigned> numbers(const std::string& column) const {
        std::vector<unsigned> result;
        std::istringstream cell((*this)[column]);
        for (std::string text; cell >> text;) {
            result.push_back(static_cast<unsigned>(numberOf(text)));
        }
        return result;
    }

    friend std::ostream& operator<<(std::ostream& out, const DataRow& row) {
        out << row.place_ << ':';
        for (const std::string& cell : row.cells_) {
            out << ' ' << cell << (&cell != &row.cells_.back() ? " |" : "");
        }
        return out;
    }

private:
    std::string place_;
    std::vector<std::string> names_;
    std::vector<std::string> cells_;
};

/// The rows of a table in a file of tests/data/. Its head "[table] column | column" names its
/// columns; it ends at the next head.
inline std::vector<DataRow> dataRows(const std::string& file, const std::string& table) {
    const std::string head = "[" + table + "]";
    std::vector<std::string> names;
    std::vector<DataRow> rows;
    std::ifstream lines(std::string(TESTS_DATA_DIRECTORY) + "/" + file);
    std::string line;
    for (int number = 1; std::getline(lines, line); ++number) {
        if (line.empty() || line.front() == '#') {
            continue;
        }
        if (line.front() == '[') {
            const bool here = line.compare(0, head.size(), head) == 0;
            names = here ? splitColumns(line.substr(head.size())) : std::vector<std::string>();
        } else if (!names.empty()) {
            std::vector<std::string> cells = splitColumns(line);
            std::transform(cells.begin(), cells.end(), cells.begin(), unquoted);
            rows.emplace_back(file + ":" + std::to_string(number), names, std::move(cells));
        }
    }
    if (rows.empty()) {
        throw std::runtime_error("no table " + head + " in " + file);
    }
    return rows;
}

/// Runs a check on each row of a table; what fails in it is told with the row.
template <class Check>
void forEachRow(const std::string& file, const std::string& table, Check check) {
    for (const DataRow& row : dataRows(file, table)) {
        SCOPED_TRACE(row);
        check(row);
    }
}

} // namespace tests

#endif
