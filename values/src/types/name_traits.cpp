#include <brevantis/asn1/values/types/name_traits.h>

namespace Brevantis::ASN1 {

void ASN1T_RelativeDistinguishedName_traits::set(ASN1CTXT* ctxt,
                                                 asn1data::ASN1T_RelativeDistinguishedName& record,
                                                 const CRelativeDistinguishedName& value) {
    AttributeTypeAndValueListTraits::set(ctxt, record, value);
}

void ASN1T_RelativeDistinguishedName_traits::get(
    const asn1data::ASN1T_RelativeDistinguishedName& record, CRelativeDistinguishedName& value) {
    AttributeTypeAndValueListTraits::get(record, value);
}

void ASN1T_Name_traits::set(ASN1CTXT* ctxt, asn1data::ASN1T_Name& record, const CName& value) {
    auto& names = newRecord<asn1data::ASN1T_RDNSequence>(ctxt);
    RelativeDistinguishedNameListTraits::set(ctxt, names, value);
    record.u.rdnSequence = &names;
    record.t = asn1data::T_Name_rdnSequence;
}

void ASN1T_Name_traits::get(const asn1data::ASN1T_Name& record, CName& value) {
    if (record.u.rdnSequence == nullptr) {
        ATL::AtlThrowImpl(CRYPT_E_ASN1_INTERNAL);
    }
    RelativeDistinguishedNameListTraits::get(*record.u.rdnSequence, value);
}

void ASN1T_Name_traits::set(ASN1CTXT* ctxt, asn1data::ASN1T_Name& record, const CBlob& encoding) {
    asn1DecodeT<ASN1T_Name_traits>(encoding, ctxt, record);
}

void ASN1T_Name_traits::get(const asn1data::ASN1T_Name& record, CBlob& encoding) {
    encoding = asn1EncodeT<ASN1T_Name_traits>(record);
}

} // namespace Brevantis::ASN1
