#ifndef DERVIEW_JSON_STREAM_H
#define DERVIEW_JSON_STREAM_H

#include <string>
#include <string_view>
#include <vector>

#include "output.h"

namespace derview {

/// Writes one JSON value (RFC 8259) as it grows, so that it needs no memory of its own. Everything
/// outside ASCII is escaped.
class JsonStream {
public:
    /// @param compact everything on one line
    JsonStream(Output& output, bool compact) : output_(output), compact_(compact) {}

    void beginObject() { begin('{', '}'); }
    void beginArray() { begin('[', ']'); }
    /// Ends the innermost object or array.
    void end();
    /// Ends objects and arrays until so many are open.
    void endTo(std::size_t depth);
    std::size_t depth() const { return open_.size(); }

    void key(std::string_view name);
    /// Writes a value without blanks in it that is JSON already.
    void literal(std::string_view json);
    /// @param utf8 valid UTF-8
    void string(std::string_view utf8);
    /// @param utf8 null stands for itself
    void stringOrNull(const char* utf8);
    void number(long long number) { literal(std::to_string(number)); }
    /// Two digits an octet.
    void hex(Octets octets);
    /// Ends the value's last line.
    void finish() { output_.write("\n"); }

private:
    struct Open {
        char closing;
        bool empty;
    };
    void begin(char opening, char closing);
    /// What stands between the value before and the one that follows.
    void separate();
    void breakLine();

    Output& output_;
    bool compact_;
    bool keyed_ = false; ///< a key waits for its value
    std::vector<Open> open_;
};

} // namespace derview

#endif
