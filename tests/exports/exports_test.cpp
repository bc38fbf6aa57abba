#include <cstdio>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "support/locked_list.h"

namespace {

using Symbols = std::set<std::string>;

/// Names in the dynamic symbol table of the library, demangled.
Symbols readSymbols() {
    struct Close {
        void operator()(std::FILE* pipe) const { pclose(pipe); }
    };
    const std::unique_ptr<std::FILE, Close> pipe(
        popen("nm -DC --defined-only --without-symbol-versions '" LIBRARY_FILE "'", "r"));
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

std::string replaceAll(std::string text, const std::string& what, const std::string& by) {
    for (std::size_t at = text.find(what); at != std::string::npos;
         at = text.find(what, at + by.size())) {
        text.replace(at, what.size(), by);
    }
    return text;
}

/// What the library exports for a type, by the patterns of the data file.
/// @param value the type of the value: a record of the type's own where it is empty
/// @param members what the type has beside what all have
Symbols familyOf(const std::string& name, const std::string& value, const std::string& members) {
    static const std::vector<tests::DataRow> patterns =
        tests::dataRows("exported_families.txt", "symbols");
    const std::string facts = " all " + members + (value == "none" ? " empty" : " valued") +
                              (members.find("uncopied") == std::string::npos ? " copied " : " ");
    const std::string type = value.empty() ? "asn1data::ASN1T_" + name : value;
    Symbols symbols;
    for (const tests::DataRow& pattern : patterns) {
        std::istringstream conditions(pattern["of types that are"]);
        bool applies = true;
        for (std::string condition; conditions >> condition;) {
            applies = applies && facts.find(" " + condition + " ") != std::string::npos;
        }
        if (applies) {
            symbols.insert(replaceAll(replaceAll(pattern["symbol"], "NAME", name), "VALUE", type));
        }
    }
    return symbols;
}

/// What exported_types.txt tells of a type, as its symbols tell it.
std::string typeLine(const Symbols& symbols, const std::string& name) {
    const auto has = [&](const std::string& begin) {
        const auto symbol = symbols.lower_bound("asn1data::" + begin);
        return symbol != symbols.end() && symbol->rfind("asn1data::" + begin, 0) == 0;
    };
    const std::string encoder = "asn1data::asn1E_" + name + "(ASN1CTXT*, ";
    const auto found = symbols.lower_bound(encoder);
    if (found == symbols.end() || found->rfind(encoder, 0) != 0) {
        return name + " | no encoder |";
    }
    const std::string parameters = found->substr(encoder.size());
    const std::size_t star = parameters.rfind("*, ASN1TagType)");
    const bool valued = star != std::string::npos;
    std::string line = name + " |";
    if (!valued) {
        line += " none";
    } else if (parameters.substr(0, star) != "asn1data::ASN1T_" + name) {
        line += ' ' + parameters.substr(0, star);
    }
    line += " |";
    const std::pair<const char*, bool> members[] = {
        {" release", has("asn1Free_" + name + "(")},
        {" record", has("ASN1T_" + name + "::~")},
        {" table", has("asn1ETC_" + name + "(")},
        {" uncopied", valued && !has("asn1Copy_" + name + "(")}};
    for (const auto& [member, present] : members) {
        line += present ? member : "";
    }
    return line;
}

TEST_F(Exports, TypesAsListed) {
    const std::string control = "vtable for asn1data::ASN1C_";
    std::vector<std::string> lines;
    for (auto symbol = symbols().lower_bound(control);
         symbol != symbols().end() && symbol->rfind(control, 0) == 0; ++symbol) {
        lines.push_back(typeLine(symbols(), symbol->substr(control.size())));
    }
    tests::expectLocked("exported_types.txt", lines);
}

TEST_F(Exports, FamiliesOfTypes) {
    Symbols listed;
    for (const std::string& line : tests::readDataFile("exported_types.txt")) {
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
        if (symbol.rfind("asn1data::", 0) == 0 && symbol.find("::getCopy(") != std::string::npos) {
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
        EXPECT_NE(symbol.rfind("std::", 0), 0u) << symbol;
        for (const char* internal :
             {"runtime_detail::", "asn1data::types::", "asn1published::types::", "(anonymous"}) {
            EXPECT_EQ(symbol.find(internal), std::string::npos) << symbol;
        }
    }
}

} // namespace
