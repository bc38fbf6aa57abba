#include <algorithm>
#include <string>

#include <gtest/gtest.h>

#include <brevantis/asn1/values/attribute/certificate_traits.h>
#include <brevantis/asn1/values/attribute/certificate_value.h>

#include "support/blob.h"
#include "support/ca_bundle.h"
#include "support/data_file.h"
#include "support/failing_allocations.h"
#include "support/through_record.h"
#include "support/thrown_code.h"

using namespace Brevantis;
using namespace Brevantis::ASN1;
using tests::blob;
using tests::thrownCode;

namespace {

CBlob toBlob(const tests::Octets& octets) {
    return CBlob(octets.data(), octets.size());
}

/// The same certificate in BER: its outer length in more octets than it takes.
CBlob inLongForm(const CBlob& certificate) {
    tests::Octets octets(certificate.pbData(), certificate.pbData() + certificate.cbData());
    const unsigned char length[] = {0x83, 0x00};
    octets[1] = length[0];
    octets.insert(octets.begin() + 2, length[1]);
    return toBlob(octets);
}

TEST(CertificateValue, OfRealCertificatesStaysAsItIs) {
    if (tests::caBundle().empty()) {
        GTEST_SKIP() << tests::NoCaBundle;
    }
    CCertificateValues all;
    for (const tests::Octets& octets : tests::caBundle()) {
        const CBlob certificate = toBlob(octets);
        CCertificateValue value;
        value.decode(certificate);
        ASSERT_EQ(value, certificate);
        ASSERT_EQ(value.encode(), certificate);
        all.push_back(certificate);
    }
    CCertificateValues read;
    read.decode(all.encode());
    EXPECT_TRUE(std::equal(read.begin(), read.end(), all.begin(), all.end()));

    const CBlob certificate = all.front();
    ASSERT_EQ(certificate.pbData()[1], 0x82);
    CCertificateValue value;
    value.decode(inLongForm(certificate));
    EXPECT_EQ(value, certificate) << "comes back in DER";
    value.assign(inLongForm(certificate).pbData(), certificate.cbData() + 1);
    EXPECT_EQ(value.encode(), certificate);
    value.decode(value);
    EXPECT_EQ(value, certificate);

    const CCertificateValues two{certificate, certificate};
    const CBlob encoded = two.encode();
    EXPECT_GT(tests::failEveryAllocation([&] { value.encode(); }), 3);
    EXPECT_GT(tests::failEveryAllocation([&] { CCertificateValue().decode(certificate); }), 3);
    EXPECT_GT(tests::failEveryAllocation([&] { two.encode(); }), 6);
    EXPECT_GT(tests::failEveryAllocation([&] { CCertificateValues().decode(encoded); }), 6);
}

TEST(CertificateValue, IsRefusedWhenItIsNoCertificate) {
    for (const char* encoded : {"", "3000", "0500", "3003020101"}) {
        SCOPED_TRACE(encoded);
        CCertificateValue value;
        value.assign(blob("AA").pbData(), 1);
        EXPECT_EQ(thrownCode([&] { value.decode(blob(encoded)); }), CRYPT_E_ASN1_INTERNAL);
        EXPECT_EQ(value, blob("AA")) << "unchanged by a failure";
        value.assign(blob(encoded).pbData(), blob(encoded).cbData());
        EXPECT_EQ(thrownCode([&] { value.encode(); }), CRYPT_E_ASN1_INTERNAL);
        EXPECT_EQ(thrownCode([&] { CCertificateValues{value}.encode(); }), CRYPT_E_ASN1_INTERNAL);
    }
    CCertificateValues none;
    EXPECT_EQ(none.encode(), blob("3000"));
    none.decode(blob("3000"));
    EXPECT_TRUE(none.empty());
    none.push_back(blob("AA"));
    EXPECT_EQ(thrownCode([&] { none.decode(blob("30020500")); }), CRYPT_E_ASN1_INTERNAL);
    EXPECT_EQ(none.size(), 1u) << "unchanged by a failure";
}

TEST(CertificateListTraits, CarryAListAsItsEncoding) {
    // Version 1, no entries: sha256WithRSAEncryption, CN=a, one update, a signature of one octet.
    const CBlob list = blob("303F 302A 300D06092A864886F70D01010B0500"
                            "300C310A300806035504030C0161 170B323630313031303030305A"
                            "300D06092A864886F70D01010B0500 030200AA");
    EXPECT_EQ(tests::throughRecord<ASN1T_CertificateList_traits>(list), list);
    EXPECT_EQ(thrownCode([] { tests::throughRecord<ASN1T_CertificateList_traits>(blob("3000")); }),
              CRYPT_E_ASN1_INTERNAL);
    EXPECT_GT(tests::failEveryAllocation(
                  [&] { tests::throughRecord<ASN1T_CertificateList_traits>(list); }),
              6);
}

} // namespace
