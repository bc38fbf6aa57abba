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

} // namespace
