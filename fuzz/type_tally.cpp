#include "type_tally.h"

#include <cstdio>
#include <cstdlib>

#include <brevantis/asn1/asn1data/describe.h>

namespace {

constexpr std::size_t MostTypes = 1024;

// libFuzzer looks for new values here as it does in the counters of edges.
__attribute__((section("__libfuzzer_extra_counters"))) unsigned char reached[MostTypes];

// The counters are cleared for each input.
bool everReached[MostTypes];

void writeReached() {
    const char* const name = std::getenv("BREVANTIS_FUZZ_REACHED");
    std::FILE* const file = name != nullptr ? std::fopen(name, "w") : nullptr;
    if (file == nullptr) {
        return;
    }
    const asn1data::TypeRange types = asn1data::allTypes();
    for (std::size_t i = 0; i < types.size(); ++i) {
        if (everReached[i]) {
            std::fprintf(file, "%s\n", types[i].name);
        }
    }
    std::fclose(file);
}

} // namespace

namespace fuzz {

void noteReached(std::size_t index) {
    static const bool registered = std::atexit(writeReached) == 0;
    if (registered && index < MostTypes) {
        reached[index] = 1;
        everReached[index] = true;
    }
}

} // namespace fuzz
