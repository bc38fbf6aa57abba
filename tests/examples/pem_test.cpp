#include "pem.h"

#include <gtest/gtest.h>

#include "support/hex.h"

namespace {

using tests::toHex;

struct Row {
    const char* what;
    const char* file;
    const char* blocks; ///< a line each: number of the BEGIN line, label, octets or the problem
};

std::string describe(const std::vector<pem::Block>& blocks) {
    std::string text;
    for (const pem::Block& block : blocks) {
        text += std::to_string(block.line) + " " + block.label + ": " +
                (block.problem != nullptr ? block.problem : toHex(block.octets)) + "\n";
        EXPECT_TRUE(block.problem == nullptr || block.octets.empty());
    }
    return text;
}

TEST(Pem, ReadsBlocks) {
    const Row rows[] = {
        {"one block", "-----BEGIN CERTIFICATE-----\nMAMCAQA=\n-----END CERTIFICATE-----\n",
         "1 CERTIFICATE: 30 03 02 01 00\n"},
        {"text around blocks, line ends of Windows, a byte order mark",
         "\xEF\xBB\xBFsubject=CN=a\r\n-----BEGIN A-----\r\nAA\r\n ==\r\n-----END A-----\r\n"
         "between\r\n-----BEGIN B-----\r\nAAE=\r\n-----END B-----",
         "2 A: 00\n7 B: 00 01\n"},
        {"line ends of old Macs, blanks behind lines",
         "-----BEGIN A----- \rAAEC \r-----END A-----\t\r", "1 A: 00 01 02\n"},
        {"no octets", "-----BEGIN A-----\n-----END A-----\n", "1 A: \n"},
        {"headers of old key files",
         "-----BEGIN K-----\nProc-Type: 4,ENCRYPTED\nDEK-Info: X,00\n\nAA==\n-----END K-----\n",
         "1 K: 00\n"},
        {"no block", "nothing here\n", ""},
        {"the file ends in the base64", "-----BEGIN A-----\nAAEC",
         "1 A: the block is cut short: the file ends in it\n"},
        {"the file ends in the BEGIN line", "x\n-----BEGIN A---",
         "2 A---: the BEGIN line is damaged\n"},
        {"the file ends in the mark", "x\n-----BEG", "2 : the BEGIN line is damaged\n"},
        {"the file ends in the END line", "-----BEGIN A-----\nAAEC\n-----END A--",
         "1 A: the block is cut short: its END line is damaged\n"},
        {"the file begins in a block",
         "AAEC\n-----END A-----\n-----BEGIN A-----\nAA==\n-----END A-----",
         "2 A: the block has an END line, but no BEGIN line\n3 A: 00\n"},
        {"a lost END line costs one block",
         "-----BEGIN A-----\nAAEC\n-----BEGIN B-----\nAA==\n-----END B-----\n",
         "1 A: the block is not closed: another one begins in it\n3 B: 00\n"},
        {"labels differ", "-----BEGIN A-----\nAAEC\n-----END B-----\n",
         "1 A: the labels of the BEGIN and the END line differ\n"},
        {"a bad block costs no other",
         "-----BEGIN A-----\nA!EC\n-----END A-----\n-----BEGIN B-----\nAA==\n-----END B-----\n",
         "1 A: a character is not base64\n4 B: 00\n"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(describe(pem::read(row.file)), row.blocks) << row.what;
    }
}

TEST(Pem, DecodesBase64) {
    const struct {
        const char* text;
        const char* octets; ///< or the problem
    } rows[] = {
        {"", ""},
        {"Zg==", "66"},
        {"Zm8=", "66 6F"},
        {"Zm9v\nYmFy", "66 6F 6F 62 61 72"},
        {"+/+/", "FB FF BF"},
        {"Zm9", "base64 is cut short"},
        {"Zg=", "base64 is cut short"},
        {"Z===", "base64 is cut short"},
        {"====", "base64 is cut short"},
        {"Zg==Zg==", "base64 goes on behind its padding"},
        {"Zh==", "base64 ends in stray bits"},
        {"Zm_v", "a character is not base64"},
        {"Zm9v\xC3\xA9", "a character is not base64"},
    };
    for (const auto& row : rows) {
        std::vector<unsigned char> octets;
        const char* problem = pem::decodeBase64(row.text, octets);
        EXPECT_EQ(problem != nullptr ? problem : toHex(octets), row.octets) << row.text;
    }
}

TEST(Pem, TellsTextFromOctets) {
    EXPECT_TRUE(pem::isPem("0 is the first\n-----BEGIN A-----\n"));
    EXPECT_TRUE(pem::isPem("AAEC\n-----END A-----\n"));
    EXPECT_FALSE(pem::isPem(""));
    EXPECT_FALSE(pem::isPem("plain text"));
    EXPECT_FALSE(pem::isPem("\x30\x82\x01\x00-----BEGIN A-----"));
}

} // namespace
