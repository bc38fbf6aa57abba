#ifndef TESTS_SUPPORT_MUTATION_H
#define TESTS_SUPPORT_MUTATION_H

#include "support/hex.h"

namespace tests {

/// Calls @p check with the message cut off at every octet, and with every single octet set to the
/// values that flip tags, lengths and continuation bits.
template <class Check>
void forEachMutation(const Octets& message, Check check) {
    for (std::size_t count = 0; count <= message.size(); ++count) {
        check(Octets(message.begin(), message.begin() + static_cast<std::ptrdiff_t>(count)));
    }
    for (std::size_t i = 0; i < message.size(); ++i) {
        for (const char* value : {"00", "7F", "80", "FF"}) {
            Octets changed = message;
            changed[i] = fromHex(value)[0];
            check(changed);
        }
    }
}

} // namespace tests

#endif
