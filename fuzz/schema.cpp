#include <compiler.h>

#include <sstream>

#include "entry.h"

// Modules for the schema compiler, with a zero octet between two. It refuses with messages that
// have a place, or generates the same files each time.

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
    return 0;
}
