#ifndef TESTS_SUPPORT_REVOCATION_LIST_BUILDER_H
#define TESTS_SUPPORT_REVOCATION_LIST_BUILDER_H

#include <random>
#include <string_view>

#include "support/hex.h"

namespace tests {

/// An element in DER.
inline Octets element(unsigned char identifierOctet, const Octets& contents) {
    Octets octets{identifierOctet};
    Octets length;
    for (std::size_t rest = contents.size(); rest != 0; rest >>= 8) {
        length.insert(length.begin(), static_cast<unsigned char>(rest));
    }
    if (contents.size() >= 0x80) {
        octets.push_back(static_cast<unsigned char>(0x80 + length.size()));
    }
    append(octets, contents.empty() ? Octets{0} : length);
    append(octets, contents);
    return octets;
}

/// Everything of a revocation list in front of its entries: version, algorithm, issuer, thisUpdate.
inline Octets listHead() {
    return fromHex("020101 300506032A0304 3000 170D3235303130313030303030305A");
}

/// A revocation list around the octets of its entries.
inline Octets revocationList(const Octets& entries) {
    Octets signedPart = listHead();
    append(signedPart, element(0x30, entries));
    Octets list = element(0x30, signedPart);
    append(list, fromHex("300506032A0304 03020001"));
    return element(0x30, list);
}

/// @param extensions an element, or nothing
inline Octets revokedEntry(const Octets& serial, const Octets& extensions = {}) {
    Octets entry = element(0x02, serial);
    append(entry, fromHex("170D3236303130313132303030305A"));
    append(entry, extensions);
    return element(0x30, entry);
}

inline Octets reasonExtension(unsigned char reason) {
    return element(0x30, element(0x30, fromHex("0603551D1504030A01" + toHex({reason}))));
}

/// An extension certificateIssuer that holds one name.
inline Octets issuerExtension(std::string_view host) {
    const Octets names = element(0x30, element(0x82, Octets(host.begin(), host.end())));
    Octets extension = fromHex("0603551D1D 0101FF");
    append(extension, element(0x04, names));
    return element(0x30, element(0x30, extension));
}

/// Octets that are a serial number of up to @p longest octets, now and then none or a negative one.
inline Octets randomSerial(std::mt19937& random, std::size_t longest) {
    Octets serial(random() % (longest + 1));
    for (unsigned char& octet : serial) {
        octet = static_cast<unsigned char>(random());
    }
    return serial;
}

} // namespace tests

#endif
