#ifndef BREVANTIS_ASN1_VALUES_TYPES_ISSUER_SERIAL_H
#define BREVANTIS_ASN1_VALUES_TYPES_ISSUER_SERIAL_H

#include <brevantis/asn1/export.h>
#include <brevantis/asn1/values/types/big_integer.h>
#include <brevantis/asn1/values/types/general_name.h>
#include <brevantis/asn1/values/util/whole_assignment.h>

/// @file
/// IssuerSerial (RFC 2634, 5.4.1; RFC 5755, 4.1).

namespace Brevantis::ASN1 {

/// A certificate, told by its issuer and serial number. The issuer's unique identifier is not
/// carried.
class BREVANTIS_ASN1_API CIssuerSerial {
public:
    /// No issuer, no number.
    CIssuerSerial() = default;
    /// Copies both.
    CIssuerSerial(const CGeneralNames& issuer, const CBigInteger& serialNumber);
    CIssuerSerial(const CIssuerSerial&) = default;
    CIssuerSerial(CIssuerSerial&&) noexcept = default;
    CIssuerSerial& operator=(const CIssuerSerial& other) { return assignWhole(*this, other); }
    CIssuerSerial& operator=(CIssuerSerial&&) noexcept = default;
    ~CIssuerSerial() = default;

    /// The fields of an IssuerSerial; valid until they are set or the object goes.
    const CGeneralNames& get_issuer() const { return issuer_; }
    const CBigInteger& get_serialNumber() const { return serialNumber_; }
    /// The setters copy.
    void put_issuer(const CGeneralNames& issuer) { issuer_ = CGeneralNames(issuer); }
    void put_serialNumber(const CBigInteger& serialNumber) { serialNumber_ = serialNumber; }

    /// @return the DER
    /// @throws ATL::CAtlException as CGeneralNames::encode and CBigInteger::encode
    CBlob encode() const;
    /// @throws ATL::CAtlException with CRYPT_E_ASN1_INTERNAL when @p blob is no IssuerSerial, with
    ///         E_INVALIDARG for a name of a kind that CGeneralName does not carry, with
    ///         CRYPT_E_ASN1_MEMORY when memory is out; the object stays as it was
    void decode(const CBlob& blob);

private:
    CGeneralNames issuer_;
    CBigInteger serialNumber_;
};

/// Compares the names in list order, then the numbers by value.
/// @warning Names are equal when CGeneralName says so, which compares texts by their first
///          characters alone.
BREVANTIS_ASN1_API bool operator==(const CIssuerSerial& a, const CIssuerSerial& b);
BREVANTIS_ASN1_API bool operator!=(const CIssuerSerial& a, const CIssuerSerial& b);

} // namespace Brevantis::ASN1

#endif
