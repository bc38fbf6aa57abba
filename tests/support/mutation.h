#ifndef TESTS_SUPPORT_MUTATION_H
#define TESTS_SUPPORT_MUTATION_H

#include <cstddef>
#include <random>

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

/// Does one random harm to a message that has octets; identifier and length octets suffer most.
inline void damage(Octets& message, std::mt19937& random) {
    static const unsigned char telling[] = {0x00, 0x01, 0x04, 0x05, 0x24, 0x30, 0x31, 0x7F,
                                            0x80, 0x81, 0x82, 0x85, 0xA0, 0xA1, 0xFF};
    const auto place = random() % message.size();
    unsigned char& hit = message[place];
    const auto behind = message.begin() + static_cast<std::ptrdiff_t>(place);
    const unsigned char octet = telling[random() % sizeof telling];
    switch (random() % 6) {
    case 0:
        hit = octet;
        break;
    case 1:
        hit = static_cast<unsigned char>(hit ^ 1u << random() % 8);
        break;
    case 2:
        hit = static_cast<unsigned char>(hit + (random() % 2 == 0 ? 1 : 255));
        break;
    case 3:
        message.insert(behind, octet);
        break;
    case 4:
        message.erase(behind);
        break;
    default:
        message.resize(place);
        break;
    }
}

} // namespace tests

#endif
