#include <brevantis/asn1/values/attribute/signing_certificate_traits.h>

#include <brevantis/asn1/values/types/certificate_identifiers_traits.h>
#include <brevantis/asn1/values/types/policy_information_traits.h>

namespace Brevantis::ASN1 {

namespace {

template <class CertificateListTraits, class Record, class Value>
void setRecord(ASN1CTXT* ctxt, Record& record, const Value& value) {
    CertificateListTraits::set(ctxt, record.certs, value.get_certs());
    const CPolicyInformationList* policies = value.get_policies();
    record.m.policiesPresent = policies != nullptr && !policies->empty();
    if (record.m.policiesPresent) {
        PolicyInformationListTraits::set(ctxt, record.policies, *policies);
    }
}

/// Reads both lists before it stores either, so that one that is refused leaves the value alone.
template <class CertificateListTraits, class CertificateList, class Record, class Value>
void getValue(const Record& record, Value& value) {
    CertificateList certs;
    CertificateListTraits::get(record.certs, certs);
    CPolicyInformationList policies;
    if (record.m.policiesPresent) {
        PolicyInformationListTraits::get(record.policies, policies);
    }
    value.put_certs(certs);
    value.put_policies(record.m.policiesPresent ? &policies : nullptr);
}

} // namespace

void ASN1T_SigningCertificate_traits::set(ASN1CTXT* ctxt,
                                          asn1data::ASN1T_SigningCertificate& record,
                                          const CAttrSigningCertificate& value) {
    setRecord<ESSCertIDListTraits>(ctxt, record, value);
}

void ASN1T_SigningCertificate_traits::get(const asn1data::ASN1T_SigningCertificate& record,
                                          CAttrSigningCertificate& value) {
    getValue<ESSCertIDListTraits, CESSCertIDList>(record, value);
}

void ASN1T_SigningCertificateV2_traits::set(ASN1CTXT* ctxt,
                                            asn1data::ASN1T_SigningCertificateV2& record,
                                            const CAttrSigningCertificateV2& value) {
    setRecord<ESSCertIDv2ListTraits>(ctxt, record, value);
}

void ASN1T_SigningCertificateV2_traits::get(const asn1data::ASN1T_SigningCertificateV2& record,
                                            CAttrSigningCertificateV2& value) {
    getValue<ESSCertIDv2ListTraits, CESSCertIDv2List>(record, value);
}

void ASN1T_OtherSigningCertificate_traits::set(ASN1CTXT* ctxt,
                                               asn1data::ASN1T_OtherSigningCertificate& record,
                                               const CAttrOtherSigningCertificate& value) {
    setRecord<OtherCertIDListTraits>(ctxt, record, value);
}

void ASN1T_OtherSigningCertificate_traits::get(
    const asn1data::ASN1T_OtherSigningCertificate& record, CAttrOtherSigningCertificate& value) {
    getValue<OtherCertIDListTraits, COtherCertIDList>(record, value);
}

} // namespace Brevantis::ASN1
