#include <algorithm>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include <brevantis/asn1/runtime/object_identifier.h>

#include "support/data_file.h"

namespace {

using Arcs = std::vector<unsigned int>;

static_assert(std::is_aggregate_v<ASN1OBJID> && std::is_trivially_copyable_v<ASN1OBJID>);
static_assert(sizeof(ASN1TObjId) == sizeof(ASN1OBJID) && std::is_standard_layout_v<ASN1TObjId>);
static_assert(sizeof(ASN1TObjId64) == sizeof(ASN1OID64) && !std::is_polymorphic_v<ASN1TObjId64>);

constexpr ASN1OBJID Sha256 = {9, {2, 16, 840, 1, 101, 3, 4, 2, 1}};

ASN1OBJID makeOid(const Arcs& arcs) {
    ASN1OBJID oid{};
    oid.numids = static_cast<unsigned int>(arcs.size());
    std::copy(arcs.begin(), arcs.begin() + std::min<long>(128, static_cast<long>(arcs.size())),
              oid.subid);
    return oid;
}

Arcs arcsOf(const ASN1OBJID& oid) {
    return Arcs(oid.subid, oid.subid + std::min(oid.numids, 128u));
}

TEST(ObjectIdentifier, textFitsOrEndsAfterAWholeArc) {
    tests::forEachRow("object_identifier.txt", "written", [&](const tests::DataRow& row) {
        const std::string& expected = row["text"];
        const ASN1OBJID oid = makeOid(row.numbers("arcs"));
        ASSERT_EQ(rtOidToStrLen(&oid), expected.size());
        for (std::size_t size = 0; size <= expected.size() + 2; ++size) {
            const std::unique_ptr<char[]> text(new char[size]);
            const bool fits = size > expected.size();
            EXPECT_EQ(rtOidToStr(&oid, text.get(), size), fits ? 1 : 0) << size;
            if (size == 0) {
                continue;
            }
            const std::string written = text.get();
            EXPECT_EQ(written, expected.substr(0, written.size()));
            const char next = expected.c_str()[written.size()];
            EXPECT_TRUE(fits ? next == '\0' : written.empty() || next == '.') << written;
        }
    });
}

TEST(ObjectIdentifier, readsTextLeniently) {
    tests::forEachRow("object_identifier.txt", "read", [&](const tests::DataRow& row) {
        ASN1OBJID oid{};
        EXPECT_EQ(rtStrToOid(row["text"].c_str(), &oid), row.number<bool>("complete"));
        EXPECT_EQ(arcsOf(oid), row.numbers("arcs"));
    });
    ASN1OBJID oid{};
    EXPECT_TRUE(rtStrToOid("1.\t2", &oid)) << "any blank leads";
}

TEST(ObjectIdentifier, staysWithin128Arcs) {
    std::string text = "1";
    for (int i = 1; i < 128; ++i) {
        text += ".7";
    }
    // On the heap, so that a sanitizer sees an arc past the record.
    const auto oid = std::make_unique<ASN1OBJID>();
    EXPECT_TRUE(rtStrToOid(text.c_str(), oid.get()));
    EXPECT_EQ(oid->numids, 128u);
    std::string back(rtOidToStrLen(oid.get()) + 1, '?');
    EXPECT_EQ(rtOidToStr(oid.get(), back.data(), back.size()), 1);
    EXPECT_STREQ(back.c_str(), text.c_str());
    EXPECT_FALSE(rtStrToOid((text + ".8").c_str(), oid.get()));
    EXPECT_EQ(oid->numids, 128u);

    const auto arcs = std::make_unique<unsigned int[]>(128);
    const auto arcs64 = std::make_unique<long long[]>(128);
    std::fill_n(arcs.get(), 128, 5u);
    const auto many = std::make_unique<ASN1TObjId>(static_cast<unsigned char>(200), arcs.get());
    const auto many64 =
        std::make_unique<ASN1TObjId64>(static_cast<unsigned char>(200), arcs64.get());
    EXPECT_EQ(many->numids, 200u);
    EXPECT_EQ(many64->numids, 200u);
    EXPECT_EQ(many->subid[127], 5u);

    many->numids = 0xFFFFFFFF;
    const auto target = std::make_unique<ASN1TObjId>();
    rtSetOID(target.get(), many.get());
    EXPECT_EQ(target->numids, 0xFFFFFFFF);
    EXPECT_TRUE(*target == *many);
    EXPECT_EQ(rtCopyOID(nullptr, many.get(), target.get()), 1);
    EXPECT_EQ(std::make_unique<ASN1TObjId>(*many)->numids, 0xFFFFFFFF);
    std::string cut(rtOidToStrLen(target.get()) + 1, '?');
    EXPECT_EQ(rtOidToStr(target.get(), cut.data(), cut.size()), 0);
    EXPECT_EQ(cut.size(), 256u);
}

TEST(ObjectIdentifier, copiesTheArcsInUseAlone) {
    ASN1OBJID pattern = makeOid(Arcs(128, 77));
    const ASN1OBJID small = makeOid({1, 2});
    const auto check = [](const ASN1OBJID& oid) {
        EXPECT_EQ(arcsOf(oid), (Arcs{1, 2}));
        EXPECT_EQ(oid.subid[2], 77u);
        EXPECT_EQ(oid.subid[127], 77u);
    };
    ASN1TObjId value(pattern);
    value = small;
    check(value);
    value = pattern;
    value = ASN1TObjId(small);
    check(value);
    rtSetOID(&pattern, &small);
    check(pattern);
    rtSetOID(&pattern, &pattern);
    check(pattern);

    const long long wide[] = {1, 1LL << 40, -3};
    ASN1TObjId64 value64(3, wide);
    const ASN1TObjId64 copy64(value64);
    value64 = ASN1TObjId64(1, wide + 1);
    value64 = static_cast<const ASN1OID64&>(copy64);
    EXPECT_EQ(value64.numids, 3u);
    EXPECT_EQ(value64.subid[1], 1LL << 40);
    EXPECT_EQ(value64.subid[2], -3);

    const ASN1OBJID empty{};
    EXPECT_EQ(rtCopyOID(nullptr, &empty, &value), 1);
    EXPECT_EQ(value.numids, 0u);
    EXPECT_EQ(rtCopyOID(nullptr, nullptr, &value), 0);
    EXPECT_EQ(rtCopyOID(nullptr, &empty, nullptr), 0);
}

TEST(ObjectIdentifier, comparesCountAndArcsInUse) {
    struct Row {
        ASN1OBJID left;
        ASN1OBJID right;
        bool equal;
    };
    ASN1OBJID longerArray = makeOid({1, 2, 3});
    longerArray.numids = 2;
    const Row rows[] = {
        {makeOid({}), makeOid({}), true},          {Sha256, Sha256, true},
        {makeOid({1, 2}), longerArray, true},      {makeOid({1, 2}), makeOid({1, 2, 3}), false},
        {makeOid({1, 2}), makeOid({1, 3}), false},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(row.left == row.right, row.equal);
        EXPECT_EQ(row.left != row.right, !row.equal);
        for (auto* compare : {rtCmpOIDValue, rtCmpOID}) {
            char text[2] = {'x', 'y'};
            EXPECT_EQ(compare("oid", &row.left, &row.right, text), row.equal ? 1 : 0);
            EXPECT_EQ(text[0], row.equal ? 'x' : '\0');
            EXPECT_EQ(text[1], 'y');
        }
    }
}

} // namespace
