#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <set>

#include <brevantis/asn1/asn1data/describe.h>
#include <brevantis/asn1/runtime/object_identifier_coding.h>
#include <brevantis/asn1/text/json_writer.h>

#include "support/coding.h"
#include "support/data_file.h"
#include "support/message_classes.h"

// Writes what the fuzzers begin with: DIRECTORY/messages.dict, the identifiers and tags of the
// catalogue, DIRECTORY/types.txt, the names of its types, and DIRECTORY/seeds/TARGET, the samples
// of the tests in the form that the target reads.
//
// Usage: fuzz_inputs DIRECTORY SOURCES

namespace {

using namespace asn1data;
using tests::Octets;
namespace fs = std::filesystem;

void writeFile(const fs::path& path, const Octets& octets) {
    fs::create_directories(path.parent_path());
    std::ofstream file(path, std::ios::binary);
    std::copy(octets.begin(), octets.end(), std::ostreambuf_iterator<char>(file));
}

Octets readFile(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return Octets(std::istreambuf_iterator<char>(file), {});
}

Octets octetsOf(const std::string& text) {
    return Octets(text.begin(), text.end());
}

/// Collects the words of a dictionary.
class Dictionary {
public:
    void add(const Octets& word) {
        constexpr std::size_t Longest = 64;
        if (!word.empty() && word.size() <= Longest) {
            words_.insert(word);
        }
    }

    void write(const fs::path& path) const {
        std::ofstream file(path);
        for (const Octets& word : words_) {
            file << '"';
            for (const unsigned char octet : word) {
                file << "\\x"
                     << "0123456789ABCDEF"[octet >> 4] << "0123456789ABCDEF"[octet & 15];
            }
            file << "\"\n";
        }
    }

private:
    std::set<Octets> words_;
};

void addTag(Dictionary& words, ASN1TAG tag, unsigned char identifier) {
    if (tag != 0) {
        words.add({identifier});
        words.add({identifier, 0x80});
    }
}

void writeDictionary(const fs::path& path) {
    Dictionary words;
    words.add({0, 0});
    for (const IdentifierDescription& known : allIdentifiers()) {
        tests::Writer writer;
        ASN1OBJID identifier = *known.identifier;
        if (xe_objid(writer, &identifier, ASN1TagExplicit) > 0) {
            words.add(tests::fromHex(writer.hex()));
        }
    }
    for (const TypeDescription* type : allTypes()) {
        addTag(words, type->tag, type->identifier);
        for (unsigned i = 0; i < type->elementCount; ++i) {
            addTag(words, type->elements[i].tag, type->elements[i].identifier);
        }
    }
    words.write(path);
}

void writeTypes(const fs::path& path) {
    std::ofstream file(path);
    for (const TypeDescription* type : allTypes()) {
        file << type->name << '\n';
    }
}

/// Puts seeds into the folder of a target.
class Seeds {
public:
    explicit Seeds(fs::path directory) : directory_(std::move(directory)) {}

    void add(const std::string& target, Octets choice, const Octets& rest) {
        choice.insert(choice.end(), rest.begin(), rest.end());
        const unsigned number = ++count_[target];
        writeFile(directory_ / target / std::to_string(number), choice);
    }

    /// A message for all targets that read messages of its type.
    void addMessage(const std::string& type, const Octets& octets) {
        const TypeRange types = allTypes();
        for (std::size_t i = 0; i < types.size(); ++i) {
            if (type == types[i].name) {
                const auto high = static_cast<unsigned char>(i >> 8);
                const auto low = static_cast<unsigned char>(i & 0xFF);
                add("messages", {0, high, low}, octets);
                add("json", {0, high, low}, octets);
                asn1text::TextSink json;
                asn1text::writeJson(types[i], octets, json, asn1text::JsonLayout::OneLine);
                add("json", {1, high, low}, Octets(json.whole.begin(), json.whole.end()));
            }
        }
        const char* const controls[] = {"Certificate", "CertificateList", "Name",
                                        "ContentInfo", "OCSPResponse",    "PKIMessage"};
        for (std::size_t i = 0; i < std::size(controls); ++i) {
            if (type == controls[i]) {
                add("controls", {static_cast<unsigned char>(i), 0}, octets);
            }
        }
        unsigned char index = 0;
        tests::forEachMessageClass([&](const std::string& name, auto /*named*/) {
            if (name == type) {
                add("classes", {index}, octets);
            }
            ++index;
        });
        if (type == "CertificateList") {
            add("revocation_list", {}, octets);
        }
    }

private:
    fs::path directory_;
    std::map<std::string, unsigned> count_;
};

void addMessages(Seeds& seeds, const char* file, const char* table) {
    for (const tests::DataRow& row : tests::dataRows(file, table)) {
        const std::string& text = row["message"];
        if (text.find('(') == std::string::npos) {
            seeds.addMessage(row["type"], tests::fromHex(text));
        }
    }
}

void addTexts(Seeds& seeds) {
    const struct {
        const char* file;
        const char* table;
        const char* column;
        unsigned char first, last; ///< readers of fuzz/text.cpp
    } tables[] = {
        {"attribute_text.txt", "pairs", "text", 0, 0},
        {"distinguished_name.txt", "names", "text", 0, 0},
        {"time_text.txt", "parsed", "text", 1, 4},
        {"date_time.txt", "read", "text", 2, 2},
        {"utc_time.txt", "texts", "text", 3, 3},
        {"generalized_time.txt", "texts", "text", 4, 4},
        {"big_integer.txt", "read", "text", 5, 5},
        {"big_integer.txt", "encoded", "text", 5, 5},
        {"object_identifier.txt", "read", "text", 6, 6},
        {"utf8.txt", "texts", "text", 8, 9},
        {"free_text.txt", "coded", "text", 11, 11},
        {"pem.txt", "blocks", "file", 12, 12},
        {"pem.txt", "base64", "text", 12, 12},
    };
    for (const auto& table : tables) {
        for (const tests::DataRow& row : tests::dataRows(table.file, table.table)) {
            for (unsigned char reader = table.first; reader <= table.last; ++reader) {
                seeds.add("text", {reader}, octetsOf(row[table.column]));
            }
        }
    }
    seeds.add("text", {7}, octetsOf("30 03 02 01 0A"));
    seeds.add("text", {13}, octetsOf(R"(CN=\ a\2c b,OID.2.5.4.10=c\\+OU=d; 1.2.3=#0c0161 ,UID=e)"));
}

void addViewed(Seeds& seeds, const fs::path& directory) {
    for (const auto& entry : fs::directory_iterator(directory)) {
        const std::string stem = entry.path().stem();
        if (entry.path().extension() == ".hex") {
            const Octets text = readFile(entry.path());
            const Octets octets = tests::fromHex(std::string(text.begin(), text.end()));
            seeds.addMessage(stem.substr(0, stem.find('-')), octets);
            for (unsigned char format = 0; format < 3; ++format) {
                seeds.add("viewer", {format, 0, 0, 5}, octets);
            }
            seeds.add("viewer", {0, 0, 0, 0}, text);
            seeds.add("viewer", {0, 0, 0, 1}, octets);
        }
    }
}

void addModules(Seeds& seeds, const fs::path& directory) {
    for (const auto& entry : fs::directory_iterator(directory)) {
        if (entry.path().extension() == ".asn1") {
            seeds.add("schema", {}, readFile(entry.path()));
        }
    }
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        return 2;
    }
    const fs::path directory = argv[1];
    const fs::path sources = argv[2];
    fs::remove_all(directory / "seeds");
    fs::create_directories(directory);
    writeDictionary(directory / "messages.dict");
    writeTypes(directory / "types.txt");
    Seeds seeds(directory / "seeds");
    addMessages(seeds, "oddities.txt", "messages");
    addMessages(seeds, "value_messages.txt", "accepted");
    addMessages(seeds, "certificate_parts.txt", "parts");
    addMessages(seeds, "content_info.txt", "messages");
    for (const tests::DataRow& row : tests::dataRows("crl.txt", "lists")) {
        seeds.addMessage("CertificateList", tests::fromHex(row["octets"]));
    }
    addTexts(seeds);
    addViewed(seeds, sources / "tests/data/derview");
    addModules(seeds, sources / "tests/asn1gen/modules");
    addModules(seeds, sources / "tests/asn1data");
    addModules(seeds, sources / "asn1data/schema");
    return 0;
}
