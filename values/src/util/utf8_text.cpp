#include "util/utf8_text.h"

#include <cstring>
#include <cwchar>

#include <brevantis/asn1/runtime/utf8.h>
#include <brevantis/asn1/values/util/private_buffer.h>

namespace Brevantis::ASN1 {

namespace {

/// Whether a text breaks off within its last character, which the conversion would let pass.
bool isCutOff(const char* text) {
    const std::size_t size = std::strlen(text);
    std::size_t following = 0;
    unsigned octet = 0;
    while (following < size) {
        octet = static_cast<unsigned char>(text[size - 1 - following]);
        if ((octet & 0xC0u) != 0x80u) {
            break;
        }
        ++following;
    }
    std::size_t announced = 0;
    for (unsigned bit = 0x40; octet >= 0xC0u && (octet & bit) != 0; bit >>= 1) {
        ++announced;
    }
    return following < announced;
}

} // namespace

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
    if (length < 0 || isCutOff(text)) {
        ATL::AtlThrowImpl(failure);
    }
    std::wstring decoded(static_cast<std::size_t>(length), L'\0');
    if (rtUTF8ToWCS(nullptr, text, decoded.data(), decoded.size()) < 0) {
        ATL::AtlThrowImpl(failure);
    }
    return decoded;
}

} // namespace Brevantis::ASN1
