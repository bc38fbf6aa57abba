#ifndef DERVIEW_INPUT_READER_H
#define DERVIEW_INPUT_READER_H

#include <memory>
#include <optional>
#include <string>

#include <brevantis/asn1/text/message.h>

#include "arguments.h"
#include "file_octets.h"
#include "message.h"
#include "padded_octets.h"

namespace derview {

/// Takes the messages off a file, one by one.
class InputReader {
public:
    /// @param path "-" stands for standard input
    /// @param arguments tell how the file holds messages, and of what type those in JSON are that
    /// do not say so; they outlive the reader
    /// @throws as FileOctets
    InputReader(const std::string& path, const Arguments& arguments);

    /// The next message, damaged or not; nothing at the end of the file. What it points to lives
    /// until the next call, or as long as the reader.
    std::optional<Message> next();

private:
    void pad(Message& message);
    /// Makes a message of its JSON.
    void encode(Message& message);

    const Arguments& arguments_;
    std::string path_;
    FileOctets file_;
    MessageReader messages_;
    OctetStore encoded_;                   ///< of a message in JSON
    std::unique_ptr<PaddedOctets> padded_; ///< of a message that is cut short
};

} // namespace derview

#endif
