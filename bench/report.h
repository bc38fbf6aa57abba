#ifndef BENCH_REPORT_H
#define BENCH_REPORT_H

#include <ostream>
#include <vector>

#include "measurement.h"

namespace bench {

/// Writes tables in Markdown: the libraries with their versions; how many times as long as this
/// library each other one takes, a line a sample and task; then all figures, a table a sample. The
/// operations that we watch stand in front, each with the fastest form of each other library.
///
/// The ratios compare what this library does with the most that another one does of the same task:
/// with its form of decoding that also decodes the extensions, where it has one.
/// @param measurements those without a time, which a filter kept out, are not told of
void writeReport(std::ostream& out, std::vector<Measurement> measurements);

} // namespace bench

#endif
