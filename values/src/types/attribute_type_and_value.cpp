#include <brevantis/asn1/values/types/attribute_type_and_value.h>

#include <string>
#include <utility>

#include <brevantis/asn1/values/types/attr_value.h>
#include <brevantis/asn1/values/types/attribute_register.h>
#include <brevantis/asn1/values/types/attribute_type_and_value_traits.h>

#include "types/name_text.h"

namespace Brevantis::ASN1 {

CAttributeTypeAndValue::CAttributeTypeAndValue(const char* oid, const CBlob& value)
    : type_(oid), value_(value) {}

CAttributeTypeAndValue::CAttributeTypeAndValue(CStringProxy oid, CBlob value) noexcept
    : type_(std::move(oid)), value_(std::move(value)) {}

CAttributeTypeAndValue::CAttributeTypeAndValue(const wchar_t* typeText, const wchar_t* valueText,
                                               StringType type)
    : CAttributeTypeAndValue(CATAVRegister::makeATAV(typeText, valueText, type)) {}

CAttributeTypeAndValue::CAttributeTypeAndValue(const wchar_t* pair, StringType type)
    : CAttributeTypeAndValue(CATAVRegister::makeATAV(pair, type)) {}

CAttributeTypeAndValue::CAttributeTypeAndValue(const CAttrValue& value)
    : CAttributeTypeAndValue(value.get_oid(), value.get_value()) {}

const char* CAttributeTypeAndValue::get_type() const {
    return type_.c_str();
}

CBlob CAttributeTypeAndValue::get_value() const {
    return value_;
}

void CAttributeTypeAndValue::put_type(const char* oid) {
    type_ = oid;
}

void CAttributeTypeAndValue::put_value(const CBlob& value) {
    value_ = value;
}

CWStringProxy CAttributeTypeAndValue::get_type_str() const {
    return CATAVRegister::typeToStr(get_type());
}

void CAttributeTypeAndValue::put_type_str(const wchar_t* name) {
    type_ = CATAVRegister::typeFromStr(name);
}

CWStringProxy CAttributeTypeAndValue::get_value_str() const {
    return CATAVRegister::valueToStr(get_type(), value_);
}

void CAttributeTypeAndValue::put_value_str(const wchar_t* text, StringType type) {
    value_ = CATAVRegister::valueFromStr(get_type(), text, type);
}

CWStringProxy CAttributeTypeAndValue::toString() const {
    std::wstring text;
    appendTo(text);
    return text;
}

void CAttributeTypeAndValue::appendTo(std::wstring& text) const {
    appendPair(text, get_type(), value_);
}

void CAttributeTypeAndValue::fromString(const wchar_t* pair, StringType /*type*/) {
    *this = CATAVRegister::makeATAV(pair, StringTypeDefault);
}

CBlob CAttributeTypeAndValue::encode() const {
    return asn1Encode<ASN1T_AttributeTypeAndValue_traits>(*this);
}

void CAttributeTypeAndValue::decode(const CBlob& blob) {
    asn1Decode<ASN1T_AttributeTypeAndValue_traits>(blob, *this);
}

bool operator==(const CAttributeTypeAndValue& a, const CAttributeTypeAndValue& b) {
    return CStringProxy(a.get_type()) == b.get_type() && a.get_value() == b.get_value();
}

bool operator!=(const CAttributeTypeAndValue& a, const CAttributeTypeAndValue& b) {
    return !(a == b);
}

} // namespace Brevantis::ASN1
