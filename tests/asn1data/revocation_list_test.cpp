#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

#include <brevantis/asn1/asn1data/extensions.h>
#include <brevantis/asn1/asn1data/oids.h>
#include <brevantis/asn1/asn1data/revocation_list.h>
#include <brevantis/asn1/asn1data/x509.h>
#include <brevantis/asn1/runtime.h>
#include <gtest/gtest.h>

#include "support/data_file.h"
#include "support/heap_copy.h"
#include "support/mutation.h"
#include "support/revocation_list_builder.h"

namespace {

using namespace asn1data;
using tests::append;
using tests::element;
using tests::fromHex;
using tests::HeapCopy;
using tests::issuerExtension;
using tests::Octets;
using tests::reasonExtension;
using tests::revocationList;
using tests::revokedEntry;
using tests::toHex;

/// An entry in words, from whoever read it.
struct EntryText {
    std::string serial;
    std::string date;
    std::string issuer;
    int reason;
    bool generalizedTime;
    bool extended;

    bool operator==(const EntryText& other) const {
        return serial == other.serial && date == other.date && issuer == other.issuer &&
               reason == other.reason && generalizedTime == other.generalizedTime &&
               extended == other.extended;
    }
};

std::ostream& operator<<(std::ostream& out, const EntryText& entry) {
    return out << entry.serial << ' ' << entry.date << ' ' << entry.reason << ' ' << entry.issuer;
}

std::string textOf(OctetSpan octets) {
    return toHex(octets.data, octets.size);
}

/// The text that the decoder gives a serial number.
std::string serialText(OctetSpan serial) {
    Octets encoded = element(0x02, {serial.data, serial.data + serial.size});
    ASN1BERDecodeBuffer buffer(encoded.data(), static_cast<int>(encoded.size()));
    const char* text = nullptr;
    EXPECT_EQ(xd_setp(buffer.getCtxtPtr(), encoded.data(), static_cast<int>(encoded.size()),
                      nullptr, nullptr),
              0);
    EXPECT_EQ(xd_bigint(buffer.getCtxtPtr(), &text, ASN1TagExplicit, 0), 0);
    return text;
}

/// Reads a list in place.
int readAll(const unsigned char* message, std::size_t size, std::vector<EntryText>& texts) {
    RevocationList list;
    if (const int status = list.open(message, size)) {
        EXPECT_EQ(list.octets().data, nullptr);
        EXPECT_EQ(list.entries().data, nullptr);
        return status;
    }
    RevokedEntries entries(list);
    for (RevokedEntry entry; entries.next(entry);) {
        const auto* date =
            static_cast<const char*>(static_cast<const void*>(entry.revocationDate.data));
        texts.push_back({serialText(entry.serialNumber),
                         std::string(date, strnlen(date, entry.revocationDate.size)),
                         entry.issuerInherited ? "" : textOf(entry.certificateIssuer), entry.reason,
                         entry.generalizedTime, entry.extensions.data != nullptr});
    }
    return entries.status();
}

/// Decodes a list, and takes from its records what the reader should have found.
int decodeAll(const unsigned char* message, std::size_t size, std::vector<EntryText>& texts) {
    ASN1BERDecodeBuffer buffer(message, static_cast<int>(size));
    ASN1T_CertificateList list;
    ASN1C_CertificateList control(buffer, list);
    if (const int status = control.Decode()) {
        return status;
    }
    const Asn1RTDListNode* node = list.tbsCertList.revokedCertificates.head;
    for (; list.tbsCertList.m.revokedCertificatesPresent && node != nullptr; node = node->next) {
        const auto& entry =
            *static_cast<const ASN1T_TBSCertList_revokedCertificates_element*>(node->data);
        const bool generalized = entry.revocationDate.t == T_Time_generalTime;
        const bool extended = entry.m.crlEntryExtensionsPresent != 0;
        EntryText text{entry.userCertificate,
                       generalized ? entry.revocationDate.u.generalTime
                                   : entry.revocationDate.u.utcTime,
                       "",
                       RevokedEntry::NoReason,
                       generalized,
                       extended};
        const Asn1RTDListNode* next = extended ? entry.crlEntryExtensions.head : nullptr;
        for (; next != nullptr; next = next->next) {
            const auto& extension = *static_cast<const ASN1T_Extension*>(next->data);
            if (extension.extnID == id_ce_reasonCode && text.reason == RevokedEntry::NoReason) {
                text.reason = static_cast<int>(
                    *static_cast<const unsigned*>(extension.extnValueTyped.decoded));
            } else if (extension.extnID == id_ce_certificateIssuer && text.issuer.empty()) {
                text.issuer = toHex(extension.extnValue.data, extension.extnValue.numocts);
            }
        }
        texts.push_back(text);
    }
    return 0;
}

/// Whether every element in [first, last) and below ends within the one around it, none of them is
/// a string in segments or has an indefinite length or a tag number in the long form, and no
/// EXPLICIT tag stands around nothing.
bool nestsPlainly(const unsigned char* first, const unsigned char* last) {
    while (first != last) {
        const unsigned char identifier = *first++;
        if (first == last || (identifier & 0x1F) == 0x1F || identifier == 0x24 || *first == 0x80) {
            return false;
        }
        std::size_t length = *first++;
        if (length > 0x80) {
            std::size_t count = length - 0x80;
            for (length = 0; count != 0 && first != last; --count) {
                length = length << 8 | *first++;
            }
        }
        if (length > static_cast<std::size_t>(last - first)) {
            return false;
        }
        const bool tagged = (identifier & 0xDF) == 0x80;
        const bool entered = (identifier & 0x20) != 0 || identifier == 0x10 || tagged;
        if ((entered && !nestsPlainly(first, first + length)) || (tagged && length == 0)) {
            return false;
        }
        first += length;
    }
    return true;
}

/// Counts what became of messages, so that a test can tell that it tested something.
struct Outcomes {
    unsigned both = 0;
    unsigned reader = 0;  ///< what is stepped over unread does not decode
    unsigned decoder = 0; ///< what is told to be refused
    unsigned none = 0;
};

void compare(const Octets& octets, Outcomes& outcomes) {
    const HeapCopy message(octets);
    std::vector<EntryText> read;
    std::vector<EntryText> decoded;
    const int readStatus = readAll(message.data(), message.size(), read);
    const int decodeStatus = decodeAll(message.data(), message.size(), decoded);
    EXPECT_LE(readStatus, 0);
    if (readStatus == 0 && decodeStatus == 0) {
        ++outcomes.both;
        EXPECT_EQ(read, decoded) << toHex(octets);
    } else if (decodeStatus == 0) {
        ++outcomes.decoder;
        EXPECT_FALSE(nestsPlainly(octets.data(), octets.data() + octets.size()))
            << rtStatusName(readStatus) << ' ' << toHex(octets);
    } else {
        ++(readStatus == 0 ? outcomes.reader : outcomes.none);
    }
}

/// The lists of the data file, and one with everything that an entry may have.
std::vector<Octets> samples() {
    std::vector<Octets> lists;
    for (const char* section : {"lists", "without nextUpdate"}) {
        for (const auto& row : tests::dataRows("crl.txt", section)) {
            lists.push_back(fromHex(row["octets"]));
        }
    }
    Octets entries = revokedEntry(fromHex("05"), reasonExtension(1));
    append(entries, revokedEntry(fromHex("0090"), issuerExtension("a.example")));
    append(entries, revokedEntry(fromHex("FF"), fromHex("3018 300A0603551D1504030A0103"
                                                        "300A0603551D1504030A0104")));
    append(entries, revokedEntry({}, fromHex("300C 300A06022A0304040102FFFF")));
    append(entries, fromHex("3014 020200FF 180E32303236303130313132303030 30"));
    lists.push_back(revocationList(entries));
    return lists;
}

TEST(RevocationListReader, ReadsWhatDecodes) {
    for (const Octets& list : samples()) {
        Outcomes outcomes;
        compare(list, outcomes);
        EXPECT_EQ(outcomes.both, 1u) << toHex(list);
    }
}

TEST(RevocationListReader, AgreesWithTheDecoderOnDamagedLists) {
    Outcomes outcomes;
    std::mt19937 random(14);
    for (const Octets& list : samples()) {
        tests::forEachMutation(list, [&](const Octets& changed) { compare(changed, outcomes); });
        for (int i = 0; i < 2000; ++i) {
            Octets changed = list;
            for (auto harm = random() % 3 + 1; harm != 0 && !changed.empty(); --harm) {
                tests::damage(changed, random);
            }
            compare(changed, outcomes);
        }
    }
    EXPECT_GT(outcomes.both, 1000u);
    EXPECT_GT(outcomes.reader, 1000u);
    EXPECT_GT(outcomes.decoder, 10u);
    EXPECT_GT(outcomes.none, 1000u);
}

/// The status of reading a list whose entries are some octets.
int statusOf(std::string_view entries) {
    const HeapCopy message(revocationList(fromHex(entries)));
    std::vector<EntryText> texts;
    return readAll(message.data(), message.size(), texts);
}

TEST(RevocationListReader, TellsWhatIsWrongWithAnEntry) {
    const struct {
        const char* what;
        const char* entries;
        int status;
    } rows[] = {
        {"nothing", "", 0},
        {"no serial number", "3000", ASN1S_MISSING_ELEMENT},
        {"no date", "3003 020101", ASN1S_MISSING_ELEMENT},
        {"the least", "3004 0200 1700", 0},
        {"primitive form of SEQUENCE", "1004 0200 1700", 0},
        {"lengths in more octets than needed", "30840000000A 02820001 05 17830000 00", 0},
        {"lengths in nine octets", "3089000000000000000004 0200 1700", ASN1S_INVALID_LENGTH},
        {"a SET", "3104 0200 1700", ASN1S_TAG_NOT_FOUND},
        {"a serial number that is an OCTET STRING", "3004 0400 1700", ASN1S_TAG_NOT_FOUND},
        {"a date that is a text", "3004 0200 1600", ASN1S_INVALID_CHOICE},
        {"a date in segments", "3006 0200 3702 0400", ASN1S_INVALID_CHOICE},
        {"something behind the date", "3006 0200 1700 0500", ASN1S_EXTRA_ELEMENT},
        {"something behind the extensions", "3014 0200 1700 300C 300A0603551D1504030A0101 0500",
         ASN1S_EXTRA_ELEMENT},
        {"an entry that is cut off", "3005 0200 1700", ASN1S_INVALID_LENGTH},
        {"an entry that is cut off in its header", "30", ASN1S_END_OF_BUFFER},
        {"a length that is cut off", "3082", ASN1S_END_OF_BUFFER},
        {"a serial number longer than its entry", "3004 0203 1700 3004 0200 1700",
         ASN1S_INVALID_LENGTH},
        {"a date longer than its entry", "3004 0200 1702 0000", ASN1S_INVALID_LENGTH},
        {"an indefinite length", "3080 0200 1700 0000", ASN1S_INVALID_LENGTH},
        {"no extension in the extensions", "3006 0200 1700 3000", ASN1S_CONSTRAINT_VIOLATION},
        {"an extension without a value", "300B 0200 1700 3005 3003 06012A", ASN1S_MISSING_ELEMENT},
        {"a critical of two octets", "3011 0200 1700 300B 3009 06012A 01020000 0400",
         ASN1S_INVALID_LENGTH},
        {"a value in segments", "300F 0200 1700 3009 3007 06012A 2402 0400", ASN1S_NOT_SUPPORTED},
        {"something behind a value", "300F 0200 1700 3009 3007 06012A 0400 0500",
         ASN1S_EXTRA_ELEMENT},
        {"a reason of no octets", "3011 0200 1700 300B 3009 0603551D15 04020A00",
         ASN1S_INVALID_LENGTH},
        {"a reason beyond the last", "3012 0200 1700 300C 300A 0603551D15 04030A010B",
         ASN1S_INVALID_ENUM},
        {"a reason below the first", "3012 0200 1700 300C 300A 0603551D15 04030A01FF",
         ASN1S_INVALID_ENUM},
        {"a reason that is an INTEGER", "3012 0200 1700 300C 300A 0603551D15 0403020101",
         ASN1S_TAG_NOT_FOUND},
        {"an empty reason", "300F 0200 1700 3009 3007 0603551D15 0400", ASN1S_END_OF_BUFFER},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(statusOf(row.entries), row.status) << row.what;
    }
}

// An entry that cannot be read ends the reading for good; those in front of it have been given.
TEST(RevocationListReader, StopsAtTheFirstEntryThatCannotBeRead) {
    const Octets message = revocationList(fromHex("3004 0200 1700 3003 020101 3004 0200 1700"));
    RevocationList list;
    ASSERT_EQ(list.open(message.data(), message.size()), 0);
    RevokedEntries entries(list);
    RevokedEntry entry;
    EXPECT_TRUE(entries.next(entry));
    EXPECT_FALSE(entries.next(entry));
    EXPECT_FALSE(entries.next(entry));
    EXPECT_EQ(entries.status(), ASN1S_MISSING_ELEMENT);
}

TEST(RevocationListReader, GivesWhatStandsAroundTheEntries) {
    const Octets time = fromHex("170D3235303130313030303030305A");
    Octets signedPart = tests::listHead();
    append(signedPart, time);
    append(signedPart, element(0x30, revokedEntry({5})));
    append(signedPart, fromHex("A00E 300C300A0603551D140403020107"));
    Octets message = element(0x30, signedPart);
    append(message, fromHex("300506032A0304 03020001"));
    const std::size_t signedSize = message.size() - 11;
    message = element(0x30, message);
    const std::size_t size = message.size();
    append(message, fromHex("AABB"));

    RevocationList list;
    ASSERT_EQ(list.open(message.data(), message.size()), 0);
    EXPECT_EQ(list.octets().data, message.data());
    EXPECT_EQ(list.octets().size, size);
    EXPECT_EQ(list.tbsCertList().data, message.data() + 2);
    EXPECT_EQ(list.tbsCertList().size, signedSize);
    EXPECT_EQ(textOf(list.issuer()), "30 00");
    EXPECT_EQ(textOf(list.thisUpdate()), toHex(time));
    EXPECT_EQ(textOf(list.nextUpdate()), toHex(time));
    EXPECT_EQ(textOf(list.entries()), toHex(revokedEntry({5})));
    EXPECT_EQ(textOf(list.crlExtensions()), "30 0C 30 0A 06 03 55 1D 14 04 03 02 01 07");

    // The same with an indefinite length around it, and nothing of it again after a failure.
    message[1] = 0x80;
    ASSERT_EQ(list.open(message.data(), message.size()), 0);
    EXPECT_EQ(list.octets().size, message.size());
    EXPECT_EQ(textOf(list.entries()), toHex(revokedEntry({5})));
    EXPECT_EQ(list.open(message.data(), 1), ASN1S_END_OF_BUFFER);
    EXPECT_EQ(list.entries().data, nullptr);
    EXPECT_EQ(list.open(nullptr, 0), ASN1S_END_OF_BUFFER);
}

TEST(RevocationListReader, FindsExtensions) {
    for (const auto& row : tests::dataRows("crl.txt", "lists")) {
        if (row["what"] != "reasons, dates of invalidity, a hold instruction") {
            continue;
        }
        const Octets message = fromHex(row["octets"]);
        RevocationList list;
        ASSERT_EQ(list.open(message.data(), message.size()), 0);
        unsigned dates = 0;
        RevokedEntries entries(list);
        for (RevokedEntry entry; entries.next(entry);) {
            EntryExtension extension;
            if (findEntryExtension(entry, id_ce_invalidityDate, extension) == 0) {
                ++dates;
                EXPECT_EQ(textOf(extension.value).substr(0, 5), "18 0F");
                EXPECT_FALSE(extension.critical);
            }
            EXPECT_EQ(findEntryExtension(entry, id_ce_reasonCode, extension) == 0,
                      entry.reason != RevokedEntry::NoReason);
            EXPECT_EQ(findEntryExtension(entry, id_ce_keyUsage, extension), ASN1S_MISSING_ELEMENT);
            EXPECT_EQ(findEntryExtension(entry, ASN1OBJID{}, extension), ASN1S_MISSING_ELEMENT);
        }
        EXPECT_GT(dates, 0u);
        return;
    }
    FAIL() << "no such list";
}

// RFC 5280, 5.3.3: an entry without a certificateIssuer has that of the entry in front of it.
TEST(RevocationListReader, PassesTheIssuerOn) {
    Octets octets = revokedEntry({1});
    append(octets, revokedEntry({2}, issuerExtension("a")));
    append(octets, revokedEntry({3}, reasonExtension(1)));
    append(octets, revokedEntry({4}, issuerExtension("b")));
    append(octets, revokedEntry({5}));
    const Octets message = revocationList(octets);
    RevocationList list;
    ASSERT_EQ(list.open(message.data(), message.size()), 0);
    std::string issuers;
    RevokedEntries entries(list);
    for (RevokedEntry entry; entries.next(entry);) {
        issuers += entry.certificateIssuer.data == nullptr
                       ? '-'
                       : static_cast<char>(entry.certificateIssuer.data[4]);
        issuers += entry.issuerInherited ? "+ " : " ";
    }
    EXPECT_EQ(issuers, "- a a+ b b+ ");
}

// Lengths and places beyond 2^31 and 2^32: one entry has an extension of more than 4 GB, whose
// octets are pages of zeros that nobody ever writes.
TEST(RevocationListReader, HasNoLimitOf2To31) {
    const std::size_t huge = (std::size_t{1} << 32) + 100;
    const Octets last = revokedEntry({7}, reasonExtension(4));
    Octets front; // built from the inside
    std::size_t size = huge;
    const auto wrap = [&](Octets header) {
        header.push_back(0x85);
        for (int shift = 32; shift >= 0; shift -= 8) {
            header.push_back(static_cast<unsigned char>(size >> shift));
        }
        size += header.size();
        front.insert(front.begin(), header.begin(), header.end());
    };
    for (const char* header : {"06012A 04", "30", "020105 1700 30", "30"}) {
        wrap(fromHex(header));
    }
    size += last.size();
    Octets head = tests::listHead();
    head.push_back(0x30);
    wrap(head);
    wrap({0x30});
    wrap({0x30});

    struct Release {
        void operator()(void* block) const { std::free(block); }
    };
    const std::unique_ptr<unsigned char, Release> block(
        static_cast<unsigned char*>(std::calloc(size, 1)));
    if (block == nullptr) {
        GTEST_SKIP() << "no room for " << size << " octets";
    }
    std::copy(front.begin(), front.end(), block.get());
    std::copy(last.begin(), last.end(), block.get() + front.size() + huge);
    RevocationList list;
    ASSERT_EQ(list.open(block.get(), size), 0);
    RevokedEntries entries(list);
    RevokedEntry entry;
    ASSERT_TRUE(entries.next(entry)) << rtStatusName(entries.status());
    EXPECT_GT(entry.octets.size, huge);
    ASSERT_TRUE(entries.next(entry)) << rtStatusName(entries.status());
    EXPECT_EQ(entry.reason, 4);
    EXPECT_FALSE(entries.next(entry));
    EXPECT_EQ(entries.status(), 0);

    RevocationIndex index;
    ASSERT_EQ(index.build(list), 0);
    const unsigned char serial = 7;
    ASSERT_EQ(index.find(&serial, 1, entry), 0);
    EXPECT_EQ(entry.octets.data, block.get() + front.size() + huge);
}

} // namespace
