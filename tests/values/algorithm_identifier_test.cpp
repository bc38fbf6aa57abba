#include <string>
#include <utility>

#include <gtest/gtest.h>

#include <brevantis/asn1/values/types/algorithm_identifier.h>
#include <brevantis/asn1/values/types/algorithm_identifier_traits.h>
#include <brevantis/asn1/values/util/context_handle.h>

#include "support/blob.h"
#include "support/thrown_code.h"

using namespace Brevantis;
using namespace Brevantis::ASN1;
using tests::blob;
using tests::thrownCode;

namespace {

constexpr const char* sha256 = "2.16.840.1.101.3.4.2.1";
constexpr const char* ecPublicKey = "1.2.840.10045.2.1";

CAlgorithmIdentifier algorithm(const char* identifier, const char* parameters) {
    CAlgorithmIdentifier value(identifier);
    value.put_parameters(blob(parameters));
    return value;
}

TEST(AlgorithmIdentifier, IsNotWrittenWhenItsParametersDoNotFit) {
    const std::pair<const char*, const char*> refused[] = {
        {"1.2.3", "FF"}, // no element at all
        {ecPublicKey, "06"}, {"1.2.840.113549.1.1.1", "020100"},
        {"1.2.x", ""},       {"", ""},
        {nullptr, ""},       {"9.2.3", ""},
    };
    for (const auto& [identifier, parameters] : refused) {
        const CAlgorithmIdentifier value = algorithm(identifier, parameters);
        EXPECT_EQ(thrownCode([&] { value.encode(); }), CRYPT_E_ASN1_INTERNAL)
            << value.get_algorithm() << " " << parameters;
    }
    ScopedContext context;
    EXPECT_EQ(thrownCode([&] { ASN1T_AlgorithmIdentifier_set(context.get(), nullptr, nullptr); }),
              CRYPT_E_ASN1_INTERNAL);
}

TEST(AlgorithmIdentifier, ComparesTextAndOctets) {
    EXPECT_TRUE(CAlgorithmIdentifier() == algorithm("", ""));
    EXPECT_TRUE(algorithm(sha256, "") == CAlgorithmIdentifier(sha256));
    EXPECT_TRUE(algorithm(sha256, "0500") != algorithm(sha256, "")) << "NULL is not absence";
    EXPECT_TRUE(algorithm(sha256, "") != algorithm(ecPublicKey, ""));
    EXPECT_TRUE(algorithm("1.2.3", "") != algorithm(" 1.2.3", "")) << "texts, not identifiers";
}

TEST(AlgorithmIdentifier, IsExchanged) {
    CAlgorithmIdentifier first = algorithm(sha256, "0500");
    CAlgorithmIdentifier second(ecPublicKey);
    first.swap(second);
    EXPECT_TRUE(first == CAlgorithmIdentifier(ecPublicKey));
    EXPECT_TRUE(second == algorithm(sha256, "0500"));
    first.assign(second);
    EXPECT_TRUE(first == second);
}

TEST(AlgorithmIdentifier, IsReadThroughItsVirtualFunction) {
    struct Watched : CAlgorithmIdentifier {
        void put_algorithm(const char* text) override {
            seen = text;
            CAlgorithmIdentifier::put_algorithm(text);
        }
        std::string seen;
    };
    ScopedContext context;
    const CBlob null = blob("0500");
    Watched value;
    for (const CBlob* parameters : {&null, static_cast<const CBlob*>(nullptr)}) {
        const auto* record = ASN1T_AlgorithmIdentifier_set(context.get(), sha256, parameters);
        EXPECT_EQ(record->m.parametersPresent, parameters != nullptr ? 1u : 0u);
        value.seen.clear();
        ASN1T_AlgorithmIdentifier_get(value, *record);
        EXPECT_EQ(value.seen, sha256);
        EXPECT_EQ(value.get_parameters(), parameters != nullptr ? null : CBlob());
    }
}

} // namespace
