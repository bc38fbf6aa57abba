#include <random>

#include <brevantis/asn1/asn1data/describe.h>

#include "entry.h"
#include "support/mutation.h"
#include "support/value_round_trip.h"
#include "support/walk_agreement.h"
#include "type_tally.h"

// Values of any type: the first octets choose the type, the next ones what the value is like, so
// that no message has to be guessed. Then its encoding is damaged.

namespace {

/// Numbers of an input, and when it is used up of a sequence that it decides.
class Choices {
public:
    explicit Choices(const std::vector<unsigned char>& octets)
        : octets_(octets), later_(octets.empty() ? 0 : octets.back()) {}

    unsigned long long operator()() {
        if (next_ + 1 >= octets_.size()) {
            return later_();
        }
        const unsigned high = octets_[next_++];
        const unsigned long long number = high << 8 | octets_[next_++];
        // Low bits choose among few, high ones fill the large numbers.
        return number * 0x0001'0001'0001'0001;
    }

private:
    const std::vector<unsigned char>& octets_;
    std::size_t next_ = 0;
    std::mt19937_64 later_;
};

} // namespace

int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    fuzz::Input input(data, size);
    const asn1data::TypeRange types = asn1data::allTypes();
    const std::size_t index = input.below(types.size());
    const unsigned harms = input.octet() % 4;
    const std::vector<unsigned char> octets = input.rest();
    tests::Octets message = tests::expectRoundTrip(types[index], Choices(octets));
    if (testing::Test::HasFailure()) {
        fuzz::report("a value does not survive");
    }
    fuzz::noteReached(index);
    std::mt19937 random(static_cast<unsigned>(octets.size()));
    for (unsigned harm = 0; harm < harms && !message.empty(); ++harm) {
        tests::damage(message, random);
    }
    tests::expectWalkAgrees(types[index], message);
    if (testing::Test::HasFailure()) {
        fuzz::report("walking and decoding differ");
    }
    return 0;
}
