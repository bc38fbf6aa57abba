#include <brevantis/asn1/values/types/general_name.h>

#include <cwchar>

#include <brevantis/asn1/values/types/general_name_traits.h>
#include <brevantis/asn1/values/types/name.h>
#include <brevantis/asn1/values/util/text_conversion.h>

namespace Brevantis::ASN1 {

namespace {

bool sameBlobs(const CBlob* a, const CBlob* b) {
    return a == nullptr || b == nullptr ? a == b : *a == *b;
}

// Kept: first characters alone. Programs depend on which names count as equal.
bool sameTexts(const wchar_t* a, const wchar_t* b) {
    return a == nullptr || b == nullptr ? a == b : *a == *b;
}

} // namespace

unsigned int CGeneralName::get_type() const {
    return choice_.type();
}

template <class Traits>
const wchar_t* CGeneralName::text() const {
    const std::wstring* value = choice_.get<Traits>();
    return value != nullptr ? value->c_str() : nullptr;
}

template <class Traits>
void CGeneralName::putText(const wchar_t* text) {
    if (text == nullptr) {
        ATL::AtlThrowImpl(E_INVALIDARG);
    }
    choice_.put<Traits>(std::wstring(text));
}

template <class Argument>
CGeneralName CGeneralName::made(void (CGeneralName::*put)(Argument), Argument argument) {
    CGeneralName name;
    (name.*put)(argument);
    return name;
}

CGeneralName CGeneralName::rfc822Name(const wchar_t* name) {
    return made(&CGeneralName::put_rfc822Name, name);
}

CGeneralName CGeneralName::dNSName(const wchar_t* name) {
    return made(&CGeneralName::put_dNSName, name);
}

CGeneralName CGeneralName::directoryName(const CBlob& name) {
    return made<const CBlob&>(&CGeneralName::put_directoryName, name);
}

CGeneralName CGeneralName::directoryName(const CName& name) {
    return directoryName(name.encode());
}

CGeneralName CGeneralName::uniformResourceIdentifier(const wchar_t* identifier) {
    return made(&CGeneralName::put_uniformResourceIdentifier, identifier);
}

CGeneralName CGeneralName::iPAddress(const CBlob& address) {
    return made<const CBlob&>(&CGeneralName::put_iPAddress, address);
}

CGeneralName CGeneralName::registeredID(const wchar_t* identifier) {
    return made(&CGeneralName::put_registeredID, identifier);
}

const wchar_t* CGeneralName::get_rfc822Name() const {
    return text<Rfc822Name>();
}

const wchar_t* CGeneralName::get_dNSName() const {
    return text<DNSName>();
}

const CBlob* CGeneralName::get_directoryName() const {
    return choice_.get<DirectoryName>();
}

const wchar_t* CGeneralName::get_uniformResourceIdentifier() const {
    return text<UniformResourceIdentifier>();
}

const CBlob* CGeneralName::get_iPAddress() const {
    return choice_.get<IPAddress>();
}

const wchar_t* CGeneralName::get_registeredID() const {
    return text<RegisteredID>();
}

const CBlob* CGeneralName::get_otherName() const {
    return choice_.get<OtherName>();
}

const CBlob* CGeneralName::get_x400Address() const {
    return choice_.get<X400Address>();
}

const CBlob* CGeneralName::get_ediPartyName() const {
    return choice_.get<EdiPartyName>();
}

void CGeneralName::put_rfc822Name(const wchar_t* name) {
    putText<Rfc822Name>(name);
}

void CGeneralName::put_dNSName(const wchar_t* name) {
    putText<DNSName>(name);
}

void CGeneralName::put_directoryName(const CBlob& name) {
    choice_.put<DirectoryName>(name);
}

void CGeneralName::put_uniformResourceIdentifier(const wchar_t* identifier) {
    putText<UniformResourceIdentifier>(identifier);
}

void CGeneralName::put_iPAddress(const CBlob& address) {
    choice_.put<IPAddress>(address);
}

void CGeneralName::put_registeredID(const wchar_t* identifier) {
    putText<RegisteredID>(identifier);
}

void CGeneralName::put_otherName(const CBlob& name) {
    choice_.put<OtherName>(name);
}

void CGeneralName::put_x400Address(const CBlob& name) {
    choice_.put<X400Address>(name);
}

void CGeneralName::put_ediPartyName(const CBlob& name) {
    choice_.put<EdiPartyName>(name);
}

void CGeneralName::clear() {
    choice_.clear();
}

CWStringProxy CGeneralName::wholeText() const {
    for (const wchar_t* text :
         {get_rfc822Name(), get_dNSName(), get_uniformResourceIdentifier(), get_registeredID()}) {
        if (text != nullptr) {
            return text;
        }
    }
    if (const CBlob* encoded = get_directoryName()) {
        CName name;
        name.decode(*encoded);
        return name.toString();
    }
    for (const CBlob* octets :
         {get_iPAddress(), get_otherName(), get_x400Address(), get_ediPartyName()}) {
        if (octets != nullptr) {
            return towstring(octets->writeToHexString(0).c_str());
        }
    }
    return CWStringProxy();
}

CWStringProxy CGeneralName::toString() const {
    std::wstring text;
    // Kept: of a text the first character is shown and no more. Programs depend on it; wholeText
    // shows all.
    switch (get_type()) {
    case Rfc822Name::number:
        text = std::wstring(L"rfc822Name: ") + *get_rfc822Name();
        break;
    case DNSName::number:
        text = std::wstring(L"dNSName: ") + *get_dNSName();
        break;
    case DirectoryName::number:
        text = std::wstring(L"directoryName: ") + wholeText().c_str();
        break;
    case UniformResourceIdentifier::number:
        text = std::wstring(L"uniformResourceIdentifier: ") + *get_uniformResourceIdentifier();
        break;
    case IPAddress::number:
        text = L"iPAddress: (to string is not implemented)";
        break;
    case RegisteredID::number:
        text = std::wstring(L"registeredID: ") + *get_registeredID();
        break;
    case OtherName::number:
        text = std::wstring(L"otherName: ") + wholeText().c_str();
        break;
    case X400Address::number:
        text = std::wstring(L"x400Address: ") + wholeText().c_str();
        break;
    case EdiPartyName::number:
        text = std::wstring(L"ediPartyName: ") + wholeText().c_str();
        break;
    default:
        break;
    }
    // The first character of an empty text is its terminator, which ends this text too.
    return CWStringProxy(text.c_str());
}

CBlob CGeneralName::encode() const {
    return asn1Encode<ASN1T_GeneralName_traits>(*this);
}

void CGeneralName::decode(const CBlob& blob) {
    asn1Decode<ASN1T_GeneralName_traits>(blob, *this);
}

namespace {

/// @param sameTexts compares two texts, or null for none
template <class SameTexts>
bool same(const CGeneralName& a, const CGeneralName& b, SameTexts sameTexts) {
    return a.get_type() == b.get_type() &&
           sameBlobs(a.get_directoryName(), b.get_directoryName()) &&
           sameBlobs(a.get_otherName(), b.get_otherName()) &&
           sameBlobs(a.get_x400Address(), b.get_x400Address()) &&
           sameBlobs(a.get_ediPartyName(), b.get_ediPartyName()) &&
           sameTexts(a.get_dNSName(), b.get_dNSName()) &&
           sameBlobs(a.get_iPAddress(), b.get_iPAddress()) &&
           sameTexts(a.get_registeredID(), b.get_registeredID()) &&
           sameTexts(a.get_rfc822Name(), b.get_rfc822Name()) &&
           sameTexts(a.get_uniformResourceIdentifier(), b.get_uniformResourceIdentifier());
}

} // namespace

bool operator==(const CGeneralName& a, const CGeneralName& b) {
    return same(a, b, sameTexts);
}

bool sameWhole(const CGeneralName& a, const CGeneralName& b) {
    return same(a, b, [](const wchar_t* left, const wchar_t* right) {
        return left == nullptr || right == nullptr ? left == right : std::wcscmp(left, right) == 0;
    });
}

bool operator!=(const CGeneralName& a, const CGeneralName& b) {
    return !(a == b);
}

CBlob CGeneralNames::encode() const {
    return asn1Encode<ASN1T_GeneralNames_traits>(*this);
}

void CGeneralNames::decode(const CBlob& blob) {
    asn1Decode<ASN1T_GeneralNames_traits>(blob, *this);
}

} // namespace Brevantis::ASN1
