#ifndef DERVIEW_PROGRESS_H
#define DERVIEW_PROGRESS_H

#include <chrono>
#include <string>

#include <brevantis/asn1/asn1data/walk.h>

#include "message.h"

namespace derview {

/// Tells on standard error how far a long run has come: one line that is written over.
class Progress {
public:
    /// @param wanted false for silence
    explicit Progress(bool wanted) : wanted_(wanted) {}
    ~Progress() { clear(); }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// Another message is being worked on.
    void begin(const Message& message);
    /// The work has come to an offset in the message.
    void at(std::size_t offset);
    /// Takes the line away, so that something else can be written.
    void clear();

private:
    using Clock = std::chrono::steady_clock;

    bool wanted_;
    bool shown_ = false;
    unsigned calls_ = 0;
    std::size_t messages_ = 0;
    std::string place_;
    std::size_t size_ = 0;
    Clock::time_point next_ = Clock::now() + std::chrono::milliseconds(500);
};

/// Passes a walk on and tells how far it has come.
class ProgressVisitor : public asn1data::WalkVisitor {
public:
    ProgressVisitor(Progress& progress, asn1data::WalkVisitor& visitor)
        : progress_(progress), visitor_(visitor) {}

    asn1data::WalkAction enter(const asn1data::WalkElement& element) override;
    asn1data::WalkAction leave(const asn1data::WalkElement& element) override;
    asn1data::WalkAction primitive(const asn1data::WalkElement& element) override;
    asn1data::WalkAction fault(const asn1data::WalkFault& fault) override {
        return visitor_.fault(fault);
    }
    asn1data::WalkInterest interest() const override { return visitor_.interest(); }

private:
    Progress& progress_;
    asn1data::WalkVisitor& visitor_;
};

} // namespace derview

#endif
