#ifndef BREVANTIS_ASN1_TEXT_VALUE_H
#define BREVANTIS_ASN1_TEXT_VALUE_H

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <brevantis/asn1/asn1data/walk.h>
#include <brevantis/asn1/text/characters.h>
#include <brevantis/asn1/text/export.h>
#include <brevantis/asn1/text/octets.h>

/// @file
/// Primitives of a walk: what they hold, and how it is written.

namespace asn1text {

/// What a primitive holds, as far as it matters for showing it.
enum class ValueKind : unsigned char {
    Null,        ///< NULL: nothing
    Boolean,     ///< WalkValue::number, 0 or 1
    Number,      ///< WalkValue::number
    BigNumber,   ///< an INTEGER in contents octets
    Identifier,  ///< WalkValue::identifier
    Text,        ///< characters, coded as codingOf tells
    Time,        ///< a UTCTime or GeneralizedTime, as its characters
    Bits,        ///< a BIT STRING
    OctetString, ///< an OCTET STRING
    Raw          ///< a whole element of an unknown type
};

/// What values of a type hold.
BREVANTIS_ASN1_TEXT_API ValueKind valueKind(const asn1data::TypeDescription& type) noexcept;
/// The same of an element, whose type may be unknown.
BREVANTIS_ASN1_TEXT_API ValueKind valueKind(const asn1data::WalkElement& element) noexcept;

/// How the characters of a Text or Time are coded.
BREVANTIS_ASN1_TEXT_API CharacterCoding codingOf(const asn1data::TypeDescription& type) noexcept;

/// Whether a Time is a GeneralizedTime rather than a UTCTime.
BREVANTIS_ASN1_TEXT_API bool isGeneralizedTime(const asn1data::TypeDescription& type) noexcept;

/// Goes from segment to segment of a string in constructed form, without memory of its own.
class BREVANTIS_ASN1_TEXT_API Segments {
public:
    /// @param element segmented, as a walk reports it; it lives as long as the visitor is called
    explicit Segments(const asn1data::WalkElement& element) noexcept;

    /// The octets of the next segment, none of them a header's.
    /// @return whether there is one
    bool next(Octets& segment) noexcept;

private:
    const unsigned char* place_;
    std::size_t left_;
    bool bits_;
};

/// Hands the octets of a value over in pieces, without headers, until they are all there or
/// @p take returns false.
template <class Take>
void forEachPiece(const asn1data::WalkElement& element, Take take) {
    if (!element.segmented) {
        if (element.value.octets != nullptr) {
            take(Octets(element.value.octets, element.value.octetCount));
        }
        return;
    }
    Segments segments(element);
    for (Octets segment; segments.next(segment);) {
        if (!take(segment)) {
            return;
        }
    }
}

/// Hands the characters of a Text over, as codes of ISO/IEC 10646; octets that are no character end
/// it.
/// @return whether all the octets are characters
template <class Take>
bool forEachCharacter(const asn1data::WalkElement& element, Take take) {
    const CharacterCoding coding = codingOf(*element.type);
    unsigned char torn[4]; // a character that goes on in the next segment
    std::size_t held = 0;
    bool good = true;
    forEachPiece(element, [&](Octets piece) {
        while (good && !piece.empty()) {
            const bool whole = held == 0 && neededSize(piece, coding) <= piece.size();
            if (!whole) {
                torn[held++] = piece[0];
                piece = piece.subspan(1);
                if (neededSize({torn, held}, coding) > held) {
                    continue;
                }
            }
            const Character character = characterAt(held != 0 ? Octets(torn, held) : piece, coding);
            piece = held != 0 ? piece : piece.subspan(character.size);
            held = 0;
            good = character.code != NoCharacter;
            if (good) {
                take(character.code);
            }
        }
        return good;
    });
    return good && held == 0;
}

/// The octets of a value without headers, those of segments put together.
/// @param limit octets at most
/// @param store holds them when they come from segments
/// @throws std::bad_alloc
BREVANTIS_ASN1_TEXT_API Octets valueOctets(const asn1data::WalkElement& element, std::size_t limit,
                                           OctetStore& store);

/// An INTEGER in contents octets: whether it is below zero, and its magnitude, which is computed as
/// it is read.
class BREVANTIS_ASN1_TEXT_API Magnitude {
public:
    /// @param contents two's complement, or a magnitude; they outlive the object
    /// @param isUnsigned they are a magnitude as they stand
    Magnitude(Octets contents, bool isUnsigned) noexcept;

    /// Whether the number is below zero.
    bool negative() const noexcept { return negative_; }
    /// Octets of the magnitude, without leading zeros.
    std::size_t size() const noexcept { return contents_.size(); }
    /// An octet of it, the most significant one first.
    unsigned char operator[](std::size_t place) const noexcept;
    /// The number, where it lies within plus or minus @p largest.
    std::optional<long long> within(long long largest) const noexcept;

private:
    Octets contents_;
    std::size_t lowest_ = 0; ///< place of the last octet that is not zero
    bool negative_ = false;
};

/// Name of a bit; without one it is "bit N".
/// @throws std::bad_alloc
inline std::string bitName(const asn1data::TypeDescription& type, std::size_t bit) {
    const char* const name = asn1data::numberName(type, static_cast<long long>(bit));
    return name != nullptr ? name : "bit " + std::to_string(bit);
}

/// Hands the places of the bits of a Bits over that are set.
template <class Take>
void forEachSetBit(const asn1data::WalkElement& element, Take take) {
    std::size_t bit = 0;
    forEachPiece(element, [&](Octets piece) {
        for (const unsigned char octet : piece) {
            for (unsigned mask = 0x80; mask != 0 && bit < element.value.bitCount; mask >>= 1) {
                if ((octet & mask) != 0) {
                    take(bit);
                }
                ++bit;
            }
        }
        return true;
    });
}

/// Names of the bits that are set, as bitName tells them.
/// @param limit names at most
/// @throws std::bad_alloc
BREVANTIS_ASN1_TEXT_API std::vector<std::string> bitNames(const asn1data::TypeDescription& type,
                                                          Octets octets, std::size_t bitCount,
                                                          std::size_t limit);

/// A UTCTime or GeneralizedTime in the form of ISO 8601, as "2026-11-21T13:33:06Z"; years of two
/// digits below 50 are of this century (RFC 5280, 4.1.2.5.1).
/// @return nothing for a text that is none
/// @throws std::bad_alloc
BREVANTIS_ASN1_TEXT_API std::optional<std::string> isoTime(std::string_view text, bool generalized);
/// The same of a Time.
BREVANTIS_ASN1_TEXT_API std::optional<std::string> isoTime(const asn1data::WalkElement& element);

/// The other way: the text of a UTCTime or GeneralizedTime.
/// @param iso as isoTime gives it, or a text that is encoded already
/// @return nothing for a text that is no such time, or that a UTCTime cannot tell
/// @throws std::bad_alloc
BREVANTIS_ASN1_TEXT_API std::optional<std::string> encodedTime(std::string_view iso,
                                                               bool generalized);

} // namespace asn1text

#endif
