#include <cstring>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include <brevantis/asn1/asn1data/family.h>
#include <brevantis/asn1/asn1published.h>
#include <brevantis/asn1/runtime.h>
#include <brevantis/asn1/text/recognition.h>
#include <brevantis/asn1/text/types.h>

#include "support/json_identity.h"
#include "support/value_round_trip.h"

// Messages as they are published and met, written octet by octet: the catalogue refuses them, the
// published type reads all of them, and they come back from records and from JSON unchanged.

namespace {

using asn1data::TypeDescription;
using tests::Octets;

/// An element: a tag around contents.
template <class... Parts>
Octets der(unsigned tag, const Parts&... parts) {
    Octets contents;
    (contents.insert(contents.end(), parts.begin(), parts.end()), ...);
    Octets element = {static_cast<unsigned char>(tag)};
    const std::size_t size = contents.size();
    if (size >= 0x100) {
        element.push_back(0x82);
        element.push_back(static_cast<unsigned char>(size >> 8));
    } else if (size >= 0x80) {
        element.push_back(0x81);
    }
    element.push_back(static_cast<unsigned char>(size));
    element.insert(element.end(), contents.begin(), contents.end());
    return element;
}

Octets hex(const char* digits) {
    return tests::fromHex(digits);
}

/// An INTEGER of so many octets.
Octets number(std::size_t size) {
    Octets octets(size, 0xC3);
    octets.front() = 0x35;
    return der(0x02, octets);
}

Octets text(unsigned tag, const char* characters) {
    return der(tag, std::string(characters));
}

const Octets Null = hex("0500");
const Octets One = hex("020101");
const Octets Sha256 = der(0x30, hex("0609608648016503040201"), Null);
const Octets RsaWithSha256 = der(0x30, hex("06092A864886F70D01010B"), Null);
const Octets Signature = hex("0305000102030F");
const Octets Issuer = der(0x30, der(0x31, der(0x30, hex("0603550403"), text(0x0C, "Issuer"))));
const Octets Now = text(0x17, "261122090000Z");
const Octets Later = text(0x18, "20261122090000Z");
const Octets DsaKey =
    der(0x30, hex("06072A8648CE380401"), der(0x30, number(128), number(20), number(128)));

Octets extension(const char* identifier, const Octets& value) {
    return der(0x30, hex(identifier), der(0x04, value));
}

/// A revocation list of attribute certificates alone, with a number of 20 octets.
Octets revocationList() {
    const Octets point = der(0x30, hex("8501FF"));
    const Octets extensions =
        der(0x30, extension("0603551D1C", point), extension("0603551D14", number(20)));
    return der(0x30, der(0x30, One, RsaWithSha256, Issuer, Now, der(0xA0, extensions)),
               RsaWithSha256, Signature);
}

Octets statusResponse() {
    const Octets hash = der(0x04, Octets(20, 0x11));
    const Octets asked = der(0x30, der(0x30, hex("06052B0E03021A"), Null), hash, hash, number(20));
    const Octets crl = der(0x30, der(0xA1, number(20)));
    const Octets single = der(0x30, asked, hex("8000"), Later,
                              der(0xA1, der(0x30, extension("06092B0601050507300103", crl))));
    const Octets answer =
        der(0x30, der(0x30, der(0xA1, Issuer), Later, der(0x30, single)), RsaWithSha256, Signature);
    return der(0x30, hex("0A0100"),
               der(0xA0, der(0x30, hex("06092B0601050507300101"), der(0x04, answer))));
}

Octets certificate() {
    const Octets info = der(0x30, DsaKey, der(0x03, Octets{0}, number(128)));
    const Octets signedPart =
        der(0x30, number(20), RsaWithSha256, Issuer, der(0x30, Now, Now), Issuer, info);
    return der(0x30, signedPart, RsaWithSha256, Signature);
}

Octets attributeCertificate() {
    const Octets names = der(0x30, text(0x82, "holder.example"));
    const Octets holder = der(0x30, der(0xA0, names, One));
    const Octets issuer = der(0xA0, names);
    const Octets attributes =
        der(0x30, der(0x30, hex("060355040C"), der(0x31, text(0x0C, "clerk"))));
    return der(
        0x30,
        der(0x30, One, holder, issuer, RsaWithSha256, One, der(0x30, Later, Later), attributes),
        RsaWithSha256, Signature);
}

/// The references to what verifies a signature: with a SEQUENCE around each list.
Octets revocationReferences() {
    const Octets hash = der(0x30, Sha256, der(0x04, Octets(32, 0x22)));
    const Octets list = der(0x30, hash, der(0x30, Issuer, Now, number(20)));
    const Octets response = der(0x30, der(0x30, der(0xA1, Issuer), Later), hash);
    return der(0x30, der(0x30, der(0xA0, der(0x30, der(0x30, list))),
                         der(0xA1, der(0x30, der(0x30, response)))));
}

Octets attribute(const char* identifier, const Octets& value) {
    return der(0x30, hex(identifier), der(0x31, value));
}

Octets message(const Octets& certificates, const Octets& revocation,
               const Octets& unsignedAttributes) {
    const Octets signer = der(0x30, One, der(0x30, Issuer, One), Sha256, RsaWithSha256,
                              hex("0404AABBCCDD"), unsignedAttributes);
    const Octets content = der(0x30, hex("06092A864886F70D010701"));
    return der(0x30, hex("06092A864886F70D010702"),
               der(0xA0, der(0x30, hex("020105"), der(0x31, Sha256), content, certificates,
                             revocation, der(0x31, signer))));
}

bool isWhole(const TypeDescription& type, const Octets& octets) {
    asn1data::WalkVisitor nothing;
    const asn1data::WalkResult result = asn1data::walk(type, octets.data(), octets.size(), nothing);
    return result.status == 0 && result.consumed == octets.size();
}

/// Checks a message that the catalogue does not read.
void expectPublished(const char* name, const Octets& octets) {
    SCOPED_TRACE(name);
    const TypeDescription* const type = asn1published::findType(name);
    ASSERT_NE(type, nullptr);
    if (const TypeDescription* const narrow = asn1data::findType(std::strchr(name, '.') + 1)) {
        EXPECT_FALSE(isWhole(*narrow, octets)) << "the catalogue reads it";
        EXPECT_EQ(asn1text::publishedForm(*narrow), type);
    }
    tests::Reader reader(octets);
    void* const value = asn1data::family::newRecord(reader, *type);
    ASSERT_EQ(asn1data::family::decode(reader, *type, value, ASN1TagExplicit, 0), 0)
        << tests::toHex(octets);
    int status = 0;
    EXPECT_EQ(tests::toHex(tests::encodedValue(*type, value, status)), tests::toHex(octets));
    tests::expectBackFromJson(*type, octets);
}

const Octets None;

TEST(Published, LongTermSignatures) {
    const Octets other = der(0xA1, hex("06082B06010505071002"), statusResponse());
    const Octets crls = der(0xA1, revocationList(), other);
    // An IMPLICIT tag takes the place of the certificate's own.
    Octets version2 = attributeCertificate();
    version2.front() = 0xA2;
    const Octets unknown = der(0xA3, hex("06032A0304"), text(0x0C, "a certificate"));
    const Octets references =
        der(0xA1, attribute("060B2A864886F70D0109100216", revocationReferences()));
    for (const Octets& each :
         {message(None, crls, None),
          message(der(0xA0, certificate(), version2, unknown), None, None),
          message(None, None, references), message(der(0xA0, version2), crls, references)}) {
        expectPublished("PublishedCMS.ContentInfo", each);
        const asn1text::Recognition recognition = asn1text::recognise(each);
        EXPECT_EQ(recognition.type, asn1published::findType("PublishedCMS.ContentInfo"));
        EXPECT_EQ(recognition.reason, "by its content type; only its published form fits");
    }
    const Octets plain = message(None, None, None);
    EXPECT_EQ(asn1text::recognise(plain).type, asn1data::findType("ContentInfo"));
    const Octets token = message(None, None, references);
    const Octets stamped = der(
        0xA1,
        attribute("060B2A864886F70D0109100218",
                  der(0x30, der(0xA0, der(0x30, revocationList())), der(0xA1, der(0x30, None)))),
        attribute("060B2A864886F70D010910020E", token)); // the shorter one comes first
    expectPublished("PublishedCMS.ContentInfo", message(None, None, stamped));
}

TEST(Published, CertificatesAndRevocationLists) {
    expectPublished("PublishedX509.CertificateList", revocationList());
    expectPublished("PublishedX509.AttributeCertificate", attributeCertificate());
    expectPublished("PublishedX509.Certificate", certificate());
    expectPublished("PublishedOCSP.OCSPResponse", statusResponse());
    expectPublished("PublishedESS.CompleteRevocationRefs", revocationReferences());
}

TEST(Published, KeysOfAnySize) {
    const Octets prime = number(64);
    const Octets factor = number(32);
    const Octets rsa = der(0x30, hex("020100"), prime, hex("0203010001"), prime, factor, factor,
                           factor, factor, factor);
    expectPublished("PublishedKeys.RSAPrivateKey", rsa);
    expectPublished("PublishedKeys.RSAPublicKey", der(0x30, prime, number(9)));
    const Octets curve = hex("06082A8648CE3D030107");
    expectPublished("PublishedKeys.ECPrivateKey",
                    der(0x30, One, der(0x04, Octets(32, 7)), der(0xA0, curve),
                        der(0xA1, der(0x03, Octets(66, 0)))));
    expectPublished("PublishedKeys.Dss_Parms", der(0x30, prime, factor, prime));
    expectPublished("PublishedKeys.DomainParameters",
                    der(0x30, prime, prime, factor, der(0x30, hex("03020055"), One)));
    expectPublished("PublishedKeys.DHParameter", der(0x30, prime, hex("020102"), hex("020200A0")));
    expectPublished("PublishedKeys.DSAPrivateKey",
                    der(0x30, hex("020100"), prime, factor, prime, prime, factor));
    expectPublished("PublishedKeys.PrivateKeyInfo",
                    der(0x30, hex("020101"), DsaKey, der(0x04, factor), hex("81020055")));
    for (const auto& [label, name] : {std::pair("RSA PRIVATE KEY", "PublishedKeys.RSAPrivateKey"),
                                      {"", "PublishedKeys.RSAPrivateKey"}}) {
        EXPECT_STREQ(asn1text::recognise(rsa, label).type->name, name) << label;
    }
    EXPECT_EQ(asn1text::findType("RSAPrivateKey"),
              asn1published::findType("PublishedKeys.RSAPrivateKey"));
    EXPECT_EQ(asn1text::findType("Certificate"), asn1data::findType("Certificate"));
    EXPECT_EQ(asn1text::findType("PublishedKeys."), nullptr);
}

TEST(Published, RecordsAreUsedLikeTheCatalogues) {
    const Octets list = revocationList();
    ASN1BERDecodeBuffer buffer(list.data(), static_cast<int>(list.size()));
    asn1published::ASN1T_CertificateList value;
    asn1published::ASN1C_CertificateList control(buffer, value);
    ASSERT_EQ(control.Decode(), 0);
    const auto* const first = static_cast<const asn1published::ASN1T_Extension*>(
        value.tbsCertList.crlExtensions.head->data);
    const auto* const point = static_cast<const asn1published::ASN1T_IssuingDistributionPoint*>(
        first->extnValueTyped.decoded);
    ASSERT_NE(point, nullptr);
    EXPECT_NE(point->onlyContainsAttributeCerts, 0);
    EXPECT_EQ(point->onlyContainsCACerts, 0);
    for (const TypeDescription* const type : asn1published::allTypes()) {
        EXPECT_EQ(asn1published::findType(type->name), type);
        for (unsigned seed = 1; seed <= 10; ++seed) {
            tests::expectRoundTrip(*type, std::mt19937_64(seed));
        }
    }
}

} // namespace
