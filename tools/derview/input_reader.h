#ifndef DERVIEW_INPUT_READER_H
#define DERVIEW_INPUT_READER_H

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "file_octets.h"
#include "message.h"
#include "padded_octets.h"

namespace derview {

/// How a file holds its messages.
enum class InputForm : unsigned char { Auto, Der, Pem, Base64, Hex };

/// Takes the messages off a file, one by one.
class InputReader {
public:
    /// @param path "-" stands for standard input
    /// @throws std::system_error when it cannot be read
    InputReader(const std::string& path, InputForm form);

    /// The next message, damaged or not; nothing at the end of the file. What it points to lives
    /// until the next call, or as long as the reader.
    std::optional<Message> next();

private:
    /// Octets that belong together: a file, or a PEM block.
    struct Part {
        std::string label;
        OctetStore store; ///< what was decoded; empty for the octets of the file itself
        std::string problem;
    };

    void pad(Message& message);
    Octets octetsOf(const Part& part) const;
    bool hasMore() const;

    std::string path_;
    FileOctets file_;
    std::vector<Part> parts_;
    std::unique_ptr<PaddedOctets> padded_; ///< of a message that is cut short
    bool text_ = false;                    ///< the parts hold what the file's text stands for
    std::size_t part_ = 0;                 ///< that the next message is in
    std::size_t offset_ = 0;               ///< in it
    std::size_t count_ = 0;                ///< messages so far
};

/// Size of the element that octets begin with, header included; 0 when it does not end in them.
std::size_t firstElementSize(Octets octets);

} // namespace derview

#endif
