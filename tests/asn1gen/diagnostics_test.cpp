#include <fstream>
#include <sstream>

#include <gtest/gtest.h>

#include "compiler.h"

// Modules with mistakes, and what the compiler says about each.

namespace {

std::string readFile(const std::string& name) {
    std::ifstream in(std::string(MODULES_DIRECTORY "/") + name, std::ios::binary);
    EXPECT_TRUE(in.good()) << name;
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

/// The modules of each run. The mistakes stand in the last one; what is said about them stands
/// beside it, in a file that ends in ".expected".
const std::vector<std::vector<std::string>> runs = {
    {"syntax"},    {"automatic"}, {"library", "names"}, {"cycles"}, {"aliases"},
    {"ambiguity"}, {"remarks"},   {"templates"},        {"values"}, {"objects"}};

TEST(Diagnostics, PointsAtEveryMistake) {
    for (const std::vector<std::string>& modules : runs) {
        SCOPED_TRACE(modules.back());
        std::vector<asn1gen::SourceFile> files;
        files.reserve(modules.size());
        for (const std::string& name : modules) {
            files.push_back({name + ".asn1", readFile(name + ".asn1")});
        }
        asn1gen::Diagnostics diagnostics;
        EXPECT_TRUE(asn1gen::compile(files, {}, diagnostics).empty());
        std::ostringstream printed;
        diagnostics.print(printed);
        EXPECT_EQ(printed.str(), readFile(modules.back() + ".expected"));
    }
}

TEST(Diagnostics, ModulesThatHoldEachOther) {
    asn1gen::Diagnostics diagnostics;
    asn1gen::compile({{"a.asn1", "A DEFINITIONS ::= BEGIN IMPORTS Y FROM B; X ::= BOOLEAN\n"
                                 "P ::= SEQUENCE { y Y } END\n"},
                      {"b.asn1", "B DEFINITIONS ::= BEGIN IMPORTS P FROM A;\n"
                                 "Y ::= SEQUENCE { a NULL }\nQ ::= SEQUENCE { p P } END\n"}},
                     {}, diagnostics);
    ASSERT_EQ(diagnostics.entries().size(), 1u);
    EXPECT_EQ(diagnostics.entries()[0].sentence, "modules hold values of each other: A -> B -> A");
}

} // namespace
