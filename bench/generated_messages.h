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

/// The signed message of the corpus with a content of @p mebibytes MiB.
/// @throws std::runtime_error
std::vector<unsigned char> makeSignedData(std::size_t mebibytes, const std::string& directory);

} // namespace bench

#endif
