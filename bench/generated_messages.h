#ifndef BENCH_GENERATED_MESSAGES_H
#define BENCH_GENERATED_MESSAGES_H

#include <cstddef>
#include <string>
#include <vector>

namespace bench {

/// A revocation list of @p entries entries, of 42 octets on average (one in two with a reason
/// code), with an authority key identifier and a number. Its signature is one of zeros.
/// @throws std::runtime_error when it cannot be encoded
std::vector<unsigned char> makeRevocationList(std::size_t entries);

/// The certification request of the corpus with one attribute, whose SET OF has @p members members,
/// in no order.
/// @throws std::runtime_error
std::vector<unsigned char> makeCertificationRequest(std::size_t members,
                                                    const std::string& directory);

/// The signed message with keys of elliptic curves, with a time-stamp of its signature (RFC 5126,
/// 6.1.1).
/// @throws std::runtime_error
std::vector<unsigned char> makeTimeStampedData(const std::string& directory);

enum class CertificatePart { Subject, Extensions, AlternativeNames };

/// A part of a certificate as a value by itself.
/// @throws std::runtime_error when the certificate has no such part
std::vector<unsigned char> certificatePart(const std::string& file, CertificatePart part);

/// The signed message of the corpus with a content of @p mebibytes MiB.
/// @throws std::runtime_error
std::vector<unsigned char> makeSignedData(std::size_t mebibytes, const std::string& directory);

} // namespace bench

#endif
