#ifndef TESTS_SUPPORT_WALK_AGREEMENT_H
#define TESTS_SUPPORT_WALK_AGREEMENT_H

#include <brevantis/asn1/asn1data/family.h>
#include <brevantis/asn1/asn1data/reading_policy.h>
#include <gtest/gtest.h>

#include "support/coding.h"
#include "support/status_tally.h"

namespace tests {

/// Counts what a walk reports, and checks that it says so consistently.
class CountingVisitor : public asn1data::WalkVisitor {
public:
    asn1data::WalkAction enter(const asn1data::WalkElement& element) override {
        check(element);
        ++depth;
        return asn1data::WalkAction::Continue;
    }
    asn1data::WalkAction leave(const asn1data::WalkElement& element) override {
        --depth;
        EXPECT_EQ(element.depth, depth);
        return asn1data::WalkAction::Continue;
    }
    asn1data::WalkAction primitive(const asn1data::WalkElement& element) override {
        check(element);
        return asn1data::WalkAction::Continue;
    }
    unsigned depth = 0;
    unsigned elements = 0;

private:
    void check(const asn1data::WalkElement& element) {
        ++elements;
        EXPECT_EQ(element.depth, depth);
        EXPECT_LE(element.offset, element.valueOffset);
        EXPECT_LT(element.valueOffset, element.offset + element.headerLength);
    }
};

/// Decodes and walks a message, which stands in a block of exactly its size.
/// @param policy in force in both
/// @return the status that both give
inline int expectWalkAgrees(const asn1data::TypeDescription& type, const Octets& message,
                            const asn1data::ReadingPolicy& policy = {}) {
    using namespace asn1data;
    const auto decode = [&](Reader& reader, int flags) {
        rtCtxtSetFlag(reader, flags | policy.flags);
        rtCtxtSetElementLimit(reader, policy.elementLimit);
        rtCtxtSetDepthLimit(reader, policy.depthLimit);
        unsigned char* const octets = reader->buffer.data;
        if (!message.empty()) {
            const int bound =
                xd_setp(reader, octets, static_cast<int>(message.size()), nullptr, nullptr);
            // Control classes refuse it then, where a policy is strict.
            if ((policy.flags & (ASN1F_EXACT | ASN1F_DER)) != 0 && bound != ASN1S_SUCCESS &&
                bound != ASN1S_INVALID_LENGTH) {
                return bound;
            }
        }
        return family::decode(reader, type, family::newRecord(reader, type), ASN1TagExplicit, 0);
    };
    Reader reader(message);
    const int status = decode(reader, 0);
    const Reader walked(message);
    const unsigned char* const octets = const_cast<Reader&>(walked)->buffer.data;
    CountingVisitor visitor;
    const WalkResult result = walk(type, octets, message.size(), visitor, policy);
    EXPECT_EQ(result.status, status) << failureText(result.failure);
    EXPECT_EQ(result.failure.status, status);
    if (status == 0) {
        EXPECT_EQ(result.consumed, reader.position());
        EXPECT_EQ(visitor.depth, 0u);
        EXPECT_EQ(result.failure.expectation, Expectation::Nothing);
        return status;
    }
    const WalkFailure& failure = result.failure;
    EXPECT_EQ(failure.partOffset, reader.position()) << failureText(failure);
    EXPECT_NE(failure.expectation, Expectation::Nothing);
    // Where strings point into the message, so does a context that was left on an open value.
    Reader pointing(message);
    const unsigned char* const start = pointing->buffer.data;
    if (decode(pointing, ASN1F_NO_COPY) == status && pointing.position() == reader.position() &&
        !failure.assembled) {
        EXPECT_EQ(start + failure.offset, pointing->buffer.data + pointing.position())
            << failureText(failure);
    }
    return status;
}

/// Compares walks with decodings and prints at its end how they came out.
class WalkAgreement {
public:
    /// @return false after a difference
    bool check(const asn1data::TypeDescription& type, const Octets& message) {
        statuses_.add(expectWalkAgrees(type, message));
        if (testing::Test::HasFailure()) {
            ADD_FAILURE() << type.name << " of " << toHex(message);
            return false;
        }
        return true;
    }

private:
    StatusTally statuses_;
};

} // namespace tests

#endif
