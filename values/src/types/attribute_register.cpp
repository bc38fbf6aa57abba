#include <brevantis/asn1/values/types/attribute_register.h>

#include <algorithm>
#include <stdexcept>
#include <string_view>

#include <brevantis/asn1/asn1data/oids.h>
#include <brevantis/asn1/values/types/attribute_type_and_value.h>
#include <brevantis/asn1/values/util/object_identifier_text.h>
#include <brevantis/asn1/values/util/text_conversion.h>
#include <brevantis/support/error.h>
#include <brevantis/support/text.h>

#include "types/name_text.h"
#include "util/wide_text.h"

namespace Brevantis::ASN1 {

// The list stands in front of its rows and in one file with them: that fixes the order of
// initialisation.
std::list<CATAVRegister> CATAVRegister::registered_;

namespace {

constexpr unsigned long longest = 32768;

CATAVRegister row(const ASN1OBJID& identifier, const wchar_t* shortName, StringType type) {
    return CATAVRegister(toOID(identifier).c_str(), shortName, type, longest);
}

} // namespace

const CATAVRegister commonNameAttribute = row(asn1data::id_at_commonName, L"CN", StringTypeUTF8);
const CATAVRegister countryNameAttribute =
    row(asn1data::id_at_countryName, L"C", StringTypePrintable);
const CATAVRegister localityNameAttribute = row(asn1data::id_at_localityName, L"L", StringTypeUTF8);
const CATAVRegister stateOrProvinceNameAttribute =
    row(asn1data::id_at_stateOrProvinceName, L"ST", StringTypeUTF8);
const CATAVRegister emailAddressAttribute =
    row(asn1data::pkcs_9_at_emailAddress, L"E", StringTypeIA5);
const CATAVRegister organizationNameAttribute =
    row(asn1data::id_at_organizationName, L"O", StringTypeUTF8);
const CATAVRegister organizationUnitNameAttribute =
    row(asn1data::id_at_organizationalUnitName, L"OU", StringTypeUTF8);
const CATAVRegister titleAttribute = row(asn1data::id_at_title, L"T", StringTypeUTF8);
const CATAVRegister givenNameAttribute = row(asn1data::id_at_givenName, L"GN", StringTypeUTF8);
const CATAVRegister initialsAttribute = row(asn1data::id_at_initials, L"I", StringTypeUTF8);
const CATAVRegister surnameAttribute = row(asn1data::id_at_surname, L"SN", StringTypeUTF8);
const CATAVRegister pseudonymAttribute = row(asn1data::id_at_pseudonym, L"PS", StringTypeUTF8);
const CATAVRegister ogrnAttribute = row(asn1data::id_ogrn_attribute, L"OGRN", StringTypeUTF8);
const CATAVRegister ogrnipAttribute = row(asn1data::id_ogrnip_attribute, L"OGRNIP", StringTypeUTF8);
const CATAVRegister snilsAttribute = row(asn1data::id_snils_attribute, L"SNILS", StringTypeUTF8);
const CATAVRegister innAttribute = row(asn1data::id_inn_attribute, L"INN", StringTypeUTF8);
const CATAVRegister streetAddressAttribute =
    row(asn1data::id_at_streetAddress, L"STREET", StringTypeUTF8);
const CATAVRegister domainComponentAttribute =
    row(asn1data::id_at_domainComponent, L"DC", StringTypeIA5);
const CATAVRegister unstructuredNameAttribute =
    row(asn1data::pkcs_9_at_unstructuredName, L"UnstructuredName", StringTypeUTF8);
const CATAVRegister PostalCodeAttribute =
    row(asn1data::id_at_postalCode, L"PostalCode", StringTypeUTF8);
// No constant stands for id-at-serialNumber (X.520, 6.2.9).
const CATAVRegister serialNumberAttribute("2.5.4.5", L"SERIALNUMBER", StringTypePrintable, longest);

namespace {

/// The first row with a text in one of its fields.
template <class Char>
std::list<CATAVRegister>::const_iterator findRow(std::basic_string<Char> CATAVRegister::*field,
                                                 const Char* text) {
    const std::list<CATAVRegister>& rows = CATAVRegister::registered_;
    const auto wanted =
        text != nullptr ? std::basic_string_view<Char>(text) : std::basic_string_view<Char>();
    return std::find_if(rows.begin(), rows.end(),
                        [&](const CATAVRegister& row) { return row.*field == wanted; });
}

bool isRow(std::list<CATAVRegister>::const_iterator row) {
    return row != CATAVRegister::registered_.end();
}

void appendType(std::wstring& text, std::list<CATAVRegister>::const_iterator row, const char* oid) {
    if (isRow(row)) {
        text += row->name;
    } else {
        appendWide(text, oid != nullptr ? oid : "");
    }
}

void appendValue(std::wstring& text, std::list<CATAVRegister>::const_iterator row,
                 const CBlob& value) {
    if (isRow(row)) {
        appendCharString(text, value);
    } else {
        text += L'#';
        appendWide(text, value.writeToHexString(0).c_str());
    }
}

} // namespace

void appendPair(std::wstring& text, const char* oid, const CBlob& value) {
    const auto row = CATAVRegister::find(oid);
    appendType(text, row, oid);
    text += L'=';
    appendValue(text, row, value);
}

CATAVRegister::CATAVRegister(const char* identifier, const wchar_t* shortName,
                             StringType stringType, unsigned long longestValue)
    : oid(CStringProxy(identifier).c_str()), name(CWStringProxy(shortName).c_str()),
      type(stringType), maxLength(longestValue) {
    registered_.push_back(*this);
}

std::list<CATAVRegister>::const_iterator CATAVRegister::find(const char* oid) {
    return findRow(&CATAVRegister::oid, oid);
}

std::list<CATAVRegister>::const_iterator CATAVRegister::find(const wchar_t* name) {
    return findRow(&CATAVRegister::name, name);
}

std::wstring CATAVRegister::typeToStr(const char* oid) {
    std::wstring text;
    appendType(text, find(oid), oid);
    return text;
}

std::string CATAVRegister::typeFromStr(const wchar_t* name) {
    const auto row = find(name);
    return isRow(row) ? row->oid : tostring(CWStringProxy(name).c_str());
}

std::wstring CATAVRegister::valueToStr(const char* oid, const CBlob& value) {
    std::wstring text;
    appendValue(text, find(oid), value);
    return text;
}

CBlob CATAVRegister::valueFromStr(const char* oid, const wchar_t* text, StringType type) {
    const CWStringProxy content(text);
    const auto row = find(oid);
    if (!isRow(row)) {
        if (content.empty()) {
            throw std::out_of_range("basic_string::substr");
        }
        CBlob value;
        // Kept: the first character is dropped whether or not it is the "#" of valueToStr.
        value.readFromHexString(tostring(content.c_str() + 1).c_str());
        return value;
    }
    if (row->maxLength < content.length()) {
        ATL::AtlThrowImpl(E_INVALIDARG);
    }
    return encodeCharString(content.c_str(), type != StringTypeDefault ? type : row->type);
}

CAttributeTypeAndValue CATAVRegister::makeATAV(const wchar_t* typeText, const wchar_t* valueText,
                                               StringType type) {
    const std::string oid = typeFromStr(typeText);
    return CAttributeTypeAndValue(oid.c_str(), valueFromStr(oid.c_str(), valueText, type));
}

CAttributeTypeAndValue CATAVRegister::makeATAV(const wchar_t* pair, StringType type) {
    const std::wstring text(CWStringProxy(pair).c_str());
    const std::size_t sign = text.find(L'=');
    if (sign == std::wstring::npos) {
        ATL::AtlThrowImpl(E_INVALIDARG);
    }
    return makeATAV(text.substr(0, sign).c_str(), text.c_str() + sign + 1, type);
}

} // namespace Brevantis::ASN1
