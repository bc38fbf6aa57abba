#ifndef BREVANTIS_ASN1_TEXT_MESSAGE_H
#define BREVANTIS_ASN1_TEXT_MESSAGE_H

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include <brevantis/asn1/text/export.h>
#include <brevantis/asn1/text/octets.h>

/// @file
/// Messages as files hold them: as octets, one behind another, or as text that stands for octets.

namespace asn1text {

/// How messages are held.
enum class InputForm : unsigned char {
    Auto,   ///< whichever it is
    Der,    ///< octets
    Pem,    ///< blocks of RFC 7468, with what is around them passed over
    Base64, ///< with either alphabet of RFC 4648, with padding or without
    Hex,    ///< digits; the dump of a program; values of a source
    Mail,   ///< the parts of a mail that hold messages (RFC 8551)
    Json ///< one value behind another; `FoundMessage::octets` are the text of one, for encodeJson
};

/// A message that was found, damaged or not.
struct FoundMessage {
    std::size_t number = 1;   ///< in the input, from 1
    std::size_t offset = 0;   ///< of its first octet in the octets that the text stands for
    std::string label;        ///< of its PEM block, as it stands there; empty without one
    Octets octets;            ///< lives as long as the input and the reader
    std::string problem;      ///< why there are no octets; empty when there are
    std::size_t trailing = 0; ///< octets behind it that belong to no message
};

/// Takes the messages off an input, one by one.
class BREVANTIS_ASN1_TEXT_API MessageReader {
public:
    /// @param input outlives the reader
    /// @throws std::bad_alloc
    MessageReader(Octets input, InputForm form);

    /// The next message; nothing at the end of the input. An input without any has one message,
    /// with its problem.
    /// @throws std::bad_alloc
    std::optional<FoundMessage> next();
    /// Whether there are octets left that `next` has not looked at.
    bool hasMore() const { return part_ < parts_.size(); }
    /// How the messages are held; Auto for a text that is none of the forms.
    InputForm form() const { return form_; }

private:
    /// Octets that belong together: an input, or a PEM block.
    struct Part {
        std::string label;
        OctetStore store; ///< what was decoded; empty for the octets of the input itself
        std::string problem;
    };

    void readBlocks(Octets text);
    void readPart(Octets text);
    Octets octetsOf(const Part& part) const;

    Octets input_;
    InputForm form_;
    std::vector<Part> parts_;
    std::size_t part_ = 0;   ///< that the next message is in
    std::size_t offset_ = 0; ///< in it
    std::size_t count_ = 0;  ///< messages so far
};

/// Whether a message can begin so: as text, or with the header of an element.
/// @param start the first octets of an input, 64 KB of it or all
BREVANTIS_ASN1_TEXT_API bool canBeginMessage(Octets start) noexcept;

/// Size of the element that octets begin with, header included; 0 when it does not end in them.
BREVANTIS_ASN1_TEXT_API std::size_t firstElementSize(Octets octets) noexcept;

} // namespace asn1text

#endif
