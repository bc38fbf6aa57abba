#include <brevantis/asn1/values/types/general_name_traits.h>

#include <cwchar>
#include <optional>

#include <brevantis/asn1/values/types/name_traits.h>
#include <brevantis/asn1/values/types/primitive_traits.h>
#include <brevantis/asn1/values/util/object_identifier_text.h>
#include <brevantis/asn1/values/util/text_conversion.h>
#include <brevantis/support/code_page.h>

#include "util/read_value.h"

namespace Brevantis::ASN1 {

namespace {

/// A text from here on, with its terminator, counts as absent.
constexpr std::size_t longestText = 0x40000000;

std::optional<std::string> narrow(const wchar_t* text) {
    if (std::wcslen(text) + 1 >= longestText) {
        return std::nullopt;
    }
    const int size = WideCharToMultiByte(0, 0, text, -1, nullptr, 0, nullptr, nullptr);
    if (size <= 0) {
        ATL::AtlThrowLastWin32();
    }
    std::string narrowed(static_cast<std::size_t>(size), '\0');
    WideCharToMultiByte(0, 0, text, -1, narrowed.data(), size, nullptr, nullptr);
    return narrowed;
}

/// Sets a record from a wide text.
template <class Traits, class Record>
void setText(ASN1CTXT* ctxt, Record& record, const wchar_t* text) {
    const std::optional<std::string> narrowed = narrow(text);
    Traits::set(ctxt, record, narrowed.has_value() ? narrowed->c_str() : nullptr);
}

/// Sets a new record from a value.
template <class Traits, class Record>
void setNew(ASN1CTXT* ctxt, Record*& record, const CBlob& value) {
    Record& made = newRecord<Record>(ctxt);
    Traits::set(ctxt, made, value);
    record = &made;
}

} // namespace

void ASN1T_GeneralName_traits::set(ASN1CTXT* ctxt, asn1data::ASN1T_GeneralName& record,
                                   const CGeneralName& value) {
    switch (value.get_type()) {
    case asn1data::T_GeneralName_rfc822Name:
        setText<ASN1IA5String_traits>(ctxt, record.u.rfc822Name, value.get_rfc822Name());
        break;
    case asn1data::T_GeneralName_dNSName:
        setText<ASN1IA5String_traits>(ctxt, record.u.dNSName, value.get_dNSName());
        break;
    case asn1data::T_GeneralName_directoryName:
        setNew<ASN1T_Name_traits>(ctxt, record.u.directoryName, *value.get_directoryName());
        break;
    case asn1data::T_GeneralName_uniformResourceIdentifier:
        setText<ASN1IA5String_traits>(ctxt, record.u.uniformResourceIdentifier,
                                      value.get_uniformResourceIdentifier());
        break;
    case asn1data::T_GeneralName_iPAddress:
        setNew<ASN1TDynOctStr_traits>(ctxt, record.u.iPAddress, *value.get_iPAddress());
        break;
    case asn1data::T_GeneralName_registeredID: {
        auto& identifier = newRecord<ASN1TObjId>(ctxt);
        setText<ASN1TObjId_traits>(ctxt, identifier, value.get_registeredID());
        record.u.registeredID = &identifier;
        break;
    }
    default:
        ATL::AtlThrowImpl(E_INVALIDARG);
    }
    record.t = value.get_type();
}

void ASN1T_GeneralName_traits::get(const asn1data::ASN1T_GeneralName& record, CGeneralName& value) {
    auto& choice = value.choice_;
    switch (record.t) {
    case asn1data::T_GeneralName_rfc822Name:
        choice.put<CGeneralName::Rfc822Name>(towstring(record.u.rfc822Name));
        break;
    case asn1data::T_GeneralName_dNSName:
        choice.put<CGeneralName::DNSName>(towstring(record.u.dNSName));
        break;
    case asn1data::T_GeneralName_directoryName:
        choice.put<CGeneralName::DirectoryName>(
            readValue<ASN1T_Name_traits, CBlob>(requireValue(record.u.directoryName)));
        break;
    case asn1data::T_GeneralName_uniformResourceIdentifier:
        choice.put<CGeneralName::UniformResourceIdentifier>(
            towstring(record.u.uniformResourceIdentifier));
        break;
    case asn1data::T_GeneralName_iPAddress:
        choice.put<CGeneralName::IPAddress>(
            readValue<ASN1TDynOctStr_traits, CBlob>(requireValue(record.u.iPAddress)));
        break;
    case asn1data::T_GeneralName_registeredID:
        choice.put<CGeneralName::RegisteredID>(
            towstring(toOID(requireValue(record.u.registeredID)).c_str()));
        break;
    default:
        ATL::AtlThrowImpl(E_INVALIDARG);
    }
}

void ASN1T_GeneralNames_traits::set(ASN1CTXT* ctxt, asn1data::ASN1T_GeneralNames& record,
                                    const CGeneralNames& value) {
    GeneralNameListTraits::set(ctxt, record, value);
}

void ASN1T_GeneralNames_traits::get(const asn1data::ASN1T_GeneralNames& record,
                                    CGeneralNames& value) {
    GeneralNameListTraits::get(record, value);
}

} // namespace Brevantis::ASN1
