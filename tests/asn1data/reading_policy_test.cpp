#include <algorithm>
#include <string>
#include <tuple>

#include <brevantis/asn1/asn1data.h>
#include <brevantis/asn1/runtime.h>
#include <gtest/gtest.h>

#include "support/coding.h"
#include "support/damaged_values.h"
#include "support/data_file.h"
#include "support/revocation_list_builder.h"
#include "support/walk_agreement.h"

// How strictly messages are read: each policy on values of every type, whole and damaged, and on
// messages of the shapes that each is for.

namespace shapes {

asn1data::TypeRange allTypes() noexcept;
const asn1data::TypeDescription* findType(const char* name) noexcept;

} // namespace shapes

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
            bool whole = contents.empty() || areElements(contents);
            for (tests::Reader segments(contents);
                 whole && segments.position() < contents.size();) {
                int length = 0;
                ASN1TAG tag = 0;
                xd_tag_len(segments, &tag, &length, ASN1MatchAdvance);
                whole = tag < 0x20 && length >= 0;
                if (whole) {
                    const auto from = contents.begin() + segments.position();
                    joined.insert(joined.end(), from, from + length);
                    segments->buffer.byteIndex += static_cast<unsigned>(length);
                }
            }
            if (!whole) { // whatever that is
                tests::append(all,
                              Octets(octets.begin() + start, octets.begin() + reader.position()));
                continue;
            }
            contents = joined;
            identifier = static_cast<unsigned char>(identifier & 0xDF);
        }
        if ((identifier & 0x20) != 0 || (identifier == 0x04 && areElements(contents))) {
            contents = canonical(contents);
        }
        if (identifier == 0x31 || identifier >= 0xA0) { // which may be an IMPLICIT SET
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
        const auto accepts = [&](int flags) {
            return explain(type, message.data(), message.size(), flags).status == 0;
        };
        const bool plainly = accepts(0);
        EXPECT_FALSE(plainly && !accepts(ASN1F_TOLERATE_OPEN_VALUES | ASN1F_TOLERATE_SIZES))
            << "what is accepted without a policy";
        EXPECT_FALSE(!plainly && accepts(ASN1F_EXACT)) << "a strict policy accepts nothing else";
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

TEST(ReadingPolicy, OnDamagedValuesOfEveryShape) {
    PolicyAgreement agreement;
    tests::checkDamagedValues(shapes::allTypes(), 4, 40, agreement);
}

TEST(ReadingPolicy, OnOddMessagesWithEveryOctetChanged) {
    PolicyAgreement agreement;
    for (const tests::DataRow& row : tests::dataRows("engine.txt", "messages")) {
        const TypeDescription* const type = shapes::findType(row.text("type"));
        ASSERT_NE(type, nullptr);
        tests::forEachMutation(tests::fromHex(row["message"]), [&](const Octets& message) {
            if (!testing::Test::HasFailure()) {
                agreement.check(*type, message);
            }
        });
    }
}

// Messages that strangers send, built here.

using tests::element;

Octets join(std::initializer_list<Octets> parts) {
    Octets all;
    for (const Octets& part : parts) {
        tests::append(all, part);
    }
    return all;
}

Octets sequence(std::initializer_list<Octets> parts) {
    return element(0x30, join(parts));
}

Octets text(unsigned char identifier, std::string_view characters) {
    return element(identifier, Octets(characters.begin(), characters.end()));
}

Octets hex(std::string_view digits) {
    return tests::fromHex(digits);
}

/// A Name of one attribute.
Octets nameOf(const Octets& attribute) {
    return sequence({element(0x31, attribute)});
}

Octets attribute(std::string_view type, const Octets& value) {
    return sequence({element(0x06, hex(type)), value});
}

Octets extension(std::string_view type, const Octets& value) {
    return sequence({element(0x06, hex(type)), element(0x04, value)});
}

/// What a certificate is made of; each part may be replaced by an odd one.
struct Parts {
    Octets serial = hex("020105");
    Octets issuer = nameOf(attribute("550403", text(0x0C, "issuer")));
    Octets subject = nameOf(attribute("550403", text(0x0C, "subject")));
    Octets algorithm = hex("3006 06042A030405");
    Octets extensions = extension("551D0E", element(0x04, hex("0102")));
};

Octets certificate(const Parts& parts) {
    const Octets algorithm = hex("3006 06042A030405");
    const Octets time = text(0x17, "260101000000Z");
    return sequence(
        {sequence({hex("A003020102"), parts.serial, algorithm, parts.issuer, sequence({time, time}),
                   parts.subject, sequence({parts.algorithm, hex("030200FF")}),
                   element(0xA3, element(0x30, parts.extensions))}),
         algorithm, hex("03020001")});
}

/// A DSA key's numbers, of 1024 and 160 bits.
Octets dsaAlgorithm() {
    const auto number = [](std::size_t size) { return element(0x02, Octets(size, 0x55)); };
    return sequence({hex("06072A8648CE380401"), sequence({number(128), number(20), number(128)})});
}

/// A certificatePolicies extension with a notice.
Octets policyNotice(std::size_t characters) {
    const Octets notice = sequence({text(0x0C, std::string(characters, 'n'))});
    const Octets qualifier = sequence({hex("06082B06010505070202"), notice});
    return extension("551D20", sequence({sequence({hex("06032A0304"), sequence({qualifier})})}));
}

const TypeDescription& typeNamed(const char* name) {
    const TypeDescription* const type = findType(name);
    EXPECT_NE(type, nullptr) << name;
    return *type;
}

/// A message that is refused, and what each tolerance makes of it.
struct Odd {
    const char* what;
    const char* type;
    Octets message;
    int flags;          ///< under which it is read
    const char* faults; ///< "path: found" of each that is tolerated
};

std::vector<Odd> oddMessages() {
    constexpr int open = ASN1F_TOLERATE_OPEN_VALUES;
    constexpr int sizes = ASN1F_TOLERATE_SIZES;
    const auto changed = [](Octets Parts::*part, const Octets& octets) {
        Parts parts;
        parts.*part = octets;
        return certificate(parts);
    };
    const Octets country = nameOf(attribute("550406", text(0x0C, "RU")));
    const Octets mixed = join({extension("551D0F", hex("0101FF")),
                               extension("551D0E", element(0x04, hex("0102"))), policyNotice(310)});
    return {
        {"a DSA key", "Certificate", changed(&Parts::algorithm, dsaAlgorithm()), open,
         "tbsCertificate.subjectPublicKeyInfo.algorithm.parameters.dssPublicKey.p: a length of "
         "128\n"},
        {"a country in UTF8String", "Certificate", changed(&Parts::subject, country), open,
         "tbsCertificate.subject.rdnSequence[0][0].value.countryName: tag 0C (UTF8String)\n"},
        {"a reason out of the list", "CertificateList",
         tests::revocationList(tests::revokedEntry({1}, tests::reasonExtension(11))), open,
         "tbsCertList.revokedCertificates[0].crlEntryExtensions[0].extnValue.reasonCode: a value "
         "of 11\n"},
        {"a notice of 310 characters", "Certificate",
         changed(&Parts::extensions, policyNotice(310)), open,
         "tbsCertificate.extensions[0].extnValue.certificatePolicies[0].policyQualifiers[0]."
         "qualifier.qtUnoticeQualifier.explicitText.utf8String: a size of 310\n"},
        {"a notice of 310 characters, read typed", "Certificate",
         changed(&Parts::extensions, policyNotice(310)), sizes, ""},
        {"several at once", "Certificate", changed(&Parts::extensions, mixed), open,
         "tbsCertificate.extensions[0].extnValue.keyUsage: tag 01 (BOOLEAN)\n"
         "tbsCertificate.extensions[2].extnValue.certificatePolicies[0].policyQualifiers[0]."
         "qualifier.qtUnoticeQualifier.explicitText.utf8String: a size of 310\n"},
        {"an empty RDN", "Certificate", changed(&Parts::subject, sequence({hex("3100")})), sizes,
         ""},
        {"an empty list of extensions", "Certificate", changed(&Parts::extensions, {}), sizes, ""},
    };
}

TEST(ReadingPolicy, OddMessagesAreReadAndWrittenAsTheyCame) {
    for (const Odd& odd : oddMessages()) {
        SCOPED_TRACE(odd.what);
        const TypeDescription& type = typeNamed(odd.type);
        EXPECT_NE(tests::expectWalkAgrees(type, odd.message), 0) << "without a policy";
        EXPECT_EQ(tests::expectWalkAgrees(type, odd.message, odd.flags), 0);
        EXPECT_EQ(tests::toHex(recoded(type, odd.message, odd.flags)), tests::toHex(odd.message));
        std::string faults;
        const auto list = toleratedFaults(type, odd.message.data(), odd.message.size(), odd.flags);
        for (const WalkFailure& fault : list) {
            char found[100];
            writeFound(fault, found, sizeof found);
            faults += std::string(fault.path) + ": " + found + "\n";
        }
        if ((odd.flags & ASN1F_TOLERATE_OPEN_VALUES) != 0) {
            EXPECT_EQ(faults, odd.faults);
        }
    }
}

TEST(ReadingPolicy, WhatIsAroundAToleratedValueIsTyped) {
    Parts parts;
    parts.algorithm = dsaAlgorithm();
    parts.extensions = join({policyNotice(310), parts.extensions});
    const Octets message = certificate(parts);
    ASN1BERDecodeBuffer buffer(message.data(), static_cast<int>(message.size()));
    rtCtxtSetFlag(buffer.getCtxtPtr(), ASN1F_TOLERATE_OPEN_VALUES);
    ASN1T_Certificate certificate;
    ASN1C_Certificate control(buffer, certificate);
    ASSERT_EQ(control.Decode(), 0);
    EXPECT_EQ(buffer.getCtxtPtr()->errInfo.status, 0);
    const auto& key = certificate.tbsCertificate.subjectPublicKeyInfo.algorithm.parameters;
    EXPECT_EQ(key.decoded, nullptr);
    EXPECT_EQ(key.numocts, 4 + 131 + 22 + 131u);
    const Asn1RTDList& extensions = certificate.tbsCertificate.extensions;
    ASSERT_EQ(extensions.count, 2u);
    for (const Asn1RTDListNode* node = extensions.head; node != nullptr; node = node->next) {
        EXPECT_NE(static_cast<const ASN1T_Extension*>(node->data)->extnValueTyped.decoded, nullptr);
    }
}

TEST(ReadingPolicy, WritingRefusesSizesUnlessItIsTold) {
    const Octets message = certificate({});
    tests::Context context;
    ASN1T_RelativeDistinguishedName empty;
    rtDListInit(&empty);
    for (const int flags : {0, int{ASN1F_TOLERATE_SIZES}}) {
        tests::Writer writer;
        rtCtxtSetFlag(writer, flags);
        EXPECT_EQ(
            family::encode(writer, typeNamed("RelativeDistinguishedName"), &empty, ASN1TagExplicit),
            flags == 0 ? int{ASN1S_CONSTRAINT_VIOLATION} : 2);
    }
}

/// A message that comes out changed, and how a strict policy refuses it.
struct Refused {
    const char* type;
    const char* message;
    int status;
    const char* failure;
};

void expectRefused(const std::vector<Refused>& rows, int flags) {
    for (const Refused& row : rows) {
        SCOPED_TRACE(std::string(row.type) + " " + row.message);
        const Octets message = hex(row.message);
        EXPECT_EQ(tests::expectWalkAgrees(typeNamed(row.type), message), 0) << "without a policy";
        EXPECT_EQ(tests::expectWalkAgrees(typeNamed(row.type), message, flags), row.status);
        const WalkFailure failure =
            explain(typeNamed(row.type), message.data(), message.size(), flags);
        EXPECT_EQ(failureText(failure), row.failure);
    }
}

TEST(ReadingPolicy, ExactRefusesWhatRecordsChange) {
    expectRefused(
        {
            {"GeneralName", "82 03 61 00 62", ASN1S_BAD_VALUE,
             "dNSName at offset 0: expected what a record can hold, found text with a zero octet "
             "inside (ASN1S_BAD_VALUE)"},
            {"PrivateKeyUsagePeriod", "30 09 A0 07 04 02 32 00 04 01 30", ASN1S_BAD_VALUE,
             "notBefore at offset 2: expected what a record can hold, found text with a zero octet "
             "inside (ASN1S_BAD_VALUE)"},
            {"RsaModulus", "02 01 FF", ASN1S_VALUE_TOO_BIG,
             "the message at offset 0: expected what a record can hold, found a number that its "
             "field cannot hold (ASN1S_VALUE_TOO_BIG)"},
            {"BasicConstraintsSyntax", "30 06 01 01 FF 02 01 80", ASN1S_VALUE_TOO_BIG,
             "pathLenConstraint at offset 5: expected what a record can hold, found a number that "
             "its field cannot hold (ASN1S_VALUE_TOO_BIG)"},
            {"GeneralName", "88 06 2A 90 80 80 80 00", ASN1S_INVALID_OBJID,
             "registeredID at offset 0: expected what a record can hold, found an arc of an "
             "identifier that 32 bits cannot hold (ASN1S_INVALID_OBJID)"},
            {"GeneralName", "88 02 2A 83", ASN1S_INVALID_OBJID,
             "registeredID at offset 0: expected what a record can hold, found an arc of an "
             "identifier that is cut off (ASN1S_INVALID_OBJID)"},
            {"KeyUsage", "03 03 00 FF FF", ASN1S_STRING_OVERFLOW,
             "the message at offset 0: expected what a record can hold, found bits that the field "
             "cannot hold (ASN1S_STRING_OVERFLOW)"},
            {"KeyUsage", "03 00", ASN1S_INVALID_LENGTH,
             "the message at offset 0: expected what a record can hold, found a BIT STRING without "
             "its count of unused bits (ASN1S_INVALID_LENGTH)"},
            {"SubjectPublicKeyInfo",
             "30 13 30 05 06 03 2A 03 04 23 0A 03 03 00 01 02 03 03 00 03 04", ASN1S_BAD_VALUE,
             "subjectPublicKey at offset 9: expected what a record can hold, found a BIT STRING in "
             "several segments (ASN1S_BAD_VALUE)"},
            {"QTDisplayText", "1E 03 00 41 00", ASN1S_INVALID_LENGTH,
             "bmpString at offset 0: expected what a record can hold, found octets that are no "
             "whole character (ASN1S_INVALID_LENGTH)"},
            {"Extension", "30 0D 06 03 55 1D 0E 04 06 04 02 01 02 05 00", ASN1S_EXTRA_ELEMENT,
             "extnValue at offset 7: expected what a record can hold, found octets behind the "
             "value in an OCTET STRING (ASN1S_EXTRA_ELEMENT)"},
            {"EncapsulatedContentInfo", "30 0B 06 03 2A 03 04 A0 06 04 02 01 02",
             ASN1S_INVALID_LENGTH,
             "eContent at offset 7: expected what a record can hold, found a length that is not "
             "that of the octets inside (ASN1S_INVALID_LENGTH)"},
            {"GeneralNames", "30 0A 82 01 61", ASN1S_INVALID_LENGTH,
             "the message at offset 0: expected what a record can hold, found a length that is not "
             "that of the octets inside (ASN1S_INVALID_LENGTH)"},
        },
        ASN1F_EXACT);
}

TEST(ReadingPolicy, DerRefusesWhatIsNot) {
    const auto failure = [](const char* place, const char* clause, const char* found,
                            const char* status) {
        return std::string(place) + ": expected DER (X.690, " + clause + "), found " + found +
               " (" + status + ")";
    };
    const struct {
        const char* type;
        const char* message;
        int status;
        std::string failure;
    } rows[] = {
        {"GeneralNames", "30 81 04 82 02 61 62", ASN1S_INVALID_LENGTH,
         failure("the message at offset 0", "10.1", "length in more octets than it needs",
                 "ASN1S_INVALID_LENGTH")},
        {"GeneralNames", "30 80 82 02 61 62 00 00", ASN1S_INVALID_LENGTH,
         failure("the message at offset 0", "10.1", "indefinite length", "ASN1S_INVALID_LENGTH")},
        {"BasicConstraintsSyntax", "30 03 01 01 01", ASN1S_BAD_VALUE,
         failure("cA at offset 2", "11.1", "TRUE is not FF", "ASN1S_BAD_VALUE")},
        {"BasicConstraintsSyntax", "30 03 01 01 00", ASN1S_BAD_VALUE,
         failure("cA at offset 2", "11.5", "a DEFAULT value is encoded", "ASN1S_BAD_VALUE")},
        {"KeyUsage", "03 02 00 A0", ASN1S_BAD_VALUE,
         failure("the message at offset 0", "11.2.2", "zero bits at the end of a named bit list",
                 "ASN1S_BAD_VALUE")},
        {"RelativeDistinguishedName", "31 10 30 06 06 01 2B 02 01 02 30 06 06 01 2A 02 01 01",
         ASN1S_BAD_VALUE,
         failure("[1] at offset 10", "11.6", "elements of a SET OF out of order",
                 "ASN1S_BAD_VALUE")},
        {"Extension", "30 0C 06 03 55 1D 0E 24 05 04 03 04 01 41", ASN1S_BAD_TAG,
         failure("extnValue at offset 7", "10.2", "string in constructed form", "ASN1S_BAD_TAG")},
        {"Time", "17 0B 32 36 30 31 30 31 30 30 30 30 5A", ASN1S_INVALID_FORMAT,
         failure("utcTime at offset 0", "11.8", "UTCTime not in the form YYMMDDhhmmssZ",
                 "ASN1S_INVALID_FORMAT")},
    };
    for (const auto& row : rows) {
        expectRefused({{row.type, row.message, row.status, row.failure.c_str()}}, ASN1F_DER);
    }
}

TEST(ReadingPolicy, RulesHoldForContentsWhoseTagWasRead) {
    // The contents of BasicConstraints, and those of a registeredID, behind other octets.
    for (const auto& [name, contents, position] :
         {std::tuple{"BasicConstraintsSyntax", "05 00 01 01 01", 2u},
          std::tuple{"CertPolicyId", "05 00 2A 90 80 80 80 00", 2u}}) {
        tests::Reader reader(contents);
        rtCtxtSetFlag(reader, ASN1F_DER | ASN1F_EXACT);
        reader->buffer.byteIndex = 2;
        const TypeDescription& type = typeNamed(name);
        const int length = static_cast<int>(reader->buffer.size) - 2;
        EXPECT_LT(
            family::decode(reader, type, family::newRecord(reader, type), ASN1TagImplicit, length),
            0);
        EXPECT_EQ(reader.position(), position);
    }
}

} // namespace
