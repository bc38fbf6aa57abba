#ifndef FUZZ_REFUSAL_H
#define FUZZ_REFUSAL_H

#include <brevantis/support/error.h>

namespace fuzz {

/// Runs an operation that may refuse.
/// @return whether it did what it was asked
template <class Operation>
bool succeeds(Operation operation) {
    try {
        operation();
        return true;
    } catch (const ATL::CAtlException&) {
        return false;
    }
}

} // namespace fuzz

#endif
