#include <brevantis/asn1/values/types/character_string.h>

#include <algorithm>
#include <cwchar>
#include <iterator>
#include <string>

#include <brevantis/asn1/runtime/character_string.h>
#include <brevantis/asn1/runtime/tag_length.h>
#include <brevantis/asn1/runtime/wide_text.h>
#include <brevantis/asn1/values/util/context_handle.h>
#include <brevantis/asn1/values/util/private_buffer.h>
#include <brevantis/asn1/values/util/text_conversion.h>

#include "util/utf8_text.h"

namespace Brevantis::ASN1 {

namespace {

/// Universal tags of the strings (X.680, 8.4), in primitive form.
enum StringTag : ASN1TAG {
    UTF8String = 12,
    NumericString = 18,
    PrintableString = 19,
    TeletexString = 20,
    IA5String = 22,
    UniversalString = 28,
    BMPString = 30
};

/// @return octets written, or a negative status
int encodeNarrow(ASN1CTXT* ctxt, const wchar_t* text, StringTag tag) {
    return xe_charstr(ctxt, tostring(text).c_str(), ASN1TagExplicit, tag);
}

int encodeBMP(ASN1CTXT* ctxt, const wchar_t* text) {
    const std::size_t length = std::wcslen(text);
    auto* units = static_cast<unsigned short*>(allocateBlock(ctxt, 2 * length));
    std::transform(text, text + length, units,
                   [](wchar_t character) { return static_cast<unsigned short>(character); });
    Asn116BitCharString string{static_cast<unsigned>(length), units};
    return xe_16BitCharStr(ctxt, &string, ASN1TagExplicit, BMPString);
}

int encodeUniversal(ASN1CTXT* ctxt, const wchar_t* text) {
    Asn132BitCharString string{};
    if (rtWCSToUCSString(ctxt, text, &string, nullptr) == nullptr) {
        ATL::AtlThrowImpl(CRYPT_E_ASN1_INTERNAL);
    }
    return xe_32BitCharStr(ctxt, &string, ASN1TagExplicit, UniversalString);
}

int encodeText(ASN1CTXT* ctxt, const wchar_t* text, StringType type) {
    switch (type) {
    case StringTypeUTF8:
        return xe_charstr(ctxt, encodeUTF8(ctxt, text, CRYPT_E_ASN1_INTERNAL), ASN1TagExplicit,
                          UTF8String);
    case StringTypePrintable:
        return encodeNarrow(ctxt, text, PrintableString);
    case StringTypeTeletex:
        return encodeNarrow(ctxt, text, TeletexString);
    case StringTypeIA5:
        return encodeNarrow(ctxt, text, IA5String);
    case StringTypeBMP:
        return encodeBMP(ctxt, text);
    case StringTypeUniversal:
        return encodeUniversal(ctxt, text);
    default:
        ATL::AtlThrowImpl(CRYPT_E_ASN1_INTERNAL);
    }
}

/// The content of a string with 8-bit characters, up to its first zero octet.
const char* decodeNarrow(ASN1CTXT* ctxt, ASN1TAG tag, int length) {
    char* text = nullptr;
    requireSuccess(xd_charstr(ctxt, &text, ASN1TagImplicit, tag, length));
    return text;
}

/// The content of a string with characters of another width, up to its first zero character, which
/// would hide what follows it in the text of a name.
template <class String, int (*Decode)(ASN1CTXT*, String*, ASN1TagType, ASN1TAG, int) noexcept>
std::wstring decodeWide(ASN1CTXT* ctxt, ASN1TAG tag, int length) {
    String string{};
    requireSuccess(Decode(ctxt, &string, ASN1TagImplicit, tag, length));
    const auto end = std::find(string.data, string.data + string.nchars, 0u);
    std::wstring text;
    text.reserve(static_cast<std::size_t>(end - string.data));
    // What is above U+FFFF has no place in names and is left out, as rtUCSToWCSString does.
    std::copy_if(string.data, end, std::back_inserter(text),
                 [](unsigned character) { return character < 0x10000; });
    return text;
}

} // namespace

CWStringProxy decodeCharString(const CBlob& encoded) {
    // The decoder counts in 32 bits, and takes a size below 1 for an unknown one.
    if (encoded.cbData() == 0 || encoded.cbData() > 0x7FFFFFFFul) {
        ATL::AtlThrowImpl(CRYPT_E_ASN1_INTERNAL);
    }
    ScopedContext context;
    ASN1CTXT* ctxt = context.get();
    requireSuccess(
        xd_setp(ctxt, encoded.pbData(), static_cast<int>(encoded.cbData()), nullptr, nullptr));
    ASN1TAG tag = 0;
    int length = 0;
    requireSuccess(xd_tag_len(ctxt, &tag, &length, ASN1MatchAdvance));
    switch (tag) {
    case UTF8String:
        return decodeUTF8(decodeNarrow(ctxt, tag, length), CRYPT_E_ASN1_INTERNAL);
    case NumericString:
    case PrintableString:
    case TeletexString:
    case IA5String:
        return towstring(decodeNarrow(ctxt, tag, length));
    case UniversalString:
        return decodeWide<Asn132BitCharString, xd_32BitCharStr>(ctxt, tag, length);
    case BMPString:
        return decodeWide<Asn116BitCharString, xd_16BitCharStr>(ctxt, tag, length);
    default:
        ATL::AtlThrowImpl(CRYPT_E_ASN1_INTERNAL);
    }
}

CBlob encodeCharString(const wchar_t* text, StringType type) {
    ScopedContext context;
    requireSuccess(xe_setp(context.get(), nullptr, 0));
    const int length = encodeText(context.get(), text != nullptr ? text : L"", type);
    if (length < 0) {
        ATL::AtlThrowImpl(CRYPT_E_ASN1_INTERNAL);
    }
    return CBlob(xe_getp(context.get()), static_cast<unsigned long>(length));
}

} // namespace Brevantis::ASN1
