#include <brevantis/asn1/values/util/text_conversion.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <cwchar>

#include <brevantis/support/code_page.h>
#include <brevantis/support/error.h>

#include "util/wide_text.h"

namespace Brevantis::ASN1 {

namespace {

bool isASCII(std::string_view text) {
    std::uint64_t all = 0;
    for (; text.length() >= sizeof all; text.remove_prefix(sizeof all)) {
        std::uint64_t octets = 0;
        std::memcpy(&octets, text.data(), sizeof octets);
        all |= octets;
    }
    unsigned rest = 0;
    for (const char character : text) {
        rest |= static_cast<unsigned char>(character);
    }
    return ((all | rest) & 0x8080808080808080u) == 0;
}

} // namespace

bool appendASCII(std::wstring& text, std::string_view narrow) {
    if (!isASCII(narrow)) {
        return false;
    }
    const std::size_t length = text.length();
    text.resize(length + narrow.length());
    std::copy(narrow.begin(), narrow.end(), text.begin() + static_cast<std::ptrdiff_t>(length));
    return true;
}

void appendWide(std::wstring& text, std::string_view narrow) {
    if (appendASCII(text, narrow)) {
        return;
    }
    const std::size_t length = text.length();
    text.resize(length + narrow.length());
    const int room = static_cast<int>(narrow.length());
    const int count = MultiByteToWideChar(0, 0, narrow.data(), room, text.data() + length, room);
    if (count == 0) {
        ATL::AtlThrowLastWin32();
    }
    text.resize(length + static_cast<std::size_t>(count));
}

std::string tostring(const wchar_t* text) {
    const std::size_t length = text != nullptr ? std::wcslen(text) : 0;
    if (length == 0) {
        return {};
    }
    // One octet a character and no more, so that text of wider characters is refused.
    std::string narrow(length, '\0');
    const int size = static_cast<int>(length);
    if (WideCharToMultiByte(0, 0, text, size, narrow.data(), size, nullptr, nullptr) == 0) {
        ATL::AtlThrowLastWin32();
    }
    return narrow;
}

std::string tostring(const unsigned short* text) {
    return tostring(static_cast<const wchar_t*>(static_cast<const void*>(text)));
}

std::string tostring(int number) {
    return std::to_string(number);
}

std::wstring towstring(const char* text) {
    const std::string_view narrow(text != nullptr ? text : "");
    if (isASCII(narrow)) {
        return std::wstring(narrow.begin(), narrow.end());
    }
    std::wstring wide;
    appendWide(wide, narrow);
    return wide;
}

std::wstring towstring(int number) {
    return std::to_wstring(number);
}

} // namespace Brevantis::ASN1
