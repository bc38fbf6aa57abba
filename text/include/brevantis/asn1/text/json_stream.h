#ifndef BREVANTIS_ASN1_TEXT_JSON_STREAM_H
#define BREVANTIS_ASN1_TEXT_JSON_STREAM_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <brevantis/asn1/text/export.h>
#include <brevantis/asn1/text/octets.h>

/// @file
/// JSON written piece by piece, to wherever text goes.

namespace asn1text {

/// Where text goes as it is written.
class BREVANTIS_ASN1_TEXT_API Sink {
public:
    virtual ~Sink();
    /// Takes the next piece, which lives until it returns. What it throws passes through to whoever
    /// writes.
    virtual void write(std::string_view text) = 0;
};

/// Puts a text together.
class BREVANTIS_ASN1_TEXT_API TextSink : public Sink {
public:
    void write(std::string_view text) override { whole += text; }

    std::string whole; ///< all that was written
};

/// How JSON is laid out.
enum class JsonLayout : unsigned char {
    Indented, ///< a line for each value, two blanks for each level
    OneLine   ///< no blanks and no line ends, for one message a line
};

/// Writes one JSON value (RFC 8259) as it grows, so that it needs no memory but for a piece that
/// goes to the sink when it is full. Everything outside ASCII is escaped. All of it may throw
/// std::bad_alloc, and what the sink throws.
class BREVANTIS_ASN1_TEXT_API JsonStream {
public:
    /// @param sink outlives the object
    /// @param layout how values are laid out
    JsonStream(Sink& sink, JsonLayout layout) : sink_(sink), layout_(layout) {}

    /// Begins an object, as a value of what is open.
    void beginObject() { begin('{', '}'); }
    /// Begins an array, as a value of what is open.
    void beginArray() { begin('[', ']'); }
    /// Ends the innermost object or array.
    void end();
    /// Ends objects and arrays until so many are open.
    void endTo(std::size_t depth);
    /// Objects and arrays that are open.
    std::size_t depth() const { return open_.size(); }

    /// The name of the member whose value follows; only in an object.
    /// @param name UTF-8; what is ill-formed in it becomes U+FFFD
    void key(std::string_view name);
    /// Writes a value without blanks in it that is JSON already.
    void literal(std::string_view json);
    /// @param utf8 what is ill-formed in it becomes U+FFFD
    void string(std::string_view utf8);
    /// @param utf8 null stands for itself
    void stringOrNull(const char* utf8);
    /// A number in decimal digits, of all 64 bits.
    void number(long long number);
    /// Two digits an octet.
    void hex(Octets octets);

    // A string in pieces, between openString and closeString.

    /// Begins a string as a value of what is open.
    void openString();
    /// @param code of ISO/IEC 10646
    void character(std::uint32_t code);
    /// Two digits an octet, in lower case.
    void hexDigits(Octets octets);
    /// Ends the string.
    void closeString();

    /// Ends the value's last line and hands everything over to the sink.
    void finish();
    /// Hands over what is written so far.
    void flush();

private:
    struct Open {
        char closing;
        bool empty;
    };
    void begin(char opening, char closing);
    /// What stands between the value before and the one that follows.
    void separate();
    void breakLine();
    void put(std::string_view text);
    void escape(std::uint32_t unit);

    Sink& sink_;
    JsonLayout layout_;
    bool keyed_ = false; ///< a key waits for its value
    std::vector<Open> open_;
    std::string pending_;
};

} // namespace asn1text

#endif
