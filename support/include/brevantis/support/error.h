#ifndef BREVANTIS_SUPPORT_ERROR_H
#define BREVANTIS_SUPPORT_ERROR_H

#include <exception>

#include <brevantis/asn1/export.h>

/// @file
/// The one exception of the value classes, and its result codes.

/// A coder refused a value or a message, or a text has no meaning in the place where it stands.
constexpr int CRYPT_E_ASN1_INTERNAL = static_cast<int>(0x80093101u);
/// A context, or a block of its heap, could not be had.
constexpr int CRYPT_E_ASN1_MEMORY = static_cast<int>(0x80093106u);
/// A text is not UTF-8.
constexpr int CRYPT_E_ASN1_UTF8 = static_cast<int>(0x8009310Eu);
/// An argument is outside its domain.
constexpr int E_INVALIDARG = static_cast<int>(0x80070057u);
/// Memory is out.
constexpr int E_OUTOFMEMORY = static_cast<int>(0x8007000Eu);

namespace ATL {

/// A failure as one result code.
class BREVANTIS_ASN1_API CAtlException : public std::exception {
public:
    /// @param code the result code, kept as it is
    explicit CAtlException(int code) noexcept : m_hr(code) {}

    /// The result code, m_hr.
    int status() const noexcept { return m_hr; }

    /// The name of the result code, such as "E_INVALIDARG"; "platform error" for a code without a
    /// name here. The text is constant and outlives the exception.
    const char* what() const noexcept override;

    int m_hr; ///< the result code
};

/// Throws a CAtlException.
/// @param code its result code
[[noreturn]] BREVANTIS_ASN1_API void AtlThrowImpl(int code);

/// Throws a CAtlException for the last platform error of the calling thread, GetLastError(). As a
/// signed 32-bit number of 0 or less it is the result code itself, so that no error at all throws
/// the code 0; otherwise the code is 0x80070000 with the low 16 bits of the error.
[[noreturn]] BREVANTIS_ASN1_API void AtlThrowLastWin32();

} // namespace ATL

#endif
