#ifndef BREVANTIS_ASN1_VALUES_TYPES_REASON_FLAGS_H
#define BREVANTIS_ASN1_VALUES_TYPES_REASON_FLAGS_H

#include <brevantis/asn1/export.h>
#include <brevantis/support/blob.h>

/// @file
/// ReasonFlags (RFC 5280, 4.2.1.13).

namespace Brevantis::ASN1 {

/// Reasons of revocation. Bit n of the BIT STRING, its first one being 0, is bit n of the value,
/// the least significant one being 0.
/// @warning Bits from 16 on are not encoded.
class BREVANTIS_ASN1_API CReasonFlags {
public:
    /// Masks of the published bits.
    enum Flag : unsigned int {
        unused = 1u << 0,               ///< bit 0 of the published type, without a meaning
        keyCompromise = 1u << 1,        ///< others know the subject's private key, or may
        cACompromise = 1u << 2,         ///< a certification authority's key
        affiliationChanged = 1u << 3,   ///< the subject's name or other facts have changed
        superseded = 1u << 4,           ///< another certificate takes its place
        cessationOfOperation = 1u << 5, ///< it is not needed any more
        certificateHold = 1u << 6,      ///< it may become valid again
        privilegeWithdrawn = 1u << 7,   ///< a right that it gives was taken away
        aACompromise = 1u << 8          ///< an attribute authority's key
    };

    /// @param value bit n for the reason of bit n, see Flag
    explicit CReasonFlags(unsigned int value = 0) : value_(value) {}

    /// All 32 bits, also those that are not encoded.
    unsigned int get_value() const { return value_; }
    /// @param value bit n for the reason of bit n, see Flag
    void put_value(unsigned int value) { value_ = value; }

    /// @param bit taken modulo 32
    bool get_bit(unsigned int bit) const { return (value_ & maskOf(bit)) != 0; }
    /// @param bit taken modulo 32
    void put_bit(unsigned int bit, bool on) {
        value_ = on ? value_ | maskOf(bit) : value_ & ~maskOf(bit);
    }

    /// The flags may be one mask or several ORed together.
    void add_flag(Flag flags) { value_ |= flags; }
    /// Takes the flags away, one or several.
    void remove_flag(Flag flags) { value_ &= ~static_cast<unsigned int>(flags); }
    /// @return whether any of the flags is set
    bool get_flag(Flag flags) const { return (value_ & flags) != 0; }

    /// @return the DER
    /// @throws ATL::CAtlException with CRYPT_E_ASN1_MEMORY when memory is out
    CBlob encode() const;
    /// @throws ATL::CAtlException with CRYPT_E_ASN1_INTERNAL when @p blob is no BIT STRING of at
    ///         most 16 bits, with CRYPT_E_ASN1_MEMORY when memory is out; the flags stay as they
    ///         were
    void decode(const CBlob& blob);

private:
    static unsigned int maskOf(unsigned int bit) { return 1u << bit % 32; }

    unsigned int value_;
};

inline bool operator==(const CReasonFlags& a, const CReasonFlags& b) {
    return a.get_value() == b.get_value();
}
inline bool operator!=(const CReasonFlags& a, const CReasonFlags& b) {
    return !(a == b);
}

} // namespace Brevantis::ASN1

#endif
