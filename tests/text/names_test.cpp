#include <brevantis/asn1/text/names.h>

#include <fstream>
#include <set>
#include <sstream>

#include <gtest/gtest.h>

#include <brevantis/asn1/asn1data/describe.h>

namespace {

using namespace asn1text;

TEST(Names, OfTheFileAreNoConstantsAndLeadBack) {
    std::ifstream file(NAMES_FILE);
    std::set<std::string> names;
    for (std::string line; std::getline(file, line);) {
        if (line.empty() || line.front() == '#') {
            continue;
        }
        std::istringstream columns(line);
        std::string dots;
        std::string name;
        std::string source;
        columns >> dots >> name >> std::ws;
        std::getline(columns, source);
        ASN1OBJID identifier{};
        ASSERT_TRUE(readDotted(dots, identifier)) << line;
        EXPECT_EQ(asn1data::identifierName(identifier), nullptr) << line;
        EXPECT_EQ(identifierName(identifier), name);
        EXPECT_EQ(identifierSource(identifier), source);
        EXPECT_EQ(dottedText(identifier), dots);
        ASN1OBJID found{};
        EXPECT_TRUE(findIdentifier(name, found)) << line;
        EXPECT_EQ(dottedText(found), dots) << "the name belongs to another identifier";
        EXPECT_TRUE(names.insert(name).second) << line;
    }
    EXPECT_GT(names.size(), 100U);
}

TEST(Names, OfConstantsLeadBack) {
    for (const asn1data::IdentifierDescription& constant : asn1data::allIdentifiers()) {
        ASN1OBJID found{};
        EXPECT_TRUE(findIdentifier(constant.name, found)) << constant.name;
        EXPECT_EQ(dottedText(found), dottedText(*constant.identifier)) << constant.name;
    }
    ASN1OBJID none{};
    EXPECT_FALSE(findIdentifier("", none));
    EXPECT_FALSE(findIdentifier("id_at_commonNam", none));
}

TEST(Names, DottedFormHasItsBounds) {
    ASN1OBJID identifier{};
    for (const char* good : {"0.0", "1.39", "2.999.3", "2.4294967215", "1.2.4294967295"}) {
        EXPECT_TRUE(readDotted(good, identifier)) << good;
        EXPECT_EQ(dottedText(identifier), good);
    }
    for (const char* bad : {"", "1", "1.", ".1", "1..2", "3.1", "0.40", "1.40", "01.2", "1.02",
                            "1.2 ", " 1.2", "1.-2", "1.+2", "1.2.4294967296", "2.4294967295"}) {
        EXPECT_FALSE(readDotted(bad, identifier)) << bad;
    }
    std::string most = "1.2";
    for (unsigned i = 2; i < ASN1MaxSubIds; ++i) {
        most += ".3";
    }
    EXPECT_TRUE(readDotted(most, identifier));
    EXPECT_FALSE(readDotted(most + ".3", identifier));
}

TEST(Names, OfOnesOwnStandInFront) {
    IdentifierNames names;
    EXPECT_EQ(
        names.read("# comment\r\nOID = 1 2 3 4\r\nComment = C\r\nDescription = own (1 2 3 4)\r\n"
                   "OID = 06 03 55 04 03\nWarning\nDescription = common (name)\n"
                   "OID = 2.5.4.4\nDescription = id_kp_serverAuth"),
        "");
    ASN1OBJID identifier{};
    const struct {
        const char* dots;
        const char* name;
    } rows[] = {{"1.2.3.4", "own"},
                {"2.5.4.3", "common (name)"},
                {"2.5.4.4", "id_kp_serverAuth"},
                {"2.5.4.5", "id_at_serialNumber"}};
    for (const auto& row : rows) {
        ASSERT_TRUE(readDotted(row.dots, identifier));
        EXPECT_STREQ(names.nameOf(identifier), row.name);
        EXPECT_TRUE(names.find(row.name, identifier));
        EXPECT_EQ(dottedText(identifier), row.dots);
    }
    EXPECT_TRUE(names.find("id_at_commonName", identifier));
    EXPECT_STREQ(IdentifierNames::ofLibrary().nameOf(identifier), "id_at_commonName");
    for (const char* bad :
         {"OID = 1 2 x", "OID = 06 03 55 04", "OID = 06 03 55 04 03 04", "OID =", "OID = 06 0z",
          "Description = of nothing", "OID = 1 2 3\nDescription =", "name = 1 2 3"}) {
        EXPECT_NE(names.read(bad), "") << bad;
    }
}

} // namespace
