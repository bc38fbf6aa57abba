#ifndef BREVANTIS_ASN1GEN_COMPILER_H
#define BREVANTIS_ASN1GEN_COMPILER_H

#include <map>
#include <string>
#include <vector>

#include "emitter.h"
#include <notation/diagnostics.h>
#include <notation/reader.h>

namespace asn1gen {

/// What the compiler is asked for.
struct Options {
    Output output;
    std::string headerDirectory;
    std::string sourceDirectory;
    bool catalogue = false;
};

/// Compiles modules that belong together.
/// @return the generated files by their paths; empty when @p diagnostics tells why
std::map<std::string, std::string> compile(const std::vector<SourceFile>& files,
                                           const Options& options, Diagnostics& diagnostics);

} // namespace asn1gen

#endif
