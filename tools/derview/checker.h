#ifndef DERVIEW_CHECKER_H
#define DERVIEW_CHECKER_H

#include "message.h"
#include "output.h"
#include "progress.h"
#include "recode.h"

namespace derview {

/// Checks messages: whether they decode and come back identical when they are encoded again, and
/// what in them is not DER. Writes a line a message or finding.
class Checker {
public:
    /// @param recodes whether to decode and encode again
    /// @param lints whether to tell what is not DER
    Checker(Output& output, Progress& progress, bool recodes, bool lints)
        : output_(output), progress_(progress), recodes_(recodes), lints_(lints) {}

    /// @return whether everything about the message is good
    bool check(const Message& message, const asn1data::TypeDescription& type);
    /// A message that cannot even be looked at, or a file without one.
    /// @param place of the message or file, escaped
    void countFailure(const std::string& place, const std::string& problem);
    /// Writes the sums of it all.
    void writeTotal();

private:
    /// @param result receives what the decoder makes of the message
    bool compare(const Message& message, const asn1data::TypeDescription& type,
                 asn1data::WalkResult& result);
    /// @param result the same
    bool lint(const Message& message, const asn1data::TypeDescription& type,
              asn1data::WalkResult& result);
    void writeFinding(const Message& message, const std::string& text);
    void writeLine(const std::string& place, Style style, const std::string& text);

    Output& output_;
    Progress& progress_;
    bool recodes_;
    bool lints_;
    Recoder recoder_;
    std::size_t messages_ = 0;
    std::size_t identical_ = 0;
    std::size_t different_ = 0;
    std::size_t errors_ = 0;
    std::size_t findings_ = 0;
};

} // namespace derview

#endif
