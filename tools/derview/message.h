#ifndef DERVIEW_MESSAGE_H
#define DERVIEW_MESSAGE_H

#include <string>
#include <vector>

#include <brevantis/asn1/asn1data/reading_policy.h>

#include "octets.h"

namespace derview {

/// Octets that are left over.
struct Leftover {
    std::size_t count = 0;
    std::size_t offset = 0; ///< of the first one in the decoded input
};

/// One message of an input.
struct Message {
    std::string place;      ///< "FILE", or "FILE#2" where the file holds several; escaped
    std::string file;       ///< as given; "-" is standard input
    std::size_t number = 1; ///< in its file, from 1
    std::size_t offset = 0; ///< of its first octet in the decoded input
    const asn1data::TypeDescription* type = nullptr; ///< that its JSON names; null without
    std::string label;                               ///< of its PEM block, empty without one
    Octets octets;                                   ///< lives as long as the input
    /// What to go through in order to show it: the octets, with zeros for those that are missing.
    Octets shown;
    /// Elements of indefinite length whose end-of-contents are missing; 0 where the message is of
    /// definite length.
    std::size_t open = 0;
    std::string problem;            ///< why there are no octets; empty when there are
    std::size_t trailing = 0;       ///< octets behind it that belong to no message
    asn1data::ReadingPolicy policy; ///< that it is read by

    /// Octets that its header promises and that are not there; of a message of indefinite length
    /// the end-of-contents octets and what is left of the element in front of them.
    std::size_t missing() const { return shown.size() - octets.size(); }

    /// The octets, and those behind them that belong to no message.
    Octets withTrailing() const { return {octets.data(), octets.size() + trailing}; }

    /// Octets that no value holds: those behind the message, and those at its end that a walk
    /// through the whole of it has left.
    Leftover leftover(const asn1data::WalkResult& result) const;
};

/// What the decoder makes of the octets of a message.
asn1data::WalkResult decoderResult(const Message& message, const asn1data::TypeDescription& type);

/// What its policy tolerates in a message, a text each: "tolerated at 8 (path): expected X, found
/// Y".
std::vector<std::string> toleratedTexts(const Message& message,
                                        const asn1data::TypeDescription& type);

/// "1 octet", "2 octets"
std::string octetsText(std::size_t count);

/// "4 trailing octets"
std::string trailingText(std::size_t count);

/// "2 octets of 7 missing", "end-of-contents missing", "1 octet and end-of-contents of 3 elements
/// missing"
std::string missingText(const Message& message);

} // namespace derview

#endif
