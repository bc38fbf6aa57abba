#include <brevantis/asn1/values/cms/content_info.h>

#include <brevantis/asn1/values/cms/content_info_traits.h>

namespace Brevantis::ASN1 {

CContentInfo::CContentInfo(const char* oid, const CBlob& content)
    : contentType_(oid), content_(content) {}

void CContentInfo::put_contentType(const char* oid) {
    contentType_ = oid;
}

CBlob CContentInfo::encode() const {
    return asn1Encode<ASN1T_ContentInfo_traits>(*this);
}

void CContentInfo::decode(const CBlob& blob) {
    asn1Decode<ASN1T_ContentInfo_traits>(blob, *this);
}

} // namespace Brevantis::ASN1
