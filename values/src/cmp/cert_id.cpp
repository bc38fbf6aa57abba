#include <brevantis/asn1/values/cmp/cert_id.h>

namespace Brevantis::ASN1 {

CCertId::CCertId(const CGeneralName& issuer, const CBigInteger& serialNumber)
    : issuer_(issuer), serialNumber_(serialNumber) {}

} // namespace Brevantis::ASN1
