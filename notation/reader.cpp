#include "reader.h"

#include <set>

#include "checker.h"
#include "parser.h"
#include "resolver.h"

namespace notation {

bool readModules(const std::vector<SourceFile>& files, Model& model, Diagnostics& diagnostics) {
    std::set<std::pair<bool, std::string>> names;
    for (const SourceFile& source : files) {
        File& file = model.files.emplace_back();
        file.node = std::make_shared<FileNode>();
        file.node->name = source.name;
        file.ofLibrary = source.ofLibrary;
        file.node->stream = tokenize(source.name, source.text, diagnostics);
        std::size_t next = 0;
        do {
            auto module = std::make_unique<Module>();
            module->node.file = file.node;
            module->ofLibrary = file.ofLibrary;
            next = parseModule(module->node, next, diagnostics);
            if (!names.emplace(file.ofLibrary, module->node.name).second &&
                !module->node.name.empty()) {
                diagnostics.error(module->node.at, "a second module '" + module->node.name + "'");
            }
            file.modules.push_back(module.get());
            model.modules.push_back(std::move(module));
        } while (next < file.node->stream.tokens.size() - 1);
    }
    // A module that could not be read whole would be blamed for all that is missing from it.
    if (diagnostics.failed()) {
        return false;
    }
    Resolver resolver(model, diagnostics);
    resolver.run();
    if (diagnostics.failed()) {
        return false;
    }
    Checker(model, diagnostics, [&resolver](const ValueNode& value) {
        return resolver.number(value);
    }).run();
    return !diagnostics.failed();
}

} // namespace notation
