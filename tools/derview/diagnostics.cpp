#include "diagnostics.h"

#include <cstdio>

namespace derview {

void Diagnostics::tell(const std::string& text) {
    progress_.clear();
    output_.flush();
    std::fprintf(stderr, "%s\n", text.c_str());
}

} // namespace derview
