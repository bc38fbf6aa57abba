#ifndef TESTS_SUPPORT_CA_BUNDLE_H
#define TESTS_SUPPORT_CA_BUNDLE_H

#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "support/hex.h"
#include <brevantis/asn1/text/pem.h>

namespace tests {

/// The certificates of the system's CA bundle (Debian package ca-certificates), empty where it is
/// not installed. They are the largest collection of real messages that every machine has.
inline const std::vector<Octets>& caBundle() {
    static const std::vector<Octets> certificates = [] {
        std::ifstream file("/etc/ssl/certs/ca-certificates.crt", std::ios::binary);
        const std::string text{std::istreambuf_iterator<char>(file), {}};
        std::vector<Octets> octets;
        for (asn1text::pem::Block& block : asn1text::pem::read(text)) {
            octets.push_back(std::move(block.octets));
        }
        return octets;
    }();
    return certificates;
}

/// For a test that has nothing to work on without the bundle.
inline constexpr const char* NoCaBundle =
    "no CA bundle in /etc/ssl/certs: install the package ca-certificates";

} // namespace tests

#endif
