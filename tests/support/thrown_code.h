#ifndef TESTS_SUPPORT_THROWN_CODE_H
#define TESTS_SUPPORT_THROWN_CODE_H

#include <string>
#include <utility>

#include <brevantis/support/error.h>

namespace tests {

/// Runs an operation of a value class.
/// @return the code of the ATL::CAtlException that it throws, 0 when it throws none
template <class Operation>
int thrownCode(Operation operation) {
    try {
        operation();
    } catch (const ATL::CAtlException& error) {
        return error.m_hr;
    }
    return 0;
}

/// The name of the code that an operation throws, as data files tell it; "ok" when it throws none.
template <class Operation>
std::string thrownName(Operation operation) {
    const int code = thrownCode(operation);
    const std::pair<int, const char*> names[] = {
        {0, "ok"},
        {E_INVALIDARG, "E_INVALIDARG"},
        {CRYPT_E_ASN1_INTERNAL, "CRYPT_E_ASN1_INTERNAL"},
        {CRYPT_E_ASN1_UTF8, "CRYPT_E_ASN1_UTF8"},
        {static_cast<int>(0x8007007Au), "ERROR_INSUFFICIENT_BUFFER"},
    };
    for (const auto& [known, name] : names) {
        if (code == known) {
            return name;
        }
    }
    return std::to_string(code);
}

} // namespace tests

#endif
