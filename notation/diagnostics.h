#ifndef BREVANTIS_NOTATION_DIAGNOSTICS_H
#define BREVANTIS_NOTATION_DIAGNOSTICS_H

#include <ostream>
#include <set>
#include <string>
#include <tuple>
#include <vector>

namespace notation {

/// A place in a module's text.
struct Location {
    std::string file;
    unsigned line = 0;
    unsigned column = 0;
};

/// Collects what is wrong, so that one run reports as much as makes sense.
class Diagnostics {
public:
    struct Entry {
        Location at;
        std::string sentence;
        bool warning = false;
    };

    /// Adds a complaint, once.
    /// @param sentence starts in lower case and has no full stop
    void error(const Location& at, const std::string& sentence) { add(at, sentence, false); }

    /// Adds a remark on something that was read otherwise than it stands, once.
    void warning(const Location& at, const std::string& sentence) { add(at, sentence, true); }

    /// Whether there are errors; warnings do not count.
    bool failed() const { return failed_; }
    const std::vector<Entry>& entries() const { return entries_; }
    /// They in the order of the text; files in the order in which they were first complained about.
    std::vector<Entry> sorted() const;

    /// Prints "file:line:column: error: sentence." for each entry, or "warning", in the order of
    /// the text.
    void print(std::ostream& out) const;

private:
    void add(const Location& at, const std::string& sentence, bool warning);

    std::vector<Entry> entries_;
    std::set<std::tuple<std::string, unsigned, unsigned, std::string>> said_;
    bool failed_ = false;
};

} // namespace notation

#endif
