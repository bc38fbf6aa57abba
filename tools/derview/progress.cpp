#include "progress.h"

#include <cstdio>

namespace derview {

using asn1data::WalkAction;
using asn1data::WalkElement;

void Progress::begin(const Message& message) {
    ++messages_;
    place_ = message.place;
    size_ = message.octets.size();
    at(0);
}

void Progress::at(std::size_t offset) {
    constexpr unsigned rarely = 1024;
    constexpr std::chrono::milliseconds pause{200};
    // The clock costs more than most elements.
    if (!wanted_ || (offset != 0 && ++calls_ % rarely != 0)) {
        return;
    }
    const Clock::time_point now = Clock::now();
    if (now < next_) {
        return;
    }
    next_ = now + pause;
    shown_ = true;
    const double percent =
        size_ != 0 ? 100.0 * static_cast<double>(offset) / static_cast<double>(size_) : 0.0;
    std::fprintf(stderr, "\r\x1B[K%s: %.0f %%, message %zu", place_.c_str(), percent, messages_);
    std::fflush(stderr);
}

void Progress::clear() {
    if (shown_) {
        std::fputs("\r\x1B[K", stderr);
        std::fflush(stderr);
        shown_ = false;
    }
}

WalkAction ProgressVisitor::enter(const WalkElement& element) {
    progress_.at(element.offset);
    return visitor_.enter(element);
}

WalkAction ProgressVisitor::leave(const WalkElement& element) {
    return visitor_.leave(element);
}

WalkAction ProgressVisitor::primitive(const WalkElement& element) {
    progress_.at(element.offset);
    return visitor_.primitive(element);
}

} // namespace derview
