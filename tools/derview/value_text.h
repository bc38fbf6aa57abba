#ifndef DERVIEW_VALUE_TEXT_H
#define DERVIEW_VALUE_TEXT_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <brevantis/asn1/asn1data/walk.h>

#include "escape.h"
#include "octets.h"

// The values of primitives as text: what the tree, the JSON and the comparison have in common.

namespace derview {

/// What a primitive holds, as far as it matters for showing it.
enum class ValueKind : unsigned char {
    Null,
    Boolean,
    Number,     ///< WalkValue::number
    BigNumber,  ///< an INTEGER in contents octets
    Identifier, ///< WalkValue::identifier
    Text,
    Time,
    Bits,
    OctetString,
    Raw ///< a whole element of an unknown type
};

ValueKind valueKind(const asn1data::WalkElement& element);

/// The octets of a value without headers, those of segments put together.
/// @param limit octets at most
/// @param store holds them when they come from segments
Octets valueOctets(const asn1data::WalkElement& element, std::size_t limit, OctetStore& store);

/// How the characters of a Text are coded.
CharacterCoding codingOf(const asn1data::WalkElement& element);

/// "1.2.840.113549"
std::string dottedText(const ASN1OBJID& identifier);

/// Two hexadecimal digits an octet.
std::string hexText(Octets octets);

/// An INTEGER in contents octets: whether it is below zero, and the octets of its magnitude without
/// leading zeros.
struct Magnitude {
    bool negative = false;
    OctetStore octets;

    /// The number, where it lies within plus or minus @p largest.
    std::optional<long long> within(long long largest) const;
};

/// @param isUnsigned the octets are a magnitude as they stand
Magnitude magnitudeOf(Octets octets, bool isUnsigned);

/// A UTCTime or GeneralizedTime in the form of ISO 8601, as "2026-11-21T13:33:06Z"; years of two
/// digits below 50 are of this century (RFC 5280, 4.1.2.5.1).
/// @return nothing for a text that is none
std::optional<std::string> isoTime(std::string_view text, bool generalized);
/// The same of a Time.
std::optional<std::string> isoTime(const asn1data::WalkElement& element);

/// Names of the bits that are set; a bit without a name is "bit N".
/// @param limit bits at most
std::vector<std::string> bitNames(const asn1data::TypeDescription& type, Octets octets,
                                  std::size_t bitCount, std::size_t limit);

/// A value on one line.
struct ValueText {
    std::string text;     ///< fit for a terminal
    std::size_t rest = 0; ///< octets that are left out at its end
};

/// @param room columns that the text should keep to; only strings and big numbers are ever cut
ValueText valueText(const asn1data::WalkElement& element, std::size_t room);

/// "… 12 more octets"
std::string restText(std::size_t octets);

} // namespace derview

#endif
