#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <sstream>

#include <notation/remarks.h>

#include "compiler.h"

namespace {

const char* const help =
    R"(usage: asn1gen --namespace NAME --header-dir DIR --include-prefix PATH --source-dir DIR
               [--export-macro NAME] [--catalogue] [--module-names] [--library DIR]
               MODULE.asn1...

Compiles ASN.1 modules (X.680 to X.683) that import from each other, in any order. For each file
M.asn1 it writes M.h with the records, control classes and functions of its types, M.cpp with their
descriptions, and M_types.h, which M.cpp needs. A file that would not change is left alone.

  --namespace NAME       namespace of what is generated
  --header-dir DIR       where the headers go
  --include-prefix PATH  how they are included: <PATH/M.h>
  --source-dir DIR       where the sources go
  --export-macro NAME    marks what a shared library exports
  --catalogue            also write catalogue.cpp, which finds every description by name
  --module-names         descriptions are called Module.Type rather than Type
  --library DIR          modules of the library, whose types are used where they are imported
  --help                 print this and exit
  --version              print the version and exit

Remarks, at the end of the line of what they are for:

)";

const char* const statuses = R"(
Exit status: 0, or 1 after messages of the form FILE:LINE:COLUMN: error: SENTENCE. What was read
otherwise than it stands is told in the same form as a warning.
)";

void printHelp() {
    std::cout << help;
    for (const notation::RemarkKind& kind : notation::remarkKinds()) {
        const std::string remark = "--@ " + kind.key + (kind.value.empty() ? "" : " ") + kind.value;
        std::cout << "  " << std::left << std::setw(22) << remark << ' ' << std::setw(22) << kind.on
                  << ' ' << kind.meaning << '\n';
    }
    std::cout << statuses;
}

bool readFile(const std::string& name, std::string& text) {
    std::ifstream in(name, std::ios::binary);
    std::ostringstream content;
    content << in.rdbuf();
    text = content.str();
    return in.good() || (in.eof() && !in.bad());
}

// An unchanged file keeps its time, so that nothing that includes it is built again.
bool writeFile(const std::string& name, const std::string& text) {
    std::string present;
    if (std::filesystem::exists(name) && readFile(name, present) && present == text) {
        return true;
    }
    std::error_code error;
    std::filesystem::create_directories(std::filesystem::path(name).parent_path(), error);
    std::ofstream out(name, std::ios::binary | std::ios::trunc);
    out << text;
    out.close();
    return out.good();
}

// Puts the library's modules in front.
bool readLibrary(const std::string& directory, std::vector<asn1gen::SourceFile>& files) {
    std::vector<asn1gen::SourceFile> all;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(directory, error)) {
        asn1gen::SourceFile file{entry.path().string(), "", true};
        if (entry.path().extension() == ".asn1" && readFile(file.name, file.text)) {
            all.push_back(std::move(file));
        }
    }
    std::sort(all.begin(), all.end(), [](const auto& a, const auto& b) { return a.name < b.name; });
    files.insert(files.begin(), all.begin(), all.end());
    return !all.empty();
}

int usageError(const std::string& sentence) {
    std::cerr << "asn1gen: " << sentence << "; see asn1gen --help\n";
    return 1;
}

int run(const std::vector<std::string>& arguments) {
    asn1gen::Options options;
    std::string library;
    std::vector<asn1gen::SourceFile> files;
    const std::pair<const char*, std::string*> values[] = {
        {"--namespace", &options.output.nameSpace},
        {"--header-dir", &options.headerDirectory},
        {"--include-prefix", &options.output.includePrefix},
        {"--source-dir", &options.sourceDirectory},
        {"--export-macro", &options.output.exportMacro},
        {"--library", &library}};
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        if (argument == "--help") {
            printHelp();
            return 0;
        }
        if (argument == "--version") {
            std::cout << "asn1gen " ASN1GEN_VERSION "\n";
            return 0;
        }
        if (argument == "--catalogue") {
            options.catalogue = true;
            continue;
        }
        if (argument == "--module-names") {
            options.output.moduleNames = true;
            continue;
        }
        if (argument.rfind("--", 0) != 0) {
            asn1gen::SourceFile file{argument, "", false};
            std::error_code error;
            if (std::filesystem::is_directory(argument, error)) {
                std::cerr << "asn1gen: " << argument << " is a folder; name the modules in it\n";
                return 1;
            }
            if (!readFile(argument, file.text)) {
                std::cerr << "asn1gen: cannot read " << argument << "\n";
                return 1;
            }
            files.push_back(std::move(file));
            continue;
        }
        std::string* value = nullptr;
        for (const auto& [name, target] : values) {
            value = argument == name ? target : value;
        }
        if (value == nullptr) {
            return usageError("there is no option " + argument);
        }
        if (++i == arguments.size()) {
            return usageError(argument + " needs a value");
        }
        *value = arguments[i];
    }
    if (files.empty() || options.output.nameSpace.empty() || options.headerDirectory.empty() ||
        options.output.includePrefix.empty() || options.sourceDirectory.empty()) {
        return usageError("an option or the modules are missing");
    }
    if (!library.empty() && !readLibrary(library, files)) {
        std::cerr << "asn1gen: " << library << " holds no modules\n";
        return 1;
    }
    asn1gen::Diagnostics diagnostics;
    const std::map<std::string, std::string> generated =
        asn1gen::compile(files, options, diagnostics);
    diagnostics.print(std::cerr);
    if (diagnostics.failed()) {
        return 1;
    }
    for (const auto& [name, text] : generated) {
        if (!writeFile(name, text)) {
            std::cerr << "asn1gen: cannot write " << name << "\n";
            return 1;
        }
    }
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    return run(std::vector<std::string>(argv + 1, argv + argc));
}
