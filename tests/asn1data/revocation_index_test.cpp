#include <algorithm>
#include <map>
#include <random>
#include <string>

#include <brevantis/asn1/asn1data/revocation_list.h>
#include <brevantis/asn1/runtime.h>
#include <gtest/gtest.h>

#include "index_format.h"
#include "support/heap_copy.h"
#include "support/revocation_list_builder.h"

namespace {

using namespace asn1data;
using tests::append;
using tests::HeapCopy;
using tests::issuerExtension;
using tests::Octets;
using tests::randomSerial;
using tests::reasonExtension;
using tests::revocationList;
using tests::revokedEntry;

/// A list in a block of its own size, opened.
struct Opened {
    explicit Opened(const Octets& octets) : message(octets) {
        EXPECT_EQ(list.open(message.data(), message.size()), 0);
    }
    HeapCopy message;
    RevocationList list;
};

/// The number that an INTEGER is, so that two are the same when the numbers are.
std::string numberOf(OctetSpan serial) {
    std::string octets(serial.data, serial.data + serial.size);
    const char fill = !octets.empty() && (octets[0] & '\x80') != 0 ? '\xFF' : '\0';
    return std::string(40 - octets.size(), fill) + octets;
}

/// Places of the entries by serial number, as a linear search finds them.
using Places = std::map<std::string, std::vector<const unsigned char*>>;

Places search(const RevocationList& list) {
    Places places;
    RevokedEntries entries(list);
    for (RevokedEntry entry; entries.next(entry);) {
        places[numberOf(entry.serialNumber)].push_back(entry.octets.data);
    }
    EXPECT_EQ(entries.status(), 0);
    return places;
}

std::vector<const unsigned char*> matchesOf(const RevocationIndex& index, OctetSpan serial) {
    std::vector<const unsigned char*> places;
    RevokedMatches found(index, serial.data, serial.size);
    for (RevokedEntry entry; found.next(entry);) {
        places.push_back(entry.octets.data);
    }
    EXPECT_EQ(found.status(), 0);
    return places;
}

std::vector<const unsigned char*> matches(const RevocationIndex& index, const Octets& serial) {
    return matchesOf(index, {serial.data(), serial.size()});
}

/// An index finds each entry where a linear search finds it, and nothing else.
void expectComplete(const RevocationIndex& index, const RevocationList& list,
                    std::mt19937& random) {
    const Places places = search(list);
    std::size_t count = 0;
    for (const auto& [number, expected] : places) {
        RevokedEntry entry;
        const auto* serial =
            static_cast<const unsigned char*>(static_cast<const void*>(number.data()));
        ASSERT_EQ(matchesOf(index, {serial, number.size()}), expected);
        ASSERT_EQ(index.find(serial, number.size(), entry), 0);
        EXPECT_EQ(entry.octets.data, expected.front());
        EXPECT_EQ(numberOf(entry.serialNumber), number);
        count += expected.size();
    }
    EXPECT_EQ(index.entryCount(), count);
    for (int i = 0; i < 1000; ++i) {
        const Octets serial = randomSerial(random, 20);
        const auto found = places.find(numberOf({serial.data(), serial.size()}));
        EXPECT_EQ(matches(index, serial),
                  found != places.end() ? found->second : std::vector<const unsigned char*>());
    }
}

Octets randomList(std::mt19937& random, std::size_t count, std::size_t longestSerial) {
    Octets entries;
    for (std::size_t i = 0; i < count; ++i) {
        append(entries, revokedEntry(randomSerial(random, longestSerial),
                                     random() % 3 == 0 ? reasonExtension(1) : Octets()));
    }
    return revocationList(entries);
}

TEST(RevocationIndex, FindsWhatALinearSearchFinds) {
    std::mt19937 random(8);
    for (const std::size_t count : {0U, 1U, 2U, 3U, 10U, 100U, 1000U, 30000U}) {
        // Short serial numbers come many times, and in several forms.
        for (const std::size_t longest : {2U, 20U}) {
            SCOPED_TRACE(testing::Message() << count << " entries, serial up to " << longest);
            const Opened list(randomList(random, count, longest));
            RevocationIndex index;
            ASSERT_EQ(index.build(list.list), 0);
            EXPECT_EQ(index.octets().size, 64 + 8 * count);
            expectComplete(index, list.list, random);

            // The same octets from elsewhere, at any address.
            Octets kept{0};
            kept.insert(kept.end(), index.octets().data, index.octets().data + index.octets().size);
            const HeapCopy copy(kept);
            RevocationIndex again;
            ASSERT_EQ(again.load(list.list, copy.data() + 1, copy.size() - 1), 0);
            expectComplete(again, list.list, random);
        }
    }
}

TEST(RevocationIndex, ComparesNumbers) {
    Octets entries = revokedEntry({0x00, 0x90});
    append(entries, revokedEntry({0x90}));
    append(entries, revokedEntry({0x00, 0x00, 0x90}));
    append(entries, revokedEntry({}));
    append(entries, revokedEntry({0xFF, 0xFF, 0x90}));
    append(entries, revokedEntry({0x00}));
    append(entries, revokedEntry(Octets(100000, 0x55)));
    const Opened list(revocationList(entries));
    RevocationIndex index;
    ASSERT_EQ(index.build(list.list), 0);
    EXPECT_EQ(matches(index, {0x00, 0x90}).size(), 2u);
    EXPECT_EQ(matches(index, {0x90}).size(), 2u);
    EXPECT_EQ(matches(index, {0x00, 0x00, 0x00}).size(), 2u);
    EXPECT_EQ(matchesOf(index, {nullptr, 0}).size(), 2u);
    EXPECT_EQ(matches(index, Octets(100000, 0x55)).size(), 1u);
    EXPECT_EQ(matches(index, Octets(99999, 0x55)).size(), 0u);
    RevokedEntry entry;
    const unsigned char other = 0x05;
    EXPECT_EQ(index.find(&other, 1, entry), ASN1S_MISSING_ELEMENT);
}

// As many entries as one likes may have the same serial number. A quadratic step would take hours.
TEST(RevocationIndex, OfOneSerialNumber) {
    Octets entries;
    const Octets entry = revokedEntry({0x2A});
    for (int i = 0; i < 300000; ++i) {
        append(entries, entry);
    }
    const Opened list(revocationList(entries));
    RevocationIndex index;
    ASSERT_EQ(index.build(list.list), 0);
    const auto found = matches(index, {0x2A});
    EXPECT_EQ(found.size(), 300000u);
    EXPECT_TRUE(std::is_sorted(found.begin(), found.end()));
    EXPECT_EQ(matches(index, {0x2B}).size(), 0u);
}

TEST(RevocationIndex, TellsWhoseEntriesTheyAre) {
    std::mt19937 random(3);
    Octets octets;
    for (int i = 0; i < 3000; ++i) {
        const bool named = i > 700 && random() % (i < 2000 ? 200 : 3) == 0;
        append(octets, revokedEntry(randomSerial(random, 1),
                                    named ? issuerExtension("ca" + std::to_string(i)) : Octets()));
    }
    const Opened list(revocationList(octets));
    RevocationIndex index;
    ASSERT_EQ(index.build(list.list), 0);
    EXPECT_LE(index.octets().size, 64u + 3000 * 8 + 16 * (3000 / 256 + 1));
    std::map<const unsigned char*, RevokedEntry> expected;
    RevokedEntries entries(list.list);
    for (RevokedEntry entry; entries.next(entry);) {
        expected[entry.octets.data] = entry;
    }
    std::size_t found = 0;
    std::size_t inherited = 0;
    for (unsigned serial = 0; serial < 256; ++serial) {
        const auto octet = static_cast<unsigned char>(serial);
        RevokedMatches same(index, &octet, 1);
        for (RevokedEntry entry; same.next(entry); ++found) {
            const RevokedEntry& walked = expected.at(entry.octets.data);
            EXPECT_EQ(entry.certificateIssuer.data, walked.certificateIssuer.data);
            EXPECT_EQ(entry.certificateIssuer.size, walked.certificateIssuer.size);
            EXPECT_EQ(entry.issuerInherited, walked.issuerInherited);
            inherited += entry.issuerInherited ? 1 : 0;
        }
    }
    EXPECT_EQ(found, 3000u);
    EXPECT_GT(inherited, 800u);
    EXPECT_LT(inherited, 2299u);
}

TEST(RevocationIndex, OfAListThatCannotBeRead) {
    Octets entries = revokedEntry({1});
    append(entries, {0x31, 0x00});
    const Opened list(revocationList(entries));
    RevocationIndex index;
    ASSERT_EQ(index.build(Opened(revocationList(revokedEntry({1}))).list), 0);
    EXPECT_EQ(index.build(list.list), ASN1S_TAG_NOT_FOUND);
    EXPECT_EQ(index.entryCount(), 0u);
    EXPECT_EQ(index.octets().size, 0u);
    EXPECT_EQ(matches(index, {1}).size(), 0u);
    EXPECT_EQ(matches(RevocationIndex(), {1}).size(), 0u);
    // A list that was never opened has no entries.
    EXPECT_EQ(index.build(RevocationList()), 0);
    EXPECT_EQ(matches(index, {1}).size(), 0u);
}

TEST(RevocationIndex, Moves) {
    const Opened list(revocationList(revokedEntry({1})));
    RevocationIndex index;
    ASSERT_EQ(index.build(list.list), 0);
    RevocationIndex other(std::move(index));
    EXPECT_EQ(matches(other, {1}).size(), 1u);
    index = std::move(other);
    EXPECT_EQ(matches(index, {1}).size(), 1u);
    EXPECT_EQ(matches(other, {1}).size(), 0u); // NOLINT(bugprone-use-after-move): it is empty
}

TEST(RevocationIndex, RefusesWhatDoesNotFit) {
    std::mt19937 random(5);
    const Octets octets = randomList(random, 40, 20);
    const Opened list(octets);
    RevocationIndex built;
    ASSERT_EQ(built.build(list.list), 0);
    const Octets kept(built.octets().data, built.octets().data + built.octets().size);

    RevocationIndex index;
    EXPECT_EQ(index.load(list.list, nullptr, 0), ASN1S_BAD_VALUE);
    for (std::size_t size = 0; size < kept.size(); ++size) {
        const HeapCopy cut(Octets(kept.begin(), kept.begin() + static_cast<std::ptrdiff_t>(size)));
        EXPECT_EQ(index.load(list.list, cut.data(), cut.size()), ASN1S_BAD_VALUE) << size;
    }
    for (std::size_t i = 0; i < kept.size(); ++i) {
        for (const unsigned change : {0x01U, 0x80U}) {
            Octets changed = kept;
            changed[i] = static_cast<unsigned char>(changed[i] ^ change);
            const HeapCopy damaged(changed);
            constexpr std::size_t versionPlace = 7;
            EXPECT_EQ(index.load(list.list, damaged.data(), damaged.size()),
                      i == versionPlace ? ASN1S_NOT_SUPPORTED : ASN1S_BAD_VALUE)
                << i;
            EXPECT_EQ(index.entryCount(), 0u);
        }
    }
    // Every octet of the list counts, those outside the entries too.
    for (std::size_t i = 0; i < octets.size(); ++i) {
        HeapCopy changed(octets);
        changed.data()[i] = static_cast<unsigned char>(changed.data()[i] ^ 0x01);
        RevocationList other;
        if (other.open(changed.data(), changed.size()) == 0) {
            EXPECT_EQ(index.load(other, kept.data(), kept.size()), ASN1S_INVALID_PARAMETER) << i;
        }
    }
    const Opened longer(randomList(random, 41, 20));
    EXPECT_EQ(index.load(longer.list, kept.data(), kept.size()), ASN1S_INVALID_PARAMETER);
    EXPECT_EQ(index.load(list.list, kept.data(), kept.size()), 0);
}

/// Puts the digest in that an index with these octets has.
void seal(Octets& index) {
    using namespace revocation_list;
    OctetDigest header;
    OctetDigest rest;
    storeNumber(index.data() + DigestPlace,
                mixed(header.finish(index.data(), DigestPlace)) ^
                    rest.finish(index.data() + HeaderSize, index.size() - HeaderSize));
}

// Whoever can compute the digest can make an index say anything. It then misses entries, or is told
// to be wrong, but what it gives is an entry of that serial number, and no access leaves the list.
TEST(RevocationIndex, ForgedOnesStayWithinTheList) {
    std::mt19937 random(6);
    Octets octets;
    for (int i = 0; i < 600; ++i) {
        append(octets, revokedEntry(randomSerial(random, 2),
                                    i % 100 == 7 ? issuerExtension("ca") : Octets()));
    }
    const Opened list(revocationList(octets));
    RevocationIndex built;
    ASSERT_EQ(built.build(list.list), 0);
    const Octets kept(built.octets().data, built.octets().data + built.octets().size);
    unsigned wrong = 0;
    for (int i = 0; i < 2000; ++i) {
        Octets changed = kept;
        const std::size_t most = random() % 2 == 0 ? 1 : changed.size() / 4;
        for (auto harms = random() % most + 1; harms != 0; --harms) {
            // The fields from the list's size to the count of checkpoints are checked one by one.
            const std::size_t place = random() % changed.size();
            if (place >= revocation_list::HeaderSize || place == revocation_list::SortedBitsPlace) {
                changed[place] =
                    static_cast<unsigned char>(random() % 4 == 0 ? random() % 70 : random());
            }
        }
        seal(changed);
        const HeapCopy forged(changed);
        RevocationIndex index;
        if (index.load(list.list, forged.data(), forged.size()) != 0) {
            continue;
        }
        for (int k = 0; k < 20; ++k) {
            const Octets serial = randomSerial(random, 2);
            RevokedMatches found(index, serial.data(), serial.size());
            for (RevokedEntry entry; found.next(entry);) {
                EXPECT_EQ(numberOf(entry.serialNumber), numberOf({serial.data(), serial.size()}));
            }
            wrong += found.status() != 0 ? 1U : 0U;
        }
    }
    EXPECT_GT(wrong, 10u);

    // Counts that wrap around.
    Octets wrapping = kept;
    revocation_list::storeNumber(wrapping.data() + revocation_list::CountPlace,
                                 (UINT64_C(1) << 61) + 600);
    seal(wrapping);
    RevocationIndex index;
    EXPECT_EQ(index.load(list.list, wrapping.data(), wrapping.size()), ASN1S_BAD_VALUE);
}

} // namespace
