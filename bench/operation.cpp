#include "operation.h"

#include <algorithm>
#include <utility>

namespace bench {

namespace {

/// Entered from static objects of other files, so it has to be there before any of them.
std::vector<const Library*>& entered() {
    static std::vector<const Library*> list;
    return list;
}

} // namespace

const char* taskName(Task task) {
    switch (task) {
    case Task::Scan:
        return "scan";
    case Task::Fields:
        return "fields";
    case Task::DecodeInPlace:
        return "decode in place";
    case Task::Decode:
        return "decode";
    case Task::DecodeAll:
        return "decode all";
    case Task::DecodeText:
        return "decode, text";
    case Task::Recode:
        return "encode";
    case Task::RecodeAll:
        return "encode all";
    case Task::Encode:
        return "encode alone";
    case Task::Copy:
        return "copy";
    default:
        return "release";
    }
}

Library::Library(std::string name, std::string version, std::vector<Operation> operations)
    : name_(std::move(name)), version_(std::move(version)), operations_(std::move(operations)) {
    entered().push_back(this);
}

std::vector<const Library*> libraries() {
    std::vector<const Library*> sorted = entered();
    std::sort(sorted.begin(), sorted.end(),
              [](const Library* a, const Library* b) { return a->name() < b->name(); });
    return sorted;
}

} // namespace bench
