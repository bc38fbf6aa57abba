#include <brevantis/asn1/text/pem.h>

#include <gtest/gtest.h>

#include "support/data_file.h"
#include "support/hex.h"

namespace {

using tests::toHex;

std::string describe(const std::vector<asn1text::pem::Block>& blocks) {
    std::string text;
    for (const asn1text::pem::Block& block : blocks) {
        text += std::to_string(block.line) + " " + block.label + ": " +
                (block.problem != nullptr ? block.problem : toHex(block.octets)) + "\n";
        EXPECT_TRUE(block.problem == nullptr || block.octets.empty());
    }
    return text;
}

TEST(Pem, ReadsBlocks) {
    tests::forEachRow("pem.txt", "blocks", [&](const tests::DataRow& row) {
        EXPECT_EQ(describe(asn1text::pem::read(row["file"])), row["blocks"]);
    });
}

TEST(Pem, DecodesBase64) {
    tests::forEachRow("pem.txt", "base64", [&](const tests::DataRow& row) {
        std::vector<unsigned char> octets;
        const char* problem = asn1text::pem::decodeBase64(row["text"], octets);
        EXPECT_EQ(problem != nullptr ? problem : toHex(octets), row["octets"]);
    });
}

TEST(Pem, TellsTextFromOctets) {
    EXPECT_TRUE(asn1text::pem::isPem("0 is the first\n-----BEGIN A-----\n"));
    EXPECT_TRUE(asn1text::pem::isPem("AAEC\n-----END A-----\n"));
    EXPECT_FALSE(asn1text::pem::isPem(""));
    EXPECT_FALSE(asn1text::pem::isPem("plain text"));
    EXPECT_FALSE(asn1text::pem::isPem("\x30\x82\x01\x00-----BEGIN A-----"));
}

} // namespace
