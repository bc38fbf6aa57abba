#ifndef BREVANTIS_ASN1_VALUES_TYPES_BIG_INTEGER_H
#define BREVANTIS_ASN1_VALUES_TYPES_BIG_INTEGER_H

#include <brevantis/asn1/export.h>
#include <brevantis/support/blob.h>

/// @file
/// Whole numbers of any size, such as serial numbers of certificates.

namespace Brevantis::ASN1 {

/// A number as the contents octets of its INTEGER (X.690, 8.3): two's complement, the high octet
/// first. The octets are kept as they are given, also where fewer would do; see `compare` for what
/// that means. No octets are a value of their own, different from zero.
class BREVANTIS_ASN1_API CBigInteger : public CBlob {
public:
    /// No octets.
    CBigInteger() noexcept = default;
    /// Copies octets.
    /// @throws ATL::CAtlException with E_INVALIDARG for null @p data and a @p size above 0
    CBigInteger(const unsigned char* data, unsigned long size);
    /// @param size octets, all 0. It is a size, not the number.
    explicit CBigInteger(unsigned long size);

    /// Adds one. The size stays, so that a number of ones only becomes all zeros.
    /// @param limit octets at the front that take no carry
    /// @throws ATL::CAtlException with E_INVALIDARG for more than 2147483647 octets
    void increment(int limit);
    /// As `increment(0)`.
    CBigInteger& operator++();
    /// As `increment(0)`.
    /// @return the number before
    CBigInteger operator++(int);

    /// Adds a number of the same size. A carry out of the first octet is dropped.
    /// @throws ATL::CAtlException with E_INVALIDARG for a number of another size; nothing changes
    void add(const CBigInteger& other);

    /// A copy without the top bit of its first octet.
    /// @warning That is not the amount of a negative number: -1, the octet FF, becomes 127.
    CBigInteger abs() const;

    /// Compares by value: octets at the front that only repeat the sign do not count.
    /// @warning Of two negative numbers the one of fewer octets is the lesser: -1 is less than
    ///          -256. No octets are less than any number from 0 on, greater than any negative one.
    /// @return below 0 when this is the lesser, 0 when they are equal, above 0 otherwise
    int compare(const CBigInteger& other) const;

    /// @return the DER of the INTEGER, in the fewest octets
    /// @throws ATL::CAtlException with CRYPT_E_ASN1_INTERNAL when there are no octets, with
    ///         CRYPT_E_ASN1_MEMORY when memory is out
    CBlob encode() const;
    /// @throws ATL::CAtlException with CRYPT_E_ASN1_INTERNAL when @p blob is no INTEGER, with
    ///         CRYPT_E_ASN1_MEMORY when memory is out; the number stays as it was
    void decode(const CBlob& blob);
};

// All of them go by CBigInteger::compare.
BREVANTIS_ASN1_API bool operator==(const CBigInteger& a, const CBigInteger& b);
BREVANTIS_ASN1_API bool operator!=(const CBigInteger& a, const CBigInteger& b);
BREVANTIS_ASN1_API bool operator<(const CBigInteger& a, const CBigInteger& b);
BREVANTIS_ASN1_API bool operator>(const CBigInteger& a, const CBigInteger& b);
BREVANTIS_ASN1_API bool operator<=(const CBigInteger& a, const CBigInteger& b);
BREVANTIS_ASN1_API bool operator>=(const CBigInteger& a, const CBigInteger& b);

/// Adds one to a number whose low octet stands last.
/// @param data @p size octets, null only without any
/// @param limit octets at the front that take no carry; the carry is dropped there
BREVANTIS_ASN1_API void ASN1T_BigInt_inc(unsigned char* data, int size, int limit);

} // namespace Brevantis::ASN1

#endif
