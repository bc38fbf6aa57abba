#include <brevantis/asn1/values/attribute/certificate_traits.h>

namespace Brevantis::ASN1 {

void ASN1T_Certificate_traits::set(ASN1CTXT* ctxt, asn1data::ASN1T_Certificate& record,
                                   const CBlob& encoded) {
    asn1DecodeT<ASN1T_Certificate_traits>(encoded, ctxt, record);
}

void ASN1T_Certificate_traits::get(const asn1data::ASN1T_Certificate& record, CBlob& encoded) {
    encoded = asn1EncodeT<ASN1T_Certificate_traits>(record);
}

void ASN1T_CertificateList_traits::set(ASN1CTXT* ctxt, asn1data::ASN1T_CertificateList& record,
                                       const CBlob& encoded) {
    asn1DecodeT<ASN1T_CertificateList_traits>(encoded, ctxt, record);
}

void ASN1T_CertificateList_traits::get(const asn1data::ASN1T_CertificateList& record,
                                       CBlob& encoded) {
    encoded = asn1EncodeT<ASN1T_CertificateList_traits>(record);
}

void ASN1T_CertificateValues_traits::set(ASN1CTXT* ctxt, asn1data::ASN1T_CertificateValues& record,
                                         const CCertificateValues& value) {
    CertificateSequenceTraits::set(ctxt, record, value);
}

void ASN1T_CertificateValues_traits::get(const asn1data::ASN1T_CertificateValues& record,
                                         CCertificateValues& value) {
    CertificateSequenceTraits::get(record, value);
}

} // namespace Brevantis::ASN1
