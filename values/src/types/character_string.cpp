#include <brevantis/asn1/values/types/character_string.h>

#include <algorithm>
#include <cwchar>
#include <iterator>
#include <string>
#include <string_view>

#include <brevantis/asn1/runtime/character_string.h>
#include <brevantis/asn1/runtime/header.h>
#include <brevantis/asn1/runtime/measure.h>
#include <brevantis/asn1/runtime/tag_length.h>
#include <brevantis/asn1/runtime/wide_text.h>
#include <brevantis/asn1/values/util/context_handle.h>
#include <brevantis/asn1/values/util/private_buffer.h>
#include <brevantis/asn1/values/util/text_conversion.h>

#include "types/name_text.h"
#include "util/utf8_text.h"
#include "util/wide_text.h"

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

/// A context that reads, and has a heap once a decoder takes a block.
class Reader {
public:
    Reader() noexcept { rtInitReader(&ctxt_, nullptr, 0); }
    ~Reader() { rtFreeContext(&ctxt_); }
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;

    ASN1CTXT* get() noexcept { return &ctxt_; }

private:
    ASN1CTXT ctxt_;
};

/// The content of a string with 8-bit characters where it stands, up to its first zero octet. Its
/// tag is one of a primitive form, so there are no segments.
std::string_view decodeNarrow(ASN1CTXT* ctxt, ASN1TAG tag, int length) {
    ASN1Extent extent{};
    requireSuccess(xd_measureText(ctxt, &extent, nullptr, ASN1TagImplicit, tag, length));
    const void* const octets = extent.data;
    const std::string_view text(static_cast<const char*>(octets), extent.count);
    return text.substr(0, text.find('\0'));
}

void appendUTF8(std::wstring& text, std::string_view encoded) {
    if (!appendASCII(text, encoded)) {
        text += decodeUTF8(std::string(encoded).c_str(), CRYPT_E_ASN1_INTERNAL);
    }
}

/// The content of a string with characters of another width, up to its first zero character, which
/// would hide what follows it in the text of a name.
template <class String, int (*Decode)(ASN1CTXT*, String*, ASN1TagType, ASN1TAG, int) noexcept>
void appendWideString(std::wstring& text, ASN1CTXT* ctxt, ASN1TAG tag, int length) {
    String string{};
    requireSuccess(Decode(ctxt, &string, ASN1TagImplicit, tag, length));
    const auto end = std::find(string.data, string.data + string.nchars, 0u);
    // What is above U+FFFF has no place in names and is left out, as rtUCSToWCSString does.
    std::copy_if(string.data, end, std::back_inserter(text),
                 [](unsigned character) { return character < 0x10000; });
}

} // namespace

void appendCharString(std::wstring& text, const CBlob& encoded) {
    // The decoder counts in 32 bits, and takes a size below 1 for an unknown one.
    if (encoded.cbData() == 0 || encoded.cbData() > 0x7FFFFFFFul) {
        ATL::AtlThrowImpl(CRYPT_E_ASN1_INTERNAL);
    }
    Reader reader;
    ASN1CTXT* ctxt = reader.get();
    requireSuccess(
        xd_setp(ctxt, encoded.pbData(), static_cast<int>(encoded.cbData()), nullptr, nullptr));
    ASN1TAG tag = 0;
    int length = 0;
    requireSuccess(xd_tag_len(ctxt, &tag, &length, ASN1MatchAdvance));
    switch (tag) {
    case UTF8String:
        appendUTF8(text, decodeNarrow(ctxt, tag, length));
        break;
    case NumericString:
    case PrintableString:
    case TeletexString:
    case IA5String:
        appendWide(text, decodeNarrow(ctxt, tag, length));
        break;
    case UniversalString:
        appendWideString<Asn132BitCharString, xd_32BitCharStr>(text, ctxt, tag, length);
        break;
    case BMPString:
        appendWideString<Asn116BitCharString, xd_16BitCharStr>(text, ctxt, tag, length);
        break;
    default:
        ATL::AtlThrowImpl(CRYPT_E_ASN1_INTERNAL);
    }
}

CWStringProxy decodeCharString(const CBlob& encoded) {
    std::wstring text;
    appendCharString(text, encoded);
    return text;
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
