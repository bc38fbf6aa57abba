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

/// What the library exports for a type, told by a line of the data file.
Symbols familyOf(const std::string& name, const std::string& value, const std::string& members) {
    std::set<std::string> extra;
    std::istringstream words(members);
    for (std::string word; words >> word;) {
        extra.insert(word);
    }
    const auto has = [&](const char* member) { return extra.count(member) != 0; };
    const std::string record = "asn1data::ASN1T_" + name;
    const std::string control = "asn1data::ASN1C_" + name;
    const std::string constructor = control + "::ASN1C_" + name;
    const bool empty = value == "none";
    const std::string type = value.empty() ? record : value;
    Symbols symbols;
    const auto function = [&](const char* prefix, const std::string& arguments) {
        symbols.insert(std::string("asn1data::") + prefix + name + "(ASN1CTXT*" +
                       (empty ? "" : ", " + type + "*") + arguments + ")");
    };
    function("asn1E_", ", ASN1TagType");
    function("asn1D_", ", ASN1TagType, int");
    symbols.insert(control + "::EncodeTo(ASN1MessageBufferIF&)");
    symbols.insert(control + "::DecodeFrom(ASN1MessageBufferIF&)");
    symbols.insert("vtable for " + control);
    if (empty) {
        symbols.insert(constructor + "()");
        symbols.insert(constructor + "(ASN1MessageBufferIF&)");
        symbols.insert(constructor + "(" + control + "&)");
        return symbols;
    }
    symbols.insert(constructor + "(" + type + "&)");
    symbols.insert(constructor + "(ASN1MessageBufferIF&, " + type + "&)");
    if (!has("uncopied")) {
        function("asn1Copy_", ", " + type + "*");
        symbols.insert(constructor + "(" + control + "&)");
        symbols.insert(control + "::getCopy(" + type + "*)");
        symbols.insert(control + "::newCopy()");
    }
    if (has("release")) {
        function("asn1Free_", "");
    }
    if (has("table")) {
        function("asn1ETC_", "");
        function("asn1DTC_", "");
    }
    if (has("assign")) {
        symbols.insert(control + "::operator=(" + control + "&)");
    }
    if (has("record")) {
        symbols.insert(record + "::~ASN1T_" + name + "()");
        if (!has("uncopied")) {
            symbols.insert(record + "::ASN1T_" + name + "(" + control + "&)");
        }
    }
    return symbols;
}

TEST_F(Exports, Types) {
    const auto lines = tests::readDataFile("exported_types.txt");
    EXPECT_EQ(lines.size(), 539u);
    Symbols listed;
    for (const std::string& line : lines) {
        const auto columns = tests::splitColumns(line);
        ASSERT_EQ(columns.size(), 3u) << line;
        for (const std::string& symbol : familyOf(columns[0], columns[1], columns[2])) {
            expect(symbol);
            listed.insert(symbol);
        }
    }
    // A function of a type that should not have it is as wrong as one that lacks.
    for (const std::string& symbol : symbols()) {
        for (const char* prefix :
             {"asn1E_", "asn1D_", "asn1Copy_", "asn1Free_", "asn1ETC_", "asn1DTC_"}) {
            if (symbol.rfind(std::string("asn1data::") + prefix, 0) == 0) {
                EXPECT_EQ(listed.count(symbol), 1u) << "not listed: " << symbol;
            }
        }
        if (symbol.find("::getCopy(") != std::string::npos) {
            EXPECT_EQ(listed.count(symbol), 1u) << "not listed: " << symbol;
        }
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
