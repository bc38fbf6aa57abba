#ifndef BENCH_COMPARISON_H
#define BENCH_COMPARISON_H

#include <vector>

#include "measurement.h"

/// @file
/// Which figures are set beside each other.

namespace bench {

/// Measurements of one sample.
using Rows = std::vector<const Measurement*>;

Rows rowsOf(const std::vector<Measurement>& all, const Sample& sample);

/// Samples in the order of the measurements.
std::vector<const Sample*> samplesOf(const std::vector<Measurement>& all);

/// This library among all.
const Library* ours();

/// Whether a task of another library does as much as one of ours, or less where it does no more.
bool isComparable(Task own, Task other);

/// What a library does that is comparable with a task, at its fullest, and of that the fastest
/// form.
/// @return null when it does nothing of the kind
const Measurement* fullest(const Rows& rows, const Library& library, Task task);

} // namespace bench

#endif
