#ifndef BREVANTIS_ASN1_VALUES_CMP_CERT_ID_H
#define BREVANTIS_ASN1_VALUES_CMP_CERT_ID_H

#include <brevantis/asn1/export.h>
#include <brevantis/asn1/values/types/big_integer.h>
#include <brevantis/asn1/values/types/general_name.h>
#include <brevantis/asn1/values/util/whole_assignment.h>

/// @file
/// A certificate, told by its issuer and serial number (RFC 4211, 6.5).

namespace Brevantis::ASN1 {

/// CertId of RFC 4211, 6.5: a certificate, told by its issuer and serial number.
class BREVANTIS_ASN1_API CCertId {
public:
    /// An issuer without an alternative and an empty number.
    CCertId() = default;
    /// Copies both.
    CCertId(const CGeneralName& issuer, const CBigInteger& serialNumber);
    CCertId(const CCertId&) = default;
    CCertId(CCertId&&) noexcept = default;
    CCertId& operator=(const CCertId& other) { return assignWhole(*this, other); }
    CCertId& operator=(CCertId&&) noexcept = default;
    ~CCertId() = default;

    /// The fields of a CertId; valid until they are set or the object goes.
    const CGeneralName& get_issuer() const { return issuer_; }
    const CBigInteger& get_serialNumber() const { return serialNumber_; }
    /// The setters copy.
    void put_issuer(const CGeneralName& issuer) { issuer_ = issuer; }
    void put_serialNumber(const CBigInteger& serialNumber) { serialNumber_ = serialNumber; }

private:
    CGeneralName issuer_;
    CBigInteger serialNumber_;
};

} // namespace Brevantis::ASN1

#endif
