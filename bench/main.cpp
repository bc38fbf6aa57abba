// Measures this library and others side by side, on the same messages, in one run.

#include <algorithm>
#include <cstring>
#include <ctime>
#include <exception>
#include <fstream>
#include <iostream>
#include <map>
#include <stdexcept>
#include <string>
#include <utility>

#include <benchmark/benchmark.h>

#include "allocations.h"
#include "corpus.h"
#include "growth.h"
#include "measurement.h"
#include "published.h"
#include "report.h"

namespace {

constexpr const char* Usage =
    R"(Usage: asn1_bench CORPUS [--check | --growth [--quick] | --count-instructions]
                  [--instructions=FILE] [--publish=DIRECTORY] [--benchmark_...=VALUE]...

CORPUS is a directory that make_corpus.sh filled. Without an option everything is timed; the tables
go to the standard output, in Markdown.

  --check               do everything once and tell what is refused; exit 1 if this library refuses
                        a message
  --growth              how time and memory grow with a message; quickly: for one size less
  --count-instructions  do everything once for callgrind, which writes a file for each
  --instructions=FILE   lines of a name, a tabulator and a count, for the tables
  --publish=DIRECTORY   write speed.md and speed.svg there too, the table of the README and the same
                        as a chart; not where something of them was not measured
)";

using bench::Measurement;

/// Shows what is measured while it goes on, and keeps the times.
class Collector final : public benchmark::ConsoleReporter {
public:
    explicit Collector(std::map<std::string, Measurement*> measurements)
        : ConsoleReporter(OO_None), measurements_(std::move(measurements)) {
        SetOutputStream(&std::cerr);
        SetErrorStream(&std::cerr);
    }

    void ReportRuns(const std::vector<Run>& runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs) {
            const auto found = measurements_.find(run.run_name.function_name);
            if (run.run_type == Run::RT_Iteration && found != measurements_.end()) {
                Measurement& measurement = *found->second;
                // What is measured in parts has read its time itself.
                const bool ownClock = measurement.operation->prepare != nullptr;
                measurement.nanoseconds.push_back(
                    (ownClock ? run.GetAdjustedRealTime() : run.GetAdjustedCPUTime()) /
                    static_cast<double>(measurement.sample->messages.size()));
            }
        }
    }

private:
    std::map<std::string, Measurement*> measurements_;
};

/// For what is measured in parts: time of the processor, without what reading it takes.
class Clock final : public bench::Meter {
public:
    void start() override { start_ = now(); }
    void stop() override { sum_ += now() - start_ - readingTime(); }
    /// Since the last time it was asked.
    double seconds() { return std::max(std::exchange(sum_, 0), 0.0); }

private:
    static double now() {
        timespec time{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
    }
    /// The least that lies between two readings.
    static double readingTime() {
        static const double least = [] {
            double shortest = 1;
            for (int i = 0; i < 1000; ++i) {
                const double first = now();
                shortest = std::min(shortest, now() - first);
            }
            return shortest;
        }();
        return least;
    }

    double start_ = 0;
    double sum_ = 0;
};

void timeWhole(const Measurement& measurement, benchmark::State& state) {
    bench::giveBackFreeMemory();
    for ([[maybe_unused]] auto iteration : state) {
        measurement.run();
    }
}

void timeParts(const Measurement& measurement, benchmark::State& state) {
    bench::giveBackFreeMemory();
    Clock clock;
    for ([[maybe_unused]] auto iteration : state) {
        measurement.run(clock);
        state.SetIterationTime(clock.seconds());
    }
}

void measureTimes(std::vector<Measurement>& measurements) {
    std::map<std::string, Measurement*> byName;
    for (Measurement& measurement : measurements) {
        byName[measurement.name()] = &measurement;
        const bool inParts = measurement.operation->prepare != nullptr;
        auto* registered = benchmark::RegisterBenchmark(
            measurement.name().c_str(), [&measurement, inParts](benchmark::State& state) {
                (inParts ? timeParts : timeWhole)(measurement, state);
            });
        if (inParts) {
            registered->UseManualTime();
        }
    }
    Collector collector(std::move(byName));
    benchmark::RunSpecifiedBenchmarks(&collector);
}

/// @return the exit status
int check(const bench::Measurements& measurements) {
    bool whole = true;
    for (const Measurement& refused : measurements.refused) {
        std::cout << "refused: " << refused.name() << '\n';
        whole = whole && refused.library->name() != bench::ourName;
    }
    std::cout << measurements.accepted.size() << " operations on messages accepted, "
              << measurements.refused.size() << " refused\n";
    return whole ? 0 : 1;
}

void publish(const std::string& directory, const std::vector<Measurement>& measurements) {
    if (!bench::isComplete(measurements)) {
        std::cerr << "nothing is published: not everything was measured\n";
        return;
    }
    std::ofstream table(directory + "/speed.md");
    bench::writePublishedTable(table, measurements);
    std::ofstream chart(directory + "/speed.svg");
    bench::writeChart(chart, measurements);
    if (!table.flush() || !chart.flush()) {
        throw std::runtime_error(directory + " cannot be written to");
    }
}

int run(const std::string& directory, const std::string& mode, const std::string& instructions,
        const std::string& published, bool quick) {
    if (mode == "--growth") {
        bench::writeGrowth(std::cout, directory, quick);
        return 0;
    }
    const std::vector<bench::Sample> samples = bench::readCorpus(directory);
    bench::Measurements measurements = bench::tryAll(samples);
    if (mode == "--check") {
        return check(measurements);
    }
    if (mode == "--count-instructions") {
        bench::countInstructions(measurements.accepted);
        return 0;
    }
    bench::countAllocations(measurements.accepted);
    bench::readInstructions(instructions, measurements.accepted);
    measureTimes(measurements.accepted);
    bench::writeReport(std::cout, measurements.accepted);
    if (!published.empty()) {
        publish(published, measurements.accepted);
    }
    return 0;
}

} // namespace

int main(int count, char** arguments) try {
    benchmark::Initialize(&count, arguments);
    std::string directory;
    std::string mode;
    std::string instructions;
    std::string published;
    bool quick = false;
    if (count > 1 && std::strcmp(arguments[1], bench::growthStep) == 0) {
        return bench::runGrowthStep(count - 2, arguments + 2);
    }
    for (int i = 1; i < count; ++i) {
        const std::string argument = arguments[i];
        if (argument == "--check" || argument == "--growth" || argument == "--count-instructions") {
            mode = argument;
        } else if (argument == "--quick") {
            quick = true;
        } else if (argument.rfind("--instructions=", 0) == 0) {
            instructions = argument.substr(std::strlen("--instructions="));
        } else if (argument.rfind("--publish=", 0) == 0) {
            published = argument.substr(std::strlen("--publish="));
        } else if (directory.empty() && argument[0] != '-') {
            directory = argument;
        } else {
            std::cerr << Usage;
            return 2;
        }
    }
    if (directory.empty()) {
        std::cerr << Usage;
        return 2;
    }
    return run(directory, mode, instructions, published, quick);
} catch (const std::exception& failure) {
    std::cerr << failure.what() << '\n';
    return 1;
}
