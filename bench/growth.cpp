#include "growth.h"

#include <array>
#include <chrono>
#include <csignal>
#include <optional>
#include <stdexcept>
#include <vector>

#include <poll.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "allocations.h"
#include "corpus.h"
#include "generated_messages.h"
#include "number_text.h"
#include "revocation_lookup.h"

namespace bench {

namespace {

using Clock = std::chrono::steady_clock;

constexpr int LimitSeconds = 20;

/// A message that comes in several sizes.
struct Series {
    const char* name;
    const char* unit; ///< what there are `counts` of
    Kind kind;
    std::vector<std::size_t> counts;
    std::vector<unsigned char> (*make)(std::size_t count, const std::string& directory);
};

struct Cost {
    double nanoseconds; ///< of one run
    double octets;      ///< by which the first run raised the peak of resident memory
};

double peakOfResidentMemory() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss) * 1024;
}

/// The cost here and now; nothing when the library refuses the message.
std::optional<Cost> measure(const Operation& operation, Octets message) {
    constexpr std::chrono::milliseconds enough{100};
    Cost cost{};
    const double before = peakOfResidentMemory();
    const auto start = Clock::now();
    auto now = start;
    int runs = 0;
    do {
        if (!operation.run(message)) {
            return std::nullopt;
        }
        if (++runs == 1) {
            cost.octets = peakOfResidentMemory() - before;
        }
        now = Clock::now();
    } while (now - start < enough);
    cost.nanoseconds = std::chrono::duration<double, std::nano>(now - start).count() / runs;
    return cost;
}

/// The cost in a process of its own; nothing when it is refused or takes too long.
std::optional<Cost> measureApart(const Operation& operation, Octets message) {
    std::array<int, 2> ends{};
    if (pipe(ends.data()) != 0) {
        throw std::runtime_error("no pipe");
    }
    giveBackFreeMemory();
    const pid_t child = fork();
    if (child < 0) {
        throw std::runtime_error("no process");
    }
    if (child == 0) {
        const std::optional<Cost> cost = measure(operation, message);
        const bool told = cost && write(ends[1], &*cost, sizeof *cost) == sizeof *cost;
        _exit(told ? 0 : 1);
    }
    close(ends[1]);
    pollfd answer{ends[0], POLLIN, 0};
    Cost cost{};
    const bool answered = poll(&answer, 1, LimitSeconds * 1000) == 1 &&
                          read(ends[0], &cost, sizeof cost) == sizeof cost;
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    close(ends[0]);
    return answered ? std::optional(cost) : std::nullopt;
}

/// One operation on all sizes of the message, up to the first that it cannot do.
void writeRow(std::ostream& out, const Library& library, const Operation& operation,
              const Series& series, const std::vector<std::vector<unsigned char>>& messages) {
    out << "| " << library.name() << " | " << operation.calls << " |";
    double octetsEach = 0;
    bool going = true;
    for (std::size_t i = 0; i < messages.size(); ++i) {
        std::optional<Cost> cost;
        if (going) {
            cost = measureApart(operation, {messages[i].data(), messages[i].size()});
            going = cost.has_value();
        }
        const auto count = static_cast<double>(series.counts[i]);
        out << ' ' << (cost ? timeText(cost->nanoseconds / count) : "–") << " |";
        octetsEach = cost ? cost->octets / count : octetsEach;
    }
    out << ' ' << octetText(octetsEach) << " |" << std::endl;
}

void writeSeries(std::ostream& out, const Series& series, const std::string& directory) {
    std::vector<std::vector<unsigned char>> messages;
    out << "### " << series.name << ", time per " << series.unit << "\n\n| library | calls |";
    for (const std::size_t count : series.counts) {
        out << ' ' << count << " |";
        messages.push_back(series.make(count, directory));
    }
    out << " memory per " << series.unit << " |\n| --- | --- |";
    for (std::size_t i = 0; i <= series.counts.size(); ++i) {
        out << " ---: |";
    }
    out << '\n';
    for (const Library* library : libraries()) {
        for (const Operation& operation : library->operations()) {
            if (operation.kind == series.kind && operation.task != Task::Scan) {
                writeRow(out, *library, operation, series, messages);
            }
        }
    }
    out << '\n';
}

} // namespace

void writeGrowth(std::ostream& out, const std::string& directory) {
    const std::vector<Series> all = {
        {"Revocation list",
         "entry",
         Kind::RevocationList,
         {10, 10'000, 100'000, 1'000'000},
         [](std::size_t count, const std::string&) { return makeRevocationList(count); }},
        {"Certification request with a SET OF",
         "member",
         Kind::CertificationRequest,
         {10, 1'000, 100'000},
         makeCertificationRequest},
        {"Signed message", "MiB", Kind::SignedData, {1, 10, 100}, makeSignedData},
    };
    for (const Series& series : all) {
        writeSeries(out, series, directory);
    }
    writeRevocationLookup(out);
}

} // namespace bench
