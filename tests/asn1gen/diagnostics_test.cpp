#include <filesystem>
#include <fstream>
#include <sstream>

#include <gtest/gtest.h>

#include "compiler.h"

// Modules with mistakes, and what the compiler says about each.

namespace {

std::string readAll(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    EXPECT_TRUE(in.good()) << path;
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

std::string readFile(const std::string& name) {
    return readAll(std::filesystem::path(MODULES_DIRECTORY) / name);
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
            files.push_back({name + ".asn1", readFile(name + ".asn1"), false});
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
    asn1gen::compile({{"m.asn1", "M DEFINITIONS ::= BEGIN\n" + body + "END\n", false}}, {},
                     diagnostics);
    return diagnostics.entries().empty() ? "" : diagnostics.entries().front().sentence;
}

// Modules of the library stand behind those of the run, and are told of where one is missing.
TEST(Diagnostics, ModulesOfTheLibrary) {
    const asn1gen::SourceFile library = {
        "x.asn1", "X DEFINITIONS ::= BEGIN\nName ::= NULL\nOther ::= NULL\nEND\n", true};
    const auto said = [&library](const std::string& text) {
        notation::Diagnostics diagnostics;
        asn1gen::compile({library, {"m.asn1", text}}, {}, diagnostics);
        std::ostringstream printed;
        diagnostics.print(printed);
        return printed.str();
    };
    EXPECT_EQ(said("M DEFINITIONS ::= BEGIN IMPORTS Name FROM X;\nA ::= X.Name\nEND\n"), "");
    // Of two modules with one name the identifier tells which is meant.
    const std::string two = "T { iso 1 } DEFINITIONS ::= BEGIN A ::= INTEGER END\n"
                            "T { iso 2 } DEFINITIONS ::= BEGIN B ::= INTEGER END\n";
    EXPECT_EQ(said(two + "M DEFINITIONS ::= BEGIN IMPORTS A FROM T { 1 1 } B FROM T { iso(1) 2 };\n"
                         "C ::= SEQUENCE { a A, b T.B }\nEND\n"),
              "");
    EXPECT_EQ(said(two + "M DEFINITIONS ::= BEGIN IMPORTS B FROM T { 1 1 };\nEND\n"),
              "m.asn1:3:33: warning: module 'T' does not define 'B'; values of that type are left "
              "open.\n");
    EXPECT_EQ(said("T { 1 2 } DEFINITIONS ::= BEGIN END\nT { iso 2 } DEFINITIONS ::= BEGIN END\n"),
              "m.asn1:2:1: error: a second module 'T' with the same object identifier.\n");
    EXPECT_EQ(said("M DEFINITIONS ::= BEGIN IMPORTS Name FROM Gone;\nEND\n"),
              "m.asn1:1:43: error: module 'Gone' is not among the files; add the file that holds "
              "it, or import 'Name' from 'X', which is installed with the library (x.asn1).\n");
    EXPECT_EQ(said("M DEFINITIONS ::= BEGIN IMPORTS Other FROM X;\nEND\n"
                   "X DEFINITIONS ::= BEGIN Name ::= BOOLEAN END\n"),
              "m.asn1:1:33: warning: module 'X' does not define 'Other'; values of that type are "
              "left open.\n");
}

/// The fenced blocks of a page of documentation: what they are marked as, and their text.
std::vector<std::pair<std::string, std::string>> blocksOf(const std::string& page) {
    std::vector<std::pair<std::string, std::string>> blocks;
    std::istringstream lines(page);
    bool inside = false;
    for (std::string line; std::getline(lines, line);) {
        if (line.rfind("```", 0) == 0) {
            inside = !inside;
            if (inside) {
                blocks.emplace_back(line.substr(3), "");
            }
        } else if (inside) {
            blocks.back().second += line + "\n";
        }
    }
    return blocks;
}

// Each example compiles with what is said about it, or with nothing to say.
TEST(Documentation, ExamplesSayWhatStandsBehindThem) {
    std::vector<asn1gen::SourceFile> files;
    for (const auto& entry : std::filesystem::directory_iterator(SCHEMA_DIRECTORY)) {
        files.push_back({entry.path().filename().string(), readAll(entry.path()), true});
    }
    files.emplace_back();
    const auto blocks = blocksOf(readAll(DOCUMENTATION));
    unsigned examples = 0;
    for (std::size_t i = 0; i < blocks.size(); ++i) {
        const auto& [mark, text] = blocks[i];
        if (mark != "asn1") {
            continue;
        }
        ++examples;
        files.back() = {"", text, false};
        notation::Diagnostics diagnostics;
        asn1gen::compile(files, {}, diagnostics);
        std::ostringstream printed;
        diagnostics.print(printed);
        std::string said = printed.str();
        for (std::size_t at = 0; at < said.size(); at = said.find('\n', at) + 1) {
            said.erase(at, 1); // the colon behind the name of the file
        }
        const bool told = i + 1 < blocks.size() && blocks[i + 1].first == "messages";
        EXPECT_EQ(said, told ? blocks[i + 1].second : "") << text;
    }
    EXPECT_GT(examples, 10u);
}

/// Lines that each stand for the one behind them, in which `#` is the number of a line and `$` that
/// of the next.
std::string chain(const std::string& line, const std::string& last, bool backwards) {
    enum { Many = 20000 };
    std::string all;
    for (int i = 0; i <= Many; ++i) {
        const int number = backwards ? Many - i : i;
        for (const char c : number == Many ? last : line) {
            all += c == '#'   ? std::to_string(number)
                   : c == '$' ? std::to_string(number + 1)
                              : std::string(1, c);
        }
        all += '\n';
    }
    return all;
}

// What is endless ends in a sentence, what is merely long in linear time.
TEST(Diagnostics, DepthAndChains) {
    const auto repeated = [](const std::string& text) {
        std::string all;
        for (int i = 0; i < 20000; ++i) {
            all += text;
        }
        return all;
    };
    const std::string deep[] = {"A ::= " + repeated("SEQUENCE OF ") + "BOOLEAN\n",
                                "A ::= " + repeated("CHOICE { a ") + "BOOLEAN\n",
                                "A ::= INTEGER " + repeated("(") + "\n"};
    for (const std::string& body : deep) {
        EXPECT_NE(saidOf(body).find("nests more than"), std::string::npos);
    }
    const struct {
        const char* line;
        const char* last;
    } chains[] = {
        {"v# INTEGER ::= v$", "v# INTEGER ::= 1"},
        {"v# OBJECT IDENTIFIER ::= { v$ 1 }", "v# OBJECT IDENTIFIER ::= { 1 2 }"},
        {"A# ::= A$", "A# ::= BOOLEAN"},
        {"A# ::= SEQUENCE { a A$ }", "A# ::= BOOLEAN"},
        {"A# ::= CHOICE { a A$ }", "A# ::= BOOLEAN"},
        {"A# ::= CHOICE { a a < A$ }", "A# ::= CHOICE { a BOOLEAN }"},
        {"A# { T } ::= SEQUENCE { a A$ { T } }",
         "A# { T } ::= SEQUENCE { a T }\nA ::= A0 { BOOLEAN }"},
        {"S# TYPE-IDENTIFIER ::= { S$ | s }",
         "S# TYPE-IDENTIFIER ::= { s }\ns TYPE-IDENTIFIER ::= { NULL IDENTIFIED BY { 1 2 } "
         "}\nT ::= SEQUENCE { i TYPE-IDENTIFIER.&id ({S0}), v TYPE-IDENTIFIER.&Type "
         "({S0}{@i}) }"}};
    for (const auto& [line, last] : chains) {
        EXPECT_NE(saidOf(chain(line, last, false)).find("more than 1000"), std::string::npos)
            << line;
    }
    for (const std::size_t which : {2u, 3u}) {
        EXPECT_NE(
            saidOf(chain(chains[which].line, chains[which].last, true)).find("more than 1000"),
            std::string::npos);
    }
    EXPECT_EQ(saidOf(chain("A# ::= SEQUENCE OF A$", "A# ::= BOOLEAN", false)), "");
    EXPECT_NE(saidOf("F { T } ::= SEQUENCE { a SEQUENCE OF F { F { T } } }\nA ::= F { BOOLEAN }\n")
                  .find("more than "),
              std::string::npos);
    std::string doubling = "A0 ::= SEQUENCE { a BOOLEAN }\n";
    for (int i = 1; i < 40; ++i) {
        const std::string last = "COMPONENTS OF A" + std::to_string(i - 1);
        doubling.append("A" + std::to_string(i) + " ::= SEQUENCE { " + last + ", " + last + " }\n");
    }
    EXPECT_NE(saidOf(doubling).find("more than 500000 tokens"), std::string::npos);
    EXPECT_NE(saidOf("A ::= SEQUENCE { COMPONENTS OF A }\n").find("COMPONENTS OF"),
              std::string::npos);
    EXPECT_NE(saidOf("A ::= CHOICE { a A, b NULL }\n").find("alternative of itself"),
              std::string::npos);
}

} // namespace
