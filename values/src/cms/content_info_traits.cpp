#include <brevantis/asn1/values/cms/content_info_traits.h>

#include <brevantis/asn1/values/types/primitive_traits.h>

#include "util/checked_copy.h"

namespace Brevantis::ASN1 {

void ASN1T_ContentInfo_traits::set(ASN1CTXT* ctxt, asn1data::ASN1T_ContentInfo& record,
                                   const CContentInfo& value) {
    asn1data::ASN1T_ContentInfo checked;
    ASN1TObjId_traits::set(ctxt, checked.contentType, value.get_contentType());
    Asn1TObject_traits::set(ctxt, checked.content, value.get_content());
    copyResolved<ASN1T_ContentInfo_traits, &asn1data::asn1DTC_ContentInfo>(ctxt, checked, record);
}

void ASN1T_ContentInfo_traits::get(const asn1data::ASN1T_ContentInfo& record, CContentInfo& value) {
    CStringProxy type;
    CBlob content;
    ASN1TObjId_traits::get(record.contentType, type);
    Asn1TObject_traits::get(record.content, content);
    value = CContentInfo(type.c_str(), content);
}

void ASN1T_ContentInfo_traits::set(ASN1CTXT* ctxt, asn1data::ASN1T_ContentInfo& record,
                                   const CBlob& encoded) {
    asn1DecodeT<ASN1T_ContentInfo_traits>(encoded, ctxt, record);
}

void ASN1T_ContentInfo_traits::get(const asn1data::ASN1T_ContentInfo& record, CBlob& encoded) {
    encoded = asn1EncodeT<ASN1T_ContentInfo_traits>(record);
}

} // namespace Brevantis::ASN1
