#include "growth.h"

#include <array>
#include <csignal>
#include <ctime>
#include <deque>
#include <fstream>
#include <optional>
#include <stdexcept>
#include <vector>

#include <poll.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include "generated_messages.h"
#include "number_text.h"
#include "operation.h"
#include "revocation_lookup.h"

namespace bench {

namespace {

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
    double first;       ///< nanoseconds of the first run
    double peak;        ///< octets by which the first run raised the peak of resident memory
    double left;        ///< octets that it left resident when everything was given back
};

/// A line of the kernel's account of this process, in octets. getrusage would tell the peak of the
/// process that started this one, when that was higher.
double memory(const std::string& name) {
    std::ifstream lines("/proc/self/status");
    std::string word;
    double kibibytes = 0;
    while (lines >> word && word != name) {
    }
    lines >> kibibytes;
    return kibibytes * 1024;
}

double peakOfResidentMemory() {
    return memory("VmHWM:");
}

double residentMemory() {
    return memory("VmRSS:");
}

/// Time that the processor spent on this process, in nanoseconds; in the kernel, too, which has to
/// find and to clear the memory that is asked for.
double now() {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return 1e9 * static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec);
}

/// The cost here and now; nothing when the library refuses the message.
std::optional<Cost> measure(const Operation& operation, Octets message) {
    constexpr double enough = 1e8;
    Cost cost{};
    const double peak = peakOfResidentMemory();
    const double resident = residentMemory();
    const double start = now();
    if (!operation.run(message)) {
        return std::nullopt;
    }
    cost.first = now() - start;
    cost.peak = peakOfResidentMemory() - peak;
    cost.left = residentMemory() - resident;
    const double second = now();
    int runs = 0;
    for (cost.nanoseconds = cost.first; now() - start < enough;) {
        operation.run(message);
        cost.nanoseconds = (now() - second) / ++runs;
    }
    return cost;
}

/// Where an operation stands among those of all libraries.
struct Place {
    std::size_t library;
    std::size_t operation;

    const Operation& get() const { return libraries().at(library)->operations().at(operation); }
};

/// A file that is nowhere but in memory, for processes that this one starts.
class SharedFile {
public:
    explicit SharedFile(const std::vector<unsigned char>& content)
        : descriptor_(memfd_create("message", 0)), size_(content.size()) {
        for (std::size_t written = 0; written < size_;) {
            const ssize_t step = write(descriptor_, content.data() + written, size_ - written);
            if (step <= 0) {
                throw std::runtime_error("no room for a message");
            }
            written += static_cast<std::size_t>(step);
        }
    }
    ~SharedFile() { close(descriptor_); }
    SharedFile(const SharedFile&) = delete;
    SharedFile& operator=(const SharedFile&) = delete;

    int descriptor() const { return descriptor_; }
    std::size_t size() const { return size_; }

private:
    int descriptor_;
    std::size_t size_;
};

/// The cost in a process of its own; nothing when it is refused or takes too long.
std::optional<Cost> measureApart(const Place& place, const SharedFile& message) {
    std::array<int, 2> ends{};
    if (pipe(ends.data()) != 0) {
        throw std::runtime_error("no pipe");
    }
    const pid_t child = fork();
    if (child < 0) {
        throw std::runtime_error("no process");
    }
    if (child == 0) {
        const std::array<std::string, 5> numbers = {
            std::to_string(place.library), std::to_string(place.operation),
            std::to_string(message.descriptor()), std::to_string(message.size()),
            std::to_string(ends[1])};
        execl("/proc/self/exe", "asn1_bench", growthStep, numbers[0].c_str(), numbers[1].c_str(),
              numbers[2].c_str(), numbers[3].c_str(), numbers[4].c_str(), nullptr);
        _exit(1);
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
void writeRow(std::ostream& out, const Place& place, const Series& series,
              const std::deque<SharedFile>& messages) {
    const Operation& operation = place.get();
    out << "| " << libraries()[place.library]->name() << " | " << operation.calls << " |";
    double count = 1;
    std::optional<Cost> largest;
    for (std::size_t i = 0; i < messages.size(); ++i) {
        const std::optional<Cost> cost =
            i == 0 || largest ? measureApart(place, messages[i]) : std::nullopt;
        if (!cost) {
            out << " – |";
            largest.reset();
            continue;
        }
        largest = cost;
        count = static_cast<double>(series.counts[i]);
        out << ' ' << timeText(cost->nanoseconds / count) << " |";
    }
    if (largest) {
        out << ' ' << timeText(largest->first / count) << " | " << octetText(largest->peak / count)
            << " | " << octetText(largest->left) << " |" << std::endl;
    } else {
        out << " – | – | – |" << std::endl;
    }
}

void writeSeries(std::ostream& out, const Series& series, const std::string& directory) {
    std::deque<SharedFile> messages;
    out << "### " << series.name << ", time per " << series.unit << "\n\n| library | calls |";
    for (const std::size_t count : series.counts) {
        out << ' ' << count << " |";
        messages.emplace_back(series.make(count, directory));
    }
    out << " first run | memory per " << series.unit << " | left resident |\n| --- | --- |";
    for (std::size_t i = 0; i < series.counts.size() + 3; ++i) {
        out << " ---: |";
    }
    out << '\n';
    for (Place place{0, 0}; place.library < libraries().size(); ++place.library) {
        const std::size_t operations = libraries()[place.library]->operations().size();
        for (place.operation = 0; place.operation < operations; ++place.operation) {
            const Operation& operation = place.get();
            if (operation.kind == series.kind && operation.prepare == nullptr) {
                writeRow(out, place, series, messages);
            }
        }
    }
    out << '\n';
}

} // namespace

void writeGrowth(std::ostream& out, const std::string& directory, bool quick) {
    std::vector<Series> all = {
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
    out << "First run, memory and what is left resident are those of the largest message.\n\n";
    for (Series& series : all) {
        if (quick) {
            series.counts.pop_back();
        }
        writeSeries(out, series, directory);
    }
    if (!quick) {
        writeRevocationLookup(out);
    }
}

int runGrowthStep(int count, char** arguments) {
    if (count != 5) {
        return 2;
    }
    const Place place{std::stoul(arguments[0]), std::stoul(arguments[1])};
    const std::size_t size = std::stoul(arguments[3]);
    // Mapped and not read, so that the heap is as a program finds it.
    const void* const message =
        mmap(nullptr, size, PROT_READ, MAP_PRIVATE | MAP_POPULATE, std::stoi(arguments[2]), 0);
    if (message == MAP_FAILED) {
        return 1;
    }
    const std::optional<Cost> cost =
        measure(place.get(), {static_cast<const unsigned char*>(message), size});
    const bool told = cost && write(std::stoi(arguments[4]), &*cost, sizeof *cost) == sizeof *cost;
    return told ? 0 : 1;
}

} // namespace bench
