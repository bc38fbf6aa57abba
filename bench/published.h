#ifndef BENCH_PUBLISHED_H
#define BENCH_PUBLISHED_H

#include <ostream>
#include <vector>

#include "measurement.h"

namespace bench {

/// Whether everything that is published was measured of this library: a filter keeps things out.
bool isComplete(const std::vector<Measurement>& all);

/// The table of the README, in Markdown: a row for a message and a task, with the time of this
/// library, and how many times as long each other one takes at its fullest.
void writePublishedTable(std::ostream& out, const std::vector<Measurement>& all);

/// The same as a picture: a mark for each other library on a logarithmic scale of how many times as
/// long it takes. SVG, in the colours that the reader's system prefers.
void writeChart(std::ostream& out, const std::vector<Measurement>& all);

} // namespace bench

#endif
