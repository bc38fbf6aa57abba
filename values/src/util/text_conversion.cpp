#include <brevantis/asn1/values/util/text_conversion.h>

#include <cstring>
#include <cwchar>
#include <sstream>
#include <vector>

#include <brevantis/support/code_page.h>
#include <brevantis/support/error.h>

namespace Brevantis::ASN1 {

std::string tostring(const wchar_t* text) {
    text = text != nullptr ? text : L"";
    // One octet a character and no more, so that text of wider characters is refused.
    std::vector<char> narrow(std::wcslen(text) + 1);
    if (WideCharToMultiByte(0, 0, text, -1, narrow.data(), static_cast<int>(narrow.size()), nullptr,
                            nullptr) == 0) {
        ATL::AtlThrowLastWin32();
    }
    return narrow.data();
}

std::string tostring(const unsigned short* text) {
    return tostring(static_cast<const wchar_t*>(static_cast<const void*>(text)));
}

std::string tostring(int number) {
    std::ostringstream stream;
    stream << number;
    return stream.str();
}

std::wstring towstring(const char* text) {
    text = text != nullptr ? text : "";
    std::vector<wchar_t> wide(std::strlen(text) + 1);
    if (MultiByteToWideChar(0, 0, text, -1, wide.data(), static_cast<int>(wide.size())) == 0) {
        ATL::AtlThrowLastWin32();
    }
    return wide.data();
}

std::wstring towstring(int number) {
    return towstring(tostring(number).c_str());
}

} // namespace Brevantis::ASN1
