#include <cstdio>
#include <memory>
#include <set>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "support/data_file.h"

namespace {

using Symbols = std::set<std::string>;

/// Names in the dynamic symbol table of the library, demangled.
Symbols readSymbols() {
    struct Close {
        void operator()(std::FILE* pipe) const { pclose(pipe); }
    };
    const std::unique_ptr<std::FILE, Close> pipe(
        popen("nm -DC --defined-only '" LIBRARY_FILE "'", "r"));
    Symbols symbols;
    std::string line;
    for (int c = std::fgetc(pipe.get()); c != EOF; c = std::fgetc(pipe.get())) {
        if (c != '\n') {
            line += static_cast<char>(c);
            continue;
        }
        // "0000000000001234 T name": address and kind have a fixed width.
        if (line.size() > 19) {
            symbols.insert(line.substr(19));
        }
        line.clear();
    }
    return symbols;
}

class Exports : public testing::Test {
protected:
    static void SetUpTestSuite() { symbols() = readSymbols(); }

    static Symbols& symbols() {
        static Symbols instance;
        return instance;
    }
    static void expect(const std::string& symbol) {
        EXPECT_TRUE(symbols().count(symbol) != 0) << "not exported: " << symbol;
    }
};

TEST_F(Exports, Runtime) {
    for (const std::string& symbol : tests::readDataFile("exported_runtime.txt")) {
        expect(symbol);
    }
}

void expectFamily(const std::string& name, const std::string& value, const std::string& members,
                  void (*expect)(const std::string&)) {
    std::set<std::string> extra;
    std::istringstream words(members);
    for (std::string word; words >> word;) {
        extra.insert(word);
    }
    const std::string record = "asn1data::ASN1T_" + name;
    const std::string control = "asn1data::ASN1C_" + name;
    const std::string type = value.empty() ? record : value;
    const auto function = [&](const char* prefix, const std::string& arguments) {
        expect(std::string("asn1data::") + prefix + name + "(ASN1CTXT*, " + type + "*" + arguments +
               ")");
    };
    function("asn1E_", ", ASN1TagType");
    function("asn1D_", ", ASN1TagType, int");
    function("asn1Copy_", ", " + type + "*");
    if (extra.count("release") != 0) {
        function("asn1Free_", "");
    }
    if (extra.count("table") != 0) {
        function("asn1ETC_", "");
        function("asn1DTC_", "");
    }
    const std::string constructor = control + "::ASN1C_" + name;
    expect(constructor + "(" + type + "&)");
    expect(constructor + "(ASN1MessageBufferIF&, " + type + "&)");
    expect(constructor + "(" + control + "&)");
    expect(control + "::EncodeTo(ASN1MessageBufferIF&)");
    expect(control + "::DecodeFrom(ASN1MessageBufferIF&)");
    expect(control + "::getCopy(" + type + "*)");
    expect(control + "::newCopy()");
    expect("vtable for " + control);
    if (extra.count("assign") != 0) {
        expect(control + "::operator=(" + control + "&)");
    }
    if (extra.count("record") != 0) {
        expect(record + "::ASN1T_" + name + "(" + control + "&)");
        expect(record + "::~ASN1T_" + name + "()");
    }
}

TEST_F(Exports, Types) {
    for (const std::string& line : tests::readDataFile("exported_types.txt")) {
        const auto columns = tests::splitColumns(line);
        ASSERT_EQ(columns.size(), 3u) << line;
        expectFamily(columns[0], columns[1], columns[2], expect);
    }
}

TEST_F(Exports, ObjectIdentifiers) {
    expect("asn1data::id_Brevantis_algorithms");
    for (const std::string& line : tests::readDataFile("object_identifiers.txt")) {
        expect("asn1data::" + line.substr(0, line.find(' ')));
    }
}

// Whoever could link against internals soon would.
TEST_F(Exports, NothingInternal) {
    ASSERT_FALSE(symbols().empty());
    for (const std::string& symbol : symbols()) {
        for (const char* internal : {"runtime_detail::", "asn1data::types::", "(anonymous"}) {
            EXPECT_EQ(symbol.find(internal), std::string::npos) << symbol;
        }
    }
}

} // namespace
