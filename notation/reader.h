#ifndef BREVANTIS_NOTATION_READER_H
#define BREVANTIS_NOTATION_READER_H

#include <string>
#include <vector>

#include "diagnostics.h"
#include "model.h"

namespace notation {

/// A schema file.
struct SourceFile {
    std::string name; ///< as diagnostics show it
    std::string text;
    /// One of those that are compiled already. Modules of other files come first where names are
    /// alike.
    bool ofLibrary = false;
};

/// Reads modules that belong together, in any order.
/// @param files those of the library in front
/// @param model an empty one, which receives them with everything settled; its files are those of
///        @p files in their order
/// @return false when @p diagnostics tells why, and then the model is no good
bool readModules(const std::vector<SourceFile>& files, Model& model, Diagnostics& diagnostics);

} // namespace notation

#endif
