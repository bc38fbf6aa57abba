#ifndef TESTS_INTEROP_MESSAGES_H
#define TESTS_INTEROP_MESSAGES_H

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "support/hex.h"

namespace interop {

/// A message of make_messages.sh.
struct Message {
    std::string type;
    std::string name; ///< "TYPE/NAME"
    bool isDer;
    tests::Octets octets;
    std::string check; ///< the command that accepts a message, for one that is not in DER
};

inline tests::Octets readFile(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return tests::Octets(std::istreambuf_iterator<char>(file), {});
}

/// All messages of a directory, by their names; none when the script did not come to its end.
inline std::vector<Message> messagesOf(const std::filesystem::path& directory) {
    namespace fs = std::filesystem;
    std::vector<Message> messages;
    if (!fs::exists(directory / "complete")) {
        return messages;
    }
    for (auto entry = fs::recursive_directory_iterator(directory); entry != fs::end(entry);
         ++entry) {
        const fs::path path = entry->path();
        if (path.filename() == "work") {
            entry.disable_recursion_pending();
        }
        const bool der = path.extension() == ".der";
        if (!der && path.extension() != ".ber") {
            continue;
        }
        const std::string type = path.parent_path().filename();
        std::string check;
        std::ifstream file(fs::path(path).replace_extension(".check"));
        std::getline(file, check);
        messages.push_back({type, type + "/" + path.stem().string(), der, readFile(path), check});
    }
    std::sort(messages.begin(), messages.end(),
              [](const Message& a, const Message& b) { return a.name < b.name; });
    return messages;
}

} // namespace interop

#endif
