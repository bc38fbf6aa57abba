#include <brevantis/asn1/values/types/attribute_register.h>

#include <algorithm>
#include <stdexcept>

#include <brevantis/asn1/values/types/attribute_type_and_value.h>
#include <brevantis/asn1/values/util/text_conversion.h>
#include <brevantis/support/error.h>
#include <brevantis/support/text.h>

namespace Brevantis::ASN1 {

// The list stands in front of its rows and in one file with them: that fixes the order of
// initialisation.
std::list<CATAVRegister> CATAVRegister::registered_;

namespace {

constexpr unsigned long longest = 32768;

} // namespace

const CATAVRegister commonNameAttribute("2.5.4.3", L"CN", StringTypeUTF8, longest);
const CATAVRegister countryNameAttribute("2.5.4.6", L"C", StringTypePrintable, longest);
const CATAVRegister localityNameAttribute("2.5.4.7", L"L", StringTypeUTF8, longest);
const CATAVRegister stateOrProvinceNameAttribute("2.5.4.8", L"ST", StringTypeUTF8, longest);
const CATAVRegister emailAddressAttribute("1.2.840.113549.1.9.1", L"E", StringTypeIA5, longest);
const CATAVRegister organizationNameAttribute("2.5.4.10", L"O", StringTypeUTF8, longest);
const CATAVRegister organizationUnitNameAttribute("2.5.4.11", L"OU", StringTypeUTF8, longest);
const CATAVRegister titleAttribute("2.5.4.12", L"T", StringTypeUTF8, longest);
const CATAVRegister givenNameAttribute("2.5.4.42", L"GN", StringTypeUTF8, longest);
const CATAVRegister initialsAttribute("2.5.4.43", L"I", StringTypeUTF8, longest);
const CATAVRegister surnameAttribute("2.5.4.4", L"SN", StringTypeUTF8, longest);
const CATAVRegister pseudonymAttribute("2.5.4.65", L"PS", StringTypeUTF8, longest);
const CATAVRegister ogrnAttribute("1.2.643.100.1", L"OGRN", StringTypeUTF8, longest);
const CATAVRegister ogrnipAttribute("1.2.643.100.5", L"OGRNIP", StringTypeUTF8, longest);
const CATAVRegister snilsAttribute("1.2.643.100.3", L"SNILS", StringTypeUTF8, longest);
const CATAVRegister innAttribute("1.2.643.3.131.1.1", L"INN", StringTypeUTF8, longest);
const CATAVRegister streetAddressAttribute("2.5.4.9", L"STREET", StringTypeUTF8, longest);
const CATAVRegister domainComponentAttribute("0.9.2342.19200300.100.1.25", L"DC", StringTypeIA5,
                                             longest);
const CATAVRegister unstructuredNameAttribute("1.2.840.113549.1.9.2", L"UnstructuredName",
                                              StringTypeUTF8, longest);
const CATAVRegister PostalCodeAttribute("2.5.4.17", L"PostalCode", StringTypeUTF8, longest);
const CATAVRegister serialNumberAttribute("2.5.4.5", L"SERIALNUMBER", StringTypePrintable, longest);

namespace {

/// The first row with a text in one of its fields.
template <class Char>
std::list<CATAVRegister>::const_iterator findRow(std::basic_string<Char> CATAVRegister::*field,
                                                 const BasicStringProxy<Char>& text) {
    const std::list<CATAVRegister>& rows = CATAVRegister::registered_;
    return std::find_if(rows.begin(), rows.end(),
                        [&](const CATAVRegister& row) { return row.*field == text; });
}

bool isRow(std::list<CATAVRegister>::const_iterator row) {
    return row != CATAVRegister::registered_.end();
}

} // namespace

CATAVRegister::CATAVRegister(const char* identifier, const wchar_t* shortName,
                             StringType stringType, unsigned long longestValue)
    : oid(CStringProxy(identifier).c_str()), name(CWStringProxy(shortName).c_str()),
      type(stringType), maxLength(longestValue) {
    registered_.push_back(*this);
}

std::list<CATAVRegister>::const_iterator CATAVRegister::find(const char* oid) {
    return findRow<char>(&CATAVRegister::oid, oid);
}

std::list<CATAVRegister>::const_iterator CATAVRegister::find(const wchar_t* name) {
    return findRow<wchar_t>(&CATAVRegister::name, name);
}

std::wstring CATAVRegister::typeToStr(const char* oid) {
    const auto row = find(oid);
    return isRow(row) ? row->name : towstring(CStringProxy(oid).c_str());
}

std::string CATAVRegister::typeFromStr(const wchar_t* name) {
    const auto row = find(name);
    return isRow(row) ? row->oid : tostring(CWStringProxy(name).c_str());
}

std::wstring CATAVRegister::valueToStr(const char* oid, const CBlob& value) {
    if (isRow(find(oid))) {
        const CWStringProxy text = decodeCharString(value);
        return std::wstring(text.c_str(), text.length());
    }
    return L"#" + towstring(value.writeToHexString(0).c_str());
}

CBlob CATAVRegister::valueFromStr(const char* oid, const wchar_t* text, StringType type) {
    const CWStringProxy content(text);
    const auto row = find(oid);
    if (!isRow(row)) {
        if (content.empty()) {
            throw std::out_of_range("basic_string::substr");
        }
        CBlob value;
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
