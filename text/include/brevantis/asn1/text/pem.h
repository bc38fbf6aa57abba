#ifndef BREVANTIS_ASN1_TEXT_PEM_H
#define BREVANTIS_ASN1_TEXT_PEM_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include <brevantis/asn1/text/export.h>
#include <brevantis/asn1/text/octets.h>

/// @file
/// PEM files (RFC 7468) and base64.

namespace asn1text::pem {

/// A block of a PEM file (RFC 7468): octets between a BEGIN and an END line.
struct Block {
    std::string label;                 ///< as in "-----BEGIN label-----"
    std::vector<unsigned char> octets; ///< empty when there is a problem
    std::size_t line;                  ///< number of its first line, from 1
    const char* problem;               ///< what is wrong with it, null when nothing is
};

/// Whether a file is text with PEM blocks rather than octets. A block that lost its beginning or
/// its end counts too.
BREVANTIS_ASN1_TEXT_API bool isPem(std::string_view file);

/// Reads the blocks of a file. Text around them is passed over, as RFC 7468, 2 wants it. A
/// damaged block comes with its problem, and reading goes on behind it.
BREVANTIS_ASN1_TEXT_API std::vector<Block> read(std::string_view file);

/// Base64 (RFC 4648, 4), with padding, in one line.
/// @throws std::bad_alloc
BREVANTIS_ASN1_TEXT_API std::string encodeBase64(Octets octets);

/// A block as a file has it, with its lines of 64 characters.
/// @throws std::bad_alloc
BREVANTIS_ASN1_TEXT_API std::string write(std::string_view label, Octets octets);

/// Decodes base64 (RFC 4648, 4); blanks and line ends may stand anywhere.
/// @param octets receives what was decoded, also in front of a problem
/// @return null, or what is wrong with the text
BREVANTIS_ASN1_TEXT_API const char* decodeBase64(std::string_view text,
                                                 std::vector<unsigned char>& octets);

} // namespace asn1text::pem

#endif
