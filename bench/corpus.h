#ifndef BENCH_CORPUS_H
#define BENCH_CORPUS_H

#include <string>
#include <vector>

#include "operation.h"

/// @file
/// The messages that everything is measured on.

namespace bench {

/// A message, or several of one kind that are measured together.
struct Sample {
    std::string name;
    Kind kind;
    std::vector<std::vector<unsigned char>> messages;

    Octets octets(std::size_t index) const {
        return {messages[index].data(), messages[index].size()};
    }
    /// Of all messages together.
    std::size_t size() const;
};

/// Reads what make_corpus.sh wrote, the CA certificates of this machine, and makes revocation
/// lists. What is not there is left out with a line to the standard error stream.
/// @param directory where make_corpus.sh wrote
std::vector<Sample> readCorpus(const std::string& directory);

/// The content of a file.
/// @throws std::runtime_error when it cannot be read
std::vector<unsigned char> readFile(const std::string& path);

} // namespace bench

#endif
