#include <initializer_list>
#include <iterator>
#include <string>
#include <type_traits>
#include <utility>

#include <gtest/gtest.h>

#include <brevantis/asn1/values/attribute/attribute.h>
#include <brevantis/asn1/values/attribute/signed_attributes.h>
#include <brevantis/asn1/values/attribute/signing_certificate.h>
#include <brevantis/asn1/values/types/name.h>
#include <brevantis/asn1/values/util/text_conversion.h>

#include "support/blob.h"
#include "support/data_file.h"
#include "support/mutation.h"
#include "support/thrown_code.h"

using namespace Brevantis;
using namespace Brevantis::ASN1;
using tests::blob;
using tests::thrownCode;

namespace {

constexpr const char* contentType = "1.2.840.113549.1.9.3";
constexpr const char* messageDigest = "1.2.840.113549.1.9.4";
constexpr const char* signingTime = "1.2.840.113549.1.9.5";
constexpr const char* signingCertificate = "1.2.840.113549.1.9.16.2.12";
constexpr const char* signingCertificateV2 = "1.2.840.113549.1.9.16.2.47";
constexpr const char* unknown = "1.2.3";

CAttribute attribute(const char* oid, std::initializer_list<const char*> values) {
    CAttribute result(oid);
    for (const char* value : values) {
        result.add(blob(value));
    }
    return result;
}

std::string valuesOf(const CAttribute& attribute) {
    std::string text;
    for (const CAttrValue& value : attribute) {
        text += std::string(value.get_oid()) + "=" + value.get_value().writeToHexString(0).c_str() +
                " ";
    }
    return text;
}

TEST(Attribute, IsNotEncodedWithWhatCannotStandInIt) {
    const std::pair<CAttribute, int> rows[] = {
        {attribute(contentType, {"0500"}), CRYPT_E_ASN1_INTERNAL},
        {attribute(contentType, {"06012A", "0500"}), CRYPT_E_ASN1_INTERNAL},
        {attribute(unknown, {}), CRYPT_E_ASN1_INTERNAL},
        {attribute("", {"0500"}), E_INVALIDARG},
        {attribute("type", {"0500"}), E_INVALIDARG},
    };
    for (const auto& [refused, code] : rows) {
        EXPECT_EQ(thrownCode([&, &value = refused] { value.encode(); }), code)
            << refused.get_oid() << ": " << valuesOf(refused);
    }
}

TEST(Attribute, HoldsValuesOfAnyIdentifierAndWritesItsOwn) {
    CAttribute mixed(unknown);
    mixed.add(CAttrValue("2.9.9", blob("0500")));
    mixed.add(mixed.begin()->get_value());
    mixed.add(*mixed.begin());
    EXPECT_EQ(valuesOf(mixed), "2.9.9=0500 1.2.3=0500 2.9.9=0500 ");
    mixed.erase(std::next(mixed.begin()));
    EXPECT_EQ(valuesOf(mixed), "2.9.9=0500 2.9.9=0500 ");

    CAttribute read;
    read.decode(mixed.encode());
    EXPECT_EQ(valuesOf(read), "1.2.3=0500 1.2.3=0500 ");
}

TEST(Attribute, IsMadeOfAValue) {
    const CAttribute one(CAttrContentType("1.2.3"));
    EXPECT_STREQ(one.get_oid(), contentType);
    EXPECT_EQ(valuesOf(one), "1.2.840.113549.1.9.3=06022a03 ");
    EXPECT_FALSE((std::is_convertible_v<CAttrValue, CAttribute>)) << "only when told";
}

TEST(Attribute, OwnsItsValuesFromTheStart) {
    CAttribute value;
    const CAttribute other;
    const CAttribute::const_iterator end = std::as_const(value).end();
    EXPECT_FALSE(end == other.end());
    value.add(blob("0500"));
    EXPECT_TRUE(std::next(std::as_const(value).begin()) == end) << "taken before there was a value";
}

TEST(Attribute, CopiesAreDeepAndMovesLeaveANewOne) {
    const CAttribute original = attribute(unknown, {"0500"});
    CAttribute copy(original);
    copy.begin()->value() = blob("0101FF");
    copy.add(blob("020101"));
    EXPECT_EQ(valuesOf(original), "1.2.3=0500 ");

    CAttribute moved(std::move(copy));
    EXPECT_EQ(valuesOf(moved), "1.2.3=0101ff 1.2.3=020101 ");
    // NOLINTNEXTLINE(bugprone-use-after-move,clang-analyzer-cplusplus.Move): it is as new
    EXPECT_STREQ(copy.get_oid(), "");
    EXPECT_EQ(std::as_const(copy).size(), 0u);
    EXPECT_TRUE(std::as_const(copy).begin() == std::as_const(copy).end());
    EXPECT_TRUE(copy.begin() == copy.end());
    copy = original;
    EXPECT_EQ(valuesOf(copy), "1.2.3=0500 ");
    EXPECT_STREQ(CAttribute(nullptr).get_oid(), "");
}

TEST(Attributes, AreFoundAndErasedByIdentifier) {
    CAttributes attributes{attribute(unknown, {"0500"}), attribute("1.2.4", {"0500"}),
                           attribute(unknown, {"020101"})};
    EXPECT_TRUE(attributes.find(unknown) == attributes.begin());
    EXPECT_TRUE(std::as_const(attributes).find("1.2.4") == std::next(attributes.cbegin()));
    EXPECT_TRUE(attributes.find("1.2") == attributes.end());
    EXPECT_TRUE(attributes.find(nullptr) == attributes.end());
    EXPECT_EQ(thrownCode([] { CAttributes().encode(); }), CRYPT_E_ASN1_INTERNAL) << "none at all";

    attributes.erase(unknown);
    ASSERT_EQ(attributes.size(), 2u);
    EXPECT_EQ(valuesOf(*attributes.find(unknown)), "1.2.3=020101 ");
    attributes.erase("1.2.5");
    EXPECT_EQ(attributes.size(), 2u);
}

/// The typed value of the one value of an attribute.
template <class Value>
Value typed(const CAttributes& attributes, const char* oid) {
    return Value(attributes.find(oid)->begin()->get_value());
}

/// What the typed classes write is what they read.
template <class Value>
void expectSameAgain(const CAttributes& attributes, const char* oid) {
    Value value(attributes.find(oid)->begin()->get_value());
    value.encode();
    EXPECT_TRUE(value == *attributes.find(oid)->begin()) << oid;
}

TEST(Attributes, OfRealMessagesAreRead) {
    for (const tests::DataRow& row : tests::dataRows("signed_attributes.txt", "messages")) {
        SCOPED_TRACE(row["made by"]);
        const CBlob message = blob(row["attributes"]);
        CAttributes attributes;
        attributes.decode(message);
        EXPECT_EQ(attributes.encode(), message);

        EXPECT_EQ(typed<CAttrContentType>(attributes, contentType).get_contentType(),
                  row["content type"]);
        EXPECT_EQ(typed<CAttrMessageDigest>(attributes, messageDigest).get_messageDigest(),
                  blob(row["digest"]));
        EXPECT_EQ(typed<CAttrSigningTime>(attributes, signingTime).get_time(),
                  CDateTime(2026, 11, 21, 14, 4, 53));
        expectSameAgain<CAttrContentType>(attributes, contentType);
        expectSameAgain<CAttrMessageDigest>(attributes, messageDigest);
        expectSameAgain<CAttrSigningTime>(attributes, signingTime);

        const bool first = row["algorithm"] == "SHA-1";
        EXPECT_EQ(attributes.find(signingCertificate) != attributes.end(), first);
        EXPECT_EQ(attributes.find(signingCertificateV2) != attributes.end(),
                  !first && row["algorithm"] != "none");
        if (first) {
            const CAttrSigningCertificate value(
                attributes.find(signingCertificate)->begin()->get_value());
            EXPECT_EQ(value.get_certs().front().get_certHash(), blob(row["hash"]));
            expectSameAgain<CAttrSigningCertificate>(attributes, signingCertificate);
        } else if (row["algorithm"] != "none") {
            const CAttrSigningCertificateV2 value(
                attributes.find(signingCertificateV2)->begin()->get_value());
            const CESSCertIDv2& signer = value.get_certs().front();
            EXPECT_EQ(signer.get_certHash(), blob(row["hash"]));
            EXPECT_EQ(signer.get_hashAlgorithm().get_algorithm(), row["algorithm"]);
            EXPECT_EQ(signer.get_issuerSerial() != nullptr, row["issuer"] != "none");
            if (signer.get_issuerSerial() != nullptr) {
                CName issuer;
                issuer.decode(*signer.get_issuerSerial()->get_issuer().front().get_directoryName());
                EXPECT_EQ(issuer.toString(), towstring(row["issuer"].c_str()));
                EXPECT_EQ(signer.get_issuerSerial()->get_serialNumber(), blob("0102"));
            }
            expectSameAgain<CAttrSigningCertificateV2>(attributes, signingCertificateV2);
        }
    }
}

TEST(Attributes, WithDamageAreReadOrRefused) {
    const std::string cades = tests::dataRows("signed_attributes.txt", "messages")[3]["attributes"];
    std::size_t read = 0;
    std::size_t refused = 0;
    tests::forEachMutation(tests::fromHex(cades), [&](const tests::Octets& message) {
        CAttributes attributes;
        const int code = thrownCode([&] {
            attributes.decode(CBlob(message.data(), message.size()));
            attributes.encode();
            const auto signer = attributes.find(signingCertificateV2);
            if (signer != attributes.end()) {
                CAttrSigningCertificateV2{signer->begin()->get_value()};
            }
        });
        EXPECT_TRUE(code == 0 || code == CRYPT_E_ASN1_INTERNAL || code == E_INVALIDARG)
            << tests::toHex(message);
        ++(code == 0 ? read : refused);
    });
    EXPECT_GT(read, 100u);
    EXPECT_GT(refused, 100u);
}

} // namespace
