#include "report.h"

#include <algorithm>

#include "number_text.h"

namespace bench {

namespace {

using Rows = std::vector<const Measurement*>;

Rows rowsOf(const std::vector<Measurement>& all, const Sample& sample) {
    Rows rows;
    for (const Measurement& measurement : all) {
        if (measurement.sample == &sample) {
            rows.push_back(&measurement);
        }
    }
    return rows;
}

/// Samples in the order of the measurements.
std::vector<const Sample*> samplesOf(const std::vector<Measurement>& all) {
    std::vector<const Sample*> samples;
    for (const Measurement& measurement : all) {
        if (samples.empty() || samples.back() != measurement.sample) {
            samples.push_back(measurement.sample);
        }
    }
    return samples;
}

/// What a library does in one of two directions, at its fullest, and of that the fastest form.
const Measurement* fullest(const Rows& rows, const Library& library, bool encoding) {
    const Measurement* found = nullptr;
    for (const Measurement* row : rows) {
        const Task task = row->operation->task;
        if (row->library != &library || task == Task::Scan || encodes(task) != encoding) {
            continue;
        }
        if (found == nullptr || task > found->operation->task ||
            (task == found->operation->task && row->time() < found->time())) {
            found = row;
        }
    }
    return found;
}

const Library* ours() {
    for (const Library* library : libraries()) {
        if (library->name() == ourName) {
            return library;
        }
    }
    return nullptr;
}

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
                 const std::vector<const Library*>& columns, bool encoding) {
    const Measurement* own = fullest(rows, *ours(), encoding);
    if (own == nullptr) {
        return;
    }
    out << "| " << title << " | " << timeText(own->time()) << " |";
    for (const Library* column : columns) {
        const Measurement* other = fullest(rows, *column, encoding);
        out << (other != nullptr ? ' ' + shortNumber(other->time() / own->time()) + " |" : " |");
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
        writeRatios(out, sample->name + ": decode", rows, columns, false);
        writeRatios(out, sample->name + ": decode and encode", rows, columns, true);
    }
    out << '\n';
}

void writeRow(std::ostream& out, const Measurement& row, const Measurement* own) {
    const auto messages = static_cast<double>(row.sample->messages.size());
    const double nanoseconds = row.time();
    const bool compared = own != nullptr && row.operation->task != Task::Scan;
    out << "| " << row.library->name() << " | " << row.operation->calls << " | "
        << taskName(row.operation->task) << " | " << timeText(nanoseconds) << " | "
        << (compared ? shortNumber(nanoseconds / own->time()) : "") << " | "
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
    const Measurement* decoding = fullest(rows, *ours(), false);
    const Measurement* encoding = fullest(rows, *ours(), true);
    std::sort(rows.begin(), rows.end(),
              [](const Measurement* a, const Measurement* b) { return a->time() < b->time(); });
    for (const Measurement* row : rows) {
        writeRow(out, *row, encodes(row->operation->task) ? encoding : decoding);
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
    writeSummary(out, measurements);
    for (const Sample* sample : samplesOf(measurements)) {
        writeSample(out, *sample, rowsOf(measurements, *sample));
    }
}

} // namespace bench
