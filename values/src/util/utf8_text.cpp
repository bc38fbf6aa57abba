#include "util/utf8_text.h"

#include <cwchar>

#include <brevantis/asn1/runtime/utf8.h>
#include <brevantis/asn1/values/util/private_buffer.h>

namespace Brevantis::ASN1 {

const char* encodeUTF8(ASN1CTXT* ctxt, const wchar_t* text, int failure) {
    std::size_t size = 1;
    const std::size_t length = std::wcslen(text);
    for (std::size_t i = 0; i < length; ++i) {
        size += rtUTF8CharSize(static_cast<unsigned>(text[i]));
    }
    auto* encoded = static_cast<char*>(allocateBlock(ctxt, size));
    if (rtWCSToUTF8(ctxt, text, length + 1, encoded, size) < 0) {
        ATL::AtlThrowImpl(failure);
    }
    return encoded;
}

std::wstring decodeUTF8(const char* text, int failure) {
    if (text == nullptr) {
        return {};
    }
    const int length = rtUTF8Len(text);
    if (length < 0) {
        ATL::AtlThrowImpl(failure);
    }
    std::wstring decoded(static_cast<std::size_t>(length), L'\0');
    if (rtUTF8ToWCS(nullptr, text, decoded.data(), decoded.size()) < 0) {
        ATL::AtlThrowImpl(failure);
    }
    // C0 80 is a zero, which ends a text as it would in one octet.
    decoded.resize(std::wcslen(decoded.c_str()));
    return decoded;
}

} // namespace Brevantis::ASN1
