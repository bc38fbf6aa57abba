#include <brevantis/asn1/values/attribute/certificate_traits.h>

namespace Brevantis::ASN1 {

template struct ASN1TSeqOfList_traits<asn1data::ASN1T_Certificate, ASN1T_Certificate_traits, CBlob,
                                      CBlobList>;

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

template BREVANTIS_ASN1_API CBlob asn1Encode<ASN1T_Certificate_traits, CBlob>(const CBlob&);
template BREVANTIS_ASN1_API void asn1Decode<ASN1T_Certificate_traits, CBlob>(const CBlob&, CBlob&);
template BREVANTIS_ASN1_API CBlob
asn1Encode<ASN1T_Certificate_traits, CCertificateValue>(const CCertificateValue&);
template BREVANTIS_ASN1_API void
asn1Decode<ASN1T_Certificate_traits, CCertificateValue>(const CBlob&, CCertificateValue&);
template BREVANTIS_ASN1_API CBlob
asn1EncodeT<ASN1T_Certificate_traits>(const asn1data::ASN1T_Certificate&);
template BREVANTIS_ASN1_API void
asn1DecodeT<ASN1T_Certificate_traits>(const CBlob&, ASN1CTXT*, asn1data::ASN1T_Certificate&);
template BREVANTIS_ASN1_API CBlob
asn1EncodeT<ASN1T_CertificateList_traits>(const asn1data::ASN1T_CertificateList&);
template BREVANTIS_ASN1_API void
asn1DecodeT<ASN1T_CertificateList_traits>(const CBlob&, ASN1CTXT*,
                                          asn1data::ASN1T_CertificateList&);
template BREVANTIS_ASN1_API CBlob
asn1Encode<ASN1T_CertificateValues_traits, CCertificateValues>(const CCertificateValues&);
template BREVANTIS_ASN1_API void
asn1Decode<ASN1T_CertificateValues_traits, CCertificateValues>(const CBlob&, CCertificateValues&);

} // namespace Brevantis::ASN1
