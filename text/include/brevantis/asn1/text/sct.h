#ifndef BREVANTIS_ASN1_TEXT_SCT_H
#define BREVANTIS_ASN1_TEXT_SCT_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <brevantis/asn1/text/export.h>
#include <brevantis/asn1/text/octets.h>

/// @file
/// Lists of signed certificate timestamps (RFC 6962, 3.2 and 3.3), which stand in an extension and
/// are no ASN.1.

namespace asn1text {

/// A timestamp of a log. Its octets are those of the list.
struct SignedTimestamp {
    Octets log;                  ///< 32 octets
    std::uint64_t time = 0;      ///< milliseconds since 1970
    Octets extensions;           ///< those of the log, mostly none
    unsigned char hash = 0;      ///< HashAlgorithm of TLS (RFC 5246, 7.4.1.4.1)
    unsigned char signature = 0; ///< SignatureAlgorithm of TLS
    Octets value;                ///< the signature
};

/// Reads a list of timestamps of version 1.
/// @return nothing for octets that are no such list, to the last one
/// @throws std::bad_alloc
BREVANTIS_ASN1_TEXT_API std::optional<std::vector<SignedTimestamp>> readTimestamps(Octets octets);

/// The time, as "2026-11-21T14:57:02.123Z"; empty for one beyond the year 9999.
/// @throws std::bad_alloc
BREVANTIS_ASN1_TEXT_API std::string timeText(const SignedTimestamp& timestamp);

/// The algorithms, as "ecdsa with sha256".
/// @throws std::bad_alloc
BREVANTIS_ASN1_TEXT_API std::string algorithmText(const SignedTimestamp& timestamp);

} // namespace asn1text

#endif
