#ifndef BREVANTIS_ASN1_TEXT_JSON_VALUE_PARSER_H
#define BREVANTIS_ASN1_TEXT_JSON_VALUE_PARSER_H

#include <cstdint>
#include <string>
#include <string_view>

#include <brevantis/asn1/text/characters.h>
#include <brevantis/asn1/text/octets.h>

// What strings of JSON stand for. Each function tells what is wrong by what it would have wanted,
// and returns null when nothing is.

namespace asn1text {

/// An INTEGER of any size.
struct Integer {
    bool negative = false;
    OctetStore magnitude; ///< without leading zeros

    /// The contents octets in two's complement.
    OctetStore contents() const;
    /// The number, if it lies between these.
    bool within(long long lower, long long upper, long long& number) const;
};

Integer integerOf(bool negative, std::uint64_t magnitude);

/// "12", "-12", "0x0c", "-0x0c"
const char* parseInteger(std::string_view text, Integer& integer);

/// "00ff", of either case
const char* parseHex(std::string_view text, OctetStore& octets);

/// Characters of UTF-8 in another coding.
const char* encodeCharacters(std::string_view utf8, CharacterCoding coding, OctetStore& octets);

/// A text for a sentence: in quotes, in ASCII, cut when it is long.
std::string inQuotes(std::string_view text);

} // namespace asn1text

#endif
