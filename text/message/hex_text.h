#ifndef BREVANTIS_ASN1_TEXT_HEX_TEXT_H
#define BREVANTIS_ASN1_TEXT_HEX_TEXT_H

#include <optional>
#include <string_view>

#include <brevantis/asn1/text/octets.h>

namespace asn1text {

/// Octets as programs print them or source code holds them: the lines of a dump (each with its
/// offset in front, and characters behind it, as of xxd, hexdump -C, od -A x -t x1 or openssl), or
/// digits in "0x30, 0x82" or "\x30\x82", with quotes, commas, braces and a declaration around them.
/// @return nothing for any other text
std::optional<OctetStore> octetsOfDump(std::string_view text);

} // namespace asn1text

#endif
