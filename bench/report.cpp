#include "report.h"

#include <algorithm>
#include <set>
#include <string>

#include "comparison.h"
#include "number_text.h"

namespace bench {

namespace {

void writeVersions(std::ostream& out) {
    out << "| library | version |\n| --- | --- |\n";
    for (const Library* library : libraries()) {
        if (!library->version().empty()) {
            out << "| " << library->name() << " | " << library->version() << " |\n";
        }
    }
    out << '\n';
}

/// One line of ratios, left out where there is nothing to compare with.
void writeRatios(std::ostream& out, const std::string& title, const Rows& rows,
                 const std::vector<const Library*>& columns, Task task) {
    const Measurement* own = fullest(rows, *ours(), task);
    if (own == nullptr) {
        return;
    }
    out << "| " << title << " | " << timeText(own->time()) << " |";
    for (const Library* column : columns) {
        const Measurement* other = fullest(rows, *column, task);
        out << (other != nullptr ? ' ' + ratioText(other->time() / own->time()) + " |" : " |");
    }
    out << '\n';
}

void writeSummary(std::ostream& out, const std::vector<Measurement>& all) {
    std::vector<const Library*> columns;
    out << "| message, task | " << ourName << " |";
    for (const Library* library : libraries()) {
        if (!library->version().empty() && library->name() != ourName) {
            columns.push_back(library);
            out << ' ' << library->name() << " |";
        }
    }
    out << "\n| --- | ---: |";
    for (std::size_t i = 0; i < columns.size(); ++i) {
        out << " ---: |";
    }
    out << '\n';
    for (const Sample* sample : samplesOf(all)) {
        const Rows rows = rowsOf(all, *sample);
        writeRatios(out, sample->name + ": decode", rows, columns, Task::DecodeAll);
        writeRatios(out, sample->name + ": decode and encode", rows, columns, Task::RecodeAll);
    }
    out << '\n';
}

void writeRow(std::ostream& out, const Measurement& row, const Measurement* own) {
    const auto messages = static_cast<double>(row.sample->messages.size());
    const double nanoseconds = row.time();
    const bool compared = own != nullptr && row.operation->task != Task::Scan;
    out << "| " << row.library->name() << " | " << row.operation->calls << " | "
        << taskName(row.operation->task) << " | " << timeText(nanoseconds) << " | "
        << (compared ? ratioText(nanoseconds / own->time()) : "") << " | "
        << countText(static_cast<double>(row.allocations.calls) / messages) << " | "
        << octetText(static_cast<double>(row.allocations.octets) / messages) << " | "
        << octetText(static_cast<double>(row.allocations.peak)) << " | "
        << (row.instructions > 0 ? countText(row.instructions) : "") << " |\n";
}

void writeSample(std::ostream& out, const Sample& sample, Rows rows) {
    const auto messages = static_cast<double>(sample.messages.size());
    out << "### " << sample.name << ", " << octetText(static_cast<double>(sample.size()) / messages)
        << "\n\n| library | calls | task | time | ratio | allocations | asked for | peak | "
           "instructions |\n| --- | --- | --- | ---: | ---: | ---: | ---: | ---: | ---: |\n";
    const Measurement* decoding = fullest(rows, *ours(), Task::DecodeAll);
    const Measurement* encoding = fullest(rows, *ours(), Task::RecodeAll);
    std::sort(rows.begin(), rows.end(),
              [](const Measurement* a, const Measurement* b) { return a->time() < b->time(); });
    for (const Measurement* row : rows) {
        writeRow(out, *row, recodes(row->operation->task) ? encoding : decoding);
    }
    out << '\n';
}

// ---- operations that stand for many ------------------------------------------------------------

struct OverviewLine {
    const char* what;
    const char* sample;
    Task task;
    const char* calls; ///< of this library; null for all of the task
    double parts;      ///< of the message, each of which the figures are for
};

/// What we watch from one version to the next.
constexpr OverviewLine overview[] = {
    {"certificate, decode", "certificate", Task::DecodeAll, nullptr, 1},
    {"certificate, decode in place", "certificate", Task::DecodeInPlace, nullptr, 1},
    {"certificate, decode and encode", "certificate", Task::RecodeAll, nullptr, 1},
    {"certificate, encode alone", "certificate", Task::Encode, nullptr, 1},
    {"certificate, walk", "certificate", Task::Scan, "walk", 1},
    {"certificate, walk, every value used", "certificate", Task::Scan, "walk, every value used", 1},
    {"certificate, copy", "certificate", Task::Copy, nullptr, 1},
    {"certificate, release", "certificate", Task::Release, nullptr, 1},
    {"certificate, three fields", "certificate", Task::Fields, nullptr, 1},
    {"CRL, decode, an entry of 10,000", "CRL, 10,000 entries", Task::DecodeAll, nullptr, 1e4},
    {"CRL, walk, an entry of 10,000", "CRL, 10,000 entries", Task::Scan, "walk", 1e4},
    {"OCSP response, decode", "OCSP response", Task::DecodeAll, nullptr, 1},
    {"CMS of 1 KiB, decode, certificates left encoded", "CMS, 1 KiB", Task::Decode, nullptr, 1},
    {"CMS of 1 MiB, decode, certificates left encoded", "CMS, 1 MiB", Task::Decode, nullptr, 1},
    {"name, decode", "name", Task::Decode, nullptr, 1},
    {"name, decode, text", "name", Task::DecodeText, nullptr, 1},
    {"extensions, decode", "extensions", Task::DecodeAll, nullptr, 1},
    {"alternative names, decode", "alternative names", Task::Decode, nullptr, 1}};

void writeFigures(std::ostream& out, const Measurement& row, double parts) {
    const double each = parts * static_cast<double>(row.sample->messages.size());
    out << (row.instructions > 0 ? countText(row.instructions / parts) : "") << " | "
        << countText(static_cast<double>(row.allocations.calls) / each) << " | "
        << octetText(static_cast<double>(row.allocations.octets) / each) << " | "
        << timeText(row.time() / parts) << " | ";
}

/// This library's operation, and below it that of each other library which is the fastest there.
void writeOverviewLine(std::ostream& out, const OverviewLine& line,
                       const std::vector<Measurement>& all) {
    const Measurement* own = nullptr;
    std::vector<const Measurement*> others;
    for (const Measurement& row : all) {
        if (row.sample->name != line.sample) {
            continue;
        }
        if (row.library == ours()) {
            const bool named =
                line.calls == nullptr || line.calls == std::string(row.operation->calls);
            own = own == nullptr && row.operation->task == line.task && named ? &row : own;
        } else if (row.library->name() != arenaName &&
                   isComparable(line.task, row.operation->task)) {
            others.push_back(&row);
        }
    }
    if (own == nullptr) {
        return;
    }
    out << "| " << line.what << " | " << ourName << " | " << own->operation->calls << " | ";
    writeFigures(out, *own, line.parts);
    out << "|\n";
    std::sort(others.begin(), others.end(),
              [](const Measurement* a, const Measurement* b) { return a->time() < b->time(); });
    std::set<const Library*> told;
    for (const Measurement* other : others) {
        if (told.insert(other->library).second) {
            out << "| | " << other->library->name() << " | " << other->operation->calls << " | ";
            writeFigures(out, *other, line.parts);
            out << ratioText(other->time() / own->time()) << " |\n";
        }
    }
}

void writeOverview(std::ostream& out, const std::vector<Measurement>& all) {
    out << "| operation | library | calls | instructions | allocations | asked for | time | ratio "
           "|\n| --- | --- | --- | ---: | ---: | ---: | ---: | ---: |\n";
    for (const OverviewLine& line : overview) {
        writeOverviewLine(out, line, all);
    }
    out << '\n';
}

} // namespace

void writeReport(std::ostream& out, std::vector<Measurement> measurements) {
    measurements.erase(
        std::remove_if(measurements.begin(), measurements.end(),
                       [](const Measurement& each) { return each.nanoseconds.empty(); }),
        measurements.end());
    writeVersions(out);
    writeOverview(out, measurements);
    writeSummary(out, measurements);
    for (const Sample* sample : samplesOf(measurements)) {
        writeSample(out, *sample, rowsOf(measurements, *sample));
    }
}

} // namespace bench
