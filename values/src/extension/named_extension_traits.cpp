#include <brevantis/asn1/values/extension/named_extension_traits.h>

#include <brevantis/asn1/values/types/primitive_traits.h>

namespace Brevantis::ASN1 {

void ASN1T_CRLReason_traits::set(ASN1CTXT* /*ctxt*/, asn1data::ASN1T_CRLReason& record,
                                 CrlReason value) {
    record = value;
}

void ASN1T_CRLReason_traits::get(const asn1data::ASN1T_CRLReason& record, CrlReason& value) {
    value = static_cast<CrlReason>(record);
}

void ASN1T_PrivateKeyUsagePeriod_traits::set(ASN1CTXT* ctxt,
                                             asn1data::ASN1T_PrivateKeyUsagePeriod& record,
                                             const CExtPrivateKeyUsagePeriod& value) {
    record.m = {};
    if (value.get_notBefore() != nullptr) {
        ASN1GeneralizedTime_traits::set(ctxt, record.notBefore, *value.get_notBefore());
        record.m.notBeforePresent = 1;
    }
    if (value.get_notAfter() != nullptr) {
        ASN1GeneralizedTime_traits::set(ctxt, record.notAfter, *value.get_notAfter());
        record.m.notAfterPresent = 1;
    }
}

void ASN1T_PrivateKeyUsagePeriod_traits::get(const asn1data::ASN1T_PrivateKeyUsagePeriod& record,
                                             CExtPrivateKeyUsagePeriod& value) {
    CDateTime notBefore;
    CDateTime notAfter;
    if (record.m.notBeforePresent != 0) {
        ASN1GeneralizedTime_traits::get(record.notBefore, notBefore);
    }
    if (record.m.notAfterPresent != 0) {
        ASN1GeneralizedTime_traits::get(record.notAfter, notAfter);
    }
    value = CExtPrivateKeyUsagePeriod(record.m.notBeforePresent != 0 ? &notBefore : nullptr,
                                      record.m.notAfterPresent != 0 ? &notAfter : nullptr);
}

} // namespace Brevantis::ASN1
