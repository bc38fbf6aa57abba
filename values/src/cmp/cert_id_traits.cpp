#include <brevantis/asn1/values/cmp/cert_id_traits.h>

#include <brevantis/asn1/values/types/big_integer_text.h>
#include <brevantis/asn1/values/types/general_name_traits.h>

namespace Brevantis::ASN1 {

void ASN1T_CertId_traits::set(ASN1CTXT* ctxt, asn1data::ASN1T_CertId& record,
                              const CCertId& value) {
    ASN1T_GeneralName_traits::set(ctxt, record.issuer, value.get_issuer());
    record.serialNumber = BigIntegerToASN1String(ctxt, value.get_serialNumber());
}

void ASN1T_CertId_traits::get(const asn1data::ASN1T_CertId& record, CCertId& value) {
    CGeneralName issuer;
    CBigInteger serialNumber;
    ASN1T_GeneralName_traits::get(record.issuer, issuer);
    ASN1StringToBigInteger(record.serialNumber, serialNumber);
    value = CCertId(issuer, serialNumber);
}

} // namespace Brevantis::ASN1
