// Measures this library and others side by side, on the same messages, in one run.

#include <cstring>
#include <exception>
#include <iostream>
#include <map>
#include <string>

#include <benchmark/benchmark.h>

#include "allocations.h"
#include "corpus.h"
#include "growth.h"
#include "measurement.h"
#include "report.h"

namespace {

constexpr const char* Usage =
    R"(Usage: asn1_bench CORPUS [--check | --growth | --count-instructions] [--instructions=FILE]
                  [--benchmark_...=VALUE]...

CORPUS is a directory that make_corpus.sh filled. Without an option everything is timed; the tables
go to the standard output, in Markdown.

  --check               do everything once and tell what is refused; exit 1 if this library refuses
                        a message
  --growth              how time and memory grow with a message
  --count-instructions  do everything once for callgrind, which writes a file for each
  --instructions=FILE   lines of a name, a tabulator and a count, for the tables
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
                measurement.nanoseconds.push_back(
                    run.GetAdjustedCPUTime() /
                    static_cast<double>(measurement.sample->messages.size()));
            }
        }
    }

private:
    std::map<std::string, Measurement*> measurements_;
};

void measureTimes(std::vector<Measurement>& measurements) {
    std::map<std::string, Measurement*> byName;
    for (Measurement& measurement : measurements) {
        byName[measurement.name()] = &measurement;
        benchmark::RegisterBenchmark(measurement.name().c_str(),
                                     [&measurement](benchmark::State& state) {
                                         bench::giveBackFreeMemory();
                                         for ([[maybe_unused]] auto iteration : state) {
                                             measurement.run();
                                         }
                                     });
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

int run(const std::string& directory, const std::string& mode, const std::string& instructions) {
    if (mode == "--growth") {
        bench::writeGrowth(std::cout, directory);
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
    return 0;
}

} // namespace

int main(int count, char** arguments) try {
    benchmark::Initialize(&count, arguments);
    std::string directory;
    std::string mode;
    std::string instructions;
    for (int i = 1; i < count; ++i) {
        const std::string argument = arguments[i];
        if (argument == "--check" || argument == "--growth" || argument == "--count-instructions") {
            mode = argument;
        } else if (argument.rfind("--instructions=", 0) == 0) {
            instructions = argument.substr(std::strlen("--instructions="));
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
    return run(directory, mode, instructions);
} catch (const std::exception& failure) {
    std::cerr << failure.what() << '\n';
    return 1;
}
