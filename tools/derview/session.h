#ifndef DERVIEW_SESSION_H
#define DERVIEW_SESSION_H

#include "arguments.h"

namespace derview {

/// Does what a command line asks for.
/// @return the exit status
int runSession(const Arguments& arguments);

} // namespace derview

#endif
