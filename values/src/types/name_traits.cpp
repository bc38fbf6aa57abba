#include <brevantis/asn1/values/types/name_traits.h>

namespace Brevantis::ASN1 {

template struct ASN1TSeqOfList_traits<asn1data::ASN1T_AttributeTypeAndValue,
                                      ASN1T_AttributeTypeAndValue_traits, CAttributeTypeAndValue,
                                      CRelativeDistinguishedName>;

void ASN1T_RelativeDistinguishedName_traits::set(ASN1CTXT* ctxt,
                                                 asn1data::ASN1T_RelativeDistinguishedName& record,
                                                 const CRelativeDistinguishedName& value) {
    AttributeTypeAndValueListTraits::set(ctxt, record, value);
}

void ASN1T_RelativeDistinguishedName_traits::get(
    const asn1data::ASN1T_RelativeDistinguishedName& record, CRelativeDistinguishedName& value) {
    AttributeTypeAndValueListTraits::get(record, value);
}

template BREVANTIS_ASN1_API CBlob
asn1Encode<ASN1T_RelativeDistinguishedName_traits, CRelativeDistinguishedName>(
    const CRelativeDistinguishedName&);
template BREVANTIS_ASN1_API void
asn1Decode<ASN1T_RelativeDistinguishedName_traits, CRelativeDistinguishedName>(
    const CBlob&, CRelativeDistinguishedName&);

template struct ASN1TSeqOfList_traits<asn1data::ASN1T_RelativeDistinguishedName,
                                      ASN1T_RelativeDistinguishedName_traits,
                                      CRelativeDistinguishedName, CRDNSequence>;

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

template BREVANTIS_ASN1_API CBlob asn1Encode<ASN1T_Name_traits, CName>(const CName&);

} // namespace Brevantis::ASN1
