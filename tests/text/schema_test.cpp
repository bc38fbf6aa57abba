#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <regex>
#include <sstream>

#include <gtest/gtest.h>

#include <brevantis/asn1/asn1data/family.h>
#include <brevantis/asn1/text/json_writer.h>
#include <brevantis/asn1/text/schema.h>

#include "support/json_identity.h"
#include "support/mutation.h"
#include "support/shapes_catalogue.h"
#include "support/value_round_trip.h"

namespace constructs {
asn1data::TypeRange allTypes() noexcept;
}

// Modules read at run time: the same tables as in generated code, hence the same octets.

namespace {

namespace fs = std::filesystem;
using asn1data::TypeDescription;
using asn1text::Schema;
using tests::Octets;

std::unique_ptr<const Schema> schemaOf(const std::vector<asn1text::SchemaText>& texts) {
    std::vector<asn1text::SchemaMessage> messages;
    auto schema = asn1text::readSchema(texts, messages);
    for (const asn1text::SchemaMessage& message : messages) {
        EXPECT_TRUE(message.warning) << messageText(message);
    }
    return schema;
}

std::unique_ptr<const Schema> schemaIn(const fs::path& place) {
    std::vector<asn1text::SchemaText> texts;
    const auto add = [&texts](const fs::path& path) {
        std::ifstream file(path);
        texts.push_back({path.string(), {std::istreambuf_iterator<char>(file), {}}});
    };
    if (fs::is_directory(place)) {
        for (const auto& entry : fs::directory_iterator(place)) {
            add(entry.path());
        }
    } else {
        add(place);
    }
    return schemaOf(texts);
}

const char* nameOf(const TypeDescription* type) {
    return type != nullptr ? type->name : "-";
}

void tell(std::ostream& out, const asn1data::Constraint& constraint, const char* parameter) {
    out << " (";
    for (unsigned i = 0; i < constraint.count; ++i) {
        out << constraint.ranges[i].lower << ".." << constraint.ranges[i].upper << " ";
    }
    out << parameter << ")";
}

/// All that a description tells.
std::string told(const TypeDescription& type) {
    std::ostringstream out;
    out << type.name << " ::= " << type.notation << "\n-- " << type.standard << "\n"
        << static_cast<int>(type.shape) << " " << type.setOf << type.stepsOverEndOfContents
        << type.closesRecursion << type.holdsMemory << type.copyable << type.hasDefaults << " tags "
        << type.tag << " " << type.outerTag << " " << int{type.identifier} << " size "
        << type.valueSize << " at " << type.countOffset << " " << type.dataOffset << " "
        << type.presenceOffset << " " << type.extensionOffset << " capacity " << type.capacity
        << " mandatory " << type.mandatoryCount << " road " << static_cast<int>(type.road) << " of "
        << nameOf(type.element) << " alias " << nameOf(type.aliasOf);
    for (const unsigned long long bits : type.identifiers.bits) {
        out << " " << std::hex << bits << std::dec;
    }
    tell(out, type.constraint, type.parameter);
    for (unsigned i = 0; i < type.elementCount; ++i) {
        const asn1data::ElementDescription& element = type.elements[i];
        out << "\n  " << element.name << " " << nameOf(element.type) << " at " << element.offset
            << " tag " << element.tag << " " << element.matchTag << " " << int{element.identifier}
            << " " << static_cast<int>(element.tagging) << static_cast<int>(element.presence) << " "
            << int{element.presenceBit} << element.indirect << " DEFAULT " << element.defaultNumber
            << " " << (element.defaultText != nullptr ? element.defaultText : "-");
        tell(out, element.constraint, element.parameter);
    }
    for (unsigned i = 0; i < type.nameCount; ++i) {
        out << "\n  " << type.names[i].name << "(" << type.names[i].number << ")";
    }
    if (const asn1data::TableConstraint* const table = type.table) {
        out << "\n  table " << static_cast<int>(table->value) << " " << table->identifierOffset
            << " " << table->valueOffset << " " << table->slotOffset << " " << table->presenceOffset
            << " " << int{table->presenceBit} << " " << table->objects->name << " "
            << table->objects->objectClass;
        for (unsigned i = 0; i < table->objects->count; ++i) {
            const asn1data::ObjectDescription& object = table->objects->objects[i];
            out << "\n    " << object.name << " " << nameOf(object.type);
            for (unsigned k = 0; k < object.arcCount; ++k) {
                out << "." << object.arcs[k];
            }
        }
    }
    return out.str();
}

/// What reading a message comes to: JSON and the status, with what was expected.
std::string reading(const TypeDescription& type, const Octets& message) {
    asn1text::TextSink json;
    const asn1data::WalkResult result = asn1text::writeJson(type, message, json);
    tests::Reader reader(message);
    void* const value = asn1data::family::newRecord(reader, type);
    const int status = asn1data::family::decode(reader, type, value, ASN1TagExplicit, 0);
    return json.whole + std::to_string(result.status) + " " + std::to_string(result.consumed) +
           " " + std::to_string(status) + " " + std::to_string(reader.position());
}

Octets someValue(const TypeDescription& type, unsigned seed, int& status) {
    tests::Context context;
    void* const value = tests::ValueBuilder(context, seed).build(type);
    return tests::encodedValue(type, value, status);
}

/// Checks that a schema has the types that were compiled, and that they do the same.
void expectSame(const Schema& schema, const asn1data::TypeRange& compiled, unsigned valuesPerType) {
    ASSERT_EQ(schema.types().size(), compiled.size());
    std::mt19937 random(1);
    for (const TypeDescription* const type : compiled) {
        const TypeDescription* const read = schema.findType(type->name);
        ASSERT_NE(read, nullptr) << type->name;
        ASSERT_EQ(told(*read), told(*type));
        for (unsigned seed = 1; seed <= valuesPerType; ++seed) {
            int status = 0;
            int readStatus = 0;
            Octets message = someValue(*type, seed, status);
            ASSERT_EQ(tests::toHex(someValue(*read, seed, readStatus)), tests::toHex(message));
            ASSERT_EQ(readStatus, status);
            for (int harm = 0; harm < 4 && !message.empty(); ++harm) {
                ASSERT_EQ(reading(*read, message), reading(*type, message))
                    << type->name << " " << tests::toHex(message);
                tests::damage(message, random);
            }
        }
    }
}

TEST(Schema, OfTheCatalogueIsTheCatalogue) {
    const auto schema = schemaIn(SCHEMA_DIRECTORY);
    ASSERT_NE(schema, nullptr);
    EXPECT_EQ(schema->types().size(), asn1data::allTypes().size());
    expectSame(*schema, asn1data::allTypes(), 20);
    ASSERT_EQ(schema->objectSets().size(), asn1data::allObjectSets().size());
    for (const TypeDescription* const type : schema->types()) {
        tests::expectRoundTrip(*type, std::mt19937_64(7));
    }
}

TEST(Schema, HasEveryShapeThatGeneratedCodeHas) {
    const auto schema = schemaIn(SHAPES_MODULE);
    ASSERT_NE(schema, nullptr);
    expectSame(*schema, shapes::allTypes(), 100);
}

TEST(Schema, OfModulesThatShareNames) {
    const auto schema = schemaIn(CONSTRUCTS_DIRECTORY);
    ASSERT_NE(schema, nullptr);
    std::vector<std::string> read;
    std::vector<std::string> compiled;
    for (const TypeDescription* const type : schema->types()) {
        read.push_back(
            std::regex_replace(told(*type), std::regex("(Clashing|Objects-Others)\\."), ""));
        tests::expectRoundTrip(*type, std::mt19937_64(1));
    }
    for (const TypeDescription* const type : constructs::allTypes()) {
        compiled.push_back(told(*type));
    }
    std::sort(read.begin(), read.end());
    std::sort(compiled.begin(), compiled.end());
    EXPECT_EQ(read, compiled);
    EXPECT_EQ(schema->findType("Clash"), nullptr);
    EXPECT_STREQ(nameOf(schema->findType("Clashing.Clash")), "Clashing.Clash");
    EXPECT_EQ(schema->findType("Objects.Own-Record"), schema->findType("Own_Record"));
    EXPECT_EQ(schema->findType("Objects."), nullptr);
}

/// What is said of a module, a line each.
std::string saidOf(const std::string& body, const asn1text::SchemaLimits& limits = {}) {
    std::vector<asn1text::SchemaMessage> messages;
    const auto schema = asn1text::readSchema(
        {{"own.asn1", "Own DEFINITIONS ::= BEGIN\n" + body + "END\n"}}, messages, limits);
    std::string said;
    for (const asn1text::SchemaMessage& message : messages) {
        said += messageText(message) + "\n";
    }
    EXPECT_EQ(schema == nullptr, said.find(" error: ") != std::string::npos) << said;
    return said;
}

TEST(Schema, TellsWhereAModuleIsWrong) {
    const std::string said = saidOf("A ::= SEQUENCE { a INTEGER, b Missing,\n c Absent }\n");
    const std::size_t second = said.find("own.asn1:3:4: error: ");
    EXPECT_EQ(said.find("own.asn1:2:31: error: "), 0U) << said;
    EXPECT_NE(said.find("'Absent'", second), std::string::npos) << said;
    EXPECT_NE(saidOf("A ::= SEQUENCE { a INTEGER b BOOLEAN }\n").find("own.asn1:2:28: error: "),
              std::string::npos);
    std::vector<asn1text::SchemaMessage> messages;
    EXPECT_EQ(asn1text::readSchema({}, messages), nullptr);
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_EQ(messageText(messages.front()), "error: no modules.");
}

TEST(Schema, IsBounded) {
    asn1text::SchemaLimits limits;
    limits.textSize = 40;
    EXPECT_EQ(saidOf("A ::= INTEGER\n", limits),
              "own.asn1: error: modules of more than 40 octets.\n");
    limits = {};
    limits.memory = 300;
    EXPECT_EQ(saidOf("A ::= SEQUENCE { a INTEGER }\nB ::= SEQUENCE { a INTEGER }\n", limits),
              "own.asn1: error: descriptions of more than 300 octets.\n");
    // A record twice in the next one, and so on.
    std::string doubling = "A0 ::= SEQUENCE { a INTEGER, b INTEGER }\n";
    for (int i = 1; i < 40; ++i) {
        const std::string before = "A" + std::to_string(i - 1);
        doubling +=
            "A" + std::to_string(i) + " ::= SEQUENCE { a " + before + ", b [1] " + before + " }\n";
    }
    EXPECT_NE(saidOf(doubling).find("error: a value of 'A17' takes more than 1048576 octets.\n"),
              std::string::npos);
    limits = {};
    limits.depth = 30;
    std::string nested = "A0 ::= SEQUENCE OF INTEGER\n";
    for (int i = 1; i < 31; ++i) {
        nested += "A" + std::to_string(i) + " ::= SEQUENCE OF A" + std::to_string(i - 1) + "\n";
    }
    EXPECT_EQ(saidOf(nested, limits),
              "own.asn1:31:1: error: types stand in each other more than 30 deep in 'A29'.\n");
    // What holds itself is limited where it is read.
    EXPECT_EQ(saidOf("A ::= SEQUENCE OF A\n", limits), "");
}

} // namespace
