#include <sys/wait.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include <gtest/gtest.h>

#include <notation/builtin_types.h>
#include <notation/remarks.h>

#include "compiler.h"
#include "writer.h"

// What is written: the same octets from the same module, nothing of where and when it was made.

namespace {

namespace fs = std::filesystem;

std::string readFile(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

asn1gen::Options options() {
    asn1gen::Options result;
    result.output.nameSpace = "sample";
    result.output.includePrefix = "sample/types";
    result.headerDirectory = "h";
    result.sourceDirectory = "s";
    return result;
}

std::map<std::string, std::string> generate(const std::string& name, const std::string& text) {
    asn1gen::Diagnostics diagnostics;
    auto result = asn1gen::compile({{name, text}}, options(), diagnostics);
    std::ostringstream printed;
    diagnostics.print(printed);
    EXPECT_EQ(printed.str(), "");
    return result;
}

std::string module(const std::string& body) {
    return "Sample DEFINITIONS ::= BEGIN\n" + body + "END\n";
}

TEST(Generation, DependsOnTheTextAlone) {
    const std::string text = readFile(SHAPES_MODULE);
    const auto first = generate("shapes.asn1", text);
    EXPECT_EQ(first, generate("shapes.asn1", text));
    EXPECT_EQ(first, generate("/some/where/shapes.asn1", text));
    ASSERT_EQ(first.size(), 3u);
    // A comment changes nothing but the digest.
    const auto second = generate("shapes.asn1", text + "-- at the end\n");
    for (const auto& [name, content] : first) {
        const std::string& other = second.at(name);
        EXPECT_NE(content, other);
        EXPECT_EQ(content.substr(content.find('\n')), other.substr(other.find('\n'))) << name;
    }
}

TEST(Generation, LeavesNothingOfItsTemplates) {
    for (const auto& [name, content] : generate("shapes.asn1", readFile(SHAPES_MODULE))) {
        EXPECT_EQ(content.find('$'), std::string::npos) << name;
        EXPECT_EQ(content.find("\n\n\n"), std::string::npos) << name;
        std::istringstream lines(content);
        for (std::string line; std::getline(lines, line);) {
            EXPECT_TRUE(line.empty() || line.back() != ' ') << name << ": " << line;
            const bool comment = line.find("///") != std::string::npos;
            EXPECT_TRUE(!comment || line.size() <= 100) << name << ": " << line;
        }
    }
}

TEST(Generation, FillsTemplates) {
    const asn1gen::Values values = {{"X", "Version"}, {"none", ""}};
    EXPECT_EQ(asn1gen::filled("int asn1E_$X(${X}s, $X*)$none;", values),
              "int asn1E_Version(Versions, Version*);");
    EXPECT_EQ(asn1gen::filled("", values), "");
    EXPECT_THROW(asn1gen::filled("$Y", values), std::logic_error);
    EXPECT_THROW(asn1gen::filled("$", values), std::logic_error);
    EXPECT_THROW(asn1gen::filled("${X", values), std::logic_error);
}

TEST(Generation, CommentsBecomeDocumentation) {
    const std::string header = generate("sample.asn1", module("--@ standard X.9999\n"
                                                              "-- What it is,\n"
                                                              "-- in two lines.\n"
                                                              "A ::= SEQUENCE {\n"
                                                              "    a BOOLEAN, -- what for\n"
                                                              "    class NULL OPTIONAL }\n"
                                                              "\n"
                                                              "-- Apart\n"
                                                              "\n"
                                                              "B ::= BOOLEAN --@ standard X.1\n"))
                                   .at("h/sample.h");
    for (const char* expected :
         {"/// What it is, in two lines.\n///\n///     A ::= SEQUENCE {\n///         a BOOLEAN,\n"
          "///         class NULL OPTIONAL }\n///\n/// X.9999\n",
          "    /// a BOOLEAN: what for\n    unsigned char a = 0;\n",
          "        unsigned classPresent : 1;\n", "/// X.1\nusing ASN1T_B = unsigned char;\n"}) {
        EXPECT_NE(header.find(expected), std::string::npos) << expected;
    }
    EXPECT_EQ(header.find("Apart"), std::string::npos);
    EXPECT_EQ(header.find("class;"), std::string::npos);
}

TEST(Generation, OneModuleHoldsWhatSeveralShare) {
    asn1gen::Diagnostics diagnostics;
    const auto files = asn1gen::compile(
        {{"a.asn1", "A DEFINITIONS ::= BEGIN X ::= SEQUENCE { a NULL }\nT ::= X END\n"},
         {"b.asn1", "B DEFINITIONS ::= BEGIN IMPORTS X, T FROM A;\n"
                    "Y ::= SEQUENCE { l SEQUENCE OF X, t T, c CHOICE { x X, b [0] T } } END\n"},
         {"c.asn1", "C DEFINITIONS ::= BEGIN IMPORTS X FROM A;\n"
                    "Z ::= SEQUENCE { l SEQUENCE OF X }\nW ::= CHOICE { x X } END\n"}},
        options(), diagnostics);
    ASSERT_FALSE(diagnostics.failed());
    EXPECT_EQ(files.at("h/a.h").find("_SeqOfX"), std::string::npos);
    EXPECT_NE(files.at("h/b.h").find("struct ASN1T__SeqOfX : "), std::string::npos);
    EXPECT_EQ(files.at("h/c.h").find("struct ASN1T__SeqOfX : "), std::string::npos);
    EXPECT_NE(files.at("h/c.h").find("#include <sample/types/b.h>"), std::string::npos);
    // A pointer needs no header.
    EXPECT_NE(files.at("h/c.h").find("struct ASN1T_X;"), std::string::npos);
    EXPECT_EQ(files.at("h/c.h").find("#include <sample/types/a.h>"), std::string::npos);
}

class Program : public testing::Test {
protected:
    Program()
        : directory_(fs::temp_directory_path() / ("asn1gen_test_" + std::to_string(getpid()))) {
        fs::create_directories(directory_);
    }
    ~Program() override { fs::remove_all(directory_); }

    fs::path write(const std::string& name, const std::string& text) const {
        std::ofstream(directory_ / name, std::ios::binary) << text;
        return directory_ / name;
    }
    int run(const std::string& arguments) const {
        const std::string output = (directory_ / "output").string();
        const int status = std::system(
            (std::string(ASN1GEN_PROGRAM " ") + arguments + " >" + output + " 2>&1").c_str());
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    std::string output() const { return readFile(directory_ / "output"); }
    std::string usual() const {
        return "--namespace sample --include-prefix sample --header-dir " +
               (directory_ / "h/sample").string() + " --source-dir " + (directory_ / "s").string() +
               " ";
    }

    fs::path directory_;
};

TEST_F(Program, LeavesUnchangedFilesAlone) {
    const fs::path file = write("sample.asn1", module("A ::= BOOLEAN\n"));
    ASSERT_EQ(run(usual() + file.string()), 0) << output();
    const fs::path header = directory_ / "h/sample/sample.h";
    const auto longAgo = fs::file_time_type::clock::now() - std::chrono::hours(1);
    fs::last_write_time(header, longAgo);
    ASSERT_EQ(run(usual() + file.string()), 0) << output();
    EXPECT_EQ(fs::last_write_time(header), longAgo);
    write("sample.asn1", module("A ::= NULL\n"));
    ASSERT_EQ(run(usual() + file.string()), 0) << output();
    EXPECT_GT(fs::last_write_time(header), longAgo);
    EXPECT_FALSE(fs::exists(directory_ / "s/catalogue.cpp"));
}

TEST_F(Program, TellsSuccessFromFailure) {
    EXPECT_EQ(run("--help"), 0);
    EXPECT_EQ(output().rfind("usage: asn1gen", 0), 0u);
    for (const notation::RemarkKind& kind : notation::remarkKinds()) {
        EXPECT_NE(output().find("--@ " + kind.key), std::string::npos) << kind.key;
    }
    EXPECT_EQ(run("--version"), 0);
    EXPECT_EQ(output(), "asn1gen " BREVANTIS_VERSION "\n");
    EXPECT_EQ(run(usual() + directory_.string()), 1);
    EXPECT_NE(output().find("is a folder"), std::string::npos);
    EXPECT_EQ(run(""), 1);
    EXPECT_EQ(run("--unknown"), 1);
    EXPECT_EQ(run(usual() + "missing.asn1"), 1);
    const fs::path bad = write("bad.asn1", module("A ::= B\n"));
    EXPECT_EQ(run(usual() + bad.string()), 1);
    EXPECT_EQ(output(), bad.string() + ":2:7: error: type 'B' is neither defined nor imported.\n");
    EXPECT_FALSE(fs::exists(directory_ / "h"));
    // A warning is told though all is well.
    const fs::path odd = write("odd.asn1", module("a M\n X ::= 1\n"));
    EXPECT_EQ(run(usual() + odd.string()), 0);
    EXPECT_NE(output().find(":2:1: warning: "), std::string::npos) << output();
}

// They are written by hand.
TEST(Documentation, TellsEveryRemark) {
    std::string manual = readFile(MANUAL_PAGE);
    manual.erase(std::remove(manual.begin(), manual.end(), '\\'), manual.end());
    const std::string page = readFile(DOCUMENTATION);
    for (const notation::RemarkKind& kind : notation::remarkKinds()) {
        EXPECT_NE(manual.find("--@ " + kind.key), std::string::npos) << kind.key;
        EXPECT_NE(page.find("| `" + kind.key), std::string::npos) << kind.key;
    }
    for (const notation::BuiltinType* row : notation::heldAs("INTEGER")) {
        EXPECT_NE(manual.find(row->variant), std::string::npos) << row->variant;
        EXPECT_NE(page.find(row->variant + '`'), std::string::npos) << row->variant;
    }
}

} // namespace
