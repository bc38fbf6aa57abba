#include <brevantis/asn1/values/cmp/free_text_traits.h>

#include <string>

#include <brevantis/asn1/values/util/private_buffer.h>
#include <brevantis/asn1/values/util/traits.h>

#include "util/utf8_text.h"

namespace Brevantis::ASN1 {

namespace {

constexpr wchar_t tagStart = 0x0E01;
constexpr wchar_t tagEnd = 0x0E7E;
constexpr int tagPage = 0x0E00;

/// What stands in front of a text in this language.
std::wstring tagOf(const CLanguageTag& language) {
    if (language == CLanguageTagDefaultRead()) {
        return {};
    }
    const CStringProxy tag = language.tostring();
    std::wstring characters(1, tagStart);
    for (const char* character = tag.c_str(); *character != '\0'; ++character) {
        // Sign extension turns characters outside ASCII into ones that UTF-8 does not code.
        characters += static_cast<wchar_t>(static_cast<signed char>(*character) | tagPage);
    }
    return characters + tagEnd;
}

/// The language that the beginning of a text tells.
CLanguageTag languageOf(const std::wstring& text) {
    if (text.empty() || text.front() != tagStart) {
        return CLanguageTagDefaultRead();
    }
    std::string tag;
    std::size_t place = 1;
    while (place < text.size() && text[place] != tagEnd && (text[place] & 0xFF00) == tagPage) {
        tag += static_cast<char>(text[place++] & 0xFF);
    }
    if (place == text.size() || text[place] != tagEnd) {
        ATL::AtlThrowImpl(E_INVALIDARG);
    }
    return CLanguageTag(tag.c_str());
}

} // namespace

void CPKIFreeText_Encode(ASN1CTXT* ctxt, asn1data::ASN1T_PKIFreeText& record,
                         const CPKIFreeText& text) {
    auto** strings =
        static_cast<const char**>(allocateBlock(ctxt, text.size() * sizeof(const char*)));
    unsigned count = 0;
    for (const CPKIFreeTextString& string : text) {
        const std::wstring whole = tagOf(string.get_language()) + string.get_value();
        strings[count++] = encodeUTF8(ctxt, whole.c_str(), CRYPT_E_ASN1_INTERNAL);
    }
    record.n = count;
    record.elem = strings;
}

void CPKIFreeText_Parse(ASN1CTXT* /*ctxt*/, CPKIFreeText& text,
                        const asn1data::ASN1T_PKIFreeText& record) {
    if (record.n != 0) {
        requireValue(record.elem);
    }
    CPKIFreeText parsed;
    for (unsigned i = 0; i < record.n; ++i) {
        const std::wstring whole = decodeUTF8(record.elem[i], CRYPT_E_ASN1_UTF8);
        // Kept: the tag stays in front of the text. Programs know it there.
        parsed.emplace_back(whole.c_str(), languageOf(whole));
    }
    text.splice(text.end(), parsed);
}

} // namespace Brevantis::ASN1
