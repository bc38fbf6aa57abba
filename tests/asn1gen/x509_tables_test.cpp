#include <fstream>
#include <map>
#include <sstream>

#include <gtest/gtest.h>

#include <brevantis/asn1/asn1data.h>

// The tables of certificates and revocation lists, row by row, against what X.509 and RFC 5280 say
// and what this library holds it in.

namespace {

using namespace asn1data;

struct ElementRow {
    const char* name;
    const char* type;
    ASN1TAG tag;
    const char* presence; ///< "" mandatory, a bit number, or "DEFAULT"
};

struct TypeRow {
    const char* name;
    Shape shape;
    ASN1TAG tag;
    const char* element;
    unsigned minimum; ///< of the size, 0 without a constraint
    const char* table;
    std::vector<ElementRow> elements;
};

constexpr ASN1TAG sequence = 0x20000010;
constexpr ASN1TAG set = 0x20000011;

const TypeRow rows[] = {
    {"AlgorithmIdentifier",
     Shape::Sequence,
     sequence,
     "",
     0,
     "SupportedAlgorithms",
     {{"algorithm", "OBJECT IDENTIFIER", 0, ""}, {"parameters", "open type", 0, "0"}}},
    {"Attribute",
     Shape::Sequence,
     sequence,
     "",
     0,
     "SupportedAttributes",
     {{"type", "OBJECT IDENTIFIER", 0, ""}, {"values", "Attribute_values", 0, ""}}},
    {"AttributeTypeAndValue",
     Shape::Sequence,
     sequence,
     "",
     0,
     "SupportedAttributes",
     {{"type", "OBJECT IDENTIFIER", 0, ""}, {"value", "open type", 0, ""}}},
    {"Attribute_values", Shape::List, set, "open type", 1, "", {}},
    {"Certificate",
     Shape::Sequence,
     sequence,
     "",
     0,
     "",
     {{"tbsCertificate", "TBSCertificate", 0, ""},
      {"signatureAlgorithm", "AlgorithmIdentifier", 0, ""},
      {"signature", "BIT STRING", 0, ""}}},
    {"CertificateList",
     Shape::Sequence,
     sequence,
     "",
     0,
     "",
     {{"tbsCertList", "TBSCertList", 0, ""},
      {"signatureAlgorithm", "AlgorithmIdentifier", 0, ""},
      {"signature", "BIT STRING", 0, ""}}},
    {"CertificateSerialNumber", Shape::BigInteger, 2, "", 0, "", {}},
    {"DistinguishedName", Shape::List, sequence, "RelativeDistinguishedName", 0, "", {}},
    {"Extension",
     Shape::Sequence,
     sequence,
     "",
     0,
     "ExtensionSet",
     {{"extnID", "OBJECT IDENTIFIER", 0, ""},
      {"critical", "BOOLEAN", 0, "DEFAULT"},
      {"extnValue", "OCTET STRING", 0, ""}}},
    {"Extensions", Shape::List, sequence, "Extension", 1, "", {}},
    {"Name", Shape::Choice, 0, "", 0, "", {{"rdnSequence", "RDNSequence", 0, ""}}},
    {"RDNSequence", Shape::List, sequence, "RelativeDistinguishedName", 0, "", {}},
    {"RelativeDistinguishedName", Shape::List, set, "AttributeTypeAndValue", 1, "", {}},
    {"SubjectPublicKeyInfo",
     Shape::Sequence,
     sequence,
     "",
     0,
     "",
     {{"algorithm", "AlgorithmIdentifier", 0, ""}, {"subjectPublicKey", "BIT STRING", 0, ""}}},
    {"TBSCertList",
     Shape::Sequence,
     sequence,
     "",
     0,
     "",
     {{"version", "Version", 0, "0"},
      {"signature", "AlgorithmIdentifier", 0, ""},
      {"issuer", "Name", 0, ""},
      {"thisUpdate", "Time", 0, ""},
      {"nextUpdate", "Time", 0, "1"},
      {"revokedCertificates", "_SeqOfTBSCertList_revokedCertificates_element", 0, "2"},
      {"crlExtensions", "Extensions", 0xA0000000, "3"}}},
    {"TBSCertList_revokedCertificates_element",
     Shape::Sequence,
     sequence,
     "",
     0,
     "",
     {{"userCertificate", "CertificateSerialNumber", 0, ""},
      {"revocationDate", "Time", 0, ""},
      {"crlEntryExtensions", "Extensions", 0, "0"}}},
    {"TBSCertificate",
     Shape::Sequence,
     sequence,
     "",
     0,
     "",
     {{"version", "Version", 0xA0000000, "0"},
      {"serialNumber", "CertificateSerialNumber", 0, ""},
      {"signature", "AlgorithmIdentifier", 0, ""},
      {"issuer", "Name", 0, ""},
      {"validity", "Validity", 0, ""},
      {"subject", "Name", 0, ""},
      {"subjectPublicKeyInfo", "SubjectPublicKeyInfo", 0, ""},
      {"issuerUniqueID", "UniqueIdentifier", 0x80000001, "1"},
      {"subjectUniqueID", "UniqueIdentifier", 0x80000002, "2"},
      {"extensions", "Extensions", 0xA0000003, "3"}}},
    {"Time",
     Shape::Choice,
     0,
     "",
     0,
     "",
     {{"utcTime", "UTCTime", 0, ""}, {"generalTime", "GeneralizedTime", 0, ""}}},
    {"UniqueIdentifier", Shape::BitString, 3, "", 0, "", {}},
    {"Validity",
     Shape::Sequence,
     sequence,
     "",
     0,
     "",
     {{"notBefore", "Time", 0, ""}, {"notAfter", "Time", 0, ""}}},
    {"Version", Shape::Unsigned, 2, "", 0, "", {}},
    {"_SeqOfTBSCertList_revokedCertificates_element",
     Shape::List,
     sequence,
     "TBSCertList_revokedCertificates_element",
     0,
     "",
     {}},
};

std::string presenceOf(const ElementDescription& element) {
    return element.presence == Presence::Mandatory ? ""
           : element.presence == Presence::Default ? "DEFAULT"
                                                   : std::to_string(element.presenceBit);
}

TEST(X509Tables, EveryRow) {
    for (const TypeRow& row : rows) {
        SCOPED_TRACE(row.name);
        const TypeDescription* type = findType(row.name);
        ASSERT_NE(type, nullptr);
        EXPECT_EQ(type->shape, row.shape);
        EXPECT_EQ(type->tag, row.tag);
        EXPECT_EQ(type->outerTag, 0u);
        EXPECT_EQ(type->setOf, row.tag == set);
        EXPECT_STREQ(type->element != nullptr ? type->element->name : "", row.element);
        ASSERT_EQ(type->constraint.count, row.minimum);
        if (row.minimum > 0) {
            EXPECT_EQ(type->constraint.ranges[0].lower, row.minimum);
            EXPECT_EQ(type->constraint.ranges[0].upper, 0xFFFFFFFFll);
        }
        EXPECT_STREQ(type->table != nullptr ? type->table->objects->name : "", row.table);
        ASSERT_EQ(type->elementCount, row.elements.size());
        for (unsigned i = 0; i < type->elementCount; ++i) {
            const ElementDescription& element = type->elements[i];
            EXPECT_STREQ(element.name, row.elements[i].name);
            EXPECT_STREQ(element.type->name, row.elements[i].type);
            EXPECT_EQ(element.tag, row.elements[i].tag);
            EXPECT_EQ(presenceOf(element), row.elements[i].presence);
            const Tagging tagging = element.tag == 0             ? Tagging::Untagged
                                    : element.tag >> 29 == 0b101 ? Tagging::Explicit
                                                                 : Tagging::Implicit;
            EXPECT_EQ(element.tagging, tagging) << element.name;
        }
    }
}

TEST(X509Tables, TypesAndSetsAreSortedAndFound) {
    const TypeRange types = allTypes();
    for (std::size_t i = 0; i < types.size(); ++i) {
        EXPECT_EQ(findType(types[i].name), &types[i]);
        EXPECT_TRUE(i == 0 || std::string(types[i - 1].name) < types[i].name);
    }
    for (const char* name : {"", "Certificat", "Certificatf", "zzz", "ASN1T_Certificate"}) {
        EXPECT_EQ(findType(name), nullptr) << name;
    }
    std::string previous;
    for (const ObjectSetDescription* objects : allObjectSets()) {
        EXPECT_LT(previous, objects->name);
        previous = objects->name;
    }
    EXPECT_EQ(allObjectSets().size(), 14u);
    EXPECT_STREQ(findType("DistinguishedName")->aliasOf->name, "RDNSequence");
}

TEST(X509Tables, ObjectIdentifiers) {
    std::map<std::string, std::string> expected;
    std::ifstream names(EXPECTED_IDENTIFIERS);
    for (std::string line; std::getline(names, line);) {
        std::istringstream words(line);
        std::string name;
        std::string dotted;
        if (line[0] != '#' && words >> name >> dotted) {
            expected[name] = dotted;
        }
    }
    ASSERT_EQ(expected.size(), 439u);
    // Each definition reads "const ASN1OBJID name = {count, {arc, arc}};", maybe on two lines.
    std::map<std::string, std::string> found;
    std::ifstream source(GENERATED_IDENTIFIERS);
    const std::string text((std::istreambuf_iterator<char>(source)), {});
    const std::string start = "const ASN1OBJID ";
    for (std::size_t at = text.find(start); at != std::string::npos;
         at = text.find(start, at + 1)) {
        const std::size_t nameAt = at + start.size();
        const std::string name = text.substr(nameAt, text.find(' ', nameAt) - nameAt);
        const std::string definition = text.substr(at, text.find(';', at) - at);
        const std::size_t brace = definition.rfind('{');
        if (brace == std::string::npos) {
            EXPECT_EQ(definition, start + "id_Brevantis_algorithms = id_Brevantis");
            continue;
        }
        std::string arcs = definition.substr(brace + 1, definition.find('}') - brace - 1);
        for (std::size_t comma; (comma = arcs.find(", ")) != std::string::npos;) {
            arcs.replace(comma, 2, ".");
        }
        found[name] = arcs;
    }
    EXPECT_EQ(found, expected);
    EXPECT_EQ(id_ce_keyUsage.numids, 4u);
    EXPECT_EQ(id_ce_keyUsage.subid[3], 15u);
    EXPECT_TRUE(ASN1TObjId(id_Brevantis_algorithms) == ASN1TObjId(id_Brevantis));
}

} // namespace
