#ifndef BENCH_NUMBER_TEXT_H
#define BENCH_NUMBER_TEXT_H

#include <string>

namespace bench {

/// Three digits that count: "1.35", "24.8", "136".
std::string shortNumber(double number);
/// With a unit that leaves at least one digit in front of the point: "1.35 µs".
std::string timeText(double nanoseconds);
/// "7", "1076", "1.27 M".
std::string countText(double count);
/// How many times as much: "1.35x".
std::string ratioText(double ratio);
/// "120 B", "2.24 kB", by powers of ten.
std::string octetText(double octets);

} // namespace bench

#endif
