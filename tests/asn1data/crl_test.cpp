#include <stdexcept>
#include <string>

#include <brevantis/asn1/asn1data/oids.h>
#include <brevantis/asn1/asn1data/x509.h>
#include <brevantis/asn1/runtime.h>
#include <gtest/gtest.h>

#include "support/damaged_message.h"
#include "support/data_file.h"
#include "support/hex.h"

namespace {

using namespace asn1data;
using tests::dataRows;
using tests::Octets;
using tests::toHex;

/// The octets of a list in the data file.
Octets listOf(const std::string& what) {
    for (const auto& row : dataRows("crl.txt", "lists")) {
        if (row["what"] == what) {
            return tests::fromHex(row["octets"]);
        }
    }
    throw std::runtime_error("no list: " + what);
}

struct Decoded {
    explicit Decoded(const Octets& message)
        : buffer(message.data(), static_cast<int>(message.size())), control(buffer, value) {
        status = control.Decode();
    }
    ASN1T_TBSCertList& list() { return value.tbsCertList; }
    std::string encode() {
        ASN1BEREncodeBuffer output;
        const int size = ASN1C_CertificateList(output, value).Encode();
        return size < 0 ? rtStatusName(size)
                        : toHex(output.getMsgPtr(), static_cast<std::size_t>(size));
    }
    ASN1BERDecodeBuffer buffer;
    ASN1T_CertificateList value;
    ASN1C_CertificateList control;
    int status;
};

const ASN1T_TBSCertList_revokedCertificates_element& entry(const ASN1T_TBSCertList& list,
                                                           int index) {
    const Asn1RTDListNode* node = rtDListFindByIndex(&list.revokedCertificates, index);
    return *static_cast<const ASN1T_TBSCertList_revokedCertificates_element*>(node->data);
}

TEST(Crl, ComesBackOctetForOctet) {
    for (const auto& row : dataRows("crl.txt", "lists")) {
        SCOPED_TRACE(row["what"]);
        const Octets message = tests::fromHex(row["octets"]);
        const auto entries = row.number<unsigned>("entries");
        Decoded decoded(message);
        ASSERT_EQ(decoded.status, 0);
        EXPECT_EQ(decoded.encode(), toHex(message));
        EXPECT_EQ(decoded.list().m.revokedCertificatesPresent, entries != 0);
        EXPECT_EQ(decoded.list().m.nextUpdatePresent, 1u);
        EXPECT_EQ(decoded.list().revokedCertificates.count, entries);
    }
}

TEST(Crl, HoldsWhatWasRevoked) {
    const Octets message = listOf("two entries");
    Decoded decoded(message);
    ASSERT_EQ(decoded.status, 0);
    ASSERT_EQ(decoded.list().revokedCertificates.count, 2u);
    const auto& first = entry(decoded.list(), 0);
    EXPECT_STREQ(first.userCertificate, "0x10");
    EXPECT_STREQ(first.revocationDate.u.utcTime, "240101000000Z");
    ASSERT_TRUE(first.m.crlEntryExtensionsPresent);
    const auto* reason = static_cast<const ASN1T_Extension*>(first.crlEntryExtensions.head->data);
    EXPECT_TRUE(reason->extnID == id_ce_reasonCode);
    EXPECT_EQ(toHex(reason->extnValue.data, reason->extnValue.numocts), "0A 01 01");
    const auto& second = entry(decoded.list(), 1);
    EXPECT_STREQ(second.userCertificate, "0x090000001");
    EXPECT_FALSE(second.m.crlEntryExtensionsPresent);
    EXPECT_EQ(decoded.list().crlExtensions.count, 2u);
}

TEST(Crl, OfManyEntries) {
    const Octets message = listOf("two entries");
    Decoded few(message);
    ASSERT_EQ(few.status, 0);
    Asn1RTDList& entries = few.list().revokedCertificates;
    while (entries.count < 10000) {
        rtDListAppend(few.buffer.getCtxtPtr(), &entries, entries.head->next->data);
        rtDListAppend(few.buffer.getCtxtPtr(), &entries, entries.head->data);
    }
    const std::string octets = few.encode();
    const Octets large = tests::fromHex(octets);
    Decoded many(large);
    ASSERT_EQ(many.status, 0);
    EXPECT_EQ(many.list().revokedCertificates.count, 10000u);
    // A comparison of texts of this length would not be read by anybody.
    EXPECT_TRUE(many.encode() == octets);
}

TEST(Crl, Damaged) {
    const Octets message = listOf("two entries");
    tests::DamagedMessage<ASN1T_CertificateList, ASN1C_CertificateList, asn1Free_CertificateList>
        damaged;
    damaged.cutAtEveryOctet(message);
    damaged.changeEveryOctet(message);
    EXPECT_GT(damaged.decoded(), 100u);
}

// RFC 5280 wants a nextUpdate, X.509 does not; what follows it must not be taken for it.
TEST(Crl, DecodesWithoutNextUpdate) {
    tests::forEachRow("crl.txt", "without nextUpdate", [&](const tests::DataRow& row) {
        const Octets message = tests::fromHex(row["octets"]);
        const auto entries = row.number<unsigned>("entries");
        Decoded decoded(message);
        ASSERT_EQ(decoded.status, 0);
        EXPECT_EQ(decoded.list().m.nextUpdatePresent, 0u);
        EXPECT_EQ(decoded.list().m.versionPresent, entries);
        EXPECT_EQ(decoded.list().revokedCertificates.count, entries);
        EXPECT_EQ(decoded.encode(), toHex(message));
    });
}

} // namespace
