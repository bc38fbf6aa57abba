#include "diagnostics.h"

#include <algorithm>
#include <map>
#include <tuple>

namespace notation {

void Diagnostics::add(const Location& at, const std::string& sentence, bool warning) {
    // What several names refer to is read for each of them.
    if (said_.emplace(at.file, at.line, at.column, sentence).second) {
        entries_.push_back({at, sentence, warning});
        failed_ = failed_ || !warning;
    }
}

std::vector<Diagnostics::Entry> Diagnostics::sorted() const {
    std::map<std::string, std::size_t> order;
    for (const Entry& entry : entries_) {
        order.emplace(entry.at.file, order.size());
    }
    std::vector<Entry> entries = entries_;
    std::stable_sort(entries.begin(), entries.end(), [&order](const Entry& a, const Entry& b) {
        return std::tuple(order[a.at.file], a.at.line, a.at.column) <
               std::tuple(order[b.at.file], b.at.line, b.at.column);
    });
    return entries;
}

void Diagnostics::print(std::ostream& out) const {
    for (const Entry& entry : sorted()) {
        out << entry.at.file << ':' << entry.at.line << ':' << entry.at.column
            << (entry.warning ? ": warning: " : ": error: ") << entry.sentence << ".\n";
    }
}

} // namespace notation
