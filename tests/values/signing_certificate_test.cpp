#include <string>
#include <type_traits>
#include <utility>

#include <gtest/gtest.h>

#include <brevantis/asn1/values/attribute/signing_certificate.h>

#include "support/blob.h"
#include "support/failing_allocations.h"
#include "support/thrown_code.h"

using namespace Brevantis;
using namespace Brevantis::ASN1;
using tests::blob;
using tests::thrownCode;

namespace {

// One certificate with the hash AA BB, which all three classes write in the same octets, and the
// policy 1.2.3.
constexpr const char* bare = "3008 3006 30040402AABB";
constexpr const char* withPolicy = "3010 3006 30040402AABB 3006 300406022A03";

const CPolicyInformationList policy{CPolicyInformation("1.2.3")};
const CPolicyInformationList otherPolicy{CPolicyInformation("1.2.4")};
const CPolicyInformationList noIdentifier{CPolicyInformation("policy")};

/// The class that encodes when policies are put; the other two only store them.
template <class Attribute>
constexpr bool policiesEncode = std::is_same_v<Attribute, CAttrOtherSigningCertificate>;

template <class Attribute>
using CertificatesOf =
    std::remove_cv_t<std::remove_reference_t<decltype(std::declval<Attribute>().get_certs())>>;

template <class Attribute>
CertificatesOf<Attribute> certificates(const char* hash = "AABB") {
    return {typename CertificatesOf<Attribute>::value_type(blob(hash))};
}

template <class Attribute>
std::string policiesOf(const Attribute& value) {
    if (value.get_policies() == nullptr) {
        return "absent";
    }
    std::string text;
    for (const CPolicyInformation& each : *value.get_policies()) {
        text += each.get_policyIdentifier();
    }
    return text;
}

template <class Attribute>
class SigningCertificate : public testing::Test {};

using Attributes = testing::Types<CAttrSigningCertificate, CAttrSigningCertificateV2,
                                  CAttrOtherSigningCertificate>;
TYPED_TEST_SUITE(SigningCertificate, Attributes, );

TYPED_TEST(SigningCertificate, StartsWithoutAValue) {
    TypeParam value;
    EXPECT_EQ(value.get_value(), CBlob());
    EXPECT_TRUE(value.get_certs().empty());
    EXPECT_EQ(value.get_policies(), nullptr);
    value.encode();
    EXPECT_EQ(value.get_value(), blob("30023000"));
}

TYPED_TEST(SigningCertificate, EncodesCertificatesAtOnceAndPoliciesByItsClass) {
    using Attribute = TypeParam;
    Attribute value(certificates<Attribute>());
    EXPECT_EQ(value.get_value(), blob(bare));
    value.put_policies(&policy);
    EXPECT_EQ(value.get_value(), blob(policiesEncode<Attribute> ? withPolicy : bare));
    value.encode();
    EXPECT_EQ(value.get_value(), blob(withPolicy));

    value.put_policies(value.get_policies());
    value.put_certs(value.get_certs());
    EXPECT_EQ(value.get_value(), blob(withPolicy));
    value.put_certs({});
    EXPECT_EQ(value.get_value(), blob("300A 3000 3006 300406022A03"));

    value.put_policies(nullptr);
    EXPECT_EQ(value.get_policies(), nullptr);
    const CPolicyInformationList none;
    value.put_policies(&none);
    EXPECT_EQ(policiesOf(value), "");
    value.put_certs(certificates<Attribute>());
    EXPECT_EQ(value.get_value(), blob(bare)) << "no policies are written as absent";
}

TYPED_TEST(SigningCertificate, DecodesIntoTheFieldsAndWritesTheValueAnewOnTheWay) {
    using Attribute = TypeParam;
    Attribute value(blob(withPolicy));
    EXPECT_TRUE(value.get_certs().front() == certificates<Attribute>().front());
    EXPECT_EQ(policiesOf(value), "1.2.3");
    EXPECT_EQ(value.get_value(), blob(policiesEncode<Attribute> ? withPolicy : bare));
    value.encode();
    EXPECT_EQ(value.get_value(), blob(withPolicy));

    // The policies of before are written where putting the new ones does not encode.
    value.put_policies(&otherPolicy);
    value.value() = blob(withPolicy);
    value.decode();
    EXPECT_EQ(policiesOf(value), "1.2.3");
    EXPECT_EQ(
        value.get_value(),
        blob(policiesEncode<Attribute> ? withPolicy : "3010 3006 30040402AABB 3006 300406022A04"));

    value.value() = blob(std::string(bare) + "FFFF");
    value.decode();
    EXPECT_EQ(value.get_policies(), nullptr);

    const Attribute qualified(blob("301E 3006 30040402AABB 3014 3012 06022A03"
                                   "300C 300A 06022A05 0C04 74657874"));
    EXPECT_EQ(policiesOf(qualified), "1.2.3");
}

TYPED_TEST(SigningCertificate, StaysAsItWasWhenSomethingIsRefused) {
    using Attribute = TypeParam;
    const std::pair<const char*, int> refused[] = {
        {"", CRYPT_E_ASN1_INTERNAL},
        {"3000", CRYPT_E_ASN1_INTERNAL},
        {"3008 3006 30040402AA", CRYPT_E_ASN1_INTERNAL},
        {"3010 3006 30040402AABB 3006 300404022A03", CRYPT_E_ASN1_INTERNAL},
        // An issuer by an x400Address.
        {"3013 3011 300F 0402AABB 3009 3004A3023000 020101", E_INVALIDARG},
    };
    Attribute value(blob(withPolicy));
    for (const auto& [encoded, code] : refused) {
        EXPECT_EQ(thrownCode([from = blob(encoded)] { Attribute{from}; }), code) << encoded;
        value.value() = blob(encoded);
        EXPECT_EQ(thrownCode([&] { value.decode(); }), code) << encoded;
        EXPECT_EQ(value.get_value(), blob(encoded));
        EXPECT_EQ(value.get_certs().size(), 1u);
        EXPECT_EQ(policiesOf(value), "1.2.3");
    }

    value.encode();
    if constexpr (policiesEncode<Attribute>) {
        EXPECT_EQ(thrownCode([&] { value.put_policies(&noIdentifier); }), E_INVALIDARG);
        EXPECT_EQ(policiesOf(value), "1.2.3");
    } else {
        value.put_policies(&noIdentifier);
        EXPECT_EQ(thrownCode([&] { value.encode(); }), E_INVALIDARG);
        EXPECT_EQ(thrownCode([&] { value.put_certs({}); }), E_INVALIDARG);
    }
    EXPECT_EQ(value.get_certs().size(), 1u);
    EXPECT_EQ(value.get_value(), blob(withPolicy));
}

TYPED_TEST(SigningCertificate, StaysInStepWhenMemoryIsOut) {
    using Attribute = TypeParam;
    const auto others = certificates<Attribute>("CCDD");
    const CBlob encoded = blob(withPolicy);
    bool unchanged = true;
    EXPECT_GT(tests::failEveryAllocation([&] {
                  Attribute value(encoded);
                  const std::size_t size = value.get_value().cbData();
                  try {
                      value.put_certs(others);
                  } catch (...) {
                      unchanged = unchanged && value.get_value().cbData() == size &&
                                  value.get_certs().front() == certificates<Attribute>().front();
                      throw;
                  }
                  value.put_policies(&otherPolicy);
                  value.encode();
              }),
              20);
    EXPECT_TRUE(unchanged);
}

TEST(SigningCertificateIdentifiers, AreThoseOfTheClasses) {
    EXPECT_STREQ(CAttrSigningCertificate().get_oid(), "1.2.840.113549.1.9.16.2.12");
    EXPECT_STREQ(CAttrSigningCertificateV2().get_oid(), "1.2.840.113549.1.9.16.2.47");
    EXPECT_STREQ(CAttrOtherSigningCertificate().get_oid(), "1.2.840.113549.1.9.16.2.19");
}

} // namespace
