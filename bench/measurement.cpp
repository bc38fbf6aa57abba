#include "measurement.h"

#include <algorithm>
#include <fstream>
#include <stdexcept>

#if __has_include(<valgrind/callgrind.h>)
#include <valgrind/callgrind.h>
#endif

namespace bench {

std::string Measurement::name() const {
    return sample->name + '/' + library->name() + '/' + taskName(operation->task) + '/' +
           operation->calls;
}

namespace {

struct NoMeter final : Meter {
    void start() override {}
    void stop() override {}
};

bool runOnce(const Operation& operation, Octets message, Meter& meter) {
    if (operation.prepare == nullptr) {
        meter.start();
        const bool done = operation.run(message);
        meter.stop();
        return done;
    }
    const std::unique_ptr<Trial> trial = operation.prepare(message);
    if (trial == nullptr) {
        return false;
    }
    meter.start();
    const bool done = trial->run();
    meter.stop();
    return done;
}

} // namespace

bool Measurement::run() const {
    NoMeter nothing;
    return run(nothing);
}

bool Measurement::run(Meter& meter) const {
    bool accepted = true;
    for (std::size_t i = 0; i < sample->messages.size(); ++i) {
        accepted = runOnce(*operation, sample->octets(i), meter) && accepted;
    }
    return accepted;
}

double Measurement::time() const {
    if (nanoseconds.empty()) {
        return 0;
    }
    std::vector<double> sorted = nanoseconds;
    std::sort(sorted.begin(), sorted.end());
    const std::size_t middle = sorted.size() / 2;
    return sorted.size() % 2 != 0 ? sorted[middle] : (sorted[middle - 1] + sorted[middle]) / 2;
}

Measurements tryAll(const std::vector<Sample>& samples) {
    Measurements all;
    for (const Sample& sample : samples) {
        for (const Library* library : libraries()) {
            for (const Operation& operation : library->operations()) {
                if (operation.kind == sample.kind) {
                    const Measurement measurement{&sample, library, &operation};
                    (measurement.run() ? all.accepted : all.refused).push_back(measurement);
                }
            }
        }
    }
    return all;
}

namespace {

struct AllocationMeter final : Meter {
    void start() override { startCounting(); }
    void stop() override {
        const Allocations counted = stopCounting();
        sum.calls += counted.calls;
        sum.octets += counted.octets;
        sum.peak = std::max(sum.peak, counted.peak);
    }

    Allocations sum;
};

} // namespace

void countAllocations(std::vector<Measurement>& measurements) {
    for (Measurement& measurement : measurements) {
        AllocationMeter meter;
        measurement.run(meter);
        measurement.allocations = meter.sum;
    }
}

#ifdef CALLGRIND_ZERO_STATS

namespace {

struct InstructionMeter final : Meter {
    void start() override { CALLGRIND_TOGGLE_COLLECT; }
    void stop() override { CALLGRIND_TOGGLE_COLLECT; }
};

} // namespace

void countInstructions(const std::vector<Measurement>& measurements) {
    InstructionMeter meter;
    for (const Measurement& measurement : measurements) {
        const std::string name = measurement.name();
        CALLGRIND_ZERO_STATS;
        measurement.run(meter);
        CALLGRIND_DUMP_STATS_AT(name.c_str());
    }
}

#else

void countInstructions(const std::vector<Measurement>&) {
    throw std::runtime_error("built without valgrind/callgrind.h");
}

#endif

void readInstructions(const std::string& file, std::vector<Measurement>& measurements) {
    std::ifstream lines(file);
    std::string line;
    while (std::getline(lines, line)) {
        const std::size_t tabulator = line.find('\t');
        for (Measurement& measurement : measurements) {
            if (tabulator != std::string::npos &&
                line.compare(0, tabulator, measurement.name()) == 0) {
                measurement.instructions = std::stod(line.substr(tabulator + 1)) /
                                           static_cast<double>(measurement.sample->messages.size());
            }
        }
    }
}

} // namespace bench
