#include "comparison.h"

namespace bench {

Rows rowsOf(const std::vector<Measurement>& all, const Sample& sample) {
    Rows rows;
    for (const Measurement& measurement : all) {
        if (measurement.sample == &sample) {
            rows.push_back(&measurement);
        }
    }
    return rows;
}

std::vector<const Sample*> samplesOf(const std::vector<Measurement>& all) {
    std::vector<const Sample*> samples;
    for (const Measurement& measurement : all) {
        if (samples.empty() || samples.back() != measurement.sample) {
            samples.push_back(measurement.sample);
        }
    }
    return samples;
}

const Library* ours() {
    for (const Library* library : libraries()) {
        if (library->name() == ourName) {
            return library;
        }
    }
    return nullptr;
}

bool isComparable(Task own, Task other) {
    switch (own) {
    case Task::Decode:
    case Task::DecodeAll:
    case Task::DecodeInPlace:
        return decodes(other);
    case Task::Recode:
    case Task::RecodeAll:
        return recodes(other);
    default:
        return own == other && own != Task::Scan;
    }
}

const Measurement* fullest(const Rows& rows, const Library& library, Task task) {
    const Measurement* found = nullptr;
    for (const Measurement* row : rows) {
        const Task done = row->operation->task;
        if (row->library != &library || !isComparable(task, done)) {
            continue;
        }
        if (found == nullptr || done > found->operation->task ||
            (done == found->operation->task && row->time() < found->time())) {
            found = row;
        }
    }
    return found;
}

} // namespace bench
