#ifndef TESTS_SUPPORT_DAMAGED_VALUES_H
#define TESTS_SUPPORT_DAMAGED_VALUES_H

#include <random>

#include <gtest/gtest.h>

#include <brevantis/asn1/asn1data/family.h>

#include "support/coding.h"
#include "support/loosened.h"
#include "support/mutation.h"
#include "support/value_builder.h"

namespace tests {

/// Shows messages of random values of types to an agreement, whole, loosened and damaged, until the
/// first difference.
/// @param agreement has `bool check(const TypeDescription&, const Octets&)`
template <class Agreement>
void checkDamagedValues(const asn1data::TypeRange& types, unsigned valuesPerType,
                        unsigned mutations, Agreement& agreement) {
    std::mt19937 random(1);
    for (const asn1data::TypeDescription* type : types) {
        for (unsigned seed = 1; seed <= valuesPerType; ++seed) {
            Context values;
            void* const value = ValueBuilder(values, seed).build(*type);
            ASSERT_EQ(xe_setp(values, nullptr, 0), 0);
            const int count = asn1data::family::encode(values, *type, value, ASN1TagExplicit);
            ASSERT_GE(count, 0) << type->name;
            const Octets message(xe_getp(values), xe_getp(values) + count);
            if (!agreement.check(*type, message) || message.empty()) {
                return;
            }
            for (unsigned i = 0; i < mutations; ++i) {
                Octets damaged = i % 2 == 0 ? message : loosened(message, random);
                for (unsigned harm = 0; harm < i % 4 && !damaged.empty(); ++harm) {
                    damage(damaged, random);
                }
                if (!agreement.check(*type, damaged)) {
                    return;
                }
            }
        }
    }
}

} // namespace tests

#endif
