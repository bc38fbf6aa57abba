#include <brevantis/asn1/values/attribute/attribute.h>

#include <cstring>

#include <brevantis/asn1/values/attribute/attribute_traits.h>

#include "util/block_for_ever.h"
#include "util/find_identifier.h"

namespace Brevantis::ASN1 {

CAttribute::CAttribute() : CAttribute(nullptr) {}

CAttribute::CAttribute(const char* oid) {
    content_.edit().oid = oid != nullptr ? oid : "";
}

CAttribute::CAttribute(const CAttrValue& value) : CAttribute(value.get_oid()) {
    add(value);
}

const char* CAttribute::get_oid() const {
    return content_.get() != nullptr ? content_.get()->oid.c_str() : "";
}

CAttribute::iterator CAttribute::begin() {
    return content_.edit().values.begin();
}

CAttribute::iterator CAttribute::end() {
    return content_.edit().values.end();
}

// One that was moved from has no list; its iterators are equal as those of an empty one are.
CAttribute::const_iterator CAttribute::begin() const {
    return content_.get() != nullptr ? content_.get()->values.begin() : const_iterator();
}

CAttribute::const_iterator CAttribute::end() const {
    return content_.get() != nullptr ? content_.get()->values.end() : const_iterator();
}

std::size_t CAttribute::size() const {
    return content_.get() != nullptr ? content_.get()->values.size() : 0;
}

void CAttribute::add(const CAttrValue& value) {
    content_.edit().values.push_back(value);
}

void CAttribute::add(const CBlob& value) {
    add(CAttrValue(get_oid(), value));
}

void CAttribute::erase(iterator position) {
    content_.edit().values.erase(position);
}

CBlob CAttribute::encode() const {
    return asn1Encode<ASN1T_Attribute_traits>(*this);
}

void CAttribute::decode(const CBlob& blob) {
    asn1Decode<ASN1T_Attribute_traits>(blob, *this);
}

// Kept: for attributes of one identifier these two never return.
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
    eraseFound(*this, find(oid));
}

CBlob CAttributes::encode() const {
    return asn1Encode<ASN1T_Attributes_traits>(*this);
}

void CAttributes::decode(const CBlob& blob) {
    asn1Decode<ASN1T_Attributes_traits>(blob, *this);
}

} // namespace Brevantis::ASN1
