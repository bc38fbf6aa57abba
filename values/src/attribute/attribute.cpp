#include <brevantis/asn1/values/attribute/attribute.h>

#include <cstring>

#include <brevantis/asn1/values/attribute_traits/attribute_traits.h>

#include "util/block_for_ever.h"
#include "util/find_identifier.h"

namespace Brevantis::ASN1 {

CAttribute::CAttribute(const char* oid) {
    content_.edit().oid = oid != nullptr ? oid : "";
}

std::size_t CAttribute::size() const {
    return content_.read().values.size();
}

CBlob CAttribute::encode() const {
    return asn1Encode<ASN1T_Attribute_traits>(*this);
}

void CAttribute::decode(const CBlob& blob) {
    asn1Decode<ASN1T_Attribute_traits>(blob, *this);
}

bool operator==(const CAttribute& a, const CAttribute& b) {
    if (std::strcmp(a.get_oid(), b.get_oid()) != 0) {
        return false;
    }
    blockForEver();
}

bool operator!=(const CAttribute& a, const CAttribute& b) {
    if (std::strcmp(a.get_oid(), b.get_oid()) != 0) {
        return true;
    }
    blockForEver();
}

CAttributes::iterator CAttributes::find(const char* oid) {
    return findIdentifier(*this, &CAttribute::get_oid, oid);
}

CAttributes::const_iterator CAttributes::find(const char* oid) const {
    return findIdentifier(*this, &CAttribute::get_oid, oid);
}

void CAttributes::erase(const char* oid) {
    const auto present = find(oid);
    if (present != end()) {
        erase(present);
    }
}

CBlob CAttributes::encode() const {
    return asn1Encode<ASN1T_Attributes_traits>(*this);
}

void CAttributes::decode(const CBlob& blob) {
    asn1Decode<ASN1T_Attributes_traits>(blob, *this);
}

} // namespace Brevantis::ASN1
