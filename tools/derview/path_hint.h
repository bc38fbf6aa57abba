#ifndef DERVIEW_PATH_HINT_H
#define DERVIEW_PATH_HINT_H

#include <string>

#include "message.h"

namespace derview {

/// What a path that leads nowhere could have gone on with: "; content has signedData". It names
/// what is in the last element on the way that there is.
/// @return nothing when there is nothing in it
std::string pathHint(const Message& message, const asn1data::TypeDescription& type,
                     const std::string& path);

} // namespace derview

#endif
