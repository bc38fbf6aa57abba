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

bool Measurement::run() const {
    bool accepted = true;
    for (std::size_t i = 0; i < sample->messages.size(); ++i) {
        accepted = operation->run(sample->octets(i)) && accepted;
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

void countAllocations(std::vector<Measurement>& measurements) {
    for (Measurement& measurement : measurements) {
        startCounting();
        measurement.run();
        measurement.allocations = stopCounting();
    }
}

#ifdef CALLGRIND_ZERO_STATS

void countInstructions(const std::vector<Measurement>& measurements) {
    for (const Measurement& measurement : measurements) {
        const std::string name = measurement.name();
        CALLGRIND_ZERO_STATS;
        CALLGRIND_TOGGLE_COLLECT;
        measurement.run();
        CALLGRIND_TOGGLE_COLLECT;
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
