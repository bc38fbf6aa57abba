#include <brevantis/asn1/asn1data/describe.h>

#include "entry.h"
#include "support/walk_agreement.h"

/// Walks and decodes octets as any type of the catalogue: the first two octets choose it.
int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    constexpr std::size_t choice = 2;
    if (size < choice) {
        return 0;
    }
    const asn1data::TypeRange types = asn1data::allTypes();
    const std::size_t chosen = std::size_t{data[0]} << 8 | data[1];
    tests::expectWalkAgrees(types[chosen % types.size()], {data + choice, data + size});
    if (testing::Test::HasFailure()) {
        fuzz::report("walking and decoding differ");
    }
    return 0;
}
