#include <gtest/gtest.h>

#include <brevantis/asn1/values/types/certificate_identifiers.h>
#include <brevantis/asn1/values/types/certificate_identifiers_traits.h>
#include <brevantis/asn1/values/types/other_hash_traits.h>
#include <brevantis/asn1/values/util/context_handle.h>

#include "support/blob.h"
#include "support/failing_allocations.h"
#include "support/thrown_code.h"

using namespace Brevantis;
using namespace Brevantis::ASN1;
using tests::blob;
using tests::thrownCode;

namespace {

constexpr const char* sha256 = "2.16.840.1.101.3.4.2.1";
constexpr const char* sha512 = "2.16.840.1.101.3.4.2.3";

CGeneralNames names(std::initializer_list<const wchar_t*> texts) {
    CGeneralNames list;
    for (const wchar_t* text : texts) {
        list.emplace_back().put_dNSName(text);
    }
    return list;
}

CIssuerSerial issuerSerial(std::initializer_list<const wchar_t*> issuer, const char* serialNumber) {
    const CBlob octets = blob(serialNumber);
    return CIssuerSerial(issuer.size() != 0 ? names(issuer) : CGeneralNames(),
                         CBigInteger(octets.pbData(), octets.cbData()));
}

TEST(IssuerSerial, ComparesNamesWeaklyAndNumbersByValue) {
    const CIssuerSerial value = issuerSerial({L"a.org", L"b.org"}, "05");
    EXPECT_TRUE(value == issuerSerial({L"a", L"b"}, "0005")) << "by first characters and by value";
    EXPECT_TRUE(value != issuerSerial({L"a.org", L"b.org"}, "06"));
    EXPECT_TRUE(value != issuerSerial({L"a.org"}, "05"));
    EXPECT_TRUE(value != issuerSerial({L"b.org", L"a.org"}, "05")) << "in list order";
    EXPECT_TRUE(CIssuerSerial() == CIssuerSerial());
    EXPECT_EQ(issuerSerial({L"a"}, "0005").encode(), blob("3008 3003820161 020105"));
    EXPECT_EQ(thrownCode([] { issuerSerial({L"a"}, "").encode(); }), CRYPT_E_ASN1_INTERNAL);
}

TEST(OtherHash, HoldsOneOfTwoForms) {
    const CBlob octets = blob("0102");
    const COtherHashAlgAndValue named(octets, CAlgorithmIdentifier(sha256));
    COtherHash hash;
    EXPECT_EQ(hash.get_type(), 0u);
    EXPECT_EQ(thrownCode([&] { hash.encode(); }), CRYPT_E_ASN1_INTERNAL) << "no hash";
    hash.put_sha1Hash(octets);
    EXPECT_EQ(hash.get_type(), 1u);
    EXPECT_EQ(hash.get_otherHash(), nullptr);
    EXPECT_EQ(*hash.get_sha1Hash(), octets);
    EXPECT_TRUE(hash == COtherHash(octets));
    EXPECT_EQ(hash.encode(), blob("04020102"));
    hash.put_otherHash(named);
    EXPECT_EQ(hash.get_type(), 2u);
    EXPECT_EQ(hash.get_sha1Hash(), nullptr);
    EXPECT_TRUE(*hash.get_otherHash() == named);
    EXPECT_TRUE(hash == COtherHash(named));
    hash.clear();
    EXPECT_EQ(hash.get_type(), 0u);
    hash.put_sha1Hash(octets);
    EXPECT_TRUE(hash == COtherHash(octets)) << "of use again";

    asn1data::ASN1T_OtherHash none;
    ScopedContext context;
    for (const unsigned type : {1u, 2u, 3u, 0u}) {
        none.t = type;
        ASN1T_OtherHash_traits::get(none, hash);
        EXPECT_TRUE(hash == COtherHash(octets)) << "a record without a hash changes nothing";
    }
    ASN1T_OtherHash_traits::set(context.get(), none, COtherHash());
    EXPECT_EQ(none.t, 0u);
}

TEST(OtherHash, ComparesWithOrWithoutAlgorithms) {
    struct Row {
        COtherHash left;
        COtherHash right;
        bool equal;
        bool equalHashes;
    };
    const auto named = [](const char* octets, const char* algorithm) {
        return COtherHash(COtherHashAlgAndValue(blob(octets), CAlgorithmIdentifier(algorithm)));
    };
    const Row rows[] = {
        {COtherHash(), COtherHash(), true, true},
        {COtherHash(), COtherHash(blob("01")), false, false},
        {COtherHash(blob("01")), COtherHash(blob("01")), true, true},
        {COtherHash(blob("01")), COtherHash(blob("02")), false, false},
        {COtherHash(blob("01")), named("01", sha256), false, false},
        {named("01", sha256), named("01", sha256), true, true},
        {named("01", sha256), named("01", sha512), false, true},
        {named("01", sha256), named("02", sha256), false, false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(&row - rows);
        EXPECT_EQ(row.left == row.right, row.equal);
        EXPECT_EQ(row.left != row.right, !row.equal);
        EXPECT_EQ(row.left.compare_hashValue(row.right), row.equalHashes);
    }
}

/// What the three classes do alike with issuer and serial number.
template <class Identifier>
void expectOptionalIssuerSerial(const Identifier& bare) {
    const CIssuerSerial issuer = issuerSerial({L"a"}, "05");
    Identifier value = bare;
    EXPECT_EQ(value.get_issuerSerial(), nullptr);
    value.put_issuerSerial(&issuer);
    ASSERT_NE(value.get_issuerSerial(), nullptr);
    EXPECT_TRUE(*value.get_issuerSerial() == issuer);
    EXPECT_TRUE(value != bare);
    EXPECT_TRUE(bare != value);

    const CIssuerSerial* held = value.get_issuerSerial();
    value.put_issuerSerial(held);
    EXPECT_EQ(value.get_issuerSerial(), held) << "its own is left alone";
    Identifier copy = value;
    EXPECT_TRUE(copy == value);
    EXPECT_NE(copy.get_issuerSerial(), held);
    const CIssuerSerial other = issuerSerial({L"a"}, "06");
    copy.put_issuerSerial(&other);
    EXPECT_TRUE(copy != value);

    Identifier read = value;
    read.decode(bare.encode());
    EXPECT_TRUE(read == bare) << "what is absent goes";
    value.put_issuerSerial(nullptr);
    EXPECT_TRUE(value == bare);

    copy = Identifier(std::move(value));
    EXPECT_TRUE(value == Identifier()) << "as new"; // NOLINT(bugprone-use-after-move)
    EXPECT_GT(tests::failEveryAllocation(
                  [&] {
                      Identifier local(copy);
                      local.put_issuerSerial(&issuer);
                  },
                  [&] { EXPECT_TRUE(copy == bare); }),
              2);
}

TEST(CertificateIdentifiers, MayHaveIssuerAndSerialNumber) {
    expectOptionalIssuerSerial(CESSCertID(blob("01")));
    expectOptionalIssuerSerial(CESSCertIDv2(blob("01")));
    expectOptionalIssuerSerial(COtherCertID(blob("01")));
}

TEST(CertificateIdentifiers, CompareTheirHashes) {
    EXPECT_TRUE(CESSCertID(blob("01")) != CESSCertID(blob("02")));
    EXPECT_TRUE(CESSCertIDv2(blob("01")) != CESSCertIDv2(blob("02")));
    EXPECT_TRUE(CESSCertIDv2(blob("01")) == CESSCertIDv2(blob("01"), CAlgorithmIdentifier(sha256)));
    EXPECT_TRUE(CESSCertIDv2(blob("01")) != CESSCertIDv2(blob("01"), CAlgorithmIdentifier(sha512)));

    const COtherCertID first(blob("01"), CAlgorithmIdentifier(sha256));
    COtherCertID second(blob("01"), CAlgorithmIdentifier(sha512));
    EXPECT_TRUE(first != second);
    EXPECT_TRUE(first.compare_noHashParam(second));
    EXPECT_FALSE(first.compare_noHashParam(COtherCertID(blob("01")))) << "another alternative";
    const CIssuerSerial issuer = issuerSerial({L"a"}, "05");
    second.put_issuerSerial(&issuer);
    EXPECT_FALSE(first.compare_noHashParam(second));
    EXPECT_EQ(thrownCode([] { COtherCertID().encode(); }), CRYPT_E_ASN1_INTERNAL) << "no hash";
}

TEST(ESSCertIDv2, LeavesItsDefaultAlgorithmOut) {
    CAlgorithmIdentifier withNull(sha256);
    withNull.put_parameters(blob("0500"));
    CESSCertIDv2 read(CBlob(), withNull);
    for (const CAlgorithmIdentifier& algorithm : {CAlgorithmIdentifier(sha256), withNull}) {
        const CESSCertIDv2 value(blob("01"), algorithm);
        EXPECT_EQ(value.encode(), blob("3003040101"));
        read.decode(value.encode());
        EXPECT_TRUE(read.get_hashAlgorithm() == CAlgorithmIdentifier(sha256));
    }
    EXPECT_EQ(CESSCertIDv2().encode(), blob("30020400"));
    // Not DER, but a reader takes it.
    read.decode(blob("3012300D06096086480165030402010500040101"));
    EXPECT_TRUE(read.get_hashAlgorithm() == withNull);
    EXPECT_EQ(thrownCode([] { CESSCertIDv2(CBlob(), CAlgorithmIdentifier("x")).encode(); }),
              CRYPT_E_ASN1_INTERNAL);
}

TEST(CertificateIdentifiers, GoThroughLists) {
    const auto through = [](auto traits, const auto& list) {
        ScopedContext context;
        Asn1RTDList record;
        using List = std::decay_t<decltype(list)>;
        decltype(traits)::set(context.get(), record, list);
        List read;
        decltype(traits)::get(record, read);
        EXPECT_TRUE(read == list);
        EXPECT_EQ(read.size(), 2u);
    };
    through(ESSCertIDListTraits(), CESSCertIDList{CESSCertID(blob("01")), CESSCertID(blob("02"))});
    through(ESSCertIDv2ListTraits(),
            CESSCertIDv2List{CESSCertIDv2(blob("01")),
                             CESSCertIDv2(blob("01"), CAlgorithmIdentifier(sha512))});
    through(OtherCertIDListTraits(),
            COtherCertIDList{COtherCertID(blob("01")),
                             COtherCertID(blob("01"), CAlgorithmIdentifier(sha512))});
}

} // namespace
