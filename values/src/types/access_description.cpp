#include <brevantis/asn1/values/types/access_description.h>

#include <brevantis/asn1/values/types/access_description_traits.h>

namespace Brevantis::ASN1 {

CAccessDescription::CAccessDescription(const char* accessMethod, const CGeneralName& accessLocation)
    : accessMethod_(accessMethod), accessLocation_(accessLocation) {}

CBlob CAccessDescription::encode() const {
    return asn1Encode<ASN1T_AccessDescription_traits>(*this);
}

void CAccessDescription::decode(const CBlob& blob) {
    asn1Decode<ASN1T_AccessDescription_traits>(blob, *this);
}

bool operator==(const CAccessDescription& a, const CAccessDescription& b) {
    return CStringProxy(a.get_accessMethod()) == b.get_accessMethod() &&
           a.get_accessLocation() == b.get_accessLocation();
}

bool operator!=(const CAccessDescription& a, const CAccessDescription& b) {
    return !(a == b);
}

CBlob CAuthorityInfoAccessSyntax::encode() const {
    return asn1Encode<ASN1T_AuthorityInfoAccessSyntax_traits>(*this);
}

void CAuthorityInfoAccessSyntax::decode(const CBlob& blob) {
    asn1Decode<ASN1T_AuthorityInfoAccessSyntax_traits>(blob, *this);
}

} // namespace Brevantis::ASN1
