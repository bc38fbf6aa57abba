#include <cstddef>
#include <string>
#include <type_traits>
#include <utility>

#include <gtest/gtest.h>

#include <brevantis/asn1/asn1data.h>
#include <brevantis/asn1/runtime/tag_length.h>

#include "support/coding.h"
#include "support/value_builder.h"

// Where a type of the catalogue is not what its published module, or the types around it, would
// make one expect. Each row says what follows from it for a user of the interface.

namespace {

using namespace asn1data;
using tests::fromHex;
using tests::Octets;
using tests::toHex;

constexpr const char* Same = "same";

/// The octet 41 so many times, as hexadecimal text.
std::string filled(unsigned count) {
    std::string text;
    for (unsigned i = 0; i < count; ++i) {
        text += " 41";
    }
    return text;
}

struct Row {
    const char* why;
    const char* type;
    std::string message;
    int status;
    std::string encoded; ///< Same or octets, empty where decoding fails
};

std::ostream& operator<<(std::ostream& out, const Row& row) {
    return out << row.type << ": " << row.why;
}

const Row rows[] = {
    // Names and extensions
    {"the tag of a directory name stands around it", "GeneralName", "A4 02 30 00", 0, Same},
    {"so a name whose own tag was replaced is none", "GeneralName", "A4 02 31 00",
     ASN1S_INVALID_CHOICE, ""},
    {"a tenth kind of name", "GeneralName", "89 01 41", ASN1S_INVALID_CHOICE, ""},
    {"the tags of an EDI party stand around its texts", "EDIPartyName", "30 05 A1 03 13 01 41", 0,
     Same},
    {"name constraints are known by a private identifier", "Extension",
     "30 0A 06 04 55 1D 1E 01 04 02 05 00", ASN1S_TAG_NOT_FOUND, ""},
    {"under the published one they stay as they are, whatever they hold", "Extension",
     "30 09 06 03 55 1D 1E 04 02 05 00", 0, Same},
    {"the reason without a meaning", "CRLReason", "0A 01 07", 0, Same},
    {"the reason after the last", "CRLReason", "0A 01 0B", ASN1S_INVALID_ENUM, ""},
    {"FALSE written out is lost, so what is signed must not be encoded again",
     "BasicConstraintsSyntax", "30 03 01 01 00", 0, "30 00"},
    {"the same for the flags of a revocation list", "IssuingDistPointSyntax",
     "30 09 81 01 00 82 01 FF 84 01 00", 0, "30 03 82 01 FF"},
    {"the least distance in a name constraint is not written", "GeneralSubtree",
     "30 06 82 01 41 80 01 00", 0, "30 03 82 01 41"},
    {"an extended key usage of nothing passes", "Extension", "30 09 06 03 55 1D 25 04 02 30 00", 0,
     Same},
    {"bits without a name are kept in the octets that the record has", "KeyUsage", "03 03 06 FF C0",
     0, Same},
    {"those beyond are more than it can hold", "KeyUsage", "03 04 07 FF FF 80",
     ASN1S_STRING_OVERFLOW, ""},
    {"the same for the reasons of a failure", "PKIFailureInfo", "03 05 00 00 00 00 01", 0, Same},
    {"and beyond its octets", "PKIFailureInfo", "03 06 07 00 00 00 00 80", ASN1S_STRING_OVERFLOW,
     ""},
    {"the text of a policy notice has an IA5 form", "QTDisplayText", "16 01 41", 0, Same},
    {"the text of a signature policy's has none", "DisplayText", "16 01 41", ASN1S_INVALID_CHOICE,
     ""},
    {"a name form among those that an issuer is asked for by number", "AltNameType", "0A 01 08", 0,
     Same},
    {"and one by identifier", "AltNameType", "06 01 2A", 0, Same},
    {"numbers begin with 1", "AltNameType", "0A 01 00", ASN1S_INVALID_ENUM, ""},

    // Addresses of X.400
    {"no real country fits the size", "CountryName", "61 04 13 02 52 55",
     ASN1S_CONSTRAINT_VIOLATION, ""},
    {"only one of 32768 characters does", "CountryName", "61 82 80 04 13 82 80 00" + filled(32768),
     0, Same},
    {"nor the country of delivery", "PhysicalDeliveryCountryName", "13 02 52 55",
     ASN1S_CONSTRAINT_VIOLATION, ""},
    {"tags stand around the parts of a name", "PersonalName", "31 05 A0 03 13 01 41", 0, Same},
    {"so the form that other systems send is refused", "PersonalName", "31 03 80 01 41",
     ASN1S_UNKNOWN_SET_MEMBER, ""},
    {"the same for teletex", "TeletexPersonalName", "31 05 A0 03 14 01 41", 0, Same},
    {"and for telephone numbers", "ExtendedNetworkAddress", "30 05 A0 03 12 01 31", 0, Same},
    {"and for extension attributes", "ExtensionAttribute", "30 0A A0 04 02 02 01 00 A1 02 05 00", 0,
     Same},
    {"whose number ends at 256", "ExtensionAttribute", "30 0A A0 04 02 02 01 01 A1 02 05 00",
     ASN1S_CONSTRAINT_VIOLATION, ""},
    {"a person without a surname", "PersonalName", "31 04 A0 02 13 00", ASN1S_CONSTRAINT_VIOLATION,
     ""},
    {"the one tag that replaces another", "PresentationAddress", "30 05 A3 03 04 01 41", 0, Same},
    {"many parts of an address are one type", "StreetAddress", "31 03 13 01 41", 0, Same},

    // Attribute certificates
    {"a pair of neither certificate passes", "CertificatePair", "30 00", 0, Same},

    // Cryptographic messages
    {"certificates are kept octet for octet, well-formed or not", "CertificateSetRaw",
     "31 0F 30 0D 02 02 00 05 30 03 06 01 2A 03 02 00 01", 0, Same},
    {"where they are read, what is signed has to be a certificate", "CertificateSet",
     "31 0F 30 0D 02 02 00 05 30 03 06 01 2A 03 02 00 01", ASN1S_TAG_NOT_FOUND, ""},
    {"signed data keep them", "SignedData",
     "30 1D 02 01 01 31 00 30 03 06 01 2A A0 0F 30 0D 02 02 00 05 30 03 06 01 2A 03 02 00 01 31 00",
     0, Same},
    {"something else among them", "SignedData",
     "30 12 02 01 01 31 00 30 03 06 01 2A A0 04 A2 02 05 00 31 00", ASN1S_INVALID_CHOICE, ""},
    {"every form of a streamed message indefinite", "SignedData",
     "30 80 02 01 01 31 80 00 00 30 80 06 01 2A 00 00 31 80 00 00 00 00", 0,
     "30 0C 02 01 01 31 00 30 03 06 01 2A 31 00"},
    {"a stream cut off in front of its end is noticed", "SignedData",
     "30 80 02 01 01 31 80 00 00 30 80 06 01 2A 00 00 31 80 00 00", ASN1S_INVALID_LENGTH, ""},
    {"a detached signature has no content", "EncapsulatedContentInfo",
     "30 0B 06 09 2A 86 48 86 F7 0D 01 07 02", 0, Same},
    {"but a message has to have one", "ContentInfo", "30 0B 06 09 2A 86 48 86 F7 0D 01 07 02",
     ASN1S_MISSING_ELEMENT, ""},
    {"attributes come in any order and leave in one", "SignedAttributes",
     "31 12 30 07 06 01 2B 31 02 05 00 30 07 06 01 2A 31 02 05 00", 0,
     "31 12 30 07 06 01 2A 31 02 05 00 30 07 06 01 2B 31 02 05 00"},
    {"an attribute without a value", "Attribute", "30 05 06 01 2A 31 00",
     ASN1S_CONSTRAINT_VIOLATION, ""},

    // Long-term signatures
    {"a hash value of no known length", "ESSCertID", "30 05 04 03 01 02 03", 0, Same},
    {"the algorithm that could be left out is kept", "ESSCertIDv2",
     "30 10 30 0B 06 09 60 86 48 01 65 03 04 02 01 04 01 00", 0, Same},
    {"a bare hash value is one of SHA-1", "OtherHash", "04 01 00", 0, Same},
    {"any other comes with its algorithm", "OtherHash", "30 08 30 03 06 01 2A 04 01 00", 0, Same},
    {"a place of nothing", "SignerLocation", "30 00", 0, Same},
    {"the tag of a country stands around it", "SignerLocation", "30 05 A0 03 0C 01 41", 0, Same},

    // Algorithms
    {"elements of later versions go through", "Gost28147_89_BlobParameters",
     "30 0B 06 03 2A 03 04 05 00 02 02 00 01", 0, Same},
    {"but not half of one", "Gost28147_89_BlobParameters", "30 06 06 01 2A 02 02 00",
     ASN1S_BAD_VALUE, ""},
    {"a public key of 256 bits", "GostR3410_PublicKey", "04 40" + filled(64), 0, Same},
    {"a public key of 512 bits", "GostR3410_PublicKey", "04 81 80" + filled(128), 0, Same},
    {"and none in between", "GostR3410_PublicKey", "04 41" + filled(65), ASN1S_CONSTRAINT_VIOLATION,
     ""},
    {"DSA parameters are numbers of 32 bits", "Dss_Parms",
     "30 0C 02 04 7F FF FF FF 02 01 05 02 01 02", 0, Same},
    {"so a certificate with a real DSA key is refused for its parameters", "AlgorithmIdentifier",
     "30 18 06 07 2A 86 48 CE 38 04 01 30 0D 02 05 01 00 00 00 00 02 01 05 02 01 02",
     ASN1S_VALUE_TOO_BIG, ""},
    {"and so is every signature with one", "Dss_Sig_Value", "30 0A 02 05 01 00 00 00 00 02 01 01",
     ASN1S_VALUE_TOO_BIG, ""},
    {"parameters of a digest may be NULL", "_gostR341194DigestParams_Type", "05 00", 0, Same},
    {"or tables", "_gostR341194DigestParams_Type", "06 03 2A 03 04", 0, Same},
    {"but for those of 2012 NULL alone", "AlgorithmIdentifier",
     "30 0F 06 08 2A 85 03 07 01 01 02 02 06 03 2A 03 04", ASN1S_TAG_NOT_FOUND, ""},
    {"parameters of any size, as the cipher is not known", "Gost3412_15_Encryption_Parameters",
     "04 00", 0, Same},
    {"a key of no rounds is none", "PBKDF2_params", "30 06 04 01 41 02 01 00",
     ASN1S_CONSTRAINT_VIOLATION, ""},
    {"a key of no octets is none", "PBKDF2_params", "30 09 04 01 41 02 01 01 02 01 00",
     ASN1S_CONSTRAINT_VIOLATION, ""},
    {"parameters from a streaming producer", "PBKDF2_params", "30 80 04 01 41 02 01 01 00 00", 0,
     "30 06 04 01 41 02 01 01"},
    {"in full", "RSAES_OAEP_params", "30 80 A0 80 30 03 06 01 2A 00 00 00 00", 0,
     "30 07 A0 05 30 03 06 01 2A"},

    // Keys and containers
    {"one iteration is not written", "MacData",
     "30 10 30 08 30 03 06 01 2A 04 01 00 04 01 00 02 01 01", 0,
     "30 0D 30 08 30 03 06 01 2A 04 01 00 04 01 00"},
    {"the count has a sign", "MacData", "30 10 30 08 30 03 06 01 2A 04 01 00 04 01 00 02 01 FF", 0,
     Same},
    {"the longest friendly name", "_friendlyName_Type", "1E 82 01 FE" + filled(510), 0, Same},
    {"a friendly name of 256 characters", "_friendlyName_Type", "1E 82 02 00" + filled(512),
     ASN1S_CONSTRAINT_VIOLATION, ""},

    // Certificate management
    {"a body after the last", "PKIBody", "B8 02 05 00", ASN1S_INVALID_CHOICE, ""},
    {"the last body", "PKIBody", "B7 07 30 05 30 03 02 01 00", 0, Same},
    {"lists bring their tag along", "RevRepContent_revCerts", "A0 0A 30 08 30 06 82 01 41 02 01 05",
     0, Same},
    {"without it they are something else", "RevRepContent_revCerts",
     "30 08 30 06 82 01 41 02 01 05", ASN1S_TAG_NOT_FOUND, ""},
    {"confirmation is NULL", "PKIConfirmContent_", "05 00", 0, Same},
    {"requests for nothing", "CertReqMessages", "30 00", ASN1S_CONSTRAINT_VIOLATION, ""},
    {"the tag of an issuer stands around it", "CertTemplate", "30 04 A3 02 30 00", 0, Same},
    {"an authority's word for the possession", "ProofOfPossession", "80 00", 0, Same},
    {"numbers without a name pass", "SubsequentMessage", "02 01 63", 0, Same},

    // Status and time
    {"good", "CertStatus", "80 00", 0, Same},
    {"revoked: the tag replaces that of the record", "CertStatus",
     "A1 11 18 0F 32 30 32 30 30 31 30 31 30 30 30 30 30 30 5A", 0, Same},
    {"unknown", "CertStatus", "82 00", 0, Same},
    {"a status that no one has published", "OCSPResponseStatus", "0A 01 08", 0, Same},
    {"and one beyond", "OCSPResponseStatus", "0A 01 09", ASN1S_INVALID_ENUM, ""},
    {"a request of the first version is the first alternative", "ReqCert",
     "30 0E 30 03 06 01 2A 04 01 00 04 01 00 02 01 05", 0, Same},
    {"a responder by its key", "ResponderID", "A2 03 04 01 00", 0, Same},
    {"no responder has the first tag", "ResponderID", "A0 02 30 00", ASN1S_INVALID_CHOICE, ""},
    {"version 1 is not written", "DVCSRequestInformation", "30 06 02 01 01 0A 01 01", 0,
     "30 03 0A 01 01"},
    {"however it was written", "DVCSRequestInformation", "30 07 02 02 00 01 0A 01 01", 0,
     "30 03 0A 01 01"},
    {"version 2 is", "DVCSRequestInformation", "30 06 02 01 02 0A 01 01", 0, Same},
    {"the last millisecond", "Accuracy", "30 04 80 02 03 E7", 0, Same},
    {"a second of milliseconds is one of seconds", "Accuracy", "30 04 80 02 03 E8",
     ASN1S_CONSTRAINT_VIOLATION, ""},
    {"a fraction of zero has to be left out", "Accuracy", "30 03 81 01 00",
     ASN1S_CONSTRAINT_VIOLATION, ""},
    {"code signers ask for time with a message of their own", "TimeStampAuthenticodeRequest",
     "30 0E 06 01 2A 30 09 06 01 2A A0 04 04 02 41 42", 0, Same},

    // Directory attributes and enrolment
    {"a mail address of no characters", "PHGString", "16 00", ASN1S_CONSTRAINT_VIOLATION, ""},
    {"passes where certificates in use have one", "PHGStringNonStrict", "16 00", 0, Same},
    {"the same for domain components", "CaseIgnoreIA5StringSyntax", "16 00",
     ASN1S_CONSTRAINT_VIOLATION, ""},
    {"in their attribute", "AttributeTypeAndValue",
     "30 0E 06 0A 09 92 26 89 93 F2 2C 64 01 19 16 00", 0, Same},
    {"a tool without a name", "SubjectSignTool", "0C 00", 0, Same},
    {"a success is not written", "PKIAudit", "30 0C 0A 01 1F 02 01 00 02 01 00 01 01 01", 0,
     "30 09 0A 01 1F 02 01 00 02 01 00"},
    {"a failure is", "PKIAudit", "30 0C 0A 01 00 02 01 00 02 01 00 01 01 00", 0, Same},
    {"an event after the last", "PKIAudit", "30 09 0A 01 20 02 01 00 02 01 00", ASN1S_INVALID_ENUM,
     ""},
};

class Oddities : public testing::TestWithParam<Row> {};

TEST_P(Oddities, AreAsTold) {
    const Row& row = GetParam();
    const TypeDescription* type = findType(row.type);
    ASSERT_NE(type, nullptr);
    const Octets octets = fromHex(row.message);
    tests::Reader reader(octets);
    xd_setp(reader, reader->buffer.data, static_cast<int>(octets.size()), nullptr, nullptr);
    void* value = family::newRecord(reader, *type);
    EXPECT_EQ(family::decode(reader, *type, value, ASN1TagExplicit, 0), row.status);
    EXPECT_EQ(reader.recorded(), row.status);
    if (row.status == 0) {
        EXPECT_EQ(reader.position(), octets.size());
        tests::Writer writer;
        EXPECT_GT(family::encode(writer, *type, value, ASN1TagExplicit), 0);
        EXPECT_EQ(writer.hex(), row.encoded == Same ? toHex(octets) : row.encoded);
    }
    family::release(reader, *type, value);
}

INSTANTIATE_TEST_SUITE_P(Catalogue, Oddities, testing::ValuesIn(rows));

/// A message or response that comes piece by piece, made of one that did not.
Octets streamed(const Octets& message, bool complete) {
    const std::size_t lengthOctets = message[1] < 0x80 ? 1 : 1u + (message[1] & 0x7Fu);
    Octets octets = {message[0], 0x80};
    octets.insert(octets.end(), message.begin() + 1 + static_cast<std::ptrdiff_t>(lengthOctets),
                  message.end());
    octets.insert(octets.end(), complete ? 2 : 0, 0);
    return octets;
}

/// Decodes a random value's octets after their outermost form was made indefinite.
void expectEnd(const TypeDescription& type, unsigned long long seed) {
    SCOPED_TRACE(type.name);
    tests::Context values;
    void* value = tests::ValueBuilder(values, seed).build(type);
    ASSERT_EQ(xe_setp(values, nullptr, 0), 0);
    ASSERT_GT(family::encode(values, type, value, ASN1TagExplicit), 0);
    const ASN1Buffer& buffer = values->buffer;
    const Octets message(buffer.data + buffer.byteIndex, buffer.data + buffer.size - 1);
    if ((message[0] & 0x20) == 0) {
        return; // an alternative in primitive form
    }
    for (const bool complete : {true, false}) {
        const Octets octets = streamed(message, complete);
        tests::Reader reader(octets);
        void* decoded = family::newRecord(reader, type);
        const int status = family::decode(reader, type, decoded, ASN1TagExplicit, 0);
        if (type.stepsOverEndOfContents) {
            EXPECT_EQ(status, complete ? 0 : ASN1S_INVALID_LENGTH);
            EXPECT_TRUE(!complete || reader.position() == octets.size());
        } else if (complete) {
            EXPECT_EQ(status, 0);
            EXPECT_EQ(reader.position(), octets.size() - 2);
        }
        family::release(reader, type, decoded);
    }
}

// Whether a type steps over the end of its own indefinite form decides whether a streamed message
// can be read whole.
TEST(EndOfContents, IsSteppedOverByTheTypesThatAreStreamed) {
    unsigned stepping = 0;
    for (const TypeDescription* type : allTypes()) {
        const bool constructed = type->shape == Shape::Sequence || type->shape == Shape::Set ||
                                 type->shape == Shape::List || type->shape == Shape::Array ||
                                 type->shape == Shape::FixedArray ||
                                 // Elsewhere it depends on the alternative.
                                 (type->shape == Shape::Choice && type->stepsOverEndOfContents);
        // Behind an EXPLICIT tag the inner form ends first; kept elements end with the message.
        if (!constructed || type->outerTag != 0 || type->extensionOffset != NoOffset) {
            continue;
        }
        for (unsigned long long seed = 1; seed <= 10; ++seed) {
            expectEnd(*type, seed);
        }
        stepping += type->stepsOverEndOfContents;
    }
    // 48 types and seven other names of theirs.
    EXPECT_EQ(stepping, 55u);
}

// A list with a tag of its own leaves it to the caller who writes another in its place, never its
// universal one.
TEST(OwnTags, OfListsAreLeftToTheCaller) {
    tests::Writer writer;
    ASN1T_CertId id;
    id.issuer.t = 3;
    id.issuer.u.dNSName = "A";
    id.serialNumber = "5";
    ASN1T_RevRepContent_revCerts list;
    rtDListInit(&list);
    rtDListAppend(writer, &list, &id);
    EXPECT_EQ(asn1E_RevRepContent_revCerts(writer, &list, ASN1TagImplicit), 10);
    EXPECT_EQ(writer.hex(), "30 08 30 06 82 01 41 02 01 05");
}

TEST(OwnTags, OfChoicesAreLeftToTheCaller) {
    for (const auto& [tagging, octets] :
         {std::pair{ASN1TagExplicit, "A1 03 13 01 41"}, {ASN1TagImplicit, "13 01 41"}}) {
        tests::Writer writer;
        ASN1T_EDIPartyName_partyName name;
        name.t = 2;
        name.u.printableString = "A";
        EXPECT_GT(asn1E_EDIPartyName_partyName(writer, &name, tagging), 0);
        EXPECT_EQ(writer.hex(), octets);
    }
}

TEST(Defaults, OfTextNumbersAreComparedByValue) {
    for (const char* version : {"1", "0x1", "0x01", "0x0001", "0b1"}) {
        tests::Writer writer;
        ASN1T_DVCSRequestInformation value;
        value.version = version;
        value.service = 1;
        EXPECT_EQ(asn1E_DVCSRequestInformation(writer, &value, ASN1TagExplicit), 5) << version;
    }
    tests::Reader reader("30 03 0A 01 01");
    ASN1T_DVCSRequestInformation value;
    ASSERT_EQ(asn1D_DVCSRequestInformation(reader, &value, ASN1TagExplicit, 0), 0);
    EXPECT_STREQ(value.version, "1");
    // The decoded default is a constant of the library, which releasing leaves alone.
    asn1Free_DVCSRequestInformation(reader, &value);
}

TEST(Choices, WithoutAnAlternativeAreRefused) {
    for (const unsigned selector : {0u, 10u}) {
        tests::Writer writer;
        ASN1T_GeneralName name;
        name.t = selector;
        EXPECT_EQ(asn1E_GeneralName(writer, &name, ASN1TagExplicit), ASN1S_INVALID_CHOICE);
        name.t = 0;
    }
}

TEST(Extensions, KeepWhatLaterVersionsAdd) {
    tests::Reader reader("30 0B 06 03 2A 03 04 05 00 02 02 00 01");
    ASN1T_Gost28147_89_BlobParameters value;
    ASSERT_EQ(asn1D_Gost28147_89_BlobParameters(reader, &value, ASN1TagExplicit, 0), 0);
    ASSERT_EQ(value.extElem1.count, 2u);
    const auto* second = static_cast<const ASN1OpenType*>(value.extElem1.tail->data);
    EXPECT_EQ(toHex(second->data, second->numocts), "02 02 00 01");
    asn1Free_Gost28147_89_BlobParameters(reader, &value);
}

// Whoever looks for the cause of a refusal finds the place by these names.
TEST(Parameters, NameThePlaceOfABrokenBound) {
    const struct {
        const char* type;
        const char* element; ///< null: the type's own bound
        const char* parameter;
    } places[] = {
        {"PersonalName", "surname", "pvalue->surname"},
        {"ExtensionAttribute", "extension_attribute_type", "pvalue->extension_attribute_type"},
        {"GostR3411_94_Digest", nullptr, "pvalue->numocts"},
        {"PBKDF2_params", "iterationCount", "pvalue->iterationCount"},
        {"PBKDF2_params", "keyLength", "pvalue->keyLength"},
        {"_friendlyName_Type", nullptr, "pvalue->nchars"},
        {"Accuracy", "millis", "pvalue->millis"},
        {"Accuracy", "micros", "pvalue->micros"},
        {"_commonName_Type", "ia5String", "pvalue->u.ia5String"},
        {"EnrollmentCSPInfo", "name", "pvalue->name.nchars"},
        {"PHGString", nullptr, "*pvalue"},
    };
    for (const auto& place : places) {
        const TypeDescription& type = *findType(place.type);
        std::string parameter = place.element == nullptr ? type.parameter : "";
        for (unsigned i = 0; place.element != nullptr && i < type.elementCount; ++i) {
            if (type.elements[i].name == std::string(place.element)) {
                parameter = type.elements[i].parameter;
            }
        }
        EXPECT_EQ(parameter, place.parameter) << place.type;
    }
}

template <class Control, class = void>
struct Copies : std::false_type {};
template <class Control>
struct Copies<Control, std::void_t<decltype(std::declval<Control&>().getCopy())>> : std::true_type {
};
template <class Control, class = void>
struct MakesNew : std::false_type {};
template <class Control>
struct MakesNew<Control, std::void_t<decltype(std::declval<Control&>().newCopy())>>
    : std::true_type {};

template <class Control>
constexpr bool isCopied = Copies<Control>::value&& MakesNew<Control>::value;
template <class Control>
constexpr bool isUncopied = !Copies<Control>::value && !MakesNew<Control>::value;

// Code that would copy them has to fail in the compiler, not at run time.
static_assert(isCopied<ASN1C_Certificate> && isCopied<ASN1C_GostR3411_94_Digest>);
static_assert(isUncopied<ASN1C_GostR3411_2012_256_Digest>);
static_assert(isUncopied<ASN1C_GostR3411_2012_512_Digest>);
static_assert(isUncopied<ASN1C_HashStateBlob>);
static_assert(isUncopied<ASN1C_HashAccTextLen>);
static_assert(isUncopied<ASN1C_CertificateTemplate>);
static_assert(isUncopied<ASN1C_EnrollmentNameValuePair>);

/// A type of NULL: there is no value to serve, and nothing to copy.
template <class Control>
constexpr bool isEmpty =
    isUncopied<Control>&& std::is_default_constructible_v<Control>&& std::is_constructible_v<
        Control, ASN1MessageBufferIF&>&& std::is_constructible_v<Control, Control&> &&
    !std::is_constructible_v<Control, ASN1MessageBufferIF&, unsigned char&>;
static_assert(isEmpty<ASN1C_SignaturePolicyImplied_> && isEmpty<ASN1C_NULLParams_> &&
              isEmpty<ASN1C_UnknownInfo_> && isEmpty<ASN1C_PKIConfirmContent_>);

} // namespace
