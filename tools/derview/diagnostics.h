#ifndef DERVIEW_DIAGNOSTICS_H
#define DERVIEW_DIAGNOSTICS_H

#include <string>

#include "output.h"
#include "progress.h"

namespace derview {

/// Tells what does not belong on standard output, in step with it.
class Diagnostics {
public:
    Diagnostics(Output& output, Progress& progress) : output_(output), progress_(progress) {}

    /// Writes a line to standard error.
    void tell(const std::string& text);
    /// The same about a message.
    void tell(const Message& message, const std::string& text) {
        tell(message.place + ": " + text);
    }

private:
    Output& output_;
    Progress& progress_;
};

} // namespace derview

#endif
