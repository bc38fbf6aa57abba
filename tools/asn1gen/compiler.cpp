#include "compiler.h"

#include <cstdint>
#include <set>

#include <notation/checker.h>
#include <notation/parser.h>
#include <notation/resolver.h>

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
    Model model;
    std::set<std::string> names;
    std::set<std::string> stems;
    for (const SourceFile& source : files) {
        File& file = model.files.emplace_back();
        file.node = std::make_shared<FileNode>();
        file.node->name = source.name;
        file.node->stem = stemOf(source.name);
        file.node->digest = digestOf(source.text);
        file.node->stream = tokenize(source.name, source.text, diagnostics);
        const Location start{source.name, 1, 1};
        if (!stems.insert(file.node->stem).second) {
            diagnostics.error(start, "a second file '" + file.node->stem + "'");
        }
        std::size_t next = 0;
        do {
            auto module = std::make_unique<Module>();
            module->node.file = file.node;
            next = parseModule(module->node, next, diagnostics);
            if (!names.insert(module->node.name).second && !module->node.name.empty()) {
                diagnostics.error(module->node.at, "a second module '" + module->node.name + "'");
            }
            file.modules.push_back(module.get());
            model.modules.push_back(std::move(module));
        } while (next < file.node->stream.tokens.size() - 1);
    }
    // A module that could not be read whole would be blamed for all that is missing from it.
    if (diagnostics.failed()) {
        return {};
    }
    Resolver resolver(model, diagnostics);
    resolver.run();
    if (diagnostics.failed()) {
        return {};
    }
    Checker(model, diagnostics, [&resolver](const ValueNode& value) {
        return resolver.number(value);
    }).run();
    if (diagnostics.failed()) {
        return {};
    }
    std::map<std::string, std::string> generated;
    Emitter emitter(model, options.output);
    for (const File& file : model.files) {
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
