#include <cstdlib>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <brevantis/asn1/asn1data.h>
#include <brevantis/asn1/values.h>

#include "support/value_round_trip.h"
#include "support/walk_agreement.h"

// Threads with contexts of their own do not get into each other's way: under the thread sanitizer
// nothing that they share is written without order. This is a program of its own, so that what is
// made at its first use is made here.

namespace {

using namespace asn1data;

constexpr unsigned Threads = 8;

/// Every type; two threads each begin with the same one.
void useCatalogue(unsigned thread) {
    const TypeRange types = allTypes();
    for (std::size_t i = 0; i < types.size(); ++i) {
        const TypeDescription& type =
            types[(i + thread / 2 * types.size() / Threads) % types.size()];
        const tests::Octets message = tests::expectRoundTrip(type, std::mt19937_64(thread + 1));
        tests::expectWalkAgrees(type, message);
        tests::expectWalkAgrees(type, message, ASN1F_EXACT | ASN1F_DER);
        EXPECT_EQ(findType(type.name), &type);
    }
    for (const ObjectSetDescription* set : allObjectSets()) {
        for (unsigned i = 0; i < set->count; ++i) {
            const ObjectDescription& object = set->objects[i];
            ASN1TObjId identifier(static_cast<unsigned char>(object.arcCount), object.arcs);
            EXPECT_NE(family::findObject(*set, identifier), nullptr);
            identifierName(identifier);
        }
    }
}

void useValueClasses() {
    using namespace Brevantis::ASN1;
    const CName name(L"C=RU,O=Company,CN=Somebody");
    CName other;
    other.decode(name.encode());
    EXPECT_TRUE(other.toString() == name.toString());
    CExtensions extensions;
    extensions.insert(CExtension("1.2.3", name.encode()));
    CExtensions again;
    again.decode(extensions.encode());
    EXPECT_TRUE(again == extensions);
}

TEST(Threads, WithContextsOfTheirOwnUseTheWholeCatalogue) {
    std::vector<std::thread> threads;
    threads.reserve(Threads);
    for (unsigned i = 0; i < Threads; ++i) {
        threads.emplace_back([i] {
            useValueClasses();
            useCatalogue(i);
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

} // namespace
