#include <brevantis/asn1/asn1data/x509.h>
#include <gtest/gtest.h>

#include "support/ca_bundle.h"
#include "support/damaged_message.h"

namespace {

using DamagedCertificate =
    tests::DamagedMessage<asn1data::ASN1T_Certificate, asn1data::ASN1C_Certificate,
                          asn1data::asn1Free_Certificate>;

/// Each shard takes every so many-th certificate, so that the shards can run side by side.
constexpr std::size_t Shards = 16;

class DamagedCertificates : public testing::TestWithParam<std::size_t> {
protected:
    template <class Operation>
    void forEachCertificate(Operation operation) {
        const auto& bundle = tests::caBundle();
        if (bundle.empty()) {
            GTEST_SKIP() << tests::NoCaBundle;
        }
        DamagedCertificate damaged;
        for (std::size_t i = GetParam(); i < bundle.size() && !HasFatalFailure(); i += Shards) {
            operation(damaged, bundle[i]);
        }
        decoded_ = damaged.decoded();
    }
    std::size_t decoded_ = 0;
};

TEST_P(DamagedCertificates, CutAtEveryOctet) {
    forEachCertificate(
        [](auto& damaged, const tests::Octets& original) { damaged.cutAtEveryOctet(original); });
}

TEST_P(DamagedCertificates, WithEveryOctetChanged) {
    forEachCertificate(
        [](auto& damaged, const tests::Octets& original) { damaged.changeEveryOctet(original); });
    // Octets of names, keys and signatures are free: if nothing decodes any more, nothing is
    // tested.
    EXPECT_GT(decoded_, 1000u);
}

INSTANTIATE_TEST_SUITE_P(Shard, DamagedCertificates, testing::Range(std::size_t{0}, Shards));

} // namespace
