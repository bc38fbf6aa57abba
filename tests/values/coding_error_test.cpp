#include <string>

#include <brevantis/asn1/values.h>
#include <gtest/gtest.h>

#include "support/blob.h"
#include "support/hex.h"

// What value classes tell of a message that they refuse, and what they read under a policy.

namespace {

using namespace Brevantis::ASN1;
using Brevantis::CBlob;

CBlob blobOf(std::string_view hex) {
    const tests::Octets octets = tests::fromHex(hex);
    return CBlob(octets.data(), static_cast<unsigned long>(octets.size()));
}

/// The exception of an operation.
template <class Operation>
CCodingError errorOf(Operation operation) {
    try {
        operation();
    } catch (const CCodingError& error) {
        return error;
    }
    ADD_FAILURE() << "nothing is thrown";
    return CCodingError(0, {});
}

TEST(CodingError, TellsWhereAMessageFails) {
    CGeneralNames names;
    const CBlob message = blobOf("30 07 82 01 61 02 02 01 01");
    const CCodingError error = errorOf([&] { names.decode(message); });
    EXPECT_EQ(error.status(), CRYPT_E_ASN1_INTERNAL);
    EXPECT_STREQ(error.ATL::CAtlException::what(), "CRYPT_E_ASN1_INTERNAL");
    EXPECT_STREQ(error.path(), "[1]");
    EXPECT_EQ(error.offset(), 7u);
    EXPECT_STREQ(error.found(), "tag 02 (INTEGER)");
    EXPECT_EQ(error.failure().status, ASN1S_INVALID_CHOICE);
    const std::string text = error.what();
    EXPECT_EQ(text.substr(0, 30), "[1] at offset 7: expected one ");
    EXPECT_NE(text.find(error.expected()), std::string::npos);
    EXPECT_NE(text.find("found tag 02 (INTEGER) (ASN1S_INVALID_CHOICE)"), std::string::npos);
}

TEST(CodingError, TellsOfAMessageThatIsCutOff) {
    CGeneralNames names;
    const CCodingError error = errorOf([&] { names.decode(blobOf("30 0A 82 01 61")); });
    EXPECT_EQ(error.failure().status, ASN1S_INVALID_LENGTH);
    EXPECT_EQ(error.offset(), 5u);
    EXPECT_STREQ(error.found(), "end of message");
}

TEST(CodingError, TellsWhatCannotBeWritten) {
    CPolicyInformation policy;
    CName name;
    name.push_back(CRelativeDistinguishedName());
    const CCodingError error = errorOf([&] { name.encode(); });
    EXPECT_EQ(error.status(), CRYPT_E_ASN1_INTERNAL);
    EXPECT_STREQ(error.path(), "rdnSequence[0]");
    EXPECT_STREQ(error.found(), "a size of 0");
}

/// GeneralNames with a user's principal name between two hosts.
CBlob principalName() {
    return blobOf("30 1D 82 01 61"
                  "A0 15 06 0A 2B 06 01 04 01 82 37 14 02 03 A0 07 0C 05 75 40 63 2E 64"
                  "82 01 62");
}

TEST(ReadingValues, NamesOfOtherKindsKeepTheirOctets) {
    CGeneralNames names;
    EXPECT_THROW(names.decode(principalName()), ATL::CAtlException);
    names.clear();
    asn1Decode<ASN1T_GeneralNames_traits>(principalName(), names, ASN1F_TOLERATE_OPEN_VALUES);
    ASSERT_EQ(names.size(), 3u);
    const CGeneralName& other = *std::next(names.begin());
    EXPECT_EQ(other.get_type(), 1u);
    ASSERT_NE(other.get_otherName(), nullptr);
    EXPECT_EQ(other.get_otherName()->cbData(), 23u);
    EXPECT_EQ(std::wstring(names.back().get_dNSName()), L"b");
    EXPECT_EQ(names.encode(), principalName());
    CGeneralName wrong;
    wrong.put_otherName(blobOf("82 01 61"));
    EXPECT_THROW(wrong.encode(), ATL::CAtlException) << "a host is no otherName";
    names.decode(blobOf("30 03 82 01 61"));
    EXPECT_THROW(names.decode(principalName()), ATL::CAtlException) << "the policy has ended";
}

TEST(ReadingValues, PoliciesAndLimitsReachTheDecoder) {
    const CBlob hidden = blobOf("30 05 82 03 61 00 62");
    CGeneralNames names;
    names.decode(hidden);
    EXPECT_EQ(std::wstring(names.front().get_dNSName()), L"a");
    const auto read = [&](const asn1data::ReadingPolicy& policy) {
        return [&names, &hidden, policy] {
            asn1Decode<ASN1T_GeneralNames_traits>(hidden, names, policy);
        };
    };
    const CCodingError error = errorOf(read(ASN1F_EXACT));
    EXPECT_STREQ(error.path(), "[0].dNSName");
    EXPECT_STREQ(error.found(), "text with a zero octet inside");
    asn1data::ReadingPolicy small;
    small.octetLimit = 100;
    EXPECT_EQ(errorOf(read(small)).failure().status, ASN1S_NO_MEMORY);
    asn1data::ReadingPolicy few;
    few.elementLimit = 1;
    EXPECT_STREQ(errorOf(read(few)).expected(), "no more elements than the limit");
    few.elementLimit = 2;
    EXPECT_NO_THROW(read(few)());
}

} // namespace
