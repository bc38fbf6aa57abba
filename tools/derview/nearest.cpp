#include "nearest.h"

#include <algorithm>
#include <cctype>
#include <numeric>

namespace derview {

namespace {

char folded(char character) {
    const auto octet = static_cast<unsigned char>(character);
    return character == '-' ? '_' : static_cast<char>(std::tolower(octet));
}

/// Characters to be added, removed or changed.
std::size_t distance(const std::string& one, const std::string& other) {
    std::vector<std::size_t> row(other.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < one.size(); ++i) {
        std::size_t diagonal = row[0]++;
        for (std::size_t j = 0; j < other.size(); ++j) {
            const std::size_t same = diagonal + (folded(one[i]) == folded(other[j]) ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({same, row[j] + 1, diagonal + 1});
        }
    }
    return row.back();
}

} // namespace

std::string didYouMean(const std::string& word, const std::vector<std::string>& words) {
    constexpr std::size_t longest = 100;
    constexpr std::size_t mostEdits = 2;
    std::size_t least = std::min(word.size() / 2, mostEdits) + 1;
    const std::string* best = nullptr;
    for (const std::string& each : words) {
        const std::size_t found = word.size() <= longest ? distance(word, each) : least;
        if (found < least) {
            least = found;
            best = &each;
        }
    }
    return best != nullptr ? ", did you mean '" + *best + "'?" : "";
}

} // namespace derview
