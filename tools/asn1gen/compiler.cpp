#include "compiler.h"

#include <cstdint>
#include <set>

namespace asn1gen {
namespace {

// FNV-1a over the text, so that a generated file tells which schema it came from.
std::string digestOf(const std::string& text) {
    std::uint64_t hash = 0xCBF29CE484222325ull;
    for (const char c : text) {
        hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3ull;
    }
    std::string digest;
    for (int shift = 60; shift >= 0; shift -= 4) {
        digest += "0123456789abcdef"[hash >> shift & 0xF];
    }
    return digest;
}

std::string stemOf(const std::string& file) {
    const std::size_t slash = file.find_last_of("/\\");
    const std::string name = slash == std::string::npos ? file : file.substr(slash + 1);
    return name.substr(0, name.rfind('.'));
}

} // namespace

std::map<std::string, std::string> compile(const std::vector<SourceFile>& files,
                                           const Options& options, Diagnostics& diagnostics) {
    std::set<std::string> stems;
    for (const SourceFile& file : files) {
        if (!file.ofLibrary && !stems.insert(stemOf(file.name)).second) {
            diagnostics.error({file.name, 1, 1}, "a second file '" + stemOf(file.name) + "'");
        }
    }
    Model model;
    if (!readModules(files, model, diagnostics)) {
        return {};
    }
    for (std::size_t i = 0; i < files.size(); ++i) {
        model.files[i].node->stem = stemOf(files[i].name);
        model.files[i].node->digest = digestOf(files[i].text);
    }
    std::map<std::string, std::string> generated;
    for (const auto& module : model.modules) {
        if (module->ofLibrary) {
            module->space = LibrarySpace;
        }
    }
    Emitter emitter(model, options.output);
    for (const File& file : model.files) {
        if (file.ofLibrary) {
            continue;
        }
        const std::string& stem = file.node->stem;
        generated[options.headerDirectory + "/" + stem + ".h"] = emitter.header(file);
        generated[options.sourceDirectory + "/" + stem + ".cpp"] = emitter.source(file);
        generated[options.sourceDirectory + "/" + stem + "_types.h"] = emitter.privateHeader(file);
    }
    if (options.catalogue) {
        generated[options.sourceDirectory + "/catalogue.cpp"] = emitter.catalogue();
    }
    return generated;
}

} // namespace asn1gen
