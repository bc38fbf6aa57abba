#ifndef BENCH_MEASUREMENT_H
#define BENCH_MEASUREMENT_H

#include <string>
#include <vector>

#include "allocations.h"
#include "corpus.h"

namespace bench {

/// Measures what is done between its start and its stop, which may come more than once.
class Meter {
public:
    Meter() = default;
    virtual ~Meter() = default;
    Meter(const Meter&) = delete;
    Meter& operator=(const Meter&) = delete;

    virtual void start() = 0;
    virtual void stop() = 0;
};

/// An operation of a library on a sample, and what was measured of it. Figures are of one message,
/// on average where the sample has several.
struct Measurement {
    const Sample* sample;
    const Library* library;
    const Operation* operation;
    std::vector<double> nanoseconds{}; ///< of each repetition
    Allocations allocations{};         ///< of all messages together
    double instructions = 0;           ///< 0 when they were not counted

    /// Tells this measurement from all others.
    std::string name() const;
    /// Does the operation once on every message of the sample.
    /// @return false when the library refuses one
    bool run() const;
    /// The same, with a meter that runs while the operation does.
    bool run(Meter& meter) const;
    /// The median of the repetitions; 0 when there was none.
    double time() const;
};

/// Pairs of an operation and a sample of its kind, in the order of the samples.
struct Measurements {
    std::vector<Measurement> accepted;
    std::vector<Measurement> refused; ///< the library refuses a message of the sample
};

/// All pairs, each having been run once.
Measurements tryAll(const std::vector<Sample>& samples);

/// Counts allocations of a second run, when what a library sets up once has been set up.
void countAllocations(std::vector<Measurement>& measurements);

/// To be run under callgrind, which writes a file for each measurement, with the measurement's name
/// as what triggered it.
/// @throws std::runtime_error when the program was built without callgrind's header
void countInstructions(const std::vector<Measurement>& measurements);

/// Takes instructions from lines of a name, a tabulator and a count.
void readInstructions(const std::string& file, std::vector<Measurement>& measurements);

} // namespace bench

#endif
