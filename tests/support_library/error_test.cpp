#include <gtest/gtest.h>

#include <brevantis/support/code_page.h>
#include <brevantis/support/error.h>

namespace {

TEST(Error, throwsThePlatformsErrorAsAResultCode) {
    struct Row {
        unsigned long error;
        unsigned code;
        const char* name;
    };
    const Row rows[] = {
        {0x80093101, 0x80093101, "CRYPT_E_ASN1_INTERNAL"},
        {0x80093106, 0x80093106, "CRYPT_E_ASN1_MEMORY"},
        {0x8009310E, 0x8009310E, "CRYPT_E_ASN1_UTF8"},
        {ERROR_INVALID_PARAMETER, 0x80070057, "E_INVALIDARG"},
        {14, 0x8007000E, "E_OUTOFMEMORY"},
        {0x7FFFFFFF, 0x8007FFFF, "platform error"}, // the low 16 bits alone
        {0x80004005, 0x80004005, "platform error"},
        {0, 0, "platform error"},
    };
    for (const Row& row : rows) {
        SetLastError(row.error);
        try {
            ATL::AtlThrowLastWin32();
        } catch (const std::exception& exception) {
            const auto& thrown = dynamic_cast<const ATL::CAtlException&>(exception);
            EXPECT_EQ(static_cast<unsigned>(thrown.m_hr), row.code) << row.error;
            EXPECT_EQ(thrown.status(), thrown.m_hr);
            EXPECT_STREQ(exception.what(), row.name);
        }
    }
}

} // namespace
