#include "number_text.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <vector>

namespace bench {

namespace {

std::string withDecimals(double number, int decimals) {
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%.*f", decimals, number);
    return text.data();
}

/// With the largest unit that leaves at least one in front of the point.
std::string withUnit(double number, const std::vector<const char*>& units) {
    std::size_t unit = 0;
    while (number >= 999.5 && unit + 1 < units.size()) {
        number /= 1000;
        ++unit;
    }
    return shortNumber(number) + units[unit];
}

} // namespace

std::string shortNumber(double number) {
    return withDecimals(number, number < 9.995 ? 2 : number < 99.95 ? 1 : 0);
}

std::string timeText(double nanoseconds) {
    return withUnit(nanoseconds, {" ns", " µs", " ms", " s"});
}

std::string countText(double count) {
    return count < 9.995 && count == std::floor(count) ? withDecimals(count, 0)
                                                       : withUnit(count, {"", " k", " M", " G"});
}

std::string ratioText(double ratio) {
    return withDecimals(ratio, 2) + 'x';
}

std::string octetText(double octets) {
    return withUnit(octets, {" B", " kB", " MB", " GB"});
}

} // namespace bench
