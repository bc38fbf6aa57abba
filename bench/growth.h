#ifndef BENCH_GROWTH_H
#define BENCH_GROWTH_H

#include <ostream>
#include <string>

namespace bench {

/// Measures how cost and memory grow with a message, and writes tables in Markdown: revocation
/// lists of 10 to 1,000,000 entries, a certification request with a SET OF 10 to 100,000 values, a
/// CMS message of 1 to 100 MiB. Each operation runs in a process of its own, which has done nothing
/// else before, and is ended after 20 seconds.
/// @param directory where make_corpus.sh wrote
/// @param quick without the largest message of each kind, and without large lists in place
/// @throws std::runtime_error when a message cannot be made
void writeGrowth(std::ostream& out, const std::string& directory, bool quick);

/// First argument of such a process of its own.
constexpr const char* growthStep = "--growth-step";

/// What such a process does.
/// @param arguments @p count of them, behind growthStep
/// @return the exit status
int runGrowthStep(int count, char** arguments);

} // namespace bench

#endif
