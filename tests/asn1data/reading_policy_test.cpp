#include <algorithm>
#include <string>

#include <brevantis/asn1/asn1data.h>
#include <brevantis/asn1/runtime.h>
#include <gtest/gtest.h>

#include "support/coding.h"
#include "support/damaged_values.h"
#include "support/walk_agreement.h"

// How strictly messages are read: each policy on values of every type, whole and damaged, and on
// messages of the shapes that each is for.

namespace {

using namespace asn1data;
using tests::Octets;

struct Named {
    const char* name;
    int flags;
};

constexpr Named policies[] = {
    {"tolerant of open values", ASN1F_TOLERATE_OPEN_VALUES},
    {"tolerant", ASN1F_TOLERATE_OPEN_VALUES | ASN1F_TOLERATE_SIZES},
    {"exact", ASN1F_EXACT},
    {"DER", ASN1F_DER},
    {"exact DER", ASN1F_EXACT | ASN1F_DER},
    {"exact and tolerant", ASN1F_EXACT | ASN1F_TOLERATE_OPEN_VALUES | ASN1F_TOLERATE_SIZES},
};

/// What is encoded of a value that was decoded under policies; nothing when one of both fails.
Octets recoded(const TypeDescription& type, const Octets& message, int flags) {
    tests::Reader reader(message);
    rtCtxtSetFlag(reader, flags);
    xd_setp(reader, reader->buffer.data, static_cast<int>(message.size()), nullptr, nullptr);
    void* const value = family::newRecord(reader, type);
    if (family::decode(reader, type, value, ASN1TagExplicit, 0) != 0) {
        return {};
    }
    tests::Writer writer;
    rtCtxtSetFlag(writer, flags);
    const int count = family::encode(writer, type, value, ASN1TagExplicit);
    EXPECT_GE(count, 0) << type.name << " of " << tests::toHex(message);
    return count < 0 ? Octets() : Octets(xe_getp(writer), xe_getp(writer) + count);
}

/// Whether octets are whole elements, one behind the other.
bool areElements(const Octets& octets) {
    tests::Reader reader(octets);
    while (reader.position() < octets.size()) {
        if (xd_NextElement(reader) != 0) {
            return false;
        }
    }
    return !octets.empty();
}

/// Elements in the order of their octets.
Octets sorted(const Octets& octets) {
    std::vector<Octets> elements;
    for (tests::Reader reader(octets); reader.position() < octets.size();) {
        const auto start = octets.begin() + reader.position();
        xd_NextElement(reader);
        elements.emplace_back(start, octets.begin() + reader.position());
    }
    std::sort(elements.begin(), elements.end());
    Octets all;
    for (const Octets& element : elements) {
        tests::append(all, element);
    }
    return all;
}

/// The elements in octets with definite lengths, strings in one piece, those of a SET in order; in
/// OCTET STRINGs likewise.
Octets canonical(const Octets& octets) {
    if (!areElements(octets)) {
        return octets;
    }
    tests::Reader reader(octets);
    Octets all;
    while (reader.position() < octets.size()) {
        const unsigned start = reader.position();
        ASN1Header header{};
        rtReadHeader(octets.data() + start, static_cast<unsigned>(octets.size()) - start, &header);
        xd_NextElement(reader);
        const bool open = header.length == ASN1IndefiniteLength;
        Octets contents(octets.begin() + start + header.size,
                        octets.begin() + reader.position() - (open ? 2 : 0));
        auto identifier = octets[start];
        const unsigned number = identifier & 0x1F;
        const bool isSegmented =
            identifier < 0x40 && identifier >= 0x20 && number != 16 && number != 17;
        if (isSegmented) {
            Octets joined;
            for (tests::Reader segments(contents); segments.position() < contents.size();) {
                int length = 0;
                ASN1TAG tag = 0;
                xd_tag_len(segments, &tag, &length, ASN1MatchAdvance);
                const auto from = contents.begin() + segments.position();
                joined.insert(joined.end(), from, from + length);
                segments->buffer.byteIndex += static_cast<unsigned>(length);
            }
            contents = joined;
            identifier = static_cast<unsigned char>(identifier & 0xDF);
        }
        if ((identifier & 0x20) != 0 || (identifier == 0x04 && areElements(contents))) {
            contents = canonical(contents);
        }
        if (identifier == 0x31) {
            contents = sorted(contents);
        }
        tests::append(all, tests::elementOf(identifier, contents, false));
    }
    return all;
}

/// What is not DER in a message.
class DeviationList : public DerVisitor {
public:
    explicit DeviationList(const Octets& message) : DerVisitor(message.data(), message.size()) {}

    WalkAction enter(const WalkElement& element) override {
        segments(element);
        return DerVisitor::enter(element);
    }
    WalkAction primitive(const WalkElement& element) override {
        segments(element);
        return DerVisitor::primitive(element);
    }
    WalkAction deviates(const Deviation& deviation) override {
        ++count;
        const std::string clause = deviation.clause;
        ofFormAlone = ofFormAlone && (clause == "10.1" || clause == "10.2" || clause == "10.3" ||
                                      clause == "11.6");
        return WalkAction::Continue;
    }

    unsigned count = 0;
    bool ofFormAlone = true; ///< what the octets tell without their types

private:
    void segments(const WalkElement& element) {
        ofFormAlone = ofFormAlone && !(element.segmented && element.tag >= 0x40000000);
    }
};

/// Checks what each policy promises of a message.
class PolicyAgreement {
public:
    bool check(const TypeDescription& type, const Octets& message) {
        for (const Named& policy : policies) {
            SCOPED_TRACE(policy.name);
            statuses_.add(tests::expectWalkAgrees(type, message, policy.flags));
        }
        for (const int flags : {0, ASN1F_TOLERATE_OPEN_VALUES | ASN1F_TOLERATE_SIZES}) {
            ReadingPolicy limited(flags);
            limited.elementLimit = 1 + static_cast<unsigned>(message.size() % 13);
            limited.depthLimit = static_cast<unsigned>(message.size() % 4);
            SCOPED_TRACE("limited");
            statuses_.add(tests::expectWalkAgrees(type, message, limited));
        }
        const int status = explain(type, message.data(), message.size()).status;
        const auto accepts = [&](int flags) {
            return explain(type, message.data(), message.size(), flags).status == 0;
        };
        EXPECT_FALSE(status == 0 && !accepts(ASN1F_TOLERATE_OPEN_VALUES | ASN1F_TOLERATE_SIZES))
            << "what is accepted without a policy";
        EXPECT_FALSE(status != 0 && accepts(ASN1F_EXACT)) << "a strict policy accepts nothing else";
        if (!message.empty() && accepts(ASN1F_EXACT)) {
            expectUnchanged(type, message);
        }
        if (testing::Test::HasFailure()) {
            ADD_FAILURE() << type.name << " of " << tests::toHex(message);
            return false;
        }
        return true;
    }

private:
    /// DER comes out as it went in; of other messages the same elements come out.
    void expectUnchanged(const TypeDescription& type, const Octets& message) {
        const Octets once = recoded(type, message, ASN1F_EXACT);
        tests::Reader reader(message);
        ASSERT_EQ(xd_NextElement(reader), 0);
        const auto end = message.begin() + static_cast<std::ptrdiff_t>(reader.position());
        const Octets whole(message.begin(), end);
        DeviationList deviations(message);
        walk(type, message.data(), message.size(), deviations);
        if (deviations.ofFormAlone) {
            EXPECT_EQ(tests::toHex(canonical(once)), tests::toHex(canonical(whole)));
        }
        if (deviations.count == 0) {
            EXPECT_EQ(tests::toHex(once), tests::toHex(whole)) << "DER is not changed";
        }
    }

    tests::StatusTally statuses_;
};

TEST(ReadingPolicy, OnDamagedValuesOfTheCatalogue) {
    PolicyAgreement agreement;
    tests::checkDamagedValues(allTypes(), 4, 20, agreement);
}

// A tag number of too many bits is read as far as it goes, and what is behind it is a message.
TEST(ReadingPolicy, StrictOnesWantTheMessageAtTheBeginning) {
    const Octets message = tests::fromHex("FF D5 FE F6 B5 01 06 03 2A 03 04");
    for (const int flags : {0, int{ASN1F_EXACT}, int{ASN1F_DER}}) {
        ASN1BERDecodeBuffer buffer(message.data(), static_cast<int>(message.size()));
        rtCtxtSetFlag(buffer.getCtxtPtr(), flags);
        ASN1T_ContentType identifier;
        const int status = ASN1C_ContentType(buffer, identifier).Decode();
        EXPECT_EQ(status, flags == 0 ? 0 : ASN1S_BAD_TAG);
        EXPECT_EQ(tests::expectWalkAgrees(*findType("ContentType"), message, flags), status);
    }
}

} // namespace
