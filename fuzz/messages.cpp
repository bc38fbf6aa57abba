#include <algorithm>

#include <brevantis/asn1/asn1data/describe.h>

#include "entry.h"
#include "policies.h"
#include "support/value_round_trip.h"
#include "support/walk_agreement.h"
#include "type_tally.h"

// Octets as a message of any type of the catalogue: the first octets choose policy and type.

namespace {

using asn1data::TypeDescription;
using tests::Octets;

/// A message that is decoded.
struct Decoded {
    Decoded(const TypeDescription& type, const Octets& message, int flags)
        : reader(message), value(asn1data::family::newRecord(reader, type)) {
        rtCtxtSetFlag(reader, flags);
        unsigned char* const octets = reader->buffer.data;
        if (!message.empty()) {
            bound = xd_setp(reader, octets, static_cast<int>(message.size()), nullptr, nullptr);
        }
        status = asn1data::family::decode(reader, type, value, ASN1TagExplicit, 0);
    }

    tests::Reader reader;
    void* value;
    int bound = 0;
    int status;
};

/// What decodes is encoded, decoded again and compared, copied and released. Values that decode
/// need not be fit for encoding. Nor need the encoding decode: an open value that a message ends in
/// front of is empty, and stays away. But what does decode must come out the same; and so must what
/// is exact and DER from the beginning.
/// @return whether the message decodes
bool roundTrip(const TypeDescription& type, const Octets& message, int flags) {
    Decoded first(type, message, flags);
    if (first.status > 0) {
        fuzz::report("decoding returns a positive status");
    }
    int status = -1;
    const Octets encoded =
        first.status == 0 ? tests::encodedValue(type, first.value, status, flags) : Octets();
    if (first.status == 0 && type.copyable) {
        tests::Context copies;
        void* const copied = asn1data::family::newRecord(copies, type);
        asn1data::family::copy(copies, type, first.value, copied);
        int again = 0;
        if (copies->errInfo.status == 0 &&
            (tests::encodedValue(type, copied, again, flags) != encoded ||
             (again < 0) != (status < 0))) {
            fuzz::report("the copy differs");
        }
        asn1data::family::release(copies, type, copied);
    }
    if (status >= 0) {
        Decoded second(type, encoded, flags);
        if (second.status == 0 &&
            tests::encodedValue(type, second.value, status, flags) != encoded) {
            fuzz::report("the second encoding differs");
        }
    }
    constexpr int faithful = ASN1F_EXACT | ASN1F_DER;
    if (first.bound == 0 && first.status == 0 && (flags & faithful) == faithful &&
        !std::equal(encoded.begin(), encoded.end(), message.begin(),
                    message.begin() + first.reader.position())) {
        fuzz::report("what is exact and DER is changed");
    }
    asn1data::family::release(first.reader, type, first.value);
    return first.status == 0;
}

} // namespace

int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    fuzz::Input input(data, size);
    const int flags = fuzz::policies[input.below(std::size(fuzz::policies))];
    const asn1data::TypeRange types = asn1data::allTypes();
    const std::size_t index = input.below(types.size());
    const Octets message = input.rest();
    if (roundTrip(types[index], message, flags)) {
        fuzz::noteReached(index);
    }
    tests::expectWalkAgrees(types[index], message, flags);
    if (testing::Test::HasFailure()) {
        fuzz::report("walking and decoding differ");
    }
    return 0;
}
