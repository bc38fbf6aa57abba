#ifndef DERVIEW_DIFFER_H
#define DERVIEW_DIFFER_H

#include <brevantis/asn1/text/names.h>

#include "message.h"
#include "output.h"

namespace derview {

/// A message to compare, and what it is.
struct DiffSide {
    const Message& message;
    const asn1data::TypeDescription& type;
    asn1data::WalkResult decoded; ///< what the decoder makes of it
};

/// Compares two messages by what their elements are, and writes what differs, a line each for what
/// only one of them has. It keeps 32 octets an element of both in memory. A damaged message is
/// compared as far as it decodes.
/// @param width columns that a line should keep to
/// @param names of identifiers
/// @return whether they decode and are the same, octet for octet
bool diffMessages(Output& output, const DiffSide& one, const DiffSide& other, std::size_t width,
                  const IdentifierNames& names);

} // namespace derview

#endif
