#ifndef BREVANTIS_NOTATION_RECORD_LAYOUT_H
#define BREVANTIS_NOTATION_RECORD_LAYOUT_H

#include <vector>

#include "diagnostics.h"
#include "model.h"

/// @file
/// Where the members of records lie, for who makes records that no C++ compiler has seen.

namespace notation {

/// What the parts of records take on a platform.
struct Platform {
    std::vector<Extent> builtins; ///< in the order of builtinTypes()
    Extent word;                  ///< `unsigned`: counts, selectors, 32 presence bits
    Extent pointer;
    Extent context; ///< the reference to the context that a copy came from
    Extent list;    ///< of a SEQUENCE OF, and of unknown elements
    Extent slot;    ///< the typed form of an open value
};

/// Settles sizes and offsets as the compiler of the emitted structs does: members in order, each at
/// the next place that its alignment allows.
/// @param largest octets that a value may take, its elements on the heap apart; below 2^31
/// @return false when @p diagnostics tells what is larger
bool layOutRecords(Model& model, const Platform& platform, unsigned largest,
                   Diagnostics& diagnostics);

} // namespace notation

#endif
