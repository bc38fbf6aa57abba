#include <brevantis/asn1/values/types/issuer_serial_traits.h>

#include <brevantis/asn1/values/types/big_integer_text.h>
#include <brevantis/asn1/values/types/general_name_traits.h>

namespace Brevantis::ASN1 {

void ASN1T_IssuerSerial_traits::set(ASN1CTXT* ctxt, asn1data::ASN1T_IssuerSerial& record,
                                    const CIssuerSerial& value) {
    record.m = {};
    GeneralNameListTraits::set(ctxt, record.issuer, value.get_issuer());
    record.serial = BigIntegerToASN1String(ctxt, value.get_serialNumber());
}

void ASN1T_IssuerSerial_traits::get(const asn1data::ASN1T_IssuerSerial& record,
                                    CIssuerSerial& value) {
    CGeneralNames issuer;
    CBigInteger serialNumber;
    GeneralNameListTraits::get(record.issuer, issuer);
    ASN1StringToBigInteger(record.serial, serialNumber);
    value = CIssuerSerial(issuer, serialNumber);
}

} // namespace Brevantis::ASN1
