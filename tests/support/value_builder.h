#ifndef TESTS_SUPPORT_VALUE_BUILDER_H
#define TESTS_SUPPORT_VALUE_BUILDER_H

#include <functional>
#include <random>
#include <utility>

#include <brevantis/asn1/asn1data/builder.h>
#include <brevantis/asn1/asn1data/describe.h>
#include <brevantis/asn1/runtime/context.h>
#include <brevantis/asn1/runtime/list.h>

namespace tests {

/// Makes values of any type within its constraints, by its description alone. One seed gives one
/// sequence of values.
class ValueBuilder {
public:
    /// Gives any number whenever it is called.
    using Random = std::function<unsigned long long()>;

    ValueBuilder(ASN1CTXT* ctxt, unsigned long long seed)
        : ValueBuilder(ctxt, Random(std::mt19937_64(seed))) {}
    /// A value of choices that are made elsewhere.
    ValueBuilder(ASN1CTXT* ctxt, Random random)
        : ctxt_(ctxt), builder_(ctxt), random_(std::move(random)) {}

    /// Whether a type has values that end, as far as can be seen.
    static bool canBuild(const asn1data::TypeDescription& type);

    /// A new record of the type on the context's heap.
    /// @param type that can be built
    void* build(const asn1data::TypeDescription& type);

private:
    struct Filling;

    void fill(const asn1data::TypeDescription& type, const asn1data::Constraint& constraint,
              void* value);
    void fillRecord(const asn1data::TypeDescription& type, void* record);
    void fillChoice(const asn1data::TypeDescription& type, void* record);
    void fillList(const asn1data::TypeDescription& type, const asn1data::Constraint& constraint,
                  Asn1RTDList& list);
    void fillArray(const asn1data::TypeDescription& type, const asn1data::Constraint& constraint,
                   void* value);
    void resolve(const asn1data::TypeDescription& type, void* record);
    void resolveSlot(const asn1data::ObjectDescription& object, Asn1TObject& slot);
    void fillOpenType(ASN1OpenType& value);
    const char* integerText();
    const char* text(const asn1data::TypeDescription& type, unsigned length);
    unsigned char* octets(unsigned count);

    unsigned below(unsigned bound) { return static_cast<unsigned>(random_() % bound); }
    bool chance(unsigned percent) { return below(100) < percent; }
    long long number(const asn1data::Constraint& constraint, long long lowest, long long highest);
    unsigned size(const asn1data::Constraint& constraint, unsigned usual, unsigned highest);
    template <class T>
    T* allocate(std::size_t count);

    ASN1CTXT* ctxt_;
    asn1data::Builder builder_;
    Random random_;
    unsigned depth_ = 0;
};

} // namespace tests

#endif
