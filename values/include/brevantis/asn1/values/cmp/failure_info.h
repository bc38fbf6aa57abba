#ifndef BREVANTIS_ASN1_VALUES_CMP_FAILURE_INFO_H
#define BREVANTIS_ASN1_VALUES_CMP_FAILURE_INFO_H

#include <brevantis/asn1/export.h>
#include <brevantis/support/blob.h>

/// @file
/// Why a request failed, as named bits (RFC 4210, 5.2.3; time stamping: RFC 3161, 2.4.2).

namespace Brevantis::ASN1 {

/// PKIFailureInfo of RFC 4210, 5.2.3 and RFC 3161, 2.4.2: why a request failed, as named bits 0 to
/// 31.
class BREVANTIS_ASN1_API CPKIFailureInfo {
public:
    /// @param value named bit i is the bit of value 2^i
    CPKIFailureInfo(unsigned int value) : value_(value) {}

    /// All 32 bits, named bit i as the bit of value 2^i.
    unsigned int get_value() const { return value_; }
    /// @param value named bit i is the bit of value 2^i
    void put_value(unsigned int value) { value_ = value; }

    /// @param index of a named bit
    /// @throws ATL::CAtlException with E_INVALIDARG for an @p index above 31
    bool get_bit(unsigned int index) const;
    /// @throws ATL::CAtlException with E_INVALIDARG for an @p index above 31
    void put_bit(unsigned int index, bool flag);

    /// @return the BIT STRING as DER has it for named bits (X.690, 11.2.2), without the zero bits
    ///         at its end
    /// @throws ATL::CAtlException with CRYPT_E_ASN1_MEMORY when memory is out
    CBlob encode() const;
    /// Adds the bits of a BIT STRING; on failure the value stays as it was.
    /// @warning Bits that were set before stay set. Start from a value of 0 to read what @p blob
    ///          says.
    /// @throws ATL::CAtlException with CRYPT_E_ASN1_INTERNAL when @p blob does not decode, as a
    ///         string of more than 32 bits does not, set or not; with CRYPT_E_ASN1_MEMORY when
    ///         memory is out
    void decode(const CBlob& blob);

private:
    unsigned int value_;
};

BREVANTIS_ASN1_API bool operator==(const CPKIFailureInfo& a, const CPKIFailureInfo& b);
BREVANTIS_ASN1_API bool operator!=(const CPKIFailureInfo& a, const CPKIFailureInfo& b);

} // namespace Brevantis::ASN1

#endif
