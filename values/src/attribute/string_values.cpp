#include <brevantis/asn1/values/attribute/string_values.h>

#include <brevantis/asn1/values/types/attribute_register.h>
#include <brevantis/asn1/values/util/text_conversion.h>

namespace Brevantis::ASN1 {

CAttrStringValue::CAttrStringValue(const char* oid, const wchar_t* text)
    : CAttrValue(oid, CATAVRegister::valueFromStr(oid, text, StringTypeDefault)) {}

CAttrStringValue::CAttrStringValue(const char* oid, const char* text)
    : CAttrStringValue(oid, towstring(text).c_str()) {}

CAttrCommonName::CAttrCommonName(const char* text)
    : CAttrStringValue(commonNameAttribute.oid.c_str(), text) {}

CAttrSurname::CAttrSurname(const char* text)
    : CAttrStringValue(surnameAttribute.oid.c_str(), text) {}

CAttrSerialNumber::CAttrSerialNumber(const char* text)
    : CAttrStringValue(serialNumberAttribute.oid.c_str(), text) {}

CAttrCountry::CAttrCountry(const char* text)
    : CAttrStringValue(countryNameAttribute.oid.c_str(), text) {}

CAttrLocality::CAttrLocality(const char* text)
    : CAttrStringValue(localityNameAttribute.oid.c_str(), text) {}

CAttrStateOrProvinceName::CAttrStateOrProvinceName(const char* text)
    : CAttrStringValue(stateOrProvinceNameAttribute.oid.c_str(), text) {}

CAttrOrganizationName::CAttrOrganizationName(const char* text)
    : CAttrStringValue(organizationNameAttribute.oid.c_str(), text) {}

CAttrOrganizationalUnitName::CAttrOrganizationalUnitName(const char* text)
    : CAttrStringValue(organizationUnitNameAttribute.oid.c_str(), text) {}

CAttrTitle::CAttrTitle(const char* text) : CAttrStringValue(titleAttribute.oid.c_str(), text) {}

CAttrGivenName::CAttrGivenName(const char* text)
    : CAttrStringValue(givenNameAttribute.oid.c_str(), text) {}

CAttrInitials::CAttrInitials(const char* text)
    : CAttrStringValue(initialsAttribute.oid.c_str(), text) {}

CAttrPseudonym::CAttrPseudonym(const char* text)
    : CAttrStringValue(pseudonymAttribute.oid.c_str(), text) {}

CAttrEmailAddress::CAttrEmailAddress(const char* text)
    : CAttrStringValue(emailAddressAttribute.oid.c_str(), text) {}

} // namespace Brevantis::ASN1
