#include <compiler.h>

#include <random>
#include <sstream>

#include <brevantis/asn1/text/schema.h>

#include "entry.h"
#include "support/mutation.h"
#include "support/value_round_trip.h"
#include "support/walk_agreement.h"

// Modules, with a zero octet between two. The schema compiler refuses with messages that have a
// place, or generates files. Read at run time, what it takes is refused for a limit alone; values
// of its types survive the way to octets and back, and damaged ones are read by the rules.

namespace {

/// Some values of some types.
void tryTypes(const asn1text::Schema& schema, std::size_t seed) {
    constexpr unsigned types = 4;
    std::mt19937 random(static_cast<unsigned>(seed));
    for (unsigned i = 0; i < types && schema.types().size() != 0; ++i) {
        const asn1data::TypeDescription& type = schema.types()[random() % schema.types().size()];
        if (!tests::ValueBuilder::canBuild(type)) {
            continue;
        }
        tests::Octets message = tests::expectRoundTrip(type, std::mt19937_64(random()));
        if (testing::Test::HasFailure()) {
            fuzz::report("a value does not survive");
        }
        if (!message.empty()) {
            tests::damage(message, random);
        }
        tests::expectWalkAgrees(type, message);
        if (testing::Test::HasFailure()) {
            fuzz::report("walking and decoding differ");
        }
    }
}

void readAtRunTime(const std::vector<asn1gen::SourceFile>& files, bool compiled) {
    std::vector<asn1text::SchemaText> texts;
    std::size_t size = 0;
    for (const asn1gen::SourceFile& file : files) {
        texts.push_back({file.name, file.text});
        size += file.text.size();
    }
    asn1text::SchemaLimits limits;
    limits.valueSize = 1 << 16;
    std::vector<asn1text::SchemaMessage> messages;
    const auto schema = asn1text::readSchema(texts, messages, limits);
    if (schema != nullptr) {
        if (!compiled) {
            fuzz::report("what the compiler refuses is read at run time");
        }
        tryTypes(*schema, size);
        return;
    }
    const std::string& sentence = messages.empty() ? "" : messages.back().sentence;
    if (compiled && sentence.find("more than") == std::string::npos) {
        fuzz::report("what the compiler takes is refused at run time");
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    std::vector<asn1gen::SourceFile> files;
    std::istringstream modules(std::string(data, data + size));
    for (std::string text; std::getline(modules, text, '\0');) {
        files.push_back({"module" + std::to_string(files.size()) + ".asn1", text});
    }
    asn1gen::Options options;
    options.output.nameSpace = "fuzz";
    options.output.includePrefix = "fuzz";
    options.headerDirectory = "h";
    options.sourceDirectory = "s";
    options.catalogue = true;
    asn1gen::Diagnostics diagnostics;
    const auto generated = asn1gen::compile(files, options, diagnostics);
    if (diagnostics.failed() != generated.empty() && !files.empty()) {
        fuzz::report("neither files nor a reason, or both");
    }
    for (const auto& entry : diagnostics.entries()) {
        if (entry.sentence.empty()) {
            fuzz::report("a refusal without a reason");
        }
    }
    std::ostringstream printed;
    diagnostics.print(printed);
    if (!files.empty()) {
        readAtRunTime(files, !diagnostics.failed());
    }
    return 0;
}
