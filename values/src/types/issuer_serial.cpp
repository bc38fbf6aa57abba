#include <brevantis/asn1/values/types/issuer_serial.h>

#include <brevantis/asn1/values/types/issuer_serial_traits.h>

namespace Brevantis::ASN1 {

CIssuerSerial::CIssuerSerial(const CGeneralNames& issuer, const CBigInteger& serialNumber)
    : issuer_(issuer), serialNumber_(serialNumber) {}

CBlob CIssuerSerial::encode() const {
    return asn1Encode<ASN1T_IssuerSerial_traits>(*this);
}

void CIssuerSerial::decode(const CBlob& blob) {
    asn1Decode<ASN1T_IssuerSerial_traits>(blob, *this);
}

bool operator==(const CIssuerSerial& a, const CIssuerSerial& b) {
    return a.get_issuer() == b.get_issuer() && a.get_serialNumber() == b.get_serialNumber();
}

bool operator!=(const CIssuerSerial& a, const CIssuerSerial& b) {
    return !(a == b);
}

} // namespace Brevantis::ASN1
