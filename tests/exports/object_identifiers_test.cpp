#include <string>
#include <vector>

#include <brevantis/asn1/asn1data/describe.h>
#include <brevantis/asn1/asn1data/oids.h>
#include <brevantis/asn1/runtime/object_identifier.h>
#include <gtest/gtest.h>

#include "support/locked_list.h"

namespace {

struct Row {
    const char* name;
    const ASN1OBJID* constant;
    const char* value;
};

/// One row a line of the data file: what a compiled program finds behind each name.
const Row Rows[] = {
#include "object_identifier_rows.inc"
};

std::string dotted(const ASN1OBJID& oid) {
    std::string text(rtOidToStrLen(&oid) + 1, '\0');
    EXPECT_EQ(rtOidToStr(&oid, text.data(), text.size()), 1);
    text.pop_back();
    return text;
}

TEST(ObjectIdentifiers, AsListed) {
    std::vector<std::string> lines;
    for (const asn1data::IdentifierDescription& identifier : asn1data::allIdentifiers()) {
        // The one that has no value of its own.
        if (identifier.identifier != &asn1data::id_Brevantis_algorithms) {
            lines.push_back(std::string(identifier.name) + ' ' + dotted(*identifier.identifier));
        }
    }
    tests::expectLocked("object_identifiers.txt", lines);
}

TEST(ObjectIdentifiers, HaveTheirValues) {
    for (const Row& row : Rows) {
        EXPECT_EQ(dotted(*row.constant), row.value) << row.name;
    }
}

/// Copied while the program starts, in the order of static initialisation that a user's own static
/// objects meet.
const ASN1OBJID AlgorithmsAtLoad = asn1data::id_Brevantis_algorithms;

TEST(ObjectIdentifiers, TheOneThatIsCopiedAtLoad) {
    EXPECT_TRUE(asn1data::id_Brevantis_algorithms == asn1data::id_Brevantis);
    EXPECT_TRUE(AlgorithmsAtLoad == asn1data::id_Brevantis);
    EXPECT_EQ(dotted(asn1data::id_Brevantis_algorithms), "1.2.643.2.2");
}

} // namespace
