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

/// Sets a record of a kind that a value carries as octets.
void setWhole(ASN1CTXT* ctxt, asn1data::ASN1T_GeneralName& record, const CBlob& name,
              unsigned int kind) {
    const ReadingScope asItCame(ASN1F_TOLERATE_OPEN_VALUES | ASN1F_TOLERATE_SIZES);
    asn1data::ASN1T_GeneralName read{};
    asn1DecodeT<ASN1T_GeneralName_traits>(name, ctxt, read);
    if (static_cast<unsigned int>(read.t) != kind) {
        ATL::AtlThrowImpl(E_INVALIDARG);
    }
    record.t = read.t;
    record.u = read.u;
}

/// The encoding of a record of a kind that a value does not carry otherwise, where that is
/// tolerated.
CBlob octetsOf(const asn1data::ASN1T_GeneralName& record) {
    if ((ReadingScope::policy().flags & ASN1F_TOLERATE_OPEN_VALUES) == 0) {
        ATL::AtlThrowImpl(E_INVALIDARG);
    }
    EncodeBuffer buffer;
    rtCtxtSetFlag(buffer.getCtxtPtr(), ASN1F_TOLERATE_SIZES);
    asn1data::ASN1T_GeneralName copy{};
    ASN1T_GeneralName_traits::copy(buffer.getCtxtPtr(), record, copy);
    return buffer.message(ASN1T_GeneralName_traits::encode(buffer, copy));
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
    case asn1data::T_GeneralName_otherName:
        setWhole(ctxt, record, *value.get_otherName(), value.get_type());
        break;
    case asn1data::T_GeneralName_x400Address:
        setWhole(ctxt, record, *value.get_x400Address(), value.get_type());
        break;
    case asn1data::T_GeneralName_ediPartyName:
        setWhole(ctxt, record, *value.get_ediPartyName(), value.get_type());
        break;
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
    case asn1data::T_GeneralName_otherName:
        choice.put<CGeneralName::OtherName>(octetsOf(record));
        break;
    case asn1data::T_GeneralName_x400Address:
        choice.put<CGeneralName::X400Address>(octetsOf(record));
        break;
    case asn1data::T_GeneralName_ediPartyName:
        choice.put<CGeneralName::EdiPartyName>(octetsOf(record));
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
