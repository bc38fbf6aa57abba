#ifndef BREVANTIS_ASN1_VALUES_UTIL_BLOCK_FOR_EVER_H
#define BREVANTIS_ASN1_VALUES_UTIL_BLOCK_FOR_EVER_H

#include <chrono>
#include <thread>

namespace Brevantis::ASN1 {

/// What the comparisons do that must not return. It costs no processor time.
[[noreturn]] inline void blockForEver() {
    // Kept: the comparisons have to be there, for programs that are built with them, and give no
    // result.
    for (;;) {
        std::this_thread::sleep_for(std::chrono::hours(1));
    }
}

} // namespace Brevantis::ASN1

#endif
