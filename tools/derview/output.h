#ifndef DERVIEW_OUTPUT_H
#define DERVIEW_OUTPUT_H

#include <string>
#include <string_view>

#include <brevantis/asn1/text/json_stream.h>

#include "octets.h"

namespace derview {

/// What a piece of text is, which decides its colour.
enum class Style : unsigned char { Plain, Heading, Name, Quiet, Number, Text, Hex, Good, Bad };

/// Standard output, collected into large pieces.
class Output : public Sink {
public:
    explicit Output(bool colored) : colored_(colored) {}
    ~Output() override { flush(); }
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    void write(std::string_view text) override;
    void write(Style style, std::string_view text);
    /// Writes blanks.
    void fill(std::size_t columns);
    /// Takes back the blanks written last, where a line is to end without them.
    void dropBlanks();
    void writeOctets(Octets octets);
    void flush();

    /// Whether something could not be written. Nothing further is then.
    bool failed() const { return failed_; }

private:
    std::string pending_;
    bool colored_;
    bool failed_ = false;
};

} // namespace derview

#endif
