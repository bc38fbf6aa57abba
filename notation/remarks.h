#ifndef BREVANTIS_NOTATION_REMARKS_H
#define BREVANTIS_NOTATION_REMARKS_H

#include <string>
#include <vector>

/// @file
/// The instructions to the compiler that stand in comments, as `--@ key value`.

namespace notation {

struct RemarkKind {
    std::string key;
    std::string value;   ///< what stands behind the key, or empty
    std::string on;      ///< what it can stand on
    std::string meaning; ///< in a line
};

/// All of them.
const std::vector<RemarkKind>& remarkKinds();

} // namespace notation

#endif
