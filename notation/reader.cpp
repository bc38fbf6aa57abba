#include "reader.h"

#include <map>
#include <set>

#include "checker.h"
#include "parser.h"
#include "resolver.h"

namespace notation {

bool readModules(const std::vector<SourceFile>& files, Model& model, Diagnostics& diagnostics) {
    std::map<std::pair<bool, std::string>, std::set<std::string>> identifiers; // by names
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
            ModuleNode& node = module->node;
            std::set<std::string>& known = identifiers[{file.ofLibrary, node.name}];
            if (!known.insert(node.identifier).second && !node.name.empty()) {
                diagnostics.error(
                    node.at,
                    "a second module '" + node.name + "'" +
                        (node.identifier.empty() ? "" : " with the same object identifier"));
            } else if (known.size() > 1) {
                node.name += "-" + std::to_string(known.size());
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
