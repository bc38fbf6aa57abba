#include "compiler.h"

#include <algorithm>
#include <cstdint>
#include <functional>
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

// The headers of modules that hold each other's records cannot include each other.
void checkHeaderCycles(const Model& model, Diagnostics& diagnostics) {
    std::vector<const Module*> path;
    std::vector<const Module*> done;
    const std::function<void(const Module&)> visit = [&](const Module& module) {
        const auto onPath = std::find(path.begin(), path.end(), &module);
        if (onPath != path.end()) {
            std::string cycle;
            for (auto step = onPath; step != path.end(); ++step) {
                cycle += (*step)->node.name + " -> ";
            }
            diagnostics.error(module.node.at,
                              "modules hold values of each other: " + cycle + module.node.name);
            return;
        }
        if (std::find(done.begin(), done.end(), &module) != done.end()) {
            return;
        }
        path.push_back(&module);
        for (const Module* needed : neededHeaders(module)) {
            visit(*needed);
        }
        path.pop_back();
        done.push_back(&module);
    };
    for (const auto& module : model.modules) {
        visit(*module);
    }
}

} // namespace

std::map<std::string, std::string> compile(const std::vector<SourceFile>& files,
                                           const Options& options, Diagnostics& diagnostics) {
    Model model;
    std::set<std::string> names;
    std::set<std::string> stems;
    for (const SourceFile& file : files) {
        auto module = std::make_unique<Module>();
        module->node.file = file.name;
        module->node.stem = stemOf(file.name);
        module->node.digest = digestOf(file.text);
        module->node.stream = tokenize(file.name, file.text, diagnostics);
        Parser(module->node, diagnostics).parseModule();
        const bool newName = names.insert(module->node.name).second;
        if (!stems.insert(module->node.stem).second || !newName) {
            diagnostics.error(module->node.at, "a second module '" + module->node.name + "'");
        }
        model.modules.push_back(std::move(module));
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
    Checker(model, diagnostics, [&resolver](const Module& module, const ValueNode& value) {
        return resolver.number(module, value);
    }).run();
    if (!diagnostics.failed()) {
        checkHeaderCycles(model, diagnostics);
    }
    if (diagnostics.failed()) {
        return {};
    }
    std::map<std::string, std::string> generated;
    Emitter emitter(model, options.output);
    for (const auto& module : model.modules) {
        const std::string& stem = module->node.stem;
        generated[options.headerDirectory + "/" + stem + ".h"] = emitter.header(*module);
        generated[options.sourceDirectory + "/" + stem + ".cpp"] = emitter.source(*module);
        generated[options.sourceDirectory + "/" + stem + "_types.h"] =
            emitter.privateHeader(*module);
    }
    if (options.catalogue) {
        generated[options.sourceDirectory + "/catalogue.cpp"] = emitter.catalogue();
    }
    return generated;
}

} // namespace asn1gen
