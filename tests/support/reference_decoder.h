#ifndef TESTS_SUPPORT_REFERENCE_DECODER_H
#define TESTS_SUPPORT_REFERENCE_DECODER_H

#include <string>

#include <brevantis/asn1/asn1data/describe.h>

#include "support/hex.h"

namespace tests {

/// What a message comes to by the description of its type.
struct ReferenceDecoding {
    int status;
    /// Octets that the message takes; after a failure where the reading stood, counted from the
    /// start of the innermost open value.
    unsigned position;
    bool inside;          ///< the reading stood within the primitive that begins at the position
    std::string value;    ///< as valueText writes it; empty after a failure
    std::string elements; ///< what a walk reports, as ElementNotes writes it; empty after a failure
};

/// Decodes a message with a decoder of its own, which shares no code with the library: it is what
/// decoding and walking, which share all of theirs, are held against.
ReferenceDecoding referenceDecoding(const asn1data::TypeDescription& type, const Octets& message);

/// A line of ReferenceDecoding::elements: path, offsets of element and value, lengths of header and
/// contents (-9999 without one), type, value.
std::string elementNote(const std::string& path, unsigned offset, unsigned valueOffset,
                        unsigned headerLength, int contentLength, bool assembled,
                        const asn1data::TypeDescription* type, const std::string& value);

} // namespace tests

#endif
