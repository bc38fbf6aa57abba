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
    {"syntax"},  {"library", "names"}, {"cycles"}, {"aliases"}, {"ambiguity"},
    {"remarks"}, {"templates"},        {"values"}, {"objects"}};

TEST(Diagnostics, PointsAtEveryMistake) {
    for (const std::vector<std::string>& modules : runs) {
        SCOPED_TRACE(modules.back());
        std::vector<asn1gen::SourceFile> files;
        files.reserve(modules.size());
        for (const std::string& name : modules) {
            files.push_back({name + ".asn1", readFile(name + ".asn1")});
        }
        notation::Diagnostics diagnostics;
        EXPECT_TRUE(asn1gen::compile(files, {}, diagnostics).empty());
        std::ostringstream printed;
        diagnostics.print(printed);
        EXPECT_EQ(printed.str(), readFile(modules.back() + ".expected"));
    }
}

/// What is said about a module, whose body is given.
std::string saidOf(const std::string& body) {
    notation::Diagnostics diagnostics;
    asn1gen::compile({{"m.asn1", "M DEFINITIONS ::= BEGIN\n" + body + "END\n"}}, {}, diagnostics);
    return diagnostics.entries().empty() ? "" : diagnostics.entries().front().sentence;
}

// What is endless ends in a sentence, what is merely long in linear time.
TEST(Diagnostics, DepthAndChains) {
    enum { Many = 20000 };
    const auto repeated = [](const std::string& text) {
        std::string all;
        for (int i = 0; i < Many; ++i) {
            all += text;
        }
        return all;
    };
    EXPECT_NE(saidOf("A ::= " + repeated("SEQUENCE OF ") + "BOOLEAN\n").find("nests more than"),
              std::string::npos);
    EXPECT_NE(saidOf("A ::= " + repeated("CHOICE { a ") + "BOOLEAN\n").find("nests more than"),
              std::string::npos);
    EXPECT_NE(saidOf("A ::= INTEGER " + repeated("(") + "\n").find("nests more than"),
              std::string::npos);
    const auto chain = [](const char* each, const char* last) {
        std::string all;
        for (int i = 0; i < Many; ++i) {
            const std::string next = std::to_string(i + 1);
            std::string line = each;
            for (std::size_t at; (at = line.find('#')) != std::string::npos;) {
                line.replace(at, 1, next);
            }
            for (std::size_t at; (at = line.find('@')) != std::string::npos;) {
                line.replace(at, 1, std::to_string(i));
            }
            all += line + "\n";
        }
        std::string line = last;
        line.replace(line.find('@'), 1, std::to_string(int{Many}));
        return all + line + "\n";
    };
    EXPECT_NE(saidOf(chain("v@ INTEGER ::= v#", "v@ INTEGER ::= 1")).find("more than 1000"),
              std::string::npos);
    EXPECT_NE(saidOf(chain("v@ OBJECT IDENTIFIER ::= { v# 1 }", "v@ OBJECT IDENTIFIER ::= { 1 2 }"))
                  .find("more than 1000"),
              std::string::npos);
    EXPECT_NE(saidOf(chain("A@ ::= A#", "A@ ::= BOOLEAN")).find("more than 1000"),
              std::string::npos);
    EXPECT_NE(saidOf(chain("A@ ::= SEQUENCE { a A# }", "A@ ::= BOOLEAN")).find("more than 1000"),
              std::string::npos);
    EXPECT_NE(saidOf(chain("A@ ::= CHOICE { a A# }", "A@ ::= BOOLEAN")).find("more than 1000"),
              std::string::npos);
    EXPECT_EQ(saidOf(chain("A@ ::= SEQUENCE OF A#", "A@ ::= BOOLEAN")), "");
    EXPECT_NE(saidOf("F { T } ::= SEQUENCE { a SEQUENCE OF F { F { T } } }\nA ::= F { BOOLEAN }\n")
                  .find("more than 1000"),
              std::string::npos);
    EXPECT_NE(saidOf("A ::= SEQUENCE { COMPONENTS OF A }\n").find("COMPONENTS OF"),
              std::string::npos);
    EXPECT_NE(saidOf("A ::= CHOICE { a A, b NULL }\n").find("alternative of itself"),
              std::string::npos);
}

} // namespace
