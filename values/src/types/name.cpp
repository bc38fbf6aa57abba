#include <brevantis/asn1/values/types/name.h>

#include <string>

#include <brevantis/asn1/values/types/name_traits.h>

#include "util/block_for_ever.h"

namespace Brevantis::ASN1 {

namespace {

/// Appends an element for each piece of a text.
/// @param make makes one of a terminated piece
template <class List, class Make>
// Kept: nothing quotes a separator, and appendJoined quotes none. Programs depend on it.
void appendPieces(List& list, const wchar_t* text, wchar_t separator, Make make) {
    const std::wstring pieces(CWStringProxy(text).c_str());
    std::size_t position = 0;
    for (;;) {
        const std::size_t end = pieces.find(separator, position);
        list.push_back(make(pieces.substr(position, end - position).c_str()));
        if (end == std::wstring::npos) {
            return;
        }
        position = end + 1;
    }
}

/// Appends the texts of the elements with a separator between them.
/// @param append appends that of one
template <class List, class Append>
void appendJoined(std::wstring& text, const List& list, wchar_t separator, Append append) {
    for (const auto& element : list) {
        if (&element != &list.front()) {
            text += separator;
        }
        append(element);
    }
}

/// Text whose declared type does not tell its units.
const wchar_t* wideUnits(const unsigned short* text) {
    return static_cast<const wchar_t*>(static_cast<const void*>(text));
}

} // namespace

CRelativeDistinguishedName::CRelativeDistinguishedName(const wchar_t* text) {
    fromString(text);
}

CWStringProxy CRelativeDistinguishedName::toString() const {
    std::wstring text;
    appendTo(text);
    return text;
}

void CRelativeDistinguishedName::appendTo(std::wstring& text) const {
    appendJoined(text, *this, L'+',
                 [&](const CAttributeTypeAndValue& pair) { pair.appendTo(text); });
}

void CRelativeDistinguishedName::fromString(const wchar_t* text) {
    appendPieces(*this, text, L'+', [](const wchar_t* piece) {
        return CAttributeTypeAndValue(piece, StringTypeDefault);
    });
}

CBlob CRelativeDistinguishedName::encode() const {
    return asn1Encode<ASN1T_RelativeDistinguishedName_traits>(*this);
}

void CRelativeDistinguishedName::decode(const CBlob& blob) {
    asn1Decode<ASN1T_RelativeDistinguishedName_traits>(blob, *this);
}

CName::CName(const wchar_t* text) {
    fromString(text);
}

CWStringProxy CName::toString() const {
    std::wstring text;
    appendJoined(text, *this, L',',
                 [&](const CRelativeDistinguishedName& rdn) { rdn.appendTo(text); });
    return text;
}

void CName::fromString(const wchar_t* text) {
    appendPieces(*this, text, L',',
                 [](const wchar_t* piece) { return CRelativeDistinguishedName(piece); });
}

CBlob CName::encode() const {
    return asn1Encode<ASN1T_Name_traits>(*this);
}

void CName::decode(const CBlob& blob) {
    asn1Decode<ASN1T_Name_traits>(blob, *this);
}

void fromString(CRelativeDistinguishedName& rdn, const unsigned short* text) {
    rdn.fromString(wideUnits(text));
}

void fromString(CName& name, const unsigned short* text) {
    name.fromString(wideUnits(text));
}

// Kept: these four never return.
bool operator==(const CRelativeDistinguishedName& /*a*/, const CRelativeDistinguishedName& /*b*/) {
    blockForEver();
}

bool operator!=(const CRelativeDistinguishedName& /*a*/, const CRelativeDistinguishedName& /*b*/) {
    blockForEver();
}

bool operator==(const CAttributeTypeAndValueSet& /*a*/, const CAttributeTypeAndValueSet& /*b*/) {
    blockForEver();
}

bool operator!=(const CAttributeTypeAndValueSet& /*a*/, const CAttributeTypeAndValueSet& /*b*/) {
    blockForEver();
}

} // namespace Brevantis::ASN1
