#include <brevantis/support/error.h>

#include <brevantis/support/code_page.h>

namespace ATL {

const char* CAtlException::what() const noexcept {
    switch (m_hr) {
    case CRYPT_E_ASN1_INTERNAL:
        return "CRYPT_E_ASN1_INTERNAL";
    case CRYPT_E_ASN1_MEMORY:
        return "CRYPT_E_ASN1_MEMORY";
    case CRYPT_E_ASN1_UTF8:
        return "CRYPT_E_ASN1_UTF8";
    case E_INVALIDARG:
        return "E_INVALIDARG";
    case E_OUTOFMEMORY:
        return "E_OUTOFMEMORY";
    default:
        return "platform error";
    }
}

void AtlThrowImpl(int code) {
    throw CAtlException(code);
}

void AtlThrowLastWin32() {
    const auto error = static_cast<unsigned>(GetLastError());
    const bool isResultCode = static_cast<int>(error) <= 0;
    AtlThrowImpl(static_cast<int>(isResultCode ? error : (error & 0xFFFF) | 0x80070000));
}

} // namespace ATL
