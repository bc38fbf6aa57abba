#ifndef TESTS_SUPPORT_WALK_AGREEMENT_H
#define TESTS_SUPPORT_WALK_AGREEMENT_H

#include <algorithm>
#include <vector>

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

/// Checks of a walk that goes on behind faults that each octet is reported.
class CoveringVisitor : public CountingVisitor {
public:
    explicit CoveringVisitor(std::size_t size) : covered_(size) {}

    asn1data::WalkInterest interest() const override { return {true, true, true}; }
    asn1data::WalkAction enter(const asn1data::WalkElement& element) override {
        cover(element.assembled, element.offset, element.headerLength);
        return CountingVisitor::enter(element);
    }
    asn1data::WalkAction leave(const asn1data::WalkElement& element) override {
        if (element.encapsulates || element.object != nullptr) {
            cover(element.assembled, element.offset, sizeOf(element));
        }
        return CountingVisitor::leave(element);
    }
    asn1data::WalkAction primitive(const asn1data::WalkElement& element) override {
        cover(element.assembled, element.offset, sizeOf(element));
        return CountingVisitor::primitive(element);
    }
    asn1data::WalkAction fault(const asn1data::WalkFault& fault) override {
        ++faults;
        EXPECT_LT(fault.failure.status, 0);
        cover(fault.assembled, fault.offset, fault.size);
        return asn1data::WalkAction::Continue;
    }

    /// The first octet that has not been reported, but for end-of-contents.
    std::size_t uncovered(const Octets& message) const {
        std::size_t place = 0;
        while (place < message.size() && (covered_[place] || message[place] == 0)) {
            ++place;
        }
        return place;
    }

    unsigned faults = 0;

private:
    /// As the header has it: behind a typed open value octets may be left over, which nobody reads.
    /// All that is left where nobody closes an element of indefinite length.
    std::size_t sizeOf(const asn1data::WalkElement& element) const {
        const std::size_t left = covered_.size() - element.offset;
        const bool inMessage = !element.assembled && element.offset < covered_.size();
        const unsigned size = inMessage ? asn1data::elementSize(element, element.data + left) : 0;
        if (element.contentLength == ASN1IndefiniteLength) {
            return size != 0 ? size : left;
        }
        const auto told = element.headerLength + static_cast<std::size_t>(element.contentLength);
        return element.object != nullptr ? std::max<std::size_t>(size, told) : told;
    }
    void cover(bool assembled, std::size_t offset, std::size_t size) {
        for (std::size_t i = offset; !assembled && i < offset + size; ++i) {
            ASSERT_LT(i, covered_.size());
            covered_[i] = true;
        }
    }

    std::vector<bool> covered_;
};

/// Walks a message to its end, over all faults in it.
/// @param plain how a walk ends that stops at the first one
inline void expectWalkGoesOn(const asn1data::TypeDescription& type, const Octets& message,
                             const asn1data::WalkResult& plain, unsigned elements) {
    const Reader walked(message);
    const unsigned char* const octets = const_cast<Reader&>(walked)->buffer.data;
    CoveringVisitor visitor(message.size());
    const asn1data::WalkResult result = asn1data::walk(type, octets, message.size(), visitor);
    EXPECT_EQ(result.status, plain.status);
    EXPECT_EQ(asn1data::failureText(result.failure), asn1data::failureText(plain.failure));
    EXPECT_EQ(visitor.faults != 0, plain.status != 0);
    EXPECT_EQ(visitor.depth, 0U);
    if (plain.status == 0) {
        EXPECT_EQ(visitor.elements, elements);
        EXPECT_EQ(result.consumed, plain.consumed);
    }
}

/// A damaged message, whose octets are all reported, in elements or with faults. Of a value of
/// indefinite length, and of one that is cut off, the decoder may look at less: this is for
/// messages that are little damaged, not for any octets.
inline void expectEveryOctetTold(const asn1data::TypeDescription& type, const Octets& message) {
    if (std::find(message.begin(), message.end(), 0x80) != message.end()) {
        return;
    }
    CoveringVisitor visitor(message.size());
    const asn1data::WalkResult result =
        asn1data::walk(type, message.data(), message.size(), visitor);
    EXPECT_GE(visitor.uncovered(message) + 3, result.consumed);
}

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
    if (policy.flags == 0 && policy.elementLimit == 0 && policy.depthLimit == 64) {
        expectWalkGoesOn(type, message, result, visitor.elements);
    }
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
        const int status = expectWalkAgrees(type, message);
        statuses_.add(status);
        if (status != 0) {
            expectEveryOctetTold(type, message);
        }
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
