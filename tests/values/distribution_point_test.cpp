#include <string>

#include <gtest/gtest.h>

#include <brevantis/asn1/values/types/access_description.h>
#include <brevantis/asn1/values/types/distribution_point.h>
#include <brevantis/asn1/values/types/policy_information.h>
#include <brevantis/asn1/values/types/policy_information_traits.h>
#include <brevantis/asn1/values/util/context_handle.h>

#include "support/blob.h"
#include "support/data_file.h"
#include "support/failing_allocations.h"
#include "support/thrown_code.h"

using namespace Brevantis;
using namespace Brevantis::ASN1;
using tests::blob;
using tests::thrownCode;

namespace {

CGeneralName uri(const wchar_t* text) {
    return CGeneralName::uniformResourceIdentifier(text);
}

/// The message of the openssl command that has this type, or the first of several.
CBlob fromOpenssl(const std::string& type) {
    for (const tests::DataRow& row : tests::dataRows("certificate_parts.txt", "parts")) {
        if (row["type"] == type) {
            return blob(row["message"]);
        }
    }
    throw std::runtime_error("no " + type);
}

TEST(ReasonFlags, CountBitsFromTheOtherEndInAMessage) {
    tests::forEachRow("bit_flags.txt", "reasons", [](const tests::DataRow& row) {
        EXPECT_EQ(CReasonFlags(row.number<unsigned>("value")).encode(), blob(row["message"]));
        CReasonFlags read(0xFFFFFFFF);
        read.decode(blob(row["message"]));
        EXPECT_EQ(read.get_value(), row.number<unsigned>("read"));
    });
}

TEST(ReasonFlags, AreSetByBitAndByMask) {
    CReasonFlags flags(0);
    flags.put_bit(33, true);
    EXPECT_EQ(flags.get_value(), 2u) << "modulo 32";
    EXPECT_TRUE(flags.get_bit(1) && flags.get_bit(65) && !flags.get_bit(0));
    EXPECT_TRUE(flags.get_flag(CReasonFlags::keyCompromise));
    flags.add_flag(CReasonFlags::superseded);
    flags.put_bit(31, true);
    EXPECT_EQ(flags.get_value(), 0x80000012u);
    flags.remove_flag(CReasonFlags::keyCompromise);
    flags.put_bit(31, false);
    EXPECT_TRUE(flags == CReasonFlags(CReasonFlags::superseded));
    const auto both =
        static_cast<CReasonFlags::Flag>(CReasonFlags::keyCompromise | CReasonFlags::superseded);
    EXPECT_TRUE(flags.get_flag(both)) << "any of them";
    EXPECT_TRUE(flags != CReasonFlags());
}

TEST(DistributionPointName, HasAFullNameOrNone) {
    CDistributionPointName name;
    EXPECT_EQ(name.get_type(), 0u);
    EXPECT_EQ(name.get_fullName(), nullptr);
    EXPECT_EQ(thrownCode([&] { name.encode(); }), CRYPT_E_ASN1_INTERNAL) << "an empty choice";
    const CGeneralNames names = {uri(L"a"), uri(L"b")};
    name.put_fullName(names);
    EXPECT_EQ(name.get_type(), 1u);
    EXPECT_EQ(name.encode(), blob("A006 860161 860162"));
    EXPECT_TRUE(name == CDistributionPointName(names));
    EXPECT_TRUE(name != CDistributionPointName({uri(L"b"), uri(L"a")}));
    EXPECT_TRUE(name != CDistributionPointName({uri(L"a")}));
    EXPECT_TRUE(name == CDistributionPointName({uri(L"ab"), uri(L"bc")})) << "first characters";
    EXPECT_TRUE(name != CDistributionPointName());

    // nameRelativeToCRLIssuer is passed over.
    name.decode(blob("A111 300F0603550403 0C0852656C6174697665"));
    EXPECT_TRUE(name == CDistributionPointName(names));
    name.clear();
    EXPECT_TRUE(name == CDistributionPointName());
}

TEST(DistributionPoint, TakesAndDropsItsFields) {
    const CDistributionPointName name({uri(L"a")});
    const CReasonFlags reasons(CReasonFlags::keyCompromise);
    const CGeneralNames issuer = {uri(L"b")};
    CDistributionPoint point;
    EXPECT_EQ(point.encode(), blob("3000"));
    point.put_distributionPoint(&name);
    point.put_reasons(&reasons);
    point.put_cRLIssuer(&issuer);
    EXPECT_EQ(point.encode(), blob("3010 A005A003860161 81020640 A203860162"));
    const CDistributionPoint whole = point;
    const CReasonFlags* held = point.get_reasons();
    point.put_reasons(held);
    EXPECT_EQ(point.get_reasons(), held) << "its own is left alone";
    point.put_reasons(nullptr);
    EXPECT_EQ(point.get_reasons(), nullptr);
    EXPECT_TRUE(point != whole);
    EXPECT_EQ(point.encode(), blob("300C A005A003860161 A203860162"));
    const CGeneralNames empty;
    point.put_cRLIssuer(&empty);
    EXPECT_NE(point.get_cRLIssuer(), nullptr);
    EXPECT_EQ(point.encode(), blob("3007 A005A003860161")) << "an empty list is left out";
    CDistributionPoint read;
    read.decode(point.encode());
    EXPECT_EQ(read.get_cRLIssuer(), nullptr);
    EXPECT_TRUE(read != point);
    point.put_distributionPoint(nullptr);
    point.clear();
    EXPECT_TRUE(point == CDistributionPoint());
    EXPECT_EQ(point.get_distributionPoint(), nullptr);
    point.put_reasons(&reasons);
    EXPECT_EQ(point.encode(), blob("3004 81020640")) << "of use again";
    EXPECT_GT(tests::failEveryAllocation([&] {
                  CDistributionPoint local(point);
                  local.put_cRLIssuer(&issuer);
              }),
              2);
}

TEST(DistributionPoint, DiffersInAnyField) {
    const CDistributionPointName name({uri(L"a")});
    const CDistributionPointName otherName({uri(L"z")});
    const CReasonFlags reasons(1);
    const CReasonFlags otherReasons(2);
    const CGeneralNames issuer = {uri(L"a")};
    const CGeneralNames otherIssuer = {uri(L"a"), uri(L"a")};
    const auto point = [](const CDistributionPointName* placeName, const CReasonFlags* flags,
                          const CGeneralNames* listIssuer) {
        CDistributionPoint made;
        made.put_distributionPoint(placeName);
        made.put_reasons(flags);
        made.put_cRLIssuer(listIssuer);
        return made;
    };
    const CDistributionPoint base = point(&name, &reasons, &issuer);
    EXPECT_TRUE(base == point(&name, &reasons, &issuer));
    EXPECT_TRUE(base != point(&otherName, &reasons, &issuer));
    EXPECT_TRUE(base != point(&name, &otherReasons, &issuer));
    EXPECT_TRUE(base != point(&name, &reasons, &otherIssuer));
    EXPECT_TRUE(base != point(nullptr, &reasons, &issuer));
    EXPECT_TRUE(point(&name, nullptr, &issuer) != base);
    EXPECT_TRUE(base != point(&name, &reasons, nullptr));
}

TEST(DistributionPoint, IsReadAndRefusedInLists) {
    // As the openssl command writes relativename=...: a name that is there, but empty.
    CCRLDistPointsSyntax points;
    points.decode(blob("30173015A013A111300F06035504030C0852656C6174697665"));
    ASSERT_EQ(points.size(), 1u);
    EXPECT_EQ(points.front().get_distributionPoint()->get_type(), 0u);
    EXPECT_EQ(thrownCode([&] { points.encode(); }), CRYPT_E_ASN1_INTERNAL);
    EXPECT_EQ(thrownCode([] { CCRLDistPointsSyntax().encode(); }), CRYPT_E_ASN1_INTERNAL)
        << "no points";
    EXPECT_EQ(thrownCode([&] { points.decode(blob("300C 300481020780 3004A204A3023000")); }),
              CRYPT_E_ASN1_INTERNAL);
    EXPECT_EQ(points.size(), 1u);
    EXPECT_EQ(thrownCode([&] { points.decode(blob("300E 300481020780 3006A204A3023000")); }),
              E_INVALIDARG);
    EXPECT_TRUE(points.size() == 1 && points.front().get_reasons()->get_value() == 1)
        << "what comes before is taken";
}

TEST(DistributionPoint, OfTheOpensslCommandIsRead) {
    CCRLDistPointsSyntax points;
    points.decode(fromOpenssl("CRLDistPointsSyntax"));
    ASSERT_EQ(points.size(), 3u);
    auto point = points.begin();
    const CGeneralNames* places = point->get_distributionPoint()->get_fullName();
    ASSERT_EQ(places->size(), 2u);
    EXPECT_STREQ(places->front().get_uniformResourceIdentifier(), L"http://example.org/a.crl");
    EXPECT_STREQ(places->back().get_uniformResourceIdentifier(),
                 L"ldap://ldap.example.org/cn=A?certificateRevocationList");
    EXPECT_EQ(point->get_reasons(), nullptr);
    EXPECT_EQ(point->get_cRLIssuer(), nullptr);
    ++point;
    EXPECT_EQ(point->get_reasons()->get_value(), CReasonFlags::keyCompromise |
                                                     CReasonFlags::cACompromise |
                                                     CReasonFlags::aACompromise);
    EXPECT_EQ(point->get_cRLIssuer()->front().get_type(), 5u);
    ++point;
    EXPECT_EQ(point->get_distributionPoint()->get_fullName()->front().get_type(), 5u);
    EXPECT_EQ(point->get_reasons()->get_value(), CReasonFlags::keyCompromise);
}

TEST(AccessDescription, HasAMethodAndAPlace) {
    constexpr const char* ocsp = "1.3.6.1.5.5.7.48.1";
    constexpr const char* issuers = "1.3.6.1.5.5.7.48.2";
    CAuthorityInfoAccessSyntax services;
    services.decode(fromOpenssl("AuthorityInfoAccessSyntax"));
    ASSERT_EQ(services.size(), 3u);
    EXPECT_STREQ(services.front().get_accessMethod(), ocsp);
    EXPECT_STREQ(services.front().get_accessLocation().get_uniformResourceIdentifier(),
                 L"http://ocsp.example.org/");
    EXPECT_STREQ(services.back().get_accessMethod(), issuers);
    EXPECT_EQ(services.back().get_accessLocation().get_type(), 5u);

    CAccessDescription value(ocsp, uri(L"http://a"));
    EXPECT_TRUE(value == CAccessDescription(ocsp, uri(L"https://b"))) << "first characters";
    EXPECT_TRUE(value != CAccessDescription(issuers, uri(L"http://a")));
    EXPECT_TRUE(value != CAccessDescription(ocsp, uri(L"ldap://a")));
    value.put_accessMethod("1.x");
    EXPECT_EQ(thrownCode([&] { value.encode(); }), E_INVALIDARG);
    EXPECT_EQ(thrownCode([&] { CAccessDescription().encode(); }), E_INVALIDARG);
    EXPECT_EQ(thrownCode([&] { CAccessDescription(ocsp, CGeneralName()).encode(); }), E_INVALIDARG);
    EXPECT_EQ(thrownCode([] { CAuthorityInfoAccessSyntax().encode(); }), CRYPT_E_ASN1_INTERNAL)
        << "no services";
}

TEST(PolicyInformation, LosesItsQualifiers) {
    CPolicyInformation policy("1.2.3");
    policy.decode(blob("3012 06022A04 300C 300A 06022A05 0C04 74657874"));
    EXPECT_EQ(policy.encode(), blob("300406022A04"));
    policy.put_policyIdentifier(nullptr);
    EXPECT_EQ(thrownCode([&] { policy.encode(); }), E_INVALIDARG);

    ScopedContext context;
    Asn1RTDList record;
    PolicyInformationListTraits::set(
        context.get(), record, {CPolicyInformation("1.2.3"), CPolicyInformation("2.5.29.32")});
    CPolicyInformationList read;
    PolicyInformationListTraits::get(record, read);
    ASSERT_EQ(read.size(), 2u);
    EXPECT_STREQ(read.back().get_policyIdentifier(), "2.5.29.32");
}

} // namespace
