#ifndef FUZZ_POLICIES_H
#define FUZZ_POLICIES_H

namespace fuzz {

/// Flags of contexts that messages are read with.
inline constexpr int policies[] = {
    0,
};

} // namespace fuzz

#endif
