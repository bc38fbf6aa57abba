#include <algorithm>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include <brevantis/asn1/asn1data/x509.h>
#include <brevantis/asn1/values/extension/extension.h>
#include <brevantis/asn1/values/extension/extension_traits.h>
#include <brevantis/asn1/values/extension/named_extensions.h>

#include "support/blob.h"
#include "support/ca_bundle.h"
#include "support/failing_allocations.h"
#include "support/thrown_code.h"

using namespace Brevantis;
using namespace Brevantis::ASN1;
using tests::blob;
using tests::thrownCode;

namespace {

CExtension extension(const char* oid, const char* value, bool critical = false) {
    return CExtension(oid, blob(value), critical);
}

constexpr const char* keyUsage = "2.5.29.15";
constexpr const char* unknown = "1.2.3.4";

TEST(Extension, WithABrokenValueIsNotEncodedWhenItIsKnown) {
    EXPECT_EQ(thrownCode([] { extension(keyUsage, "0302").encode(); }), CRYPT_E_ASN1_INTERNAL);
    EXPECT_EQ(thrownCode([] { extension(keyUsage, "0500").encode(); }), CRYPT_E_ASN1_INTERNAL);
    EXPECT_EQ(thrownCode([] { extension(unknown, "0302").encode(); }), 0);
    EXPECT_EQ(extension(keyUsage, "").encode(), blob("3007 0603551D0F 0400"))
        << "nothing to decode";
    EXPECT_EQ(thrownCode([] { extension("1.2.x", "0500").encode(); }), E_INVALIDARG);
    EXPECT_EQ(thrownCode([] { CExtension().encode(); }), E_INVALIDARG);
}

TEST(Extension, IsEqualInFlagIdentifierAndValue) {
    const CExtension one = extension(unknown, "0500");
    EXPECT_TRUE(one == extension("1.2.3.4", "0500"));
    EXPECT_TRUE(one != extension(unknown, "0500", true));
    EXPECT_TRUE(one != extension("1.2.3.5", "0500"));
    EXPECT_TRUE(one != extension(unknown, "0501"));
    EXPECT_FALSE(CExtension().get_critical());
    CExtension changed;
    changed.put_extnID(unknown);
    changed.put_extnValue(blob("0500"));
    EXPECT_TRUE(changed == one);
    changed.put_critical(true);
    changed.put_extnID("1.2.3.5");
    EXPECT_TRUE(changed == extension("1.2.3.5", "0500", true));
}

TEST(Extensions, KeepOneForEachIdentifier) {
    CExtensions list;
    EXPECT_TRUE(list.find(unknown) == list.end());
    EXPECT_TRUE(CExtensions(list) == list);
    list.insert(extension("1.1", "01"));
    list.insert(extension("1.2", "02"));
    list.insert(extension("1.1", "03", true));
    ASSERT_EQ(list.size(), 2u);
    EXPECT_TRUE(list.front() == extension("1.1", "03", true)) << "in the place of the old one";
    const CExtensions& constant = list;
    EXPECT_TRUE(constant.find("1.2") == std::prev(constant.end()));
    list.insert(*list.find("1.2"));
    EXPECT_TRUE(list.back() == extension("1.2", "02")) << "an element in its own place";

    CExtensions turned(list.rbegin(), list.rend());
    EXPECT_TRUE(turned != list);
    turned.reverse();
    EXPECT_TRUE(turned == list);

    list.erase("1.9");
    EXPECT_TRUE(turned == list);
    list.erase(list.front().get_extnID());
    EXPECT_TRUE(list == CExtensions({extension("1.2", "02")}));
    EXPECT_TRUE(list != turned);
}

TEST(Extensions, OfRealCertificatesComeOutAsTheyWere) {
    if (tests::caBundle().empty()) {
        GTEST_SKIP() << tests::NoCaBundle;
    }
    std::size_t count = 0;
    for (const tests::Octets& octets : tests::caBundle()) {
        ASN1BERDecodeBuffer buffer(octets.data(), static_cast<int>(octets.size()));
        asn1data::ASN1T_Certificate certificate;
        asn1data::ASN1C_Certificate control(buffer, certificate);
        ASSERT_EQ(control.DecodeFrom(buffer), 0);
        ASN1BEREncodeBuffer written;
        asn1data::ASN1C_Extensions part(written, certificate.tbsCertificate.extensions);
        const int length = part.EncodeTo(written);
        if (length <= 2) { // a certificate of version 1 has none
            continue;
        }
        const CBlob encoded(written.getMsgPtr(), static_cast<unsigned long>(length));
        // The octets are the certificate's own, not what this library makes of them.
        EXPECT_NE(std::search(octets.begin(), octets.end(), encoded.pbData(),
                              encoded.pbData() + encoded.cbData()),
                  octets.end());
        CExtensions list;
        list.decode(encoded);
        EXPECT_EQ(list.encode(), encoded);
        count += list.size();
    }
    EXPECT_GT(count, tests::caBundle().size());
}

TEST(Extensions, GiveEverythingBackWhenMemoryIsOut) {
    const CExtension one = extension(unknown, "0500");
    CExtensions target;
    EXPECT_EQ(thrownCode([&] { target.encode(); }), CRYPT_E_ASN1_INTERNAL) << "none at all";
    EXPECT_GT(tests::failEveryAllocation([&] { target.insert(one), target.clear(); },
                                         [&] { EXPECT_TRUE(target.empty()); }),
              1);
}

CGeneralNames names(const wchar_t* dnsName) {
    CGeneralNames list;
    list.emplace_back().put_dNSName(dnsName);
    return list;
}

/// What holds for an extension with a field: its identifier, the field and the value agree after
/// construction from either and after a change.
/// @param empty without a field yet
/// @param encoded the DER of the field that @p full has
template <class Extension, class Put, class Get>
void expectAgreement(const char* oid, const Extension& empty, const Extension& full,
                     const char* encoded, Put put, Get get) {
    SCOPED_TRACE(oid);
    EXPECT_STREQ(empty.get_oid(), oid);
    EXPECT_EQ(empty.get_value().cbData(), 0u) << "nothing is encoded by default";
    EXPECT_STREQ(full.get_oid(), oid);
    EXPECT_EQ(full.get_value(), blob(encoded));
    Extension changed = empty;
    put(changed);
    EXPECT_EQ(changed.get_value(), blob(encoded));
    EXPECT_EQ(get(changed), get(full));
    const Extension read(blob(encoded));
    EXPECT_EQ(get(read), get(full));
    changed = empty;
    changed.value() = blob(encoded);
    changed.decode();
    EXPECT_EQ(get(changed), get(full));
    for (const char* broken : {"", "0402", "31"}) {
        EXPECT_EQ(thrownCode([&] { Extension(blob(broken)); }), CRYPT_E_ASN1_INTERNAL);
        changed.value() = blob(broken);
        EXPECT_EQ(thrownCode([&] { changed.decode(); }), CRYPT_E_ASN1_INTERNAL);
        EXPECT_EQ(get(changed), get(full)) << "the field stays";
    }
    EXPECT_GT(tests::failEveryAllocation([&] {
                  Extension target = full;
                  put(target);
              }),
              3);
    EXPECT_GT(tests::failEveryAllocation([&] { Extension(blob(encoded)); }), 3);
}

TEST(NamedExtensions, KeepFieldAndValueInStep) {
    expectAgreement(
        "2.5.29.21", CExtCRLReason(), CExtCRLReason(CrlReason_keyCompromise), "0A0101",
        [](auto& e) { e.put_reason(CrlReason_keyCompromise); },
        [](const auto& e) { return e.get_reason(); });
    expectAgreement(
        "2.5.29.23", CExtHoldInstructionCode(), CExtHoldInstructionCode("1.2.840.10040.2.1"),
        "06072A8648CE380201", [](auto& e) { e.put_code("1.2.840.10040.2.1"); },
        [](const auto& e) { return std::string(e.get_code()); });
    const CDateTime date(2030, 1, 2, 3, 4, 5);
    expectAgreement(
        "2.5.29.24", CExtInvalidityDate(), CExtInvalidityDate(date),
        "180F32303330303130323033303430355A", [&](auto& e) { e.put_invalidityDate(date); },
        [](const auto& e) { return e.get_invalidityDate(); });
    expectAgreement(
        "2.5.29.29", CExtCertificateIssuer(), CExtCertificateIssuer(names(L"a")), "3003820161",
        [](auto& e) { e.put_issuer(names(L"a")); }, [](const auto& e) { return e.get_issuer(); });
}

TEST(NamedExtensions, StartEmpty) {
    EXPECT_EQ(CExtCRLReason().get_reason(), CrlReason_unspecified);
    EXPECT_STREQ(CExtHoldInstructionCode().get_code(), "");
    EXPECT_EQ(CExtInvalidityDate().get_invalidityDate(), CDateTime(0, 0));
    EXPECT_TRUE(CExtCertificateIssuer().get_issuer().empty());
    // A number without a name is a reason like any other.
    EXPECT_EQ(CExtCRLReason(static_cast<CrlReason>(7)).get_value(), blob("0A0107"));
    EXPECT_EQ(CExtCRLReason(blob("0A0107")).get_reason(), static_cast<CrlReason>(7));
}

TEST(NamedExtensions, AreAsNewWhenTheyWereMovedFrom) {
    CExtHoldInstructionCode code("1.2.3");
    CExtHoldInstructionCode taken(std::move(code));
    EXPECT_STREQ(taken.get_code(), "1.2.3");
    EXPECT_EQ(taken.get_value(), blob("06022A03"));
    // NOLINTNEXTLINE(bugprone-use-after-move,clang-analyzer-cplusplus.Move): it is as new
    EXPECT_STREQ(code.get_code(), "");
    EXPECT_EQ(code.get_value(), CBlob());
    code.put_code("1.2.4");
    EXPECT_STREQ(code.get_oid(), taken.get_oid());
    taken = std::move(code);
    EXPECT_STREQ(taken.get_code(), "1.2.4");
    EXPECT_STREQ(code.get_oid(), taken.get_oid());

    const CDateTime time(2030, 1, 2, 3, 4, 5);
    CExtPrivateKeyUsagePeriod period(&time, nullptr);
    const CExtPrivateKeyUsagePeriod kept(std::move(period));
    EXPECT_EQ(*kept.get_notBefore(), time);
    // NOLINTNEXTLINE(bugprone-use-after-move,clang-analyzer-cplusplus.Move): it is as new
    EXPECT_EQ(period.get_notBefore(), nullptr);
    EXPECT_STREQ(period.get_oid(), kept.get_oid());
    period.put_notBefore(&time);
    EXPECT_EQ(period.get_value(), kept.get_value());
}

TEST(NamedExtensions, StayAsTheyWereWhenAFieldCannotBeEncoded) {
    CExtHoldInstructionCode code("1.2.3");
    EXPECT_EQ(thrownCode([&] { code.put_code("1.2.x"); }), E_INVALIDARG);
    EXPECT_STREQ(code.get_code(), "1.2.3");
    EXPECT_EQ(code.get_value(), blob("06022A03"));
    CExtCertificateIssuer issuer(names(L"a"));
    EXPECT_EQ(thrownCode([&] { issuer.put_issuer(CGeneralNames(1)); }), E_INVALIDARG);
    EXPECT_TRUE(issuer.get_issuer() == names(L"a"));
    // The second name is of a kind that is not carried.
    issuer.value() = blob("30078201 62A3023000");
    EXPECT_EQ(thrownCode([&] { issuer.decode(); }), E_INVALIDARG);
    EXPECT_TRUE(issuer.get_issuer() == names(L"a"));
    const CExtInvalidityDate milliseconds(CDateTime(2030, 1, 2, 3, 4, 5, 999));
    EXPECT_EQ(milliseconds.get_value(), blob("180F32303330303130323033303430355A"));
    EXPECT_EQ(thrownCode([] { CExtInvalidityDate(blob("180432303330")); }), E_INVALIDARG);
}

TEST(PrivateKeyUsagePeriod, HasEachTimeOrNot) {
    const CDateTime from(2030, 1, 2, 3, 4, 5);
    const CDateTime until(2031, 1, 2, 3, 4, 5);
    struct Row {
        const CDateTime* notBefore;
        const CDateTime* notAfter;
        const char* encoded;
    };
    const Row rows[] = {
        {nullptr, nullptr, "3000"},
        {&from, nullptr, "3011800F32303330303130323033303430355A"},
        {nullptr, &until, "3011810F32303331303130323033303430355A"},
        {&from, &until, "3022800F32303330303130323033303430355A810F32303331303130323033303430355A"},
    };
    const auto expectTimes = [](const CExtPrivateKeyUsagePeriod& period, const Row& row) {
        EXPECT_EQ(period.get_value(), blob(row.encoded));
        ASSERT_EQ(period.get_notBefore() != nullptr, row.notBefore != nullptr);
        ASSERT_EQ(period.get_notAfter() != nullptr, row.notAfter != nullptr);
        EXPECT_TRUE(row.notBefore == nullptr || *period.get_notBefore() == *row.notBefore);
        EXPECT_TRUE(row.notAfter == nullptr || *period.get_notAfter() == *row.notAfter);
    };
    CExtPrivateKeyUsagePeriod changed(&until, &from);
    for (const Row& row : rows) {
        SCOPED_TRACE(row.encoded);
        const CExtPrivateKeyUsagePeriod period(row.notBefore, row.notAfter);
        EXPECT_STREQ(period.get_oid(), "2.5.29.16");
        expectTimes(period, row);
        expectTimes(CExtPrivateKeyUsagePeriod(blob(row.encoded)), row);
        changed.put_notBefore(row.notBefore);
        changed.put_notAfter(row.notAfter);
        expectTimes(changed, row);
        changed.put_notAfter(changed.get_notAfter());
        expectTimes(changed, row);
        EXPECT_GT(tests::failEveryAllocation([&] {
                      CExtPrivateKeyUsagePeriod target(period);
                      target.put_notBefore(row.notBefore);
                  }),
                  3);
        EXPECT_GT(tests::failEveryAllocation([&] { CExtPrivateKeyUsagePeriod(blob(row.encoded)); }),
                  3);
    }
    expectTimes(changed, rows[3]);
}

TEST(PrivateKeyUsagePeriod, IsEncodedAnewWhenItIsDecoded) {
    CExtPrivateKeyUsagePeriod period(nullptr, nullptr);
    period.value() = blob("3013801132303330303130323033303430352E355A0500");
    period.decode();
    EXPECT_EQ(*period.get_notBefore(), CDateTime(2030, 1, 2, 3, 4, 5, 500));
    EXPECT_EQ(period.get_value(), blob("3011800F32303330303130323033303430355A"));
    // Of two times the second is none.
    period.value() = blob("3014800F32303331303130323033303430355A810132");
    EXPECT_EQ(thrownCode([&] { period.decode(); }), E_INVALIDARG);
    EXPECT_EQ(*period.get_notBefore(), CDateTime(2030, 1, 2, 3, 4, 5, 500));
}

} // namespace
