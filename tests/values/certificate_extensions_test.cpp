#include <gtest/gtest.h>

#include <brevantis/asn1/values/cms/content_info.h>
#include <brevantis/asn1/values/cms/signed_data_builder.h>
#include <brevantis/asn1/values/extension/certificate_extensions.h>
#include <brevantis/support/error.h>

#include "support/blob.h"
#include "support/thrown_code.h"

using namespace Brevantis;
using namespace Brevantis::ASN1;
using tests::blob;
using tests::thrownCode;

namespace {

TEST(KeyUsage, IsTheBitStringOfItsFlags) {
    CKeyUsage usage(CKeyUsage::digitalSignature | CKeyUsage::keyCertSign | CKeyUsage::cRLSign);
    EXPECT_EQ(usage.encode(), blob("03020186"));
    usage.add_flag(CKeyUsage::decipherOnly);
    EXPECT_EQ(usage.encode(), blob("0303078680"));
    CKeyUsage read;
    read.decode(usage.encode());
    EXPECT_EQ(read, usage);
    EXPECT_EQ(thrownCode([&] { read.decode(blob("0401FF")); }), CRYPT_E_ASN1_INTERNAL);
    EXPECT_EQ(read, usage);
    EXPECT_EQ(CKeyUsage(1u << 9).encode(), CKeyUsage().encode());
}

TEST(ExtKeyUsage, IsAListOfPurposes) {
    const CExtKeyUsage purposes{"1.3.6.1.5.5.7.3.1", "2.5.29.37.0"};
    EXPECT_EQ(purposes.encode(), blob("301006082B060105050703010604551D2500"));
    CExtKeyUsage read;
    read.decode(purposes.encode());
    EXPECT_EQ(read, purposes);
    EXPECT_TRUE(read.has("2.5.29.37.0"));
    EXPECT_FALSE(read.has("2.5.29.37"));
    EXPECT_EQ(thrownCode([] { CExtKeyUsage().encode(); }), CRYPT_E_ASN1_INTERNAL);
    EXPECT_EQ(thrownCode([] { CExtKeyUsage{"x"}.encode(); }), E_INVALIDARG);
}

TEST(CertificatePolicies, KeepTheirQualifiers) {
    CCertificatePolicies policies;
    policies.emplace_back().policyIdentifier = "1.1";
    policies.back().addPracticeStatement("http://x");
    policies.emplace_back().policyIdentifier = "2.23.140.1.2.1";
    CCertificatePolicies read;
    read.decode(policies.encode());
    ASSERT_EQ(read.size(), 2u);
    ASSERT_EQ(read.front().qualifiers.size(), 1u);
    EXPECT_EQ(read.front().qualifiers.front().oid, "1.3.6.1.5.5.7.2.1");
    EXPECT_EQ(read.front().qualifiers.front().value, blob("1608687474703A2F2F78"));
    EXPECT_TRUE(read.back().qualifiers.empty());
    EXPECT_EQ(read.encode(), policies.encode());
    EXPECT_EQ(thrownCode([] { CCertificatePolicies().encode(); }), CRYPT_E_ASN1_INTERNAL);
    policies.back().policyIdentifier = "nothing";
    EXPECT_EQ(thrownCode([&] { policies.encode(); }), E_INVALIDARG);
}

CSignerInfoBuilder signer(const char* digest) {
    CSignerInfoBuilder signer;
    signer.put_issuer(blob("3000"));
    signer.put_serialNumber(CBigInteger(1));
    signer.put_digestAlgorithm(CAlgorithmIdentifier(digest));
    signer.put_signatureAlgorithm(CAlgorithmIdentifier("1.2.840.10045.4.3.2"));
    signer.put_signature(blob("AA"));
    return signer;
}

TEST(SignedDataBuilder, WritesWhatItWasGiven) {
    CSignedDataBuilder message("1.2.840.113549.1.7.1", blob("0102"));
    message.add(signer("2.16.840.1.101.3.4.2.1"));
    message.add(signer("2.16.840.1.101.3.4.2.1"));
    message.add(signer("2.16.840.1.101.3.4.2.3"));
    const CBlob octets = message.encode();
    CContentInfo content;
    content.decode(octets); // and what is in it, which is of a known type
    EXPECT_EQ(content.encode(), octets);
    EXPECT_STREQ(content.get_contentType(), "1.2.840.113549.1.7.2");
    const CStringProxy text = octets.writeToHexString(0);
    // Version 1, two digest algorithms, the content.
    EXPECT_NE(std::string(text.c_str())
                  .find("020101311a300b0609608648016503040201300b0609608648016503"
                        "040203301106092a864886f70d010701a00404020102"),
              std::string::npos)
        << text;
}

TEST(SignedDataBuilder, RefusesWhatIsNone) {
    EXPECT_EQ(thrownCode([] { CSignerInfoBuilder(blob("3000")); }), CRYPT_E_ASN1_INTERNAL);
    EXPECT_EQ(thrownCode([] { CSignerInfoBuilder().encode(); }), CRYPT_E_ASN1_INTERNAL);
    EXPECT_EQ(thrownCode([] { CSignerInfoBuilder().toBeSigned(); }), CRYPT_E_ASN1_INTERNAL);
    EXPECT_EQ(thrownCode([] { CSignedDataBuilder("x").encode(); }), E_INVALIDARG);
    CSignedDataBuilder message("1.2.840.113549.1.7.1");
    EXPECT_EQ(thrownCode([&] { message.add(CSignerInfoBuilder()); }), CRYPT_E_ASN1_INTERNAL);
    message.certificates().push_back(blob("0500"));
    EXPECT_EQ(thrownCode([&] { message.encode(); }), CRYPT_E_ASN1_INTERNAL);
}

} // namespace
