#include <brevantis/asn1/values/extension/extension.h>

#include <algorithm>
#include <cstring>
#include <utility>

#include <brevantis/asn1/values/extension/extension_traits.h>

#include "util/find_identifier.h"

namespace Brevantis::ASN1 {

CExtValue::CExtValue(const char* oid) : oid_(oid) {}

CExtValue::CExtValue(const char* oid, const CBlob& value) : oid_(oid), value_(value) {}

CExtValue::CExtValue(CStringProxy oid, CBlob value) noexcept
    : oid_(std::move(oid)), value_(std::move(value)) {}

const char* CExtValue::get_oid() const {
    return oid_.c_str();
}

const CBlob& CExtValue::get_value() const {
    return value_;
}

CBlob& CExtValue::value() {
    return value_;
}

CExtension::CExtension(const CExtValue& value, bool critical)
    : CExtValue(value), critical_(critical) {}

CExtension::CExtension(CExtValue&& value, bool critical) noexcept
    : CExtValue(std::move(value)), critical_(critical) {}

CExtension::CExtension(const char* oid, const CBlob& value, bool critical)
    : CExtValue(oid, value), critical_(critical) {}

const char* CExtension::get_extnID() const {
    return get_oid();
}

const CBlob& CExtension::get_extnValue() const {
    return get_value();
}

bool CExtension::get_critical() const {
    return critical_;
}

void CExtension::put_extnID(const char* oid) {
    CExtValue::operator=(CExtValue(oid, get_value()));
}

void CExtension::put_extnValue(const CBlob& newValue) {
    value() = newValue;
}

void CExtension::put_critical(bool critical) {
    critical_ = critical;
}

CBlob CExtension::encode() const {
    return asn1Encode<ASN1T_Extension_traits>(*this);
}

void CExtension::decode(const CBlob& blob) {
    asn1Decode<ASN1T_Extension_traits>(blob, *this);
}

bool operator==(const CExtension& a, const CExtension& b) {
    return a.get_critical() == b.get_critical() &&
           std::strcmp(a.get_extnID(), b.get_extnID()) == 0 &&
           a.get_extnValue() == b.get_extnValue();
}

bool operator!=(const CExtension& a, const CExtension& b) {
    return !(a == b);
}

CExtensions::iterator CExtensions::find(const char* oid) {
    return findIdentifier(*this, &CExtension::get_extnID, oid);
}

CExtensions::const_iterator CExtensions::find(const char* oid) const {
    return findIdentifier(*this, &CExtension::get_extnID, oid);
}

void CExtensions::insert(const CExtension& extension) {
    store(*this, find(extension.get_extnID()), extension);
}

void CExtensions::erase(const char* oid) {
    eraseFound(*this, find(oid));
}

CBlob CExtensions::encode() const {
    return asn1Encode<ASN1T_Extensions_traits>(*this);
}

void CExtensions::decode(const CBlob& blob) {
    asn1Decode<ASN1T_Extensions_traits>(blob, *this);
}

bool operator==(const CExtensions& a, const CExtensions& b) {
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin());
}

bool operator!=(const CExtensions& a, const CExtensions& b) {
    return !(a == b);
}

} // namespace Brevantis::ASN1
